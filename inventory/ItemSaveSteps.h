// What both halves of an item's save share.
#pragma once

#include <string>
#include <string_view>

#include "datastore/NumberText.h"
#include "inventory/ItemSave.h"
#include "platform/TextLimits.h"

// As names and codes are stored.
inline std::string Trimmed(std::string_view text) { return std::string(CutText(TrimBlanks(text))); }

inline LItemError Gone() { return LItemError::General("This item has been deleted meanwhile."); }

inline LItemError NotSaved() { return LItemError::General("The item could not be saved."); }
