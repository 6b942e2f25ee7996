#include "telemetry/calibration/TelemetryDecoder.h"

#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"

#include <optional>
#include <utility>

namespace {

// The value of one character; 0 for one that the field lacks.
int DigitAt(std::string_view field, std::size_t at) {
    return at < field.size() ? static_cast<int>(Text::LeadingNumber(field.substr(at, 1))) : 0;
}

} // namespace

TelemetryDecoder::TelemetryDecoder(const ChannelMap& map, const FormulaTable& formulae,
                                   const TelemetryGrids& grids, const CallsignList& callsigns,
                                   std::function<DateTime()> displayTime)
    : m_map(map)
    , m_formulae(formulae)
    , m_grids(grids)
    , m_callsigns(callsigns)
    , m_displayTime(std::move(displayTime)) {}

void TelemetryDecoder::DecodeTelemetry(QByteArrayView source, QByteArrayView line) {
    const auto fields = SplitAtCommas<9>(ToView(line));
    if (!fields)
        return;
    const qint16 side = SideIndexOf(source);
    const std::string_view typeField = (*fields)[7];
    const int frameType = 2 * DigitAt(typeField, 2) + DigitAt(typeField, 3); // the map ends at 3
    const FrameLabel label{(*fields)[0], m_displayTime()};
    for (int channel = 0; channel < ChannelMap::channels; ++channel)
        ShowChannelValue(side, frameType, channel,
                         Text::LeadingNumber((*fields)[static_cast<std::size_t>(channel) + 1]), label);
}

qint16 TelemetryDecoder::SideIndexOf(QByteArrayView source) const {
    const clsCallsign* callsign = m_callsigns.Find(source);
    return callsign != nullptr && callsign->strSide == u"B" ? 1 : 0;
}

void TelemetryDecoder::ShowChannelValue(int side, int frameType, int channel, double raw,
                                        const FrameLabel& label) {
    const ChannelCell* cell = m_map.At(side, frameType, channel);
    const clsFormula* formula = cell ? m_formulae.At(side, frameType, cell->grid, cell->row) : nullptr;
    if (formula == nullptr)
        return;
    if (const std::optional<double> value = formula->CalcValue(raw))
        m_grids[static_cast<std::size_t>(cell->grid)]->SetValue(cell->row, side, *value, label);
}
