// KISS streams and recordings: any split gives the same frames, and what is read can be written and read
// again.

#include "Input.h"
#include "Pieces.h"
#include "Require.h"
#include "telemetry/replay/KissRecording.h"

#include <optional>
#include <string>
#include <vector>

namespace {

struct Kept {
    int port;
    int command;
    std::string data;
    bool operator==(const Kept&) const = default;
};

struct KeptRecord {
    std::optional<std::int64_t> utc;
    int port;
    std::string bytes;
    bool operator==(const KeptRecord&) const = default;
};

std::vector<Kept> ReadFrames(const std::vector<std::string_view>& pieces, std::uint64_t& refused) {
    KissReader reader;
    KissFrame frame;
    std::vector<Kept> frames;
    for (std::string_view piece : pieces)
        while (reader.Next(piece, frame)) {
            Require(frame.data.size() <= KissFrame::longestData, "no frame is longer than allowed");
            frames.push_back({frame.port, frame.command, std::string(frame.data)});
        }
    refused = reader.Refused();
    return frames;
}

std::vector<KeptRecord> ReadRecords(const std::vector<std::string_view>& pieces) {
    KissRecordingReader reader;
    RecordedFrame frame;
    std::vector<KeptRecord> frames;
    for (std::string_view piece : pieces)
        while (reader.Next(piece, frame))
            frames.push_back({frame.utc, frame.port, std::string(frame.bytes)});
    return frames;
}

// An input that begins with "*" stands for a stream in which every "*" is 10,000 letters.
std::string StreamOf(std::string_view input) {
    if (!input.starts_with('*'))
        return std::string(input);
    std::string stream;
    while (!input.empty() && stream.size() < (1U << 20U)) {
        stream += TakeUntil(input, '*');
        stream.append(10'000, 'x');
    }
    return stream;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string stream = StreamOf(Input(data, size));
    std::uint64_t refused = 0;
    std::uint64_t refusedInPieces = 0;
    const std::vector<Kept> frames = ReadFrames({stream}, refused);
    for (const std::size_t longest : {std::size_t{7}, std::size_t{5000}}) {
        if (longest == 7 && stream.size() > 65536)
            continue;
        Require(ReadFrames(Pieces(stream, longest), refusedInPieces) == frames,
                "pieces give the same frames");
        Require(refusedInPieces == refused, "pieces give as many refusals");
    }
    std::string again;
    for (const Kept& frame : frames)
        KissFrame{.port = static_cast<std::uint8_t>(frame.port),
                  .command = static_cast<std::uint8_t>(frame.command),
                  .data = frame.data}
            .AppendTo(again);
    Require(ReadFrames({again}, refused) == frames && refused == 0, "what is written is read as it was");

    const std::vector<KeptRecord> records = ReadRecords({stream});
    Require(ReadRecords(Pieces(stream, 500)) == records, "pieces give the same recording");
    again.clear();
    for (const KeptRecord& record : records)
        RecordedFrame{
            .utc = record.utc, .port = static_cast<std::uint8_t>(record.port), .bytes = record.bytes}
            .AppendTo(again);
    Require(ReadRecords({again}) == records, "what is recorded is read as it was");
    return 0;
}
