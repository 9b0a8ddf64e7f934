// The installer role: first set-up of a business without a screen, backup and restore.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

inline constexpr char kDefaultAdministrator[] = "owner@example.com";
inline constexpr char kDefaultBusinessName[] = "My Business";

// Understands
//   --business NAME    names the default business
//   --admin EMAIL      makes this account, or makes it an enabled administrator
//   --password-stdin   takes that account's password from the first line of `in`; without it a new
//                      account gets a generated one, printed once
//   --port N           the web port, 1 to 65535
//   --web on|off       whether the service serves the web pages
//   --link on|off      whether partner applications may use the stock; "on" makes an access code
//                      unless there is one, printed once
//   --sample           fills an empty business with a small hardware shop
// or, alone,
//   --backup FOLDER    copies all data into a new dated folder of FOLDER
//   --restore FOLDER --yes   replaces all data by the backup in FOLDER; the service rests meanwhile
//   --help             says all this, and nothing is changed
// Nothing is changed before all options have been understood. The first run names the business and
// makes an administrator in any case; a later one changes only what it is told to. What was done
// goes to `out`. Returns 0, or 1 after one line on `error`.
int LInstallerMain(const std::vector<std::string>& options, std::istream& in, std::ostream& out,
                   std::ostream& error);
