#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process, so that the input at hand is kept, when what must always hold does not.
#define FUZZ_EXPECT(condition)                                                                     \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                   \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
