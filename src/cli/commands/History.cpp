#include "cli/commands/Answers.h"
#include "cli/commands/ConsolePresenter.h"
#include "cli/commands/FrameRecords.h"
#include "cli/commands/Kept.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Text.h"
#include "telemetry/calibration/FormulaFile.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/Reading.h"
#include "telemetry/history/TelemetryHistory.h"
#include "telemetry/limits/ChannelsFile.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace Commands {

int History(const Session& session);

namespace {

constexpr qint64 step = qint64{24} * 60 * 60 * 1000; // ms; so much of the history is held at a time

/// A kept reading, on its way to be printed.
struct KeptReading {
    qint64 utc = 0;
    quint32 frame = 0;
    int channel = 0; // of the frame's line
    LimitCell cell;
    double raw = 0.0;
    double value = 0.0;
};

int ChannelOf(const ChannelMap& map, int frameType, const LimitCell& cell) {
    for (int channel = 0; channel < ChannelMap::channels; ++channel)
        if (const ChannelCell* there = map.At(cell.side, frameType, channel);
            there != nullptr && there->grid == cell.grid && there->row == cell.row)
            return channel;
    return 0;
}

/// Prints the readings of a history, a stretch of time after another.
class HistoryPrinter {
public:
    HistoryPrinter(const Session& session, const TelemetryHistory& history, const ChannelMap& map, Kept kept)
        : m_history(history)
        , m_map(map)
        , m_kept(std::move(kept))
        , m_limits(ChannelsFile::Read(session.folder.File(QStringLiteral("channels.txt"))).Limits())
        , m_writer(session.console, Records::reading, Answers::FormatOf(session), Answers::ZoneOf(session)) {
        for (const LimitCell& cell : m_kept.cells)
            m_channels.push_back({cell.side, cell.grid, cell.row});
    }

    void Print() {
        m_writer.Head();
        const auto span = m_history.Span();
        if (!span)
            return;
        const qint64 last = std::min(m_kept.to, span->second);
        for (qint64 begin = std::max(m_kept.from, span->first); begin <= last; begin += step)
            PrintStretch(begin, std::min(begin + step - 1, last));
    }

private:
    void PrintStretch(qint64 from, qint64 to) {
        std::vector<KeptReading> readings;
        const std::vector<HistoryColumns> columns = m_history.Readings(m_channels, from, to);
        for (std::size_t i = 0; i < columns.size(); ++i)
            for (std::size_t at = 0; at < columns[i].utc.size(); ++at) {
                const quint32 frame = columns[i].frame[at];
                const LimitCell& cell = m_kept.cells[i];
                readings.push_back({columns[i].utc[at], frame,
                                    ChannelOf(m_map, m_history.Frame(frame).frameType, cell), cell,
                                    columns[i].raw[at], columns[i].value[at]});
            }
        std::ranges::sort(readings, {}, [](const KeptReading& reading) {
            return std::tuple(reading.utc, reading.frame, reading.channel);
        });
        std::vector<quint32> frames;
        frames.reserve(readings.size());
        for (const KeptReading& reading : readings)
            frames.push_back(reading.frame);
        const std::vector<QByteArray> sequences = m_history.Sequences(frames);
        for (std::size_t i = 0; i < readings.size(); ++i)
            Write(readings[i], sequences[i]);
    }

    void Write(const KeptReading& kept, const QByteArray& sequence) {
        const HistoryFrame frame = m_history.Frame(kept.frame);
        // The file is UTF-8, a frame's texts are Windows-1252.
        const QByteArray source = Text::ToBytes(QString::fromUtf8(frame.source));
        const QByteArray number = Text::ToBytes(QString::fromUtf8(sequence));
        m_writer.Write(
            RecordOf(Reading{.utc = kept.utc,
                             .source = source,
                             .side = kept.cell.side,
                             .sequence = number,
                             .frameType = frame.frameType,
                             .channel = kept.channel,
                             .grid = kept.cell.grid,
                             .row = kept.cell.row,
                             .raw = kept.raw,
                             .value = std::isnan(kept.value) ? std::nullopt : std::optional(kept.value)},
                     m_limits));
    }

    const TelemetryHistory& m_history;
    const ChannelMap& m_map;
    const Kept m_kept;
    const LimitTable m_limits;
    std::vector<HistoryChannel> m_channels;
    RecordWriter m_writer;
};

} // namespace

int History(const Session& session) {
    std::optional<Kept> kept = Kept::Read(session);
    if (!kept)
        return ExitCode::WrongCall;
    const QString formulaFile = session.folder.File(QStringLiteral("formula.txt"));
    if (!QFile::exists(formulaFile))
        return Answers::Fail(session, Answers::NoFormulae(formulaFile));
    ConsolePresenter presenter(session.console);
    FormulaTable formulae;
    if (LoadFormulae(formulaFile, formulae, mb(presenter), nullptr) != FormulaLoad::Loaded)
        return ExitCode::Failed;
    ChannelMap map;
    map.BuildChannelMap();
    clsIni ini(session.folder.IniFile());
    CallsignList callsigns(ini);
    callsigns.PeekCallsigns();
    TelemetryHistory history(session.folder.File(QStringLiteral("tlm.txt")), map, std::move(formulae),
                             SidesOf(callsigns));
    if (history.Open() == TelemetryHistory::Opened::Unreadable)
        return Answers::Fail(session, history.Reason());
    HistoryPrinter(session, history, map, std::move(*kept)).Print();
    if (const qint64 lines = history.ForeignLines().lines; lines > 0)
        session.console.Say(QStringLiteral("lines of tlm.txt that were passed over: %1, the first of them is "
                                           "line %2")
                                .arg(lines)
                                .arg(history.ForeignLines().firstLine));
    return ExitCode::Done;
}

} // namespace Commands
