#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <string_view>

namespace orbitmath {

/// Reads no more than this of a file, in bytes, and keeps no more than this of a line.
constexpr std::int64_t mostOfFile = 64LL * 1024 * 1024;
constexpr std::size_t mostOfLine = 1024;

/// Calls `take` with a file's bytes, a piece at a time, without a byte order mark before the first one, until
/// it answers false.
void ForEachPiece(std::istream& file, const std::function<bool(std::string_view piece)>& take);

/// Calls `take` with each line of a file, without its LF and without a byte order mark before the first one,
/// until it answers false. The file is read a piece at a time: whatever it holds, memory stays bounded.
void ForEachLine(std::istream& file, const std::function<bool(std::string_view line)>& take);

/// Without white space at both ends.
std::string_view Trimmed(std::string_view text);

} // namespace orbitmath
