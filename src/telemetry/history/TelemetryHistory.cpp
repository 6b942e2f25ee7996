#include "telemetry/history/TelemetryHistory.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/text/ByteOrderMark.h"
#include "telemetry/calibration/Inside.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/ByteViews.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t pieceSize = 1024 * 1024;
constexpr std::size_t mostSources = 4096;  // callsigns; a station hears some dozen
constexpr std::size_t mostSections = 4096; // headers in one file
constexpr qsizetype tailSize = 256;
constexpr quint8 noChannels = ChannelMap::frameTypes;

} // namespace

HistorySides SidesOf(const CallsignList& callsigns) {
    HistorySides sides;
    for (const clsCallsign& callsign : callsigns.cCallsigns())
        sides.try_emplace(callsign.strCallsign.toUtf8(), callsign.strSide == u"B" ? 1 : 0);
    return sides;
}

TelemetryHistory::TelemetryHistory(QString path, const ChannelMap& map, FormulaTable formulae,
                                   HistorySides sides)
    : m_path(std::move(path))
    , m_map(map)
    , m_formulae(std::move(formulae))
    , m_sides(std::move(sides)) {
    Clear();
}

void TelemetryHistory::Clear() {
    m_rows.Clear();
    m_sources.clear();
    m_sourceNumbers.clear();
    m_sections.assign(1, {0, HistoryLayout::Newest()}); // for a file that has lost its header
    m_foreign = {};
    m_reason.clear();
    m_identity.reset();
    m_position = 0;
    m_lines = 0;
    m_tail.clear();
}

TelemetryHistory::Opened TelemetryHistory::Open(const Progress& progress) {
    Clear();
    QFile file(m_path);
    if (!file.exists())
        return Opened::Done;
    QString reason = OpenRegularFile(file);
    if (reason.isEmpty()) {
        m_identity = FileIdentity::Of(file.handle());
        if (!ReadOn(file, progress, true)) {
            Clear();
            return Opened::Cancelled;
        }
        if (file.error() == QFileDevice::NoError)
            return Opened::Done;
        reason = file.errorString();
    }
    Clear();
    m_reason = reason;
    return Opened::Unreadable;
}

TelemetryHistory::Followed TelemetryHistory::Follow() {
    const std::optional<FileIdentity> identity = FileIdentity::Of(m_path);
    if (identity != m_identity)
        return Followed::Replaced;
    QFile file(m_path);
    if (!identity || !OpenRegularFile(file).isEmpty())
        return Followed::Nothing;
    if (file.size() < m_position || !file.seek(m_position - m_tail.size()) ||
        file.read(m_tail.size()) != m_tail)
        return Followed::Replaced;
    const quint32 before = Frames();
    (void)ReadOn(file, {}, false);
    return Frames() > before ? Followed::Appended : Followed::Nothing;
}

// Reads from where the last reading ended; false when it was cancelled. A line that has no end yet may still
// grow, and is left for the next time, unless it has all its columns when the file is opened.
bool TelemetryHistory::ReadOn(QFile& file, const Progress& progress, bool isOpening) {
    const qint64 total = file.size();
    std::vector<char> buffer(static_cast<std::size_t>(
        std::clamp<qint64>(total - m_position + 1, 1, static_cast<qint64>(pieceSize))));
    std::size_t held = 0;   // bytes of a line whose end is still to come
    std::size_t passed = 0; // bytes of that line, which is too long, that were not held
    (void)file.seek(m_position);
    qint64 read = 0;
    while ((read = file.read(buffer.data() + held, static_cast<qint64>(buffer.size() - held))) > 0) {
        std::string_view text(buffer.data(), held + static_cast<std::size_t>(read));
        for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
            ++m_lines;
            if (passed > 0 || !TakeLine(text.substr(0, end)))
                PassOver();
            m_position += static_cast<qint64>(std::exchange(passed, 0) + end + 1);
            text.remove_prefix(end + 1);
        }
        if (text.size() == buffer.size())
            passed += std::exchange(text, {}).size();
        held = text.size();
        if (held > 0)
            std::memmove(buffer.data(), text.data(), held);
        if (progress && !progress(m_position, total))
            return false;
    }
    const std::string_view last(buffer.data(), held);
    if (isOpening && passed == 0 && m_record.Split(last) && TakeFrame())
        m_position += static_cast<qint64>(held);
    m_rows.Sort();
    m_tail.resize(std::min<qint64>(m_position, tailSize));
    if (!file.seek(m_position - m_tail.size()) || file.read(m_tail.data(), m_tail.size()) != m_tail.size())
        m_tail.clear();
    return true;
}

// Whether the line is one of ours: a frame, a header, or empty.
bool TelemetryHistory::TakeLine(std::string_view line) {
    if (m_position == 0)
        line = WithoutByteOrderMark(line);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.empty())
        return true;
    if (line.size() > Csv::Reader::longestRecord || !m_record.Split(line))
        return false;
    if (TakeFrame())
        return true;
    const std::optional<HistoryLayout> layout = HistoryLayout::Of(m_record.Fields());
    if (layout && *layout != m_sections.back().layout) {
        if (m_sections.size() == mostSections)
            return false;
        m_sections.push_back({m_position, *layout});
    }
    return layout.has_value();
}

// Adds the frame in m_record, if it is one.
bool TelemetryHistory::TakeFrame() {
    const std::optional<HistoryLine> line = m_sections.back().layout.Read(m_record.Fields());
    const std::optional<quint16> source = line ? SourceOf(line->source, line->side) : std::nullopt;
    return source && m_rows.Add({.utc = line->utc,
                                 .offset = m_position,
                                 .source = *source,
                                 .frameType = Inside(line->frameType, ChannelMap::frameTypes)
                                                  ? static_cast<quint8>(line->frameType)
                                                  : noChannels,
                                 .raw = line->raw});
}

void TelemetryHistory::PassOver() {
    if (m_foreign.lines++ == 0)
        m_foreign.firstLine = m_lines;
}

// The number of a callsign; none for one too many. A callsign that is not listed is of the side that its line
// names, so each side that a callsign was heard on has its own.
std::optional<quint16> TelemetryHistory::SourceOf(std::string_view name, int sideThen) {
    if (m_lastSource < m_sources.size()) {
        const Source& last = m_sources[m_lastSource];
        if (last.sideThen == sideThen && ToView(last.name) == name)
            return m_lastSource;
    }
    const auto [place, isNew] = m_sourceNumbers.try_emplace({QByteArrayView(name).toByteArray(), sideThen},
                                                            static_cast<quint16>(m_sources.size()));
    if (isNew) {
        if (m_sources.size() == mostSources) {
            m_sourceNumbers.erase(place);
            return std::nullopt;
        }
        m_sources.push_back({place->first.first, sideThen, SideNow(place->first.first, sideThen)});
    }
    return m_lastSource = place->second;
}

int TelemetryHistory::SideNow(const QByteArray& source, int sideThen) const {
    const auto listed = m_sides.find(source);
    return listed == m_sides.end() ? sideThen : listed->second;
}

void TelemetryHistory::Decode(FormulaTable formulae, HistorySides sides) {
    m_formulae = std::move(formulae);
    m_sides = std::move(sides);
    for (Source& source : m_sources)
        source.side = SideNow(source.name, source.sideThen);
}
