// Bounds-checked copy and concatenation of wide strings, which report misuse through the trace log.
#pragma once

#include "LumDebug.h"

#include <cstddef>

/// Copies `source` into a buffer of `destinationCount` characters.
/// @param sourceFile, line the caller's position, for the trace
/// @return 0, or the run-time library's error number: 22 for a null or empty destination or a null source, 34
/// for a
///         destination that is too small. The destination then holds the empty text, if it can hold one.
int LumSafeCopy(const wchar_t* sourceFile, unsigned line, wchar_t* destination, std::size_t destinationCount,
                const wchar_t* source);

/// Appends `source` to the text in a buffer of `destinationCount` characters; arguments and results as above.
int LumSafeCat(const wchar_t* sourceFile, unsigned line, wchar_t* destination, std::size_t destinationCount,
               const wchar_t* source);

/// The same for an array, whose size need not be passed.
template <std::size_t N>
int LumSafeCopy(const wchar_t* sourceFile, unsigned line, wchar_t (&destination)[N], const wchar_t* source) {
    LumTrace().PrintText(L"Entering LumSafeCopy : Static");
    const int error = LumSafeCopy(sourceFile, line, destination, N, source);
    LumTrace().Print(L"Leaving LumSafeCopy : Static : %d", error);
    return error;
}

template <std::size_t N>
int LumSafeCat(const wchar_t* sourceFile, unsigned line, wchar_t (&destination)[N], const wchar_t* source) {
    LumTrace().PrintText(L"Entering LumSafeCat : Static");
    const int error = LumSafeCat(sourceFile, line, destination, N, source);
    LumTrace().Print(L"Leaving LumSafeCat : Static : %d", error);
    return error;
}
