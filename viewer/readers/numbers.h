// Numbers as files have them: binary of any type and byte order, and text.
#pragma once

#include <optional>

#include "viewer/readers/readers.h"

namespace nruview::readers {

enum class NumberType : std::uint8_t {
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Float32,
    Float64
};

std::size_t numberSize(NumberType type);

/// All numbers of a block of bytes, as double or std::int64_t. Integers from a real type are refused.
template <class Out>
std::vector<Out> decodeNumbers(std::string_view bytes, NumberType type, bool bigEndian);

/// Takes the next number off the front of a text. False when there is none left; refuses what is not a
/// number.
template <class Out>
bool takeNumber(std::string_view& text, Out& number);

/// Exactly count numbers off the front of a text; refuses fewer. Allocates no more than the text could hold.
template <class Out>
std::vector<Out> takeNumbers(std::string_view& text, std::size_t count);

/// The next word, taken off the front of a text; empty at its end.
std::string_view takeWord(std::string_view& text);

/// A count written as text: digits only, and no more than limit.
std::size_t parseCount(std::string_view word, std::string_view what, std::size_t limit);

} // namespace nruview::readers
