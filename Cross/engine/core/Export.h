#pragma once

// Export macros of the two shared libraries. Everything is hidden unless it carries one of them: whole
// classes, the classes nested in them, free functions, and data that must be one object in the process.

#if defined(_WIN32)
#if defined(CROSS_ENGINE_BUILD)
#define CROSS_ENGINE_API __declspec(dllexport)
#else
#define CROSS_ENGINE_API __declspec(dllimport)
#endif
#if defined(CROSS_UTIL_BUILD)
#define CROSS_UTIL_API __declspec(dllexport)
#else
#define CROSS_UTIL_API __declspec(dllimport)
#endif
#else
#define CROSS_ENGINE_API __attribute__((__visibility__("default")))
#define CROSS_UTIL_API __attribute__((__visibility__("default")))
#endif

// Marks a printf-like function, so that the compiler checks the arguments against the format. Positions count
// from 1; in a member function the object is argument 1. `firstArgument` is 0 for a function that takes a
// va_list.
#if defined(__GNUC__)
#define CROSS_PRINTF_FORMAT(format, firstArgument)                                                           \
    __attribute__((__format__(__printf__, format, firstArgument)))
#else
#define CROSS_PRINTF_FORMAT(format, firstArgument)
#endif
