// Record text into a record's fields and back.
#include <benchmark/benchmark.h>

#include "bench/BenchList.h"

namespace {

void BM_Decode(benchmark::State& state) {
    const std::string text = ItemText(12345);
    LRecord record;
    for (auto _ : state) {
        record.Fields().Parse(text);
        benchmark::DoNotOptimize(record.Fields().Count());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_Decode);

void BM_Encode(benchmark::State& state) {
    LRecord record;
    record.Fields().Parse(ItemText(12345));
    LTextBuffer text;
    for (auto _ : state) {
        record.Fields().Encode(text);
        benchmark::DoNotOptimize(text.View().data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.View().size()));
}
BENCHMARK(BM_Encode);

}  // namespace
