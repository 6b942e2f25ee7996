#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// One frame of a KISS stream.
struct KissFrame {
    static constexpr char mark = '\xC0';           ///< before and behind every frame
    static constexpr std::uint8_t dataCommand = 0; ///< the command of a frame that holds an AX.25 frame
    static constexpr std::size_t longestData = 65536;

    std::uint8_t port = 0; ///< radio port 0 to 15
    std::uint8_t command = dataCommand;
    std::string_view data{};

    /// Appends the frame, between two marks, to a stream. `port` and `command` are cut to four bits.
    void AppendTo(std::string& stream) const;
};

/// Cuts a KISS byte stream into frames, wherever it was split on its way, with bounded memory. What stands
/// before the first frame mark is the end of a frame that nobody saw begin, and is passed over.
class KissReader {
public:
    /// Takes bytes off the front of `stream` until a frame is whole. False when the stream is used up. The
    /// frame holds until the next call. Every command is given: whoever asks passes over those unknown to it.
    bool Next(std::string_view& stream, KissFrame& frame);

    /// Frames given up so far: longer than KissFrame::longestData, or with a bad escape.
    std::uint64_t Refused() const { return m_refused; }

private:
    void Take(std::string_view piece);
    void Refuse();

    std::string m_frame;     // what has come of the frame: port and command, then the data
    bool m_isGiven = false;  // m_frame belongs to the caller until the next call
    bool m_isPassing = true; // over what stands before the next mark
    bool m_isEscaped = false;
    std::uint64_t m_refused = 0;
};
