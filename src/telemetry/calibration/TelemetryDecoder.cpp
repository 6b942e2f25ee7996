#include "telemetry/calibration/TelemetryDecoder.h"

#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/FrameType.h"

#include <algorithm>

namespace {

constexpr std::size_t sequenceField = 0;
constexpr std::size_t firstChannelField = 1;
constexpr std::size_t typeField = 7;

} // namespace

TelemetryDecoder::TelemetryDecoder(const ChannelMap& map, const FormulaTable& formulae,
                                   const CallsignList& callsigns)
    : m_map(map)
    , m_formulae(formulae)
    , m_callsigns(callsigns) {}

void TelemetryDecoder::Take(const HeardFrame& frame) {
    if (frame.kind != HeardFrame::Kind::U || m_callsigns.Find(frame.source) == nullptr)
        return;
    const std::string_view information = ToView(frame.information);
    DecodeTelemetry(frame, information.substr(0, FindLineEnd(information)));
}

void TelemetryDecoder::DecodeTelemetry(const HeardFrame& frame, QByteArrayView line) {
    const auto fields = SplitAtCommas<TelemetryFrame::fieldsInLine>(ToView(line));
    if (!fields)
        return;
    TelemetryFrame decoded{.utc = frame.utc,
                           .origin = frame.origin,
                           .source = frame.source,
                           .side = SideIndexOf(frame.source),
                           .frameType = FrameTypeOf((*fields)[typeField]),
                           .line = line};
    std::ranges::copy(*fields, decoded.fields.begin());
    for (int channel = 0; channel < ChannelMap::channels; ++channel)
        if (const std::optional<Reading> reading = ReadChannel(decoded, channel))
            decoded.found[decoded.count++] = *reading;
    m_decoded.Hand(decoded);
}

qint16 TelemetryDecoder::SideIndexOf(QByteArrayView source) const {
    const clsCallsign* callsign = m_callsigns.Find(source);
    return callsign != nullptr && callsign->strSide == u"B" ? 1 : 0;
}

std::optional<Reading> TelemetryDecoder::ReadChannel(const TelemetryFrame& line, int channel) const {
    const ChannelCell* cell = m_map.At(line.side, line.frameType, channel);
    if (cell == nullptr)
        return std::nullopt;
    const clsFormula* formula = m_formulae.At(line.side, line.frameType, cell->grid, cell->row);
    const double raw =
        Text::LeadingNumber(ToView(line.fields[firstChannelField + static_cast<std::size_t>(channel)]));
    return Reading{.utc = line.utc,
                   .source = line.source,
                   .side = line.side,
                   .sequence = line.fields[sequenceField],
                   .frameType = line.frameType,
                   .channel = channel,
                   .grid = cell->grid,
                   .row = cell->row,
                   .raw = raw,
                   .value = formula != nullptr ? formula->CalcValue(raw) : std::nullopt};
}
