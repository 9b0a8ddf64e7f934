// Records that belong to no folder: the same accessors over values that are never stored.
#pragma once

#include <string_view>

#include "datastore/LRecord.h"

// The list of such records. Saving one does nothing and succeeds.
class UnboundListBase {
public:
    // Invalidates the record and binds it under `key` without any field.
    static void OpenAlways(LRecord& record, std::string_view key);
};

// A record with a key, without fields.
void InitUnboundRecord(LRecord& record, std::string_view key);
// A copy of `source`, its key included, on which changes stay without effect. Not of itself.
void InitUnboundRecord(LRecord& record, const LRecord& source);
