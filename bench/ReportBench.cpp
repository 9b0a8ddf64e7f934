// Reports over 10,000 items, beside what reading the items' files costs.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "bench/BenchList.h"
#include "inventory/LItem.h"
#include "platform/FileIo.h"
#include "platform/LFileDescriptor.h"
#include "reports/InventoryReports.h"
#include "reports/LReportLowStock.h"
#include "reports/ReportCsv.h"

namespace {

constexpr int kItems = 10000;

std::string MadeFolder(const std::string& name) {
    const std::string folder = BenchFolder() + name;
    MakeFolderTree(folder);
    return folder;
}

// A business whose items each lie at two of three locations, in one of ten categories.
const LProfile& Business() {
    static const LProfile profile(MadeFolder("/reports"));
    static const bool isFilled = [] {
        for (int n = 2; n <= 3; ++n) {
            LRecord location;
            profile.List("Locations").OpenAlways(location, std::to_string(n));
            location.SetString("Name", "Location " + std::to_string(n));
        }
        for (int n = 1; n <= 10; ++n) {
            LRecord category;
            profile.List("Categories").OpenAlways(category, std::to_string(n));
            category.SetString("Name", "Category " + std::to_string(n));
        }
        for (int n = 1; n <= kItems; ++n) {
            LItem item;
            profile.Items().CreateNewRecord(item, std::to_string(n));
            FillItem(item, n);
            item.SetString("BillOfMaterials", "");
            item.SetString("Category", std::to_string(n % 10 + 1));
            item.SetString("LocationsAndQuantities",
                           n % 2 == 0 ? "\"1/12.00/5.00/20.00\",\"2/3.00/5.00/20.00\","
                                      : "\"2/12.00/5.00/20.00\",\"3/-3.00/0.00/0.00\",");
        }
        return true;
    }();
    benchmark::DoNotOptimize(isFilled);
    return profile;
}

// The floor: every file opened, read and closed, in the folder's order.
void BM_ReadItemFiles(benchmark::State& state) {
    const std::string folder = Business().Items().Folder();
    for (auto _ : state) {
        DIR* const dir = ::opendir(folder.c_str());
        size_t bytes = 0;
        while (const dirent* entry = ::readdir(dir)) {
            if (entry->d_name[0] == '.') continue;
            const LFileDescriptor file(::openat(::dirfd(dir), entry->d_name, O_RDONLY | O_CLOEXEC));
            std::array<char, 4096> buffer;
            bytes += static_cast<size_t>(::read(file.Get(), buffer.data(), buffer.size()));
        }
        ::closedir(dir);
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK(BM_ReadItemFiles)->Unit(benchmark::kMillisecond);

// What the store itself adds: locks, and the fields taken apart.
void BM_WalkItems(benchmark::State& state) {
    for (auto _ : state) {
        LItem item;
        const auto iterator = Business().Items().CreateIteratorBase(item);
        for (; item.IsBound(); iterator->Next(item)) benchmark::DoNotOptimize(item.GetView("Name"));
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK(BM_WalkItems)->Unit(benchmark::kMillisecond);

template <typename Report>
void BM_Report(benchmark::State& state) {
    const LProfile& profile = Business();
    for (auto _ : state) {
        Report report(profile);
        report.GenerateReport();
        benchmark::DoNotOptimize(report.Rows().size());
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK_TEMPLATE(BM_Report, LReportInventoryAll)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Report, LReportInventoryDefaultSupplier)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Report, LReportImageCategory)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Report, LReportLowStock)->Unit(benchmark::kMillisecond);

void BM_ReportToCsv(benchmark::State& state) {
    LReportInventoryAll report(Business());
    report.GenerateReport();
    for (auto _ : state) benchmark::DoNotOptimize(ReportToCsv(report).size());
}
BENCHMARK(BM_ReportToCsv)->Unit(benchmark::kMillisecond);

}  // namespace
