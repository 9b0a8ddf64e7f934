// Exporting suppliers and customers as a data file for a word processor's mail merge.
#pragma once

#include <string>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// Write the records of these keys to a CSV file that the user picks: a header row, then a row for
// each. "Address1" to "Address4" hold the lines of the address, the fourth also what is beyond it.
// What goes wrong is told. True when the file was written.
bool LCustomersExportMailMerge(LUserInterface& ui, const LProfile& profile,
                               const std::vector<std::string>& keys);
bool LSuppliersExportMailMerge(LUserInterface& ui, const LProfile& profile,
                               const std::vector<std::string>& keys);
