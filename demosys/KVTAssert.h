#pragma once

// Programming errors (an index out of range, a missing named resource) stop the program with
// a line naming the engine source as "demosys/<File>", the function, the line and the
// condition text as written:
//     KVT_ASSERT(i >= 0 && i < count, "demosys/KVTMesh", "calcFNormals");
#define KVT_ASSERT(condition, file, function)                                                      \
    ((condition) ? static_cast<void>(0) : kvtAssertFailed(file, function, __LINE__, #condition))

// KVT_ASSERT reporting the given line instead of the line it is written on. Some assertions
// have messages that name a fixed line, which tools and readers match; they give it here,
// so that their messages do not move when the code around them does:
//     KVT_ASSERT_AT(0, "demosys/ShaderCache", "getShaderInstance", 40);
#define KVT_ASSERT_AT(condition, file, function, line)                                             \
    ((condition) ? static_cast<void>(0) : kvtAssertFailed(file, function, line, #condition))

// Where an assertion says it failed, for functions that assert on behalf of their caller.
struct AssertSite {
    const char* file;
    const char* function;
    int line;
};

// Prints the failed assertion to standard error and aborts.
[[noreturn]] void kvtAssertFailed(const char* file, const char* function, int line,
                                  const char* condition);
