// The one operation that changes stock. Everything is worked out in memory first, so that a refusal
// at any point has touched nothing.
#include <algorithm>
#include <cmath>
#include <list>
#include <string>
#include <vector>

#include "inventory/BillOfMaterials.h"
#include "inventory/MasterRecords.h"
#include "inventory/MovementLock.h"
#include "inventory/StockQuantities.h"

namespace {

// A mangled bill may name its components over and over on many levels. Past this many lines it is
// nothing that a business builds, and the change is refused.
constexpr int kMaxBillLines = 10000;

// What one plain item will hold.
struct LPlannedChange {
    LItem* target;  // the record to save
    std::string key;
    LStockEntries entries;
    bool checksWarning, raisesFlag = false;
};

class LQuantityPlan {
public:
    LQuantityPlan(const LProfile& profile, std::string_view locationName, bool allowNegative)
        : profile_(profile),
          locations_(profile),
          locationName_(locationName),
          allowNegative_(allowNegative) {}

    // Plans to change the item of that key: `newest` is how the store has it, `target` the record
    // to save, which must stay until Store. Once it has returned false the plan is worthless.
    bool Plan(const LItem& newest, LItem& target, const std::string& key, double delta);
    bool Store();

private:
    bool PlanComponent(std::string_view code, double delta);
    LPlannedChange& PlannedFor(const LItem& newest, LItem& target, const std::string& key);
    bool Apply(LPlannedChange& change, double delta);
    bool IsTheLocation(const std::string& key);
    bool AddLocation(LPlannedChange& change, double delta);

    const LProfile& profile_;
    const LLocationList locations_;
    const std::string_view locationName_;
    const bool allowNegative_;
    LRecord location_;
    std::list<LItem> components_;
    std::list<LPlannedChange> changes_;
    std::vector<std::string> path_;  // keys of the built items above the present component
    int lines_ = 0;
};

bool LQuantityPlan::Plan(const LItem& newest, LItem& target, const std::string& key, double delta) {
    if (!newest.IsBuilt()) return Apply(PlannedFor(newest, target, key), delta);
    const bool leadsBack = std::find(path_.begin(), path_.end(), key) != path_.end();
    if (leadsBack || path_.size() >= kMaxBillDepth) return false;

    path_.push_back(key);
    std::vector<BOMItemQuantities> lines;
    ParseBOMItemsAndQuantities(lines, newest.GetView("BillOfMaterials"));
    for (const BOMItemQuantities& line : lines) {
        if (!PlanComponent(line.code, delta * line.quantity)) return false;
    }
    path_.pop_back();
    return true;
}

bool LQuantityPlan::PlanComponent(std::string_view code, double delta) {
    if (++lines_ > kMaxBillLines) return false;
    LItem& component = components_.emplace_back();
    return OpenItem(profile_, component, code) &&
           Plan(component, component, component.GetPrimaryKey(), delta);
}

// The plan for that item, which several lines may change one after the other.
LPlannedChange& LQuantityPlan::PlannedFor(const LItem& newest, LItem& target,
                                          const std::string& key) {
    for (LPlannedChange& change : changes_) {
        if (change.key == key) return change;
    }
    LPlannedChange& change = changes_.emplace_back();
    change.target = &target;
    change.key = key;
    change.checksWarning = newest.GetBool("CheckWaringEmail", false);
    change.entries = ParseLocationAndQuantities(newest.GetView("LocationsAndQuantities"));
    return change;
}

bool LQuantityPlan::Apply(LPlannedChange& change, double delta) {
    if (!std::isfinite(delta)) return false;
    const bool mayRefuse = delta < 0 && !allowNegative_;
    bool isKeptHere = false;
    for (LocationAndQuantities& entry : change.entries) {
        if (!IsTheLocation(entry.location)) continue;
        if (mayRefuse && -delta > entry.quantity) return false;
        entry.quantity += delta;
        isKeptHere = true;
        // Only raised here: the e-mail thread lowers it, so one dip sends one message.
        if (change.checksWarning && entry.warnQuantity >= entry.quantity) change.raisesFlag = true;
    }
    return isKeptHere || (!mayRefuse && AddLocation(change, delta));
}

bool LQuantityPlan::IsTheLocation(const std::string& key) {
    return locations_.Load(key, location_) && location_.GetView("Name") == locationName_;
}

bool LQuantityPlan::AddLocation(LPlannedChange& change, double delta) {
    LLocation location;
    if (!OpenLocation(locations_, location, locationName_)) return false;
    change.entries.push_back({location.GetPrimaryKey(), delta, 0, 0});
    return true;
}

bool LQuantityPlan::Store() {
    return std::all_of(changes_.begin(), changes_.end(), [&](const LPlannedChange& change) {
        SetStockFields(profile_, *change.target, change.entries, LStockTotals::kQuantityOnly);
        if (change.raisesFlag) OverwriteField(*change.target, "SendWaringEmail", "1");
        return change.target->Flush();
    });
}

}  // namespace

bool LItemChangeQuantity(const LProfile& profile, LItem& item, double delta,
                         std::string_view locationName, bool allowNegative) {
    const LMovementLock lock(profile);
    const std::string key = item.GetLoadedKey();
    LItem stored;
    if (!key.empty() && !profile.Items().Load(key, stored)) return false;  // deleted meanwhile
    LQuantityPlan plan(profile, locationName, allowNegative);
    return plan.Plan(key.empty() ? item : stored, item, key, delta) && plan.Store();
}

bool LItemChangeQuantityById(const LProfile& profile, std::string_view itemId, double delta,
                             std::string_view locationName, bool allowNegative) {
    const LMovementLock lock(profile);
    LItem item;
    if (!profile.Items().Open(item, itemId)) return false;
    LQuantityPlan plan(profile, locationName, allowNegative);
    return plan.Plan(item, item, item.GetPrimaryKey(), delta) && plan.Store();
}
