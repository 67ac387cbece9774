// Records and macros shared by every folder of the library.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#if defined(NRENDERUTL_BUILDING)
#define NRENDERUTL_API __declspec(dllexport)
#else
#define NRENDERUTL_API __declspec(dllimport)
#endif
#else
#define NRENDERUTL_API __attribute__((visibility("default")))
#endif

/// Point or vector of three doubles, in model space unless a function says otherwise.
struct _NgPoint3Str {
    double x, y, z;
};

/// Point or vector of three floats.
struct _NgFPoint3Str {
    float x, y, z;
};

/// Point of two doubles: screen or 2D.
struct _NgPoint2Str {
    double x, y;
};

/// Packed colour 0xAABBGGRR: red in the lowest byte.
using NgColorLong = std::uint32_t;
