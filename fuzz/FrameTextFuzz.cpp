// Lines of monitors and of traffic logs: any split tells the same frames, which are well formed, and each is
// told by a line of its own.

#include "Input.h"
#include "Pieces.h"
#include "Require.h"
#include "telemetry/replay/FrameLine.h"
#include "telemetry/replay/FrameText.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

struct Kept {
    char kind;
    int port;
    qint64 utc;
    qint64 line;
    std::string source, destination, path, information;
    bool operator==(const Kept&) const = default;
};

struct Reading {
    std::vector<Kept> frames;
    qint64 notUnderstood = 0;
    QByteArrayList examples;
    bool operator==(const Reading&) const = default;
};

void CheckPath(std::string_view path) {
    bool mayRepeat = true;
    while (!path.empty()) {
        std::string_view digipeater = TakeUntil(path, ',');
        const bool hasRepeated = digipeater.ends_with('*');
        digipeater.remove_suffix(hasRepeated ? 1 : 0);
        Require(IsCallsignText(digipeater), "a path holds callsigns");
        Require(mayRepeat || !hasRepeated, "all before one that has repeated have repeated");
        mayRepeat = hasRepeated;
    }
}

Reading ReadPieces(const std::vector<std::string_view>& pieces) {
    Reading reading;
    FrameText text([&reading](const FrameText::Told& told) {
        const HeardFrame& frame = told.frame;
        const bool isUtc = told.time && told.time->clock == LineTime::Clock::Utc;
        Require(frame.utc == (isUtc ? told.time->milliseconds : 0), "UTC is set where the line tells it");
        Require(IsCallsignText(View(frame.source)), "every frame has a source");
        Require(frame.port >= 1 && frame.port <= 256, "ports count from 1");
        CheckPath(View(frame.path));
        reading.frames.push_back({static_cast<char>(frame.kind), frame.port, frame.utc, told.line,
                                  std::string(View(frame.source)), std::string(View(frame.destination)),
                                  std::string(View(frame.path)), std::string(View(frame.information))});
    });
    for (const std::string_view piece : pieces)
        text.Add(Bytes(piece));
    text.End();
    reading.notUnderstood = text.NotUnderstood();
    reading.examples = text.Examples();
    Require(text.Frames() == static_cast<qint64>(reading.frames.size()), "frames are counted");
    Require(reading.examples.size() == std::min(reading.notUnderstood, qint64{FrameText::mostExamples}),
            "what is not understood has examples");
    return reading;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    const Reading reading = ReadPieces({text});
    Require(ReadPieces(Pieces(text, 7)) == reading, "small pieces tell the same");
    Require(ReadPieces(Pieces(text, 5000)) == reading, "pieces tell the same");
    const qint64 lines = 1 + std::ranges::count_if(text, [](char c) { return c == '\r' || c == '\n'; });
    qint64 last = 0;
    for (const Kept& frame : reading.frames) {
        Require(frame.line > last && frame.line <= lines, "each frame has a line of its own, in order");
        last = frame.line;
    }
    return 0;
}
