// Wall-clock view of the codec's hot operations (the instruction counts come from
// callgrind_driver.cpp via measure_callgrind.sh).
#include <benchmark/benchmark.h>

#include "ops.h"

namespace {

void runOp(benchmark::State& state, int (*op)(bench_ops::Inputs&)) {
    bench_ops::Inputs in;
    if (op(in) <= 0) {
        state.SkipWithError("operation failed on its input");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(op(in));
}

int registerAll() {
    for (const auto& op : bench_ops::ops()) benchmark::RegisterBenchmark(op.name, runOp, op.run);
    return 0;
}

const int registered = registerAll();

}  // namespace

BENCHMARK_MAIN();
