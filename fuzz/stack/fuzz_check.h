// A failed invariant must stop the fuzzer even in builds without assertions.
#pragma once

#define FUZZ_CHECK(condition)               \
    do {                                    \
        if (!(condition)) __builtin_trap(); \
    } while (0)
