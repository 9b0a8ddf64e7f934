// What an item is built from: the component list in its field "BillOfMaterials", who is named
// there, and the checks on what a person enters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LProfile.h"
#include "platform/LUserInterface.h"

// Bills nested deeper than this are taken for bills that lead back to themselves.
inline constexpr size_t kMaxBillDepth = 100;

// One line of a bill of materials.
struct BOMItemQuantities {
    std::string code;     // the component's code, not its key; at most 259 bytes
    double quantity = 0;  // for one unit of the built item

    // Whether the item with that code is built from components.
    static bool ItemHasBOM(const LProfile& profile, std::string_view code);
    // Whether the item with that key is a component of any item.
    static bool UsedInAnotherItemsBOM(const LProfile& profile, std::string_view id);
};

// Reads the stored form, in its order. An unreadable quantity is 0.
void ParseBOMItemsAndQuantities(std::vector<BOMItemQuantities>& list, std::string_view text);
// Writes it: quantities with the profile's number of decimals, or as many more as they need, so
// that a small one is never rounded away.
std::string GetBOMItemQuantityString(const LProfile& profile,
                                     const std::vector<BOMItemQuantities>& lines);

// The codes of the items whose bill names `code`, in the store's order.
std::vector<std::string> ItemsBuiltFrom(const LProfile& profile, std::string_view code);

// A component line as it is typed.
enum class LComponentField { kCode, kQuantity, kValue };
using LComponentError = LFieldError<LComponentField>;
struct LComponentInput {
    std::string code;      // chosen from the item list
    std::string quantity;  // in the profile's number format
    std::string value;     // the amount shown with the line; it is not stored
};
// Checks a line that is added or edited; `line` is set when nothing is wrong with it.
LComponentError CheckComponentLine(const LProfile& profile, const LComponentInput& input,
                                   BOMItemQuantities& line);

// Why a component list in stored form cannot be the bill of an item that will bear `code`, in words
// for the person; empty when it can. `oldCode` is the code that the item bears up to now, empty for
// a new one.
std::string CheckBillOfMaterials(const LProfile& profile, std::string_view code,
                                 std::string_view oldCode, std::string_view billOfMaterials);
