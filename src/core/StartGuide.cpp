#include "core/StartGuide.h"

#include "core/GroundStation.h"

namespace StartGuide {
namespace {

State Judge(bool isThere) {
    return isThere ? State::There : State::Missing;
}

Line Formulae(const GroundStation& station) {
    const int count = station.formulae.Count();
    return {Judge(count > 0), QStringLiteral("Formula file"),
            count > 0 ? QStringLiteral("formula.txt has %1 formulae").arg(count)
                      : QStringLiteral("formula.txt has no formula yet")};
}

Line Engine(const GroundStation& station) {
    const QString host = station.link.HostName();
    if (station.link.blnConectedToAgw())
        return {State::There, QStringLiteral("Packet engine"), QStringLiteral("connected to %1").arg(host)};
    const bool hasFailed = station.link.RetryIn() >= 0;
    return {
        hasFailed ? State::Missing : State::Pending, QStringLiteral("Packet engine"),
        hasFailed
            ? QStringLiteral("none answers on %1; start one, as \"First start\" in the help tells").arg(host)
            : QStringLiteral("connecting to %1").arg(host)};
}

Line Position(const GroundStation& station) {
    const bool isKnown = station.station.PositionKnown();
    return {Judge(isKnown), QStringLiteral("Station position"),
            isKnown ? QStringLiteral("entered")
                    : QStringLiteral("not entered, so no passes can be predicted")};
}

Line Elements(const GroundStation& station) {
    const QString missing = station.satellites.NoKepsMessage();
    return {Judge(missing.isEmpty()), QStringLiteral("Elements"),
            missing.isEmpty() ? QStringLiteral("found for both satellites") : missing};
}

} // namespace

std::array<Line, steps> Of(const GroundStation& station) {
    return {Formulae(station), Engine(station), Position(station), Elements(station)};
}

} // namespace StartGuide
