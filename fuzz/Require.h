#pragma once

#include <cstdio>
#include <cstdlib>

/// What must hold for every input: when it does not, the fuzzer keeps the input.
inline void Require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", rule);
    std::abort();
}
