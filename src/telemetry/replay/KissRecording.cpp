#include "telemetry/replay/KissRecording.h"

#include <utility>

namespace {

constexpr std::uint8_t timeCommand = 9;
constexpr std::size_t timeLength = 8;
constexpr std::uint64_t latest = 253402300799999; // 9999-12-31T23:59:59.999Z

std::optional<std::int64_t> ReadTime(std::string_view data) {
    if (data.size() != timeLength)
        return std::nullopt;
    std::uint64_t milliseconds = 0;
    for (const char c : data)
        milliseconds = milliseconds << 8U | static_cast<unsigned char>(c);
    return milliseconds <= latest ? std::optional(static_cast<std::int64_t>(milliseconds)) : std::nullopt;
}

} // namespace

void RecordedFrame::AppendTo(std::string& recording) const {
    if (utc) {
        std::string time;
        for (unsigned shift = 8 * timeLength; shift > 0; shift -= 8)
            time += static_cast<char>(static_cast<std::uint64_t>(*utc) >> (shift - 8));
        KissFrame{.command = timeCommand, .data = time}.AppendTo(recording);
    }
    KissFrame{.port = port, .data = bytes}.AppendTo(recording);
}

bool KissRecordingReader::Next(std::string_view& recording, RecordedFrame& frame) {
    KissFrame kiss;
    while (m_reader.Next(recording, kiss)) {
        if (kiss.command == timeCommand && kiss.port == 0) {
            m_utc = ReadTime(kiss.data);
        } else if (kiss.command == KissFrame::dataCommand) {
            frame = {.utc = std::exchange(m_utc, std::nullopt), .port = kiss.port, .bytes = kiss.data};
            return true;
        }
    }
    return false;
}
