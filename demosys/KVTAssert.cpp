#include "KVTAssert.h"

#include <cstdio>
#include <cstdlib>

void kvtAssertFailed(const char* file, const char* function, int line, const char* condition) {
    std::fprintf(stderr, "Assertion failed in %s, %s (line %d): %s\n", file, function, line,
                 condition);
    std::abort();
}
