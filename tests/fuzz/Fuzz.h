// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdio>
#include <cstdlib>

/**
 * What all fuzz targets need. A target defines LLVMFuzzerTestOneInput(), which the fuzzer calls with
 * what it makes up, and the replay with what has been kept.
 */
namespace Fuzz
{
inline QByteArray bytes(const unsigned char *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<int>(size)};
}

/** Ends the process when the condition does not hold. */
inline void require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "Not kept: %s\n", what);
        std::abort();
    }
}
} // namespace Fuzz

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);
