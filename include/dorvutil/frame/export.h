#pragma once

/// DORVUTIL_API marks what the shared library exports; everything else is hidden. A program that links the library's
/// objects statically (the tests do) defines DORVUTIL_STATIC.
#if defined(_WIN32) && defined(DORVUTIL_STATIC)
#define DORVUTIL_API
#elif defined(_WIN32) && defined(DORVUTIL_BUILD)
#define DORVUTIL_API __declspec(dllexport)
#elif defined(_WIN32)
#define DORVUTIL_API __declspec(dllimport)
#else
#define DORVUTIL_API __attribute__((visibility("default")))
#endif
