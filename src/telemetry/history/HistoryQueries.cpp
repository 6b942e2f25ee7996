// What TelemetryHistory answers; see TelemetryHistory.h.

#include "foundation/files/BoundedFile.h"
#include "foundation/text/ByteOrderMark.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/history/TelemetryHistory.h"

#include <QFile>

#include <algorithm>
#include <bitset>
#include <limits>

namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

// The line that begins at this place, without its end.
QByteArray LineAt(QFile& file, qint64 offset) {
    QByteArray line;
    qsizetype end = -1;
    for (const qint64 size : {qint64{512}, qint64{Csv::Reader::longestRecord} + 2}) {
        if (!file.seek(offset))
            return {};
        line = file.read(size);
        end = line.indexOf('\n');
        if (end >= 0 || line.size() < size)
            break;
    }
    line.truncate(end < 0 ? line.size() : end);
    if (line.endsWith('\r'))
        line.chop(1);
    return line;
}

// Where in a telemetry line a channel that was asked for stands.
class Place {
public:
    Place(std::size_t asked, std::size_t channel, const clsFormula* formula)
        : m_asked(asked)
        , m_channel(channel)
        , m_formula(formula) {}

    std::size_t Asked() const { return m_asked; }
    std::size_t Channel() const { return m_channel; }

    // The converted value; no number where no formula converts it. Raw values are mostly those of a byte, and
    // powers are slow, so each of these is computed once.
    double Value(double raw) {
        if (!(raw >= 0 && raw < bytes))
            return Computed(raw);
        const auto byte = static_cast<std::size_t>(raw);
        if (static_cast<double>(byte) != raw)
            return Computed(raw);
        if (!m_isKnown[byte]) {
            m_isKnown[byte] = true;
            m_known[byte] = Computed(raw);
        }
        return m_known[byte];
    }

private:
    static constexpr std::size_t bytes = 256;

    double Computed(double raw) const {
        return m_formula != nullptr ? m_formula->CalcValue(raw).value_or(noNumber) : noNumber;
    }

    std::size_t m_asked; // its place among those that were asked for
    std::size_t m_channel;
    const clsFormula* m_formula;
    std::bitset<bytes> m_isKnown;
    std::array<double, bytes> m_known;
};

// The places of what was asked for, by side and frame type.
class Places {
public:
    Places(std::span<const HistoryChannel> channels, const ChannelMap& map, const FormulaTable& formulae) {
        for (std::size_t asked = 0; asked < channels.size(); ++asked)
            for (int frameType = 0; frameType < ChannelMap::frameTypes; ++frameType)
                for (int channel = 0; channel < ChannelMap::channels; ++channel)
                    Add(asked, channels[asked], frameType, channel, map, formulae);
    }

    std::vector<Place>& At(int side, quint8 frameType) {
        return m_places[static_cast<std::size_t>(side)][frameType];
    }

private:
    void Add(std::size_t asked, const HistoryChannel& wanted, int frameType, int channel,
             const ChannelMap& map, const FormulaTable& formulae) {
        const ChannelCell* cell = map.At(wanted.side, frameType, channel);
        if (cell != nullptr && cell->grid == wanted.grid && cell->row == wanted.row)
            At(wanted.side, static_cast<quint8>(frameType))
                .emplace_back(asked, static_cast<std::size_t>(channel),
                              formulae.At(wanted.side, frameType, wanted.grid, wanted.row));
    }

    // One more frame type for those that name no channels.
    std::array<std::array<std::vector<Place>, ChannelMap::frameTypes + 1>, ChannelMap::sides> m_places;
};

} // namespace

std::optional<std::pair<qint64, qint64>> TelemetryHistory::Span() const {
    if (Frames() == 0)
        return std::nullopt;
    return std::pair(m_rows.Utc(m_rows.RowAt(0)), m_rows.Utc(m_rows.RowAt(Frames() - 1)));
}

