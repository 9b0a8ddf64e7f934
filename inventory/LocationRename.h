// Carrying a location's new name into the movement history, which knows locations by name.
#pragma once

#include <string>
#include <string_view>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// In every CSV file of both history folders writes the rows of the location named exactly `oldName`
// again with `newName`, in place; all other rows stay as they are, byte for byte. Runs under a
// progress display. When it is cancelled, or a file cannot be changed, the rows already changed are
// put back as they were and false is returned; `failure` then says which file it was, and is empty
// for a cancellation. The caller holds the movement lock.
[[nodiscard]] bool LocationRecordsUpdateData(LUserInterface& ui, const LProfile& profile,
                                             std::string_view oldName, std::string_view newName,
                                             std::string& failure);
