#include "orders/OrderText.h"

#include <string_view>

#include "orders/OrderInput.h"

namespace {

// Every line of `text` behind the same indent; CR LF and LF both end a line.
void AddBlock(std::string& out, std::string_view title, std::string_view text) {
    if (text.empty()) return;
    out.append(title).append("\n");
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        out.append("    ").append(line).append("\n");
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::string Joined(std::string_view first, std::string_view second) {
    std::string text(first);
    if (!first.empty() && !second.empty()) text += "\n";
    return text.append(second);
}

std::string ShownDate(const LProfile& profile, std::string_view stored) {
    const std::optional<LDate> date = LDate::FromStored(stored);
    return date ? profile.FormatDate(*date) : std::string(stored);
}

void AddField(std::string& out, std::string_view name, std::string_view value) {
    if (!value.empty()) out.append(name).append(": ").append(value).append("\n");
}

void AddHead(std::string& out, const LProfile& profile, const LPOrder& order) {
    LRecord supplier, location;
    const bool hasSupplier = profile.List("Suppliers").Load(order.GetView("Supplier"), supplier);
    const bool hasLocation = profile.List("Locations").Load(order.GetView("Location"), location);
    out += LOrderTitle(profile, order) + "\n\n";
    AddField(out, "Date", ShownDate(profile, order.GetView("Date")));
    AddField(out, "Expected by", ShownDate(profile, order.GetView("Receipt Date")));
    AddField(out, "Ship by", order.GetView("ShipBy"));
    AddField(out, "Tracking reference", order.GetView("TrackingRef"));
    out += "\n";
    AddBlock(out, "From:", Joined(profile.BusinessName(), order.GetView("Address")));
    if (hasSupplier) {
        AddBlock(out, "To:", Joined(supplier.GetView("Name"), supplier.GetView("Address")));
    }
    const std::string_view shipTo = order.GetBool("SameAsBillTo", false)
                                        ? order.GetView("Address")
                                        : order.GetView("ShippingAddress");
    AddBlock(out, "Ship to:", Joined(hasLocation ? location.GetView("Name") : "", shipTo));
}

void AddLine(std::string& out, const LProfile& profile, const LPOrder& order, int line) {
    const LMoney cost = order.GetItemUnitCost(profile, line);
    const double quantity = order.GetItemQty(line);
    out += std::to_string(line + 1) + ". " + LOrderLineCode(profile, order, line) + "\n";
    AddBlock(out, "", order.GetItemDescription(line));
    const std::string measure = order.GetItemMeasure(line);
    out += "    " + profile.FormatQuantity(quantity) + (measure.empty() ? "" : " " + measure) +
           " x " + profile.FormatMoney(cost) + " = " +
           profile.FormatMoney(LineAmount(quantity, cost)) + "\n";
}

void AddTotals(std::string& out, const LProfile& profile, const LPOrder& order) {
    const int digits = order.GetTotalDigits(profile);
    const auto shown = [&](int64_t amount) { return profile.FormatMoney({amount, digits}); };
    AddField(out, "Subtotal", shown(order.CalculateSubTotal(profile)));
    for (int number = 1; number <= order.GetTaxAmountCount(); ++number) {
        const std::string name = order.GetTaxAmountName(number);
        if (!name.empty()) AddField(out, name, shown(order.GetTaxAmount(number)));
    }
    AddField(out, "Total", shown(order.GetTotal()));
}

}  // namespace

std::string LOrderTitle(const LProfile& profile, const LPOrder& order) {
    LRecord settings;
    profile.OpenSettings(settings, "Order");
    const std::string title = settings.GetString("Title");
    return (title.empty() ? "Purchase Order" : title) + " " + order.GetPrimaryKey();
}

std::string LOrderPlainText(const LProfile& profile, const LPOrder& order) {
    LRecord settings;
    profile.OpenSettings(settings, "Order");
    std::string text;
    AddHead(text, profile, order);
    text += "\n";
    for (int line = 0; line < order.GetItemCount(); ++line) AddLine(text, profile, order, line);
    text += "\n";
    AddTotals(text, profile, order);
    text += "\n";
    AddBlock(text, "Notes:", order.GetView("Notes"));
    AddBlock(text, "", settings.GetView("FooterText"));
    return text;
}
