// Loading, walking and saving a list.
#include <benchmark/benchmark.h>

#include <chrono>

#include "bench/BenchList.h"

namespace {

void BM_LoadOne(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const LFileStoreListBase& list = ListOf(count);
    const std::vector<std::string> keys = RandomKeys(count);
    size_t at = 0;
    for (auto _ : state) {
        LRecord record;
        if (!list.Open(record, keys[at])) state.SkipWithError("a record is missing");
        benchmark::DoNotOptimize(record.Fields().Count());
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}
BENCHMARK(BM_LoadOne)->Arg(1000)->Arg(10000)->Arg(100000);

void BM_IterateDecode(benchmark::State& state) {
    const LFileStoreListBase& list = ListOf(static_cast<int>(state.range(0)));
    int64_t records = 0;
    for (auto _ : state) {
        LRecord record;
        const auto iterator = list.CreateIteratorBase(record);
        for (; record.IsBound(); iterator->Next(record)) ++records;
    }
    state.SetItemsProcessed(records);
}
BENCHMARK(BM_IterateDecode)->Arg(1000)->Arg(10000)->Arg(100000);

// Many records are opened before the clock runs, so that no save finds what its own load has just
// brought into the caches.
void BM_SaveExisting(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    constexpr size_t kBatch = 2000;
    const int count = static_cast<int>(state.range(0));
    const LFileStoreListBase& list = ListOf(count);
    const std::vector<std::string> keys = RandomKeys(count);
    std::vector<LRecord> records(std::min(kBatch, keys.size()));
    size_t at = 0;
    int round = 0;
    for (auto _ : state) {
        for (LRecord& record : records) {
            if (!list.Open(record, keys[at])) state.SkipWithError("a record is missing");
            at = at + 1 == keys.size() ? 0 : at + 1;
        }
        // Another one than at the record's last turn: an equal value is not saved.
        const std::string quantity = std::to_string(10 + ++round % 89) + ".000000";
        const Clock::time_point start = Clock::now();
        for (LRecord& record : records) {
            record.SetString("Quantity", quantity);
            record.Flush();
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(records.size()));
}
BENCHMARK(BM_SaveExisting)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

}  // namespace
