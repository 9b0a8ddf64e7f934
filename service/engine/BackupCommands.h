// Backup and restore from the command line, for machines without a screen.
#pragma once

#include <ostream>
#include <string>

// Both tell on `out` what they do and return what went wrong, in one line; empty when nothing did.

// Makes a backup in `destination`; the service may run meanwhile.
std::string LBackupFromCommandLine(const std::string& destination, std::ostream& out);
// Replaces the data by the backup in `folder`, the question having been answered by the person who
// typed the command. Nothing is moved before every record of the backup has been read and the disk
// has room for it.
std::string LRestoreFromCommandLine(const std::string& folder, std::ostream& out);
