// Numbers as Fortran programs write them, in columns.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace nruview::readers {

/// Without the blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

/// The characters from first on, count at most, without blanks; empty behind the end.
std::string_view column(std::string_view line, std::size_t first, std::size_t count);

/// A number with an exponent of E, D or, where it has three digits ("1.0-100"), a sign alone; also NaN, Inf,
/// and NaN for the stars that stand for a number too wide for its column. Nothing for anything else.
std::optional<double> fortranReal(std::string_view text);

std::optional<std::int64_t> wholeNumber(std::string_view text);

} // namespace nruview::readers
