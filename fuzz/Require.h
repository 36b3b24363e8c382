#pragma once

#include <cstdio>
#include <cstdlib>

inline void Require(bool holds, const char* file, int line, const char* condition) {
    if (!holds) {
        std::fprintf(stderr, "%s:%d: not so: %s\n", file, line, condition);
        std::abort();
    }
}

/// Ends the fuzzer with the place of the fault when what must hold does not.
#define REQUIRE(condition) Require((condition), __FILE__, __LINE__, #condition)
