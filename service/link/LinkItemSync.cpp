#include "service/link/LinkItemSync.h"

#include <sys/stat.h>

#include "datastore/RecordFileName.h"
#include "datastore/RecordText.h"
#include "inventory/StockQuantities.h"
#include "platform/FileIo.h"

namespace {

constexpr size_t kPieceBytes = 32768;
constexpr int kTaxable = 1;

void AppendQuoted(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
}

bool HasChangedSince(const LProfile& profile, const LItem& item, std::time_t since) {
    struct stat status {};
    const std::string path = profile.Items().Folder() + "/" + RecordFileName(item.GetPrimaryKey());
    return ::stat(path.c_str(), &status) == 0 && status.st_mtime >= since;
}

template <typename IsWanted>
int WriteItems(const LProfile& profile, int file, std::string_view location, IsWanted&& isWanted) {
    LLinkItemLines lines(profile, location);
    std::string piece;
    int count = 0;
    LItem item;
    const auto iterator = profile.Items().CreateIteratorBase(item);
    for (; item.IsBound(); iterator->Next(item)) {
        if (!isWanted(item)) continue;
        lines.Append(piece, item);
        ++count;
        if (piece.size() < kPieceBytes) continue;
        if (!WriteAll(file, piece)) return -1;
        piece.clear();
    }
    return WriteAll(file, piece) ? count : -1;
}

}  // namespace

LLinkItemLines::LLinkItemLines(const LProfile& profile, std::string_view location)
    : profile_(profile),
      location_(location),
      locations_(profile, "Locations"),
      buildable_(profile) {}

void LLinkItemLines::Append(std::string& out, const LItem& item) {
    const LocationAndQuantities stock = StockOf(item);
    AppendQuoted(out, item.GetView("Name"));
    out += ',';
    AppendQuoted(out, profile_.FormatMoney(item.Cost()));
    out += ',';
    AppendQuoted(out, profile_.FormatMoney(item.Price()));
    out += ",\"";
    AppendEncoded(out, item.GetView("Description"));
    out += "\",";
    AppendQuantity(out, stock.quantity);
    out += item.GetInt("TaxRate", 0) == kTaxable ? ",\"1\"," : ",,";
    AppendQuantity(out, stock.idealQuantity);
    out += ',';
    AppendQuantity(out, stock.warnQuantity);
    out += "\r\n";
}

// As GetQuantityInStock answers, without opening a location for every entry.
LocationAndQuantities LLinkItemLines::StockOf(const LItem& item) {
    const LStockEntries entries =
        item.IsBuilt() ? buildable_.Of(item)
                       : ParseLocationAndQuantities(item.GetView("LocationsAndQuantities"));
    for (const LocationAndQuantities& entry : entries) {
        if (!location_.empty() && locations_.Name(entry.location) == location_) return entry;
    }
    return {};
}

void LLinkItemLines::AppendQuantity(std::string& out, double quantity) const {
    AppendQuoted(out, profile_.FormatNumber(quantity, profile_.DigitsAfterDecimalPoint(), false));
}

int INLinkItemCSVWrite(const LProfile& profile, const LItem& item, int file,
                       std::string_view location) {
    std::string line;
    LLinkItemLines(profile, location).Append(line, item);
    return WriteAll(file, line) ? 1 : -1;
}

int INLinkItemSync(const LProfile& profile, int file, std::string_view location) {
    return WriteItems(profile, file, location, [](const LItem&) { return true; });
}

int INLinkItemSync(const LProfile& profile, int file, std::time_t since,
                   std::string_view location) {
    return WriteItems(profile, file, location,
                      [&](const LItem& item) { return HasChangedSince(profile, item, since); });
}
