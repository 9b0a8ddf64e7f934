// Several at one list: threads at one record, processes at any of a thousand.
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <thread>

#include "bench/BenchList.h"

namespace {

using Clock = std::chrono::steady_clock;

// What the workers did; lies in memory that processes share.
struct Figures {
    struct Worker {
        int64_t operations = 0, worstNs = 0, over100ms = 0;
    };
    std::array<Worker, 8> workers{};
    std::atomic<bool> go{false};
};

// Repeats `operation` for `seconds`.
void Work(Figures& figures, size_t worker, double seconds, const std::function<void()>& operation) {
    while (!figures.go) std::this_thread::yield();
    Figures::Worker& own = figures.workers[worker];
    Clock::time_point before = Clock::now();
    const Clock::time_point end = before + std::chrono::duration_cast<Clock::duration>(
                                               std::chrono::duration<double>(seconds));
    while (before < end) {
        operation();
        const Clock::time_point now = Clock::now();
        const int64_t took = std::chrono::nanoseconds(now - before).count();
        ++own.operations;
        own.worstNs = std::max(own.worstNs, took);
        if (took > 100'000'000) ++own.over100ms;
        before = now;
    }
}

void Report(benchmark::State& state, const Figures& figures, int workers, double seconds) {
    int64_t total = 0, worst = 0, over = 0, least = INT64_MAX;
    for (int i = 0; i < workers; ++i) {
        const Figures::Worker& worker = figures.workers[static_cast<size_t>(i)];
        total += worker.operations;
        worst = std::max(worst, worker.worstNs);
        over += worker.over100ms;
        least = std::min(least, worker.operations);
    }
    state.SetIterationTime(seconds / static_cast<double>(std::max<int64_t>(total, 1)));
    state.counters["per_s"] = static_cast<double>(total) / seconds;
    state.counters["worst_ms"] = static_cast<double>(worst) / 1e6;
    state.counters["over_100ms"] = static_cast<double>(over);
    state.counters["least_share_%"] =
        100.0 * static_cast<double>(least) * workers / static_cast<double>(total);
}

// Threads of one process change their own field of one record; counts what got lost.
void BM_OneRecordThreads(benchmark::State& state) {
    constexpr double kSeconds = 3;
    const int threads = static_cast<int>(state.range(0));
    const LFileStoreListBase& list = ListOf(1000);
    for (auto _ : state) {
        Figures figures;
        std::vector<std::thread> pool;
        for (int i = 0; i < threads; ++i) {
            pool.emplace_back([&, i] {
                const std::string field = "Counter" + std::to_string(i);
                Work(figures, static_cast<size_t>(i), kSeconds, [&] {
                    LRecord record;
                    list.OpenAlways(record, "17");
                    record.SetInt(field, record.GetInt(field, 0) + 1);
                });
            });
        }
        figures.go = true;
        for (std::thread& thread : pool) thread.join();
        Report(state, figures, threads, kSeconds);
        int64_t lost = 0;
        LRecord record;
        list.OpenAlways(record, "17");
        for (int i = 0; i < threads; ++i) {
            const std::string field = "Counter" + std::to_string(i);
            lost += figures.workers[static_cast<size_t>(i)].operations - record.GetInt(field, 0);
            record.DeleteField(field);
        }
        state.counters["lost"] = static_cast<double>(lost);
    }
}
BENCHMARK(BM_OneRecordThreads)->Arg(1)->Arg(4)->UseManualTime()->Iterations(1);

// Processes load and save any of a thousand records; a meeting costs the one who comes second a
// pause of 313 ms.
void BM_AnyOf1000Processes(benchmark::State& state) {
    constexpr double kSeconds = 1.5;
    const int processes = static_cast<int>(state.range(0));
    const LFileStoreListBase& list = ListOf(1000);
    void* memory =
        ::mmap(nullptr, sizeof(Figures), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    for (auto _ : state) {
        Figures& figures = *new (memory) Figures;
        std::vector<pid_t> children;
        for (int i = 0; i < processes; ++i) {
            children.push_back(::fork());
            if (children.back() != 0) continue;
            std::mt19937 random(static_cast<unsigned>(i + 1));
            int n = 0;
            Work(figures, static_cast<size_t>(i), kSeconds, [&] {
                LRecord record;
                list.OpenAlways(record, std::to_string(1 + random() % 1000));
                record.SetInt("Value", ++n);
            });
            ::_exit(0);
        }
        figures.go = true;
        for (const pid_t child : children) ::waitpid(child, nullptr, 0);
        Report(state, figures, processes, kSeconds);
    }
    ::munmap(memory, sizeof(Figures));
}
BENCHMARK(BM_AnyOf1000Processes)->Arg(1)->Arg(2)->UseManualTime()->Iterations(1);

}  // namespace
