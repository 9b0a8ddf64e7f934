// The page names that the accounts answer by themselves.
#pragma once

// Installs "changepassword", "changepasswordchanged", "logoff", "logon", "lostpassword" and
// "lostpasswordsent". Before the server installs its table, whose rows of the same names win.
void InstallAccountScripts();
