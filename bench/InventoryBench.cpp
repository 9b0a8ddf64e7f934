// What pages, sales and reports ask of the inventory, over a business of many items.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>

#include "bench/BenchList.h"
#include "inventory/ItemList.h"
#include "inventory/StockHistory.h"

namespace {

// A business of `count` items, each kept at "Main" and at "Yard"; made once for each count.
const LProfile& BusinessOf(int64_t count) {
    static std::map<int64_t, std::unique_ptr<LProfile>> businesses;
    std::unique_ptr<LProfile>& profile = businesses[count];
    if (profile != nullptr) return *profile;
    const std::string folder = BenchFolder() + "/business" + std::to_string(count);
    std::filesystem::create_directory(folder);
    profile = std::make_unique<LProfile>(folder);
    LRecord record;
    profile->List("Locations").CreateNewRecord(record);
    record.SetString("Name", "Yard");
    for (int n = 1; n <= count; ++n) {
        profile->Items().CreateNewRecord(record);
        FillItem(record, n);
    }
    record.Invalidate();
    return *profile;
}

std::vector<std::string> RandomCodes(const LProfile& profile, int count) {
    std::vector<std::string> codes = RandomKeys(count);
    LRecord item;
    for (std::string& code : codes) {
        code = profile.Items().Open(item, code) ? item.GetString("Name") : std::string();
    }
    return codes;
}

// Rows of the list, all of them or the low ones; time is per item.
void TimeItemList(benchmark::State& state, LStockFilter stock) {
    const LProfile& profile = BusinessOf(state.range(0));
    LItemListFilter filter;
    filter.stock = stock;
    int64_t rows = 0;
    for (auto _ : state) {
        FillItemList(profile, filter, [&](const LItemRow& row) {
            rows += row.locationName.empty() || row.item.GetView("Name").empty() ? 0 : 1;
        });
    }
    if (rows == 0) state.SkipWithError("no rows");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["rows"] = static_cast<double>(rows / state.iterations());
}
void BM_ItemListRows(benchmark::State& state) { TimeItemList(state, LStockFilter::kAll); }
BENCHMARK(BM_ItemListRows)->Arg(10000);
void BM_LowStockPass(benchmark::State& state) { TimeItemList(state, LStockFilter::kBelowWarning); }
BENCHMARK(BM_LowStockPass)->Arg(100000);

void BM_QuantityChange(benchmark::State& state) {
    const LProfile& profile = BusinessOf(state.range(0));
    const std::vector<std::string> keys = RandomKeys(static_cast<int>(state.range(0)));
    size_t at = 0;
    for (auto _ : state) {
        const std::string_view location = at % 2 == 0 ? "Main" : "Yard";
        if (!LItemChangeQuantityById(profile, keys[at], at % 3 == 0 ? -1 : 1, location, true)) {
            state.SkipWithError("refused");
        }
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}
BENCHMARK(BM_QuantityChange)->Arg(1000)->Arg(10000)->Arg(100000);

// One load as it is, and one found by the code that a person typed.
void BM_ItemByKey(benchmark::State& state) {
    const LProfile& profile = BusinessOf(state.range(0));
    const std::vector<std::string> keys = RandomKeys(static_cast<int>(state.range(0)));
    size_t at = 0;
    for (auto _ : state) {
        LItem item;
        if (!profile.Items().Open(item, keys[at])) state.SkipWithError("missing");
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}
BENCHMARK(BM_ItemByKey)->Arg(10000);
void BM_ItemByCode(benchmark::State& state) {
    const LProfile& profile = BusinessOf(state.range(0));
    const std::vector<std::string> codes = RandomCodes(profile, static_cast<int>(state.range(0)));
    LItem first;
    if (!OpenItem(profile, first, codes[0])) state.SkipWithError("missing");
    size_t at = 0;
    for (auto _ : state) {
        LItem item;
        if (!OpenItem(profile, item, codes[at])) state.SkipWithError("missing");
        at = at + 1 == codes.size() ? 0 : at + 1;
    }
}
BENCHMARK(BM_ItemByCode)->Arg(10000);

// A row of 79 bytes, built and added to its day's file.
void BM_AppendRow(benchmark::State& state) {
    const LProfile& profile = BusinessOf(state.range(0));
    LSellRow row;
    row.itemId = "17";
    row.quantity = 3;
    row.unitPrice = {1250, 2};
    row.locationName = "Main store";
    row.customer = "Hill, Sons & Builders";
    row.reference = "counter sale 10023";
    row.date = *LDate::Make(2026, 1, 2);
    for (auto _ : state) {
        if (!CreateNewSellRecord(profile, row)) state.SkipWithError("not written");
    }
}
BENCHMARK(BM_AppendRow)->Arg(1000);

}  // namespace
