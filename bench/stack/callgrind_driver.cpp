// Runs one named operation N times, for callgrind: the instructions of two runs with different N,
// subtracted and divided, give the cost per operation without the start-up.
// Usage: tq_stack_callgrind_driver <op> <iterations>; "list" prints the ops and their targets.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ops.h"

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "list") == 0) {
        for (const auto& op : bench_ops::ops()) std::printf("%s %u\n", op.name, op.target);
        return 0;
    }
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <op>|list <iterations>\n", argv[0]);
        return 2;
    }
    const long n = std::atol(argv[2]);
    bench_ops::Inputs in;
    for (const auto& op : bench_ops::ops()) {
        if (std::strcmp(op.name, argv[1]) != 0) continue;
        long ok = 0;
        for (long i = 0; i < n; ++i) ok += op.run(in) > 0;
        return ok == n ? 0 : 1;
    }
    std::fprintf(stderr, "unknown op %s\n", argv[1]);
    return 2;
}
