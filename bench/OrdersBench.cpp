// Proposing what to order, beside what reading the same files costs, and adding up a long order.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "bench/BenchList.h"
#include "orders/LPOrderList.h"
#include "orders/LowStockOrders.h"
#include "orders/OrderTotals.h"
#include "orders/QuantityOnOrder.h"
#include "platform/LFileDescriptor.h"

namespace {

constexpr int kItems = 10000;
constexpr int kOrders = 2000;
constexpr int kLinesPerOrder = 10;

void AddLine(LPOrder& order, int n) {
    const int line = order.GetItemCount();
    order.SetItemCount(line + 1);
    order.SetItemID(line, std::to_string(1 + n % kItems));
    order.SetItemDescription(line, "Hex bolt M8 x 40, zinc plated, box of 100");
    order.SetItemMeasure(line, "box");
    order.SetItemQty(line, 1 + n % 12);
    order.SetItemUnitValue(line, 100 + n % 900);
    order.SetItemUnitValueDigits(line, 2);
    order.SetItemTaxName(line, n % 3 == 0 ? "None" : "Sales Tax");
    order.SetItemTaxRate(line, 10);
}

// 10,000 items at 3 locations and 2,000 recorded orders of 10 lines.
const LProfile& Business() {
    static const std::string folder = [] {
        std::string path = BenchFolder() + "/business";
        std::filesystem::create_directory(path);
        return path;
    }();
    static const LProfile profile(folder);
    static const bool isFilled = [] {
        for (const char* name : {"Depot", "Van"}) {
            LRecord location;
            profile.List("Locations").CreateNewRecord(location);
            location.SetString("Name", name);
        }
        for (int n = 1; n <= kItems; ++n) {
            LRecord item;
            profile.Items().CreateNewRecord(item);
            FillItem(item, n);
            item.SetString("LocationsAndQuantities",
                           std::string(item.GetView("LocationsAndQuantities")) + "\"3/1/1/2\",");
        }
        for (int n = 0; n < kOrders; ++n) {
            LPOrder order;
            if (!LOrderCreateRecorded(profile, order)) std::abort();
            order.SetString("Location", std::to_string(1 + n % 3));
            order.SetString("Date", "2026-03-01");
            for (int i = 0; i < kLinesPerOrder; ++i) AddLine(order, n * kLinesPerOrder + i);
        }
        return true;
    }();
    benchmark::DoNotOptimize(isFilled);
    return profile;
}

// The floor: each file opened, read and closed once, nothing understood.
void BM_ReadTheFiles(benchmark::State& state) {
    const LProfile& profile = Business();
    std::string buffer(65536, '\0');
    for (auto _ : state) {
        int64_t files = 0;
        for (const std::string& folder : {profile.Items().Folder(), profile.Orders().Folder()}) {
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                const LFileDescriptor file(::open(entry.path().c_str(), O_RDONLY | O_CLOEXEC));
                while (::read(file.Get(), buffer.data(), buffer.size()) > 0) {
                }
                ++files;
            }
        }
        if (files < kItems + kOrders) state.SkipWithError("files are missing");
    }
}
BENCHMARK(BM_ReadTheFiles)->Unit(benchmark::kMillisecond);

// The store's own walk over them: locks and decoding, but no rule.
void BM_WalkTheRecords(benchmark::State& state) {
    const LProfile& profile = Business();
    for (auto _ : state) {
        int64_t records = 0;
        for (const LFileStoreListBase* list : {&profile.Items(), &profile.Orders()}) {
            LRecord record;
            const auto iterator = list->CreateIteratorBase(record);
            for (; record.IsBound(); iterator->Next(record)) ++records;
        }
        benchmark::DoNotOptimize(records);
    }
}
BENCHMARK(BM_WalkTheRecords)->Unit(benchmark::kMillisecond);

void BM_QuantitiesOnOrder(benchmark::State& state) {
    const LProfile& profile = Business();
    for (auto _ : state) {
        const LQuantitiesOnOrder onOrder(profile);
        if (onOrder.Of("1").empty()) state.SkipWithError("nothing is on order");
    }
}
BENCHMARK(BM_QuantitiesOnOrder)->Unit(benchmark::kMillisecond);

void BM_Proposals(benchmark::State& state) {
    const LProfile& profile = Business();
    for (auto _ : state) {
        const size_t rows = FillOrderItemsLV(profile, LLowStockSelection::All()).size();
        if (rows == 0) state.SkipWithError("nothing was proposed");
    }
}
BENCHMARK(BM_Proposals)->Unit(benchmark::kMillisecond);

void BM_TotalsOfAThousandLines(benchmark::State& state) {
    const LProfile& profile = Business();
    LPOrder order;
    for (int n = 0; n < 1000; ++n) AddLine(order, n);
    for (auto _ : state) {
        if (!LOrderSumTotals(profile, order, LTaxRates::kPresent)) state.SkipWithError("too large");
    }
}
BENCHMARK(BM_TotalsOfAThousandLines)->Unit(benchmark::kMicrosecond);

}  // namespace
