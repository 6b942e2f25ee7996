#pragma once

#include "telemetry/frames/KissReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// One AX.25 frame of a recording: a KISS stream in a file, in which gr-satellites and this program put a
/// frame with the time before each frame, command 9 and eight bytes, big-endian: milliseconds since
/// 1970-01-01 00:00 UTC.
struct RecordedFrame {
    std::optional<std::int64_t>
        utc;                ///< none where the recording tells no time between the years 1970 and 9999
    std::uint8_t port = 0;  ///< radio port 0 to 15
    std::string_view bytes; ///< without flags and checksum

    /// Appends the frame with its time to a recording.
    void AppendTo(std::string& recording) const;

    static constexpr char mark =
        KissFrame::mark; ///< a recording's first byte, and its last unless it is torn

    /// To be written first where a recording ends within a frame: marks that frame as damaged, so that its
    /// beginning is not read as a frame.
    static constexpr std::string_view tornEnd = "\xDB\xC0";
};

/// Cuts a recording into its frames. Frames that hold neither data nor a time are passed over.
class KissRecordingReader {
public:
    /// As KissReader::Next.
    bool Next(std::string_view& recording, RecordedFrame& frame);

    /// As KissReader::Refused.
    std::uint64_t Refused() const { return m_reader.Refused(); }

private:
    KissReader m_reader;
    std::optional<std::int64_t> m_utc; // of the next frame
};
