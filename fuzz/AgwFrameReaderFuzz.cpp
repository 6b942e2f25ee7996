// The byte stream of a packet engine: any split of it gives the same frames, which are those that a walk over
// the whole stream finds.

#include "Input.h"
#include "Pieces.h"
#include "Require.h"
#include "link/agwpe/AgwFrameReader.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Kept {
    quint8 port;
    char kind;
    quint8 pid;
    std::string from;
    std::string to;
    std::string data;

    bool operator==(const Kept&) const = default;
};

struct Reading {
    std::vector<Kept> frames;
    bool isLost = false; // a header announced too much

    bool operator==(const Reading&) const = default;
};

constexpr std::size_t header = AgwFrame::headerLength;

quint32 LengthIn(std::string_view stream) {
    return qFromLittleEndian<quint32>(stream.data() + 28);
}

// An input that begins with "*" stands for a stream with the data of each of its headers made up, so that
// large frames come about.
std::string StreamOf(std::string_view input) {
    if (!input.starts_with('*'))
        return std::string(input);
    constexpr std::size_t longest = 1 << 20;
    std::string stream;
    input.remove_prefix(1);
    while (input.size() >= header && stream.size() < longest) {
        const quint32 length = LengthIn(input);
        stream += input.substr(0, header);
        input.remove_prefix(header);
        for (quint32 i = 0; length <= AgwFrame::maxDataLength && i < length; ++i)
            stream += static_cast<char>(i % 251);
    }
    return stream += input;
}

std::string UpToNul(std::string_view field) {
    return std::string(field.substr(0, field.find('\0')));
}

Reading Walk(std::string_view stream) {
    Reading reading;
    while (stream.size() >= header) {
        const quint32 length = LengthIn(stream);
        reading.isLost = length > AgwFrame::maxDataLength;
        if (reading.isLost || stream.size() - header < length)
            break;
        reading.frames.push_back({static_cast<quint8>(stream[0]), stream[4], static_cast<quint8>(stream[6]),
                                  UpToNul(stream.substr(8, 10)), UpToNul(stream.substr(18, 10)),
                                  std::string(stream.substr(header, length))});
        stream.remove_prefix(header + length);
    }
    return reading;
}

Reading ReadInPieces(std::string_view stream, std::size_t longest) {
    AgwFrameReader reader;
    Reading reading;
    for (std::string_view piece : Pieces(stream, longest)) {
        while (!piece.empty() && !reading.isLost) {
            const std::span<char> room = reader.Room();
            Require(room.size() >= AgwFrameReader::chunk, "there is room for a chunk");
            const std::size_t taken = std::min(piece.size(), room.size());
            std::memcpy(room.data(), piece.data(), taken);
            reader.Add(static_cast<qsizetype>(taken));
            piece.remove_prefix(taken);

            AgwFrame frame;
            auto result = AgwFrameReader::Result::NeedMore;
            while ((result = reader.Next(frame)) == AgwFrameReader::Result::Frame) {
                reading.frames.push_back({frame.port, frame.kind, frame.pid,
                                          std::string(View(frame.callFrom)), std::string(View(frame.callTo)),
                                          std::string(View(frame.data))});
                Require(AgwData::WithoutEndMark(frame.data).size() + 1 >= frame.data.size(),
                        "an end mark is one byte");
            }
            reading.isLost = result == AgwFrameReader::Result::BadLength;
        }
    }
    return reading;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string stream = StreamOf(Input(data, size));
    const Reading expected = Walk(stream);
    if (stream.size() <= 65536)
        Require(ReadInPieces(stream, 7) == expected, "small pieces give the same frames");
    Require(ReadInPieces(stream, 5000) == expected, "pieces give the same frames");
    Require(ReadInPieces(stream, 400'000) == expected, "large pieces give the same frames");
    for (const Kept& frame : expected.frames) {
        const AgwFrame again{.port = frame.port,
                             .kind = frame.kind,
                             .pid = frame.pid,
                             .callFrom = Bytes(frame.from),
                             .callTo = Bytes(frame.to),
                             .data = Bytes(frame.data)};
        Kept expectedAgain = frame;
        expectedAgain.from.resize(std::min<std::size_t>(frame.from.size(), 9)); // room for the field's NUL
        expectedAgain.to.resize(std::min<std::size_t>(frame.to.size(), 9));
        const QByteArray bytes = again.ToBytes();
        Require(Walk(View(bytes)) == Reading{{expectedAgain}, false}, "a frame that is sent reads as it was");
    }
    return 0;
}
