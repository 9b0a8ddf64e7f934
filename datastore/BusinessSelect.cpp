#include "datastore/BusinessSelect.h"

#include <algorithm>

#include "datastore/Businesses.h"

namespace {

constexpr std::string_view kTitle = "Select Business";
constexpr std::string_view kOpen = "Open", kAdd = "Add", kDelete = "Delete or Undelete";

std::string NumberedName(int number) { return "Business " + std::to_string(number); }

std::string RowOf(const LBusiness& business) {
    std::string row = business.name;
    if (row.empty())
        row = business.number == 0 ? "Default business" : NumberedName(business.number);
    return business.isDeleted ? row + " (deleted)" : row;
}

std::vector<std::string> RowsOf(const std::vector<LBusiness>& businesses) {
    std::vector<std::string> rows;
    std::transform(businesses.begin(), businesses.end(), std::back_inserter(rows), RowOf);
    return rows;
}

// Elsewhere a business is found by its name, so it is given one at once.
bool AddBusiness() {
    const auto folder = CreateNewBusiness();
    if (!folder) return false;
    const int number = NumberOfBusinessFolder(*folder);
    return SetBusinessName(number, NumberedName(number));
}

}  // namespace

bool LMultipleBusinessSelect(LUserInterface& ui, LProfile& profile) {
    for (;;) {
        const auto businesses = ListBusinesses(LBusinessFilter::kWithDeleted);
        const auto choice =
            ui.ChooseFromList(kTitle, "Choose a business.", RowsOf(businesses),
                              {std::string(kOpen), std::string(kAdd), std::string(kDelete)});
        if (!choice || choice->row >= businesses.size()) return false;
        const LBusiness& chosen = businesses[choice->row];
        if (choice->button == kOpen) {
            profile.SetDatabaseName(chosen.folder);
            return true;
        }
        const bool done = choice->button == kAdd
                              ? AddBusiness()
                              : SetBusinessDeleted(chosen.number, !chosen.isDeleted);
        if (!done) ui.Inform(kTitle, "The change could not be saved.");
    }
}
