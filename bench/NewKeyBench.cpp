// The smallest free number, for the first new record of a process and for the ones after it.
#include <benchmark/benchmark.h>

#include <chrono>

#include "bench/BenchList.h"

namespace {

using Clock = std::chrono::steady_clock;

std::string Create(const LFileStoreListBase& list) {
    LRecord record;
    list.CreateNewRecord(record);
    FillItem(record, 1);
    return list.Save(record) ? record.GetPrimaryKey() : std::string();
}

// Creates a record and moves it away again; only the creation counts.
void TimeCreation(benchmark::State& state, const LFileStoreListBase& list) {
    LRecord record;
    list.CreateNewRecord(record);
    FillItem(record, 1);
    const Clock::time_point start = Clock::now();
    const bool saved = record.Flush();
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    if (!saved || record.GetPrimaryKey() != std::to_string(state.range(0) + 1)) {
        state.SkipWithError("not the smallest free number");
        return;
    }
    MoveAway(list, record.GetPrimaryKey());
}

// The store remembers some folders' numbers; creating in as many others makes it forget ours.
void BM_CreateList(benchmark::State& state) {
    const LFileStoreListBase& list = ListOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (int i = 0; i < 64; ++i) {
            const LFileStoreListBase other(LFileStoreDataStore(BenchFolder()),
                                           "other" + std::to_string(i));
            MoveAway(other, Create(other));
        }
        TimeCreation(state, list);
    }
}
BENCHMARK(BM_CreateList)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime()->Iterations(60);

void BM_CreateKnown(benchmark::State& state) {
    const LFileStoreListBase& list = ListOf(static_cast<int>(state.range(0)));
    MoveAway(list, Create(list));
    for (auto _ : state) TimeCreation(state, list);
}
BENCHMARK(BM_CreateKnown)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime()->Iterations(500);

// A whole list from nothing, per record.
void BM_Import(benchmark::State& state) {
    static int imports = 0;
    for (auto _ : state) {
        const LFileStoreListBase list(LFileStoreDataStore(BenchFolder()),
                                      "import" + std::to_string(++imports));
        const Clock::time_point start = Clock::now();
        for (int64_t n = 0; n < state.range(0); ++n) Create(list);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Import)->Arg(10000)->UseManualTime()->Iterations(1);

}  // namespace