qint64 TelemetryHistory::LastRun(qint64 longestGap) const {
    quint32 position = Frames() - 1;
    qint64 begun = m_rows.Utc(m_rows.RowAt(position));
    while (position-- > 0) {
        const qint64 utc = m_rows.Utc(m_rows.RowAt(position));
        if (begun - utc > longestGap)
            break;
        begun = utc;
    }
    return begun;
}

std::vector<HistoryColumns> TelemetryHistory::Readings(std::span<const HistoryChannel> channels, qint64 from,
                                                       qint64 to) const {
    std::vector<HistoryColumns> columns(channels.size());
    Places places(channels, m_map, m_formulae);
    for (quint32 position = m_rows.PositionOf(from); position < Frames(); ++position) {
        const quint32 row = m_rows.RowAt(position);
        const qint64 utc = m_rows.Utc(row);
        if (utc > to)
            break;
        for (Place& place : places.At(m_sources[m_rows.Source(row)].side, m_rows.FrameType(row))) {
            HistoryColumns& column = columns[place.Asked()];
            const double raw = m_rows.Raw(row, place.Channel());
            column.utc.push_back(utc);
            column.raw.push_back(raw);
            column.value.push_back(place.Value(raw));
            column.frame.push_back(row);
        }
    }
    return columns;
}

std::vector<std::optional<TelemetryHistory::Value>>
TelemetryHistory::Shown(std::span<const HistoryChannel> channels, qint64 utc) const {
    std::vector<std::optional<Value>> values(channels.size());
    Places places(channels, m_map, m_formulae);
    std::size_t missing = values.size();
    const bool isEndless = utc == std::numeric_limits<qint64>::max();
    for (quint32 position = isEndless ? Frames() : m_rows.PositionOf(utc + 1); position > 0 && missing > 0;) {
        const quint32 row = m_rows.RowAt(--position);
        for (Place& place : places.At(m_sources[m_rows.Source(row)].side, m_rows.FrameType(row))) {
            std::optional<Value>& value = values[place.Asked()];
            const double raw = m_rows.Raw(row, place.Channel());
            const double converted = place.Value(raw);
            if (value || converted != converted) // no number: the grids kept what they had
                continue;
            value = {.utc = m_rows.Utc(row), .raw = raw, .value = converted, .frame = row};
            --missing;
        }
    }
    return values;
}

HistoryFrame TelemetryHistory::Frame(quint32 frame) const {
    const Source& source = m_sources[m_rows.Source(frame)];
    return {.utc = m_rows.Utc(frame),
            .source = source.name,
            .side = source.side,
            .frameType = m_rows.FrameType(frame)};
}

std::vector<QByteArray> TelemetryHistory::Sequences(std::span<const quint32> frames) const {
    std::vector<QByteArray> sequences(frames.size());
    QFile file(m_path);
    if (OpenRegularFile(file).isEmpty())
        std::ranges::transform(frames, sequences.begin(),
                               [&](quint32 frame) { return SequenceOf(file, frame); });
    return sequences;
}

QByteArray TelemetryHistory::SequenceOf(QFile& file, quint32 frame) const {
    const HistoryRows::Row row = m_rows.At(frame);
    const QByteArray line = LineAt(file, row.offset);
    std::string_view text = ToView(line);
    if (row.offset == 0)
        text = WithoutByteOrderMark(text);
    Csv::Record record;
    if (!record.Split(text))
        return {};
    const HistoryLayout& layout = LayoutAt(row.offset);
    const std::optional<HistoryLine> found = layout.Read(record.Fields());
    if (!found || found->utc != row.utc || found->raw != row.raw)
        return {};
    const std::string_view sequence = layout.Text(record.Fields(), HistoryLayout::Sequence);
    return {sequence.data(), static_cast<qsizetype>(sequence.size())};
}

const HistoryLayout& TelemetryHistory::LayoutAt(qint64 offset) const {
    const auto after = std::ranges::upper_bound(m_sections, offset, {}, &Section::offset);
    return std::prev(after)->layout;
}
