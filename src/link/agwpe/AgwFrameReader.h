#pragma once

#include "link/agwpe/AgwFrame.h"

#include <memory>
#include <span>

/// Cuts the byte stream of a packet engine into whole frames, wherever the stream was split on its way.
///
/// The bytes are read straight into the reader's own buffer, whose size never changes, and the frames are
/// views into it. Until Next answers NeedMore there is no room: take every frame before asking for Room
/// again.
class AgwFrameReader {
public:
    /// The least room that Room gives.
    static constexpr qsizetype chunk = 128 * 1024;

    AgwFrameReader();

    /// Where the next bytes of the stream go. Ends the life of the frames given so far.
    std::span<char> Room();

    /// Takes over the first `count` bytes of the room.
    void Add(qsizetype count) { m_end += count; }

    enum class Result {
        Frame,
        NeedMore,
        BadLength, ///< a header announces more than AgwFrame::maxDataLength; the stream is lost for good
    };

    /// The next whole frame. Its views hold until Room is called.
    Result Next(AgwFrame& frame);

private:
    std::unique_ptr<char[]> m_buffer;
    qsizetype m_begin = 0; // of the bytes not yet given as frames
    qsizetype m_end = 0;
};
