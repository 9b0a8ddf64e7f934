#include "bench/BenchList.h"

#include <stdlib.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <map>

#include "datastore/LTextBuffer.h"

namespace {

class LBenchFolder {
public:
    LBenchFolder() {
        path_ = (std::filesystem::temp_directory_path() / "store_bench.XXXXXX").string();
        if (::mkdtemp(path_.data()) == nullptr) {
            std::perror(path_.c_str());
            std::exit(1);
        }
        std::filesystem::create_directory(path_ + "/trash");
    }
    ~LBenchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

std::string Padded(const char* prefix, int n, int width) {
    const std::string digits = std::to_string(n);
    const auto wanted = static_cast<size_t>(width);
    return prefix + std::string(wanted - std::min(wanted, digits.size()), '0') + digits;
}

}  // namespace

void FillItem(LRecord& record, int n) {
    const std::string stock = "\"1/" + std::to_string(n % 40) + ".00/5.00/20.00\",\"2/" +
                              std::to_string(n % 17) + ".00/2.00/10.00\",";
    const std::array<std::pair<const char*, std::string>, 25> fields{{
        {"Name", Padded("PART-", n, 5)},
        {"Description", "Hex bolt M8 x 40, zinc plated, box of 100"},
        {"Value", std::to_string(100 + n % 900)},
        {"CostDigits", "2"},
        {"Price", std::to_string(150 + n % 900)},
        {"ValueDigits", "2"},
        {"TaxRate", "1"},
        {"WebSite", "https://example.com/p/" + std::to_string(n)},
        {"Measure", "box"},
        {"Notes", "Shelf B4"},
        {"Category", std::to_string(1 + n % 12)},
        {"SubCategory", "Fasteners"},
        {"CustomField1", "Zinc"},
        {"CustomField2", "DIN 933"},
        {"Supplier", "Northern Fixings Ltd"},
        {"SupplierID", Padded("NF-", n, 5)},
        {"ImageFile", ""},
        {"BillOfMaterials", ""},
        {"LocationsAndQuantities", stock},
        {"Quantity", std::to_string(n % 40 + n % 17) + ".000000"},
        {"WarnQuantity", "7.000000"},
        {"IdealQuantity", "30.000000"},
        {"CheckWaringEmail", "1"},
        {"SendWaringEmail", "0"},
        {"Barcode", Padded("40", n, 11)},
    }};
    for (const auto& [name, value] : fields) record.SetString(name, value);
}

std::string ItemText(int n) {
    LRecord record;
    FillItem(record, n);
    LTextBuffer text;
    record.Fields().Encode(text);
    return std::string(text.View());
}

const std::string& BenchFolder() {
    static const LBenchFolder folder;
    return folder.Path();
}

const LFileStoreListBase& ListOf(int count) {
    static std::map<int, LFileStoreListBase> lists;
    const auto found = lists.find(count);
    if (found != lists.end()) return found->second;
    const LFileStoreListBase& list =
        lists
            .emplace(count, LFileStoreListBase(LFileStoreDataStore(BenchFolder()),
                                               "list" + std::to_string(count)))
            .first->second;
    for (int n = 1; n <= count; ++n) {
        LRecord record;
        list.CreateNewRecord(record);
        FillItem(record, n);
    }
    return list;
}

std::vector<std::string> RandomKeys(int count) {
    std::mt19937 random(7);
    std::vector<std::string> keys(static_cast<size_t>(std::min(count, 20000)));
    for (std::string& key : keys) {
        key = std::to_string(1 + static_cast<int>(random() % static_cast<unsigned>(count)));
    }
    return keys;
}

void MoveAway(const LFileStoreListBase& list, const std::string& key) {
    static int moved = 0;
    std::filesystem::rename(list.Folder() + "/" + key + ".dat",
                            BenchFolder() + "/trash/" + std::to_string(++moved));
}
