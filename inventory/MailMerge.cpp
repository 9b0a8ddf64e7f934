#include "inventory/MailMerge.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "datastore/CsvText.h"
#include "datastore/NumberText.h"
#include "inventory/Parties.h"
#include "platform/FileIo.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr std::string_view kTitle = "Export to CSV";
constexpr size_t kAddressLines = 4;

// A column of the file and the field it shows; a field of several lines takes four columns, named
// with a number behind.
struct LMergeColumn {
    const char* title;
    const char* field;
    bool isAddress = false;
};
constexpr std::array<LMergeColumn, 19> kCustomerColumns{{
    {"Customer", "Name"},
    {"Contact", "Contact"},
    {"FirstName", "ContactFirst"},
    {"Address", "Address", true},
    {"City", "City"},
    {"State", "State"},
    {"ZIPCode", "ZIPCode"},
    {"Country", "Country"},
    {"Phone", "Phone"},
    {"Phone2", "Phone2"},
    {"Fax", "Fax"},
    {"Email", "Email"},
    {"ShipAddress", "ShippingAddress", true},
    {"ShipCity", "ShipCity"},
    {"ShipState", "ShipState"},
    {"ShipZIPCode", "ShipZIPCode"},
    {"ShipCountry", "ShipCountry"},
    {"SalesPerson", "SalesPerson"},
    {"Notes", "Notes"},
}};
constexpr std::array<LMergeColumn, 8> kSupplierColumns{{
    {"Supplier", "Name"},
    {"Contact", "Contact"},
    {"FirstName", "ContactFirst"},
    {"Address", "Address", true},
    {"Phone", "Phone"},
    {"Phone2", "Phone2"},
    {"Fax", "Fax"},
    {"Email", "Email"},
}};

// Lines without anything in them are left out: on a label they would be gaps.
std::array<std::string, kAddressLines> SplitAddress(std::string_view address) {
    std::array<std::string, kAddressLines> lines;
    size_t used = 0;
    while (!address.empty()) {
        const size_t end = std::min(address.find_first_of("\r\n"), address.size());
        const std::string_view line = TrimBlanks(address.substr(0, end));
        address.remove_prefix(std::min(end + 1, address.size()));
        if (line.empty()) continue;
        std::string& place = lines[std::min(used++, kAddressLines - 1)];
        if (!place.empty()) place += ", ";
        place += line;
    }
    return lines;
}

template <typename Columns>
std::string HeaderRow(const Columns& columns) {
    std::vector<std::string> fields;
    for (const LMergeColumn& column : columns) {
        if (!column.isAddress) fields.emplace_back(column.title);
        for (size_t line = 1; column.isAddress && line <= kAddressLines; ++line) {
            fields.push_back(column.title + std::to_string(line));
        }
    }
    return FormatCsvRow(fields) + "\r\n";
}

template <typename Columns>
std::string DataRow(const Columns& columns, const LRecord& record) {
    std::vector<std::string> fields;
    for (const LMergeColumn& column : columns) {
        const std::string_view value = record.GetView(column.field);
        if (!column.isAddress) {
            fields.emplace_back(value);
        } else {
            for (std::string& line : SplitAddress(value)) fields.push_back(std::move(line));
        }
    }
    return FormatCsvRow(fields) + "\r\n";
}

bool WantsByteOrderMark(const LProfile& profile) {
    LRecord options;
    profile.OpenSettings(options, "Options");
    return options.GetBool("CSVBOMInclued", false);
}

bool WriteNewFile(const std::string& path, std::string_view text) {
    const LFileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    return file.IsOpen() && WriteAll(file.Get(), text);
}

template <typename Columns>
bool Export(LUserInterface& ui, const LProfile& profile, const LFileStoreListBase& list,
            const std::vector<std::string>& keys, const Columns& columns) {
    const auto path = ui.PickSaveFile(kTitle, ".csv");
    if (!path) return false;
    std::string text = WantsByteOrderMark(profile) ? "\xEF\xBB\xBF" : "";
    text += HeaderRow(columns);
    for (const std::string& key : keys) {
        LRecord record;
        if (list.Open(record, key)) text += DataRow(columns, record);
    }
    if (!WriteNewFile(*path, text)) {
        ui.Inform(kTitle,
                  "Cannot open the file you selected for writing. Check you have write access.");
        return false;
    }
    ui.Inform("Export Complete",
              "The csv data file has been exported, please run Mail Merge on your wordprocessor "
              "now to import the data");
    return true;
}

}  // namespace

bool LCustomersExportMailMerge(LUserInterface& ui, const LProfile& profile,
                               const std::vector<std::string>& keys) {
    if (keys.empty()) {
        ui.Inform(kTitle, "Please select the customers to export");
        return false;
    }
    return Export(ui, profile, LCustomerList(profile), keys, kCustomerColumns);
}

bool LSuppliersExportMailMerge(LUserInterface& ui, const LProfile& profile,
                               const std::vector<std::string>& keys) {
    if (keys.empty()) {
        ui.Inform(kTitle, "Please select the suppliers to export");
        return false;
    }
    return Export(ui, profile, LSupplierList(profile), keys, kSupplierColumns);
}
