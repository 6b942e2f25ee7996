#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The header line of a frame in this program's traffic log: "12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI
/// Len=42>:".
struct LogHeader {
    std::int64_t timeOfDay = 0; ///< milliseconds since midnight; the log does not tell of which zone
    bool isTransmitted = false; ///< "T" behind the time, not "R"
    std::string source;
    std::string destination;
    std::string path;       ///< as FrameLine's
    int port = 1;           ///< radio port, from 1
    char kind = 'U';        ///< 'U', 'I' or 'S'
    std::size_t length = 0; ///< of the information, as the header tells it; 0 where it does not

    /// Nothing when the line is no such header.
    static std::optional<LogHeader> Read(std::string_view line);
};
