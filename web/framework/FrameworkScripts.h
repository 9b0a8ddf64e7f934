// The page names that the framework itself answers.
#pragma once

// Installs "uploadProgress" and "saveItemDialogTab". Before the server installs its table.
void InstallFrameworkScripts();
