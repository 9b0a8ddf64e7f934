// The file of items that partner applications fetch. A line for each item, its fields separated by
// commas and ended by CR LF:
//   "code","cost","price","description percent-encoded","in stock","1" or nothing,"ideal","warning"
// The sixth field tells that the item is taxable and stands without quotes when it is not. Amounts
// and quantities are written as the business shows them, quantities without thousands separators;
// a double quote inside a field is doubled.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "datastore/LProfile.h"
#include "inventory/LBuildableStock.h"
#include "inventory/LItem.h"
#include "inventory/LNameMap.h"

// Writes lines for one location (exactly its name; quantities are 0 where there is none of it).
// Reads the locations once; made for one file, by one thread.
class LLinkItemLines {
public:
    LLinkItemLines(const LProfile& profile, std::string_view location);
    void Append(std::string& out, const LItem& item);

private:
    LocationAndQuantities StockOf(const LItem& item);
    void AppendQuantity(std::string& out, double quantity) const;

    const LProfile& profile_;
    const std::string location_;
    const LNameMap locations_;
    LBuildableStock buildable_;
};

// Append the line of one item, of all items, or of those whose record file has changed at `since`
// or later, to the open file. The number of lines written; -1 when the file does not take them.
[[nodiscard]] int INLinkItemCSVWrite(const LProfile& profile, const LItem& item, int file,
                                     std::string_view location);
[[nodiscard]] int INLinkItemSync(const LProfile& profile, int file, std::string_view location);
[[nodiscard]] int INLinkItemSync(const LProfile& profile, int file, std::time_t since,
                                 std::string_view location);
