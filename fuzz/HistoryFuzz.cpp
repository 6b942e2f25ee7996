// tlm.txt: whatever stands in it, it opens, answers in the order of times, and is the same opened at once or
// followed piece by piece.

#include "Input.h"
#include "Pieces.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "telemetry/history/TelemetryHistory.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 never = std::numeric_limits<qint64>::min();
constexpr qint64 ever = std::numeric_limits<qint64>::max();
using Opened = TelemetryHistory::Opened;

TelemetryHistory Make(const QString& path) {
    ChannelMap map;
    map.BuildChannelMap();
    return {path, map, {}, {{"XQ9ZZ-1", 0}, {"QIRAN-3", 1}}};
}

std::vector<HistoryChannel> EveryChannel() {
    std::vector<HistoryChannel> channels;
    for (int side = 0; side < 2; ++side)
        for (int grid = 0; grid < 3; ++grid)
            for (int row = 1; row <= 9; ++row)
                channels.push_back({side, grid, row});
    return channels;
}

// Compared bit by bit: a raw value may be infinite.
void CheckSame(const TelemetryHistory& a, const TelemetryHistory& b) {
    Require(a.Frames() == b.Frames() && a.Span() == b.Span(), "pieces make the same frames");
    const auto channels = EveryChannel();
    const auto of = a.Readings(channels, never, ever);
    const auto with = b.Readings(channels, never, ever);
    for (std::size_t i = 0; i < channels.size(); ++i)
        Require(of[i].utc == with[i].utc && of[i].raw == with[i].raw && of[i].frame == with[i].frame,
                "pieces make the same readings");
}

void CheckAnswers(const TelemetryHistory& history, std::size_t bytes) {
    Require(history.Frames() + static_cast<std::size_t>(history.ForeignLines().lines) <= bytes / 2 + 1,
            "a frame has a line");
    std::size_t readings = 0;
    for (const HistoryColumns& column : history.Readings(EveryChannel(), never, ever)) {
        Require(std::ranges::is_sorted(column.utc), "readings are in order");
        Require(column.raw.size() == column.utc.size() && column.value.size() == column.utc.size() &&
                    column.frame.size() == column.utc.size(),
                "columns are equally long");
        readings += column.utc.size();
    }
    Require(readings <= 4 * std::size_t{history.Frames()}, "a frame has four readings at most");
    std::vector<quint32> frames;
    for (quint32 frame = 0; frame < std::min(history.Frames(), 50U); ++frame) {
        frames.push_back(frame);
        const HistoryFrame found = history.Frame(frame);
        Require(!found.source.isEmpty() && found.frameType >= 0 && found.frameType <= 4 && found.side >= 0 &&
                    found.side <= 1,
                "a frame has a source, a side and a type");
    }
    for (const QByteArray& sequence : history.Sequences(frames))
        Require(static_cast<std::size_t>(sequence.size()) < bytes, "a sequence stands in its line");
    for (const auto& value : history.Shown(EveryChannel(), ever))
        Require(!value, "nothing is shown without a formula");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    const std::string_view text = Input(data, size);
    const QString path = scratch.Write(QStringLiteral("a"), text);
    TelemetryHistory whole = Make(path);
    Require(whole.Open() == Opened::Done, "every file opens");
    Require(whole.Follow() == TelemetryHistory::Followed::Nothing, "nothing was appended");
    CheckAnswers(whole, size);

    // Whole lines only, for the last one is taken without its end by opening alone.
    const std::string_view lines = text.substr(0, text.rfind('\n') + 1);
    TelemetryHistory atOnce = Make(scratch.Write(QStringLiteral("b"), lines));
    Require(atOnce.Open() == Opened::Done, "every file opens");
    TelemetryHistory followed = Make(scratch.Write(QStringLiteral("c"), {}));
    Require(followed.Open() == Opened::Done, "every file opens");
    QFile file(scratch.File(QStringLiteral("c")));
    Require(file.open(QIODevice::Append | QIODevice::Unbuffered), "the scratch folder takes files");
    const auto pieces = Pieces(lines, lines.size() / 8 + 1);
    for (const std::string_view piece : pieces) {
        file.write(piece.data(), static_cast<qint64>(piece.size()));
        Require(followed.Follow() != TelemetryHistory::Followed::Replaced, "what grows is the same file");
    }
    CheckSame(atOnce, followed);
    return 0;
}
