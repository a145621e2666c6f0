#pragma once

// Programming errors (an index out of range, a missing named resource) stop the program with
// a line naming the engine source as "demosys/<File>", the function, the line and the
// condition text as written:
//     KVT_ASSERT(i >= 0 && i < count, "demosys/KVTMesh", "calcFNormals");
#define KVT_ASSERT(condition, file, function)                                                      \
    ((condition) ? static_cast<void>(0) : kvtAssertFailed(file, function, __LINE__, #condition))

// Prints the failed assertion to standard error and aborts.
[[noreturn]] void kvtAssertFailed(const char* file, const char* function, int line,
                                  const char* condition);
