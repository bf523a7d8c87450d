#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What each target defines: the reader under test is given \a size bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Called once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

/// Ends the run, and makes the present input a finding, if \a holds isn't true.
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "It doesn't hold that %s\n", what);
    std::abort();
}

/// The input as it stands, without a zero byte behind it.
inline QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
}
