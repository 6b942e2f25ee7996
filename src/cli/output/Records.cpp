#include "cli/output/Records.h"

#include <array>

namespace Records {

using Kind = Column::Kind;

// NOLINTBEGIN(cert-err58-cpp): memory for these few is there, or nothing is.
const RecordType status{
    "status",
    u"What became of the link to the packet engine, and the like.",
    {
        {"utc", Kind::Moment, 0, 24, u"when it was said"},
        {"text", Kind::Text, 0, 0, u"a line"},
    },
};

const RecordType frame{
    "frame",
    u"A frame that was heard.",
    {
        {"utc", Kind::Moment, 0, 24, u"when it came"},
        {"port", Kind::Whole, 0, 4, u"radio port, from 1"},
        {"kind", Kind::Text, 0, 4, u"U a UI frame, I and S of connections, T one that the own engine sent"},
        {"source", Kind::Text, 0, 9, u"callsign with SSID"},
        {"destination", Kind::Text, 0, 11, u"callsign with SSID"},
        {"path", Kind::List, 0, 20, u"digipeaters; * behind one that is known to have repeated the frame"},
        {"pid", Kind::Whole, 0, 3, u"protocol identifier, where it is known"},
        {"text", Kind::Text, 0, 0, u"the information field, read as Windows-1252"},
        {"hex", Kind::Text, 0, 0, u"its bytes, where they are known to be complete"},
    },
};

const RecordType reading{
    "reading",
    u"A channel of a telemetry line of the satellite.",
    {
        {"utc", Kind::Moment, 0, 24, u"when the frame came"},
        {"source", Kind::Text, 0, 9, u"the callsign that sent it"},
        {"side", Kind::Text, 0, 4, u"of the satellite, A or B"},
        {"sequence", Kind::Text, 0, 8, u"the line's first field"},
        {"frame_type", Kind::Whole, 0, 10, u"0 to 3"},
        {"channel", Kind::Whole, 0, 7, u"1 to 4"},
        {"grid", Kind::Text, 0, 7, u"POWER, CURRENT or TEMP"},
        {"row", Kind::Text, 0, 6, u"of the grid"},
        {"raw", Kind::Decimal, -1, 5, u"as sent"},
        {"value", Kind::Decimal, -1, 8, u"converted, where there is a formula for it"},
        {"unit", Kind::Text, 0, 4, u"of the value, where it is known"},
    },
};

const RecordType event{
    "event",
    u"A channel's value has crossed a limit.",
    {
        {"utc", Kind::Moment, 0, 24, u"of the reading"},
        {"side", Kind::Text, 0, 4, u"of the satellite, A or B"},
        {"grid", Kind::Text, 0, 7, u"POWER, CURRENT or TEMP"},
        {"row", Kind::Text, 0, 6, u"of the grid"},
        {"value", Kind::Decimal, -1, 8, u"that crossed the limit"},
        {"from", Kind::Text, 0, 12, u"low alarm, low warning, normal, high warning or high alarm"},
        {"to", Kind::Text, 0, 12, u"likewise, from then on"},
    },
};

const RecordType pass{
    "pass",
    u"A pass over the station.",
    {
        {"satellite", Kind::Text, 0, 12, u"QIRAN, ISS, or the name in the element file"},
        {"number", Kind::Whole, 0, 9, u"its catalogue number"},
        {"rise", Kind::Seconds, 0, 20, u"when it comes over the horizon"},
        {"culmination", Kind::Seconds, 0, 20, u"when it stands highest"},
        {"set", Kind::Seconds, 0, 20, u"when it goes under the horizon"},
        {"rise_azimuth", Kind::Decimal, 2, 12, u"degrees from north over east"},
        {"set_azimuth", Kind::Decimal, 2, 11, u"degrees from north over east"},
        {"max_elevation", Kind::Decimal, 2, 13, u"degrees"},
        {"duration_s", Kind::Whole, 0, 10, u"seconds from rise to set"},
    },
};

const RecordType position{
    "position",
    u"Where a satellite is.",
    {
        {"utc", Kind::Seconds, 0, 20, u"when it is there"},
        {"satellite", Kind::Text, 0, 12, u"QIRAN, ISS, or the name in the element file"},
        {"number", Kind::Whole, 0, 9, u"its catalogue number"},
        {"latitude", Kind::Decimal, 2, 8, u"of the point under it, degrees, north positive"},
        {"longitude", Kind::Decimal, 2, 9, u"likewise, east positive"},
        {"altitude_km", Kind::Decimal, 1, 11, u"over the ellipsoid"},
        {"azimuth", Kind::Decimal, 2, 7, u"from the station, degrees from north over east"},
        {"elevation", Kind::Decimal, 2, 9, u"over the station's horizon, degrees"},
        {"range_km", Kind::Decimal, 1, 8, u"distance from the station"},
        {"range_rate_km_s", Kind::Decimal, 3, 15, u"positive: going away"},
        {"doppler_hz", Kind::Whole, 0, 10, u"shift of a signal on the frequency asked for"},
        {"due", Kind::Seconds, 0, 20, u"when the next pass begins; now, while one is under way"},
    },
};

const RecordType elements{
    "elements",
    u"The orbital elements of an object.",
    {
        {"file", Kind::Text, 0, 16, u"in the Keps folder"},
        {"format", Kind::Text, 0, 6, u"TLE"},
        {"number", Kind::Whole, 0, 9, u"catalogue number"},
        {"name", Kind::Text, 0, 24, u"the name line"},
        {"epoch", Kind::Seconds, 0, 20, u"the time that the elements hold for"},
        {"age_days", Kind::Decimal, 1, 8, u"days since then"},
    },
};

const RecordType forward{
    "forward",
    u"Frames on their way to the server of FORWARD/URL.",
    {
        {"state", Kind::Text, 0, 9,
         u"waiting, refused, sent, discarded by the user, or dropped from a full queue"},
        {"frames", Kind::Whole, 0, 8, u"how many"},
        {"oldest", Kind::Text, 0, 24, u"when the first of them was heard, ISO 8601, UTC"},
        {"words", Kind::Text, 0, 0, u"with which the server refused them"},
    },
};

const RecordType setting{
    "setting",
    u"A setting.",
    {
        {"section", Kind::Text, 0, 9, u"in the settings file"},
        {"key", Kind::Text, 0, 15, u"likewise"},
        {"value", Kind::Text, 0, 28, u"asterisks where it is secret"},
        {"default", Kind::Text, 0, 0, u"its value before anybody changes it"},
    },
};
// NOLINTEND(cert-err58-cpp)

std::span<const RecordType* const> All() {
    static constexpr std::array all{&status,   &frame,    &reading, &event,  &pass,
                                    &position, &elements, &forward, &setting};
    return all;
}

} // namespace Records
