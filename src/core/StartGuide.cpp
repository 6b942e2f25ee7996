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
                      : QStringLiteral("formula.txt has no formula yet"),
            QStringLiteral("Open &folder")};
}

Line Engine(const GroundStation& station) {
    const QString host = station.link.HostName();
    const QString name = QStringLiteral("Packet engine");
    const QString setup =
        station.kiss.IsUsed() ? QStringLiteral("KISS Set&up") : QStringLiteral("AG&WPE Setup");
    if (station.link.blnConectedToAgw())
        return {State::There, name, QStringLiteral("connected to %1").arg(host), setup};
    const bool hasFailed = station.link.RetryIn() >= 0;
    return {
        hasFailed ? State::Missing : State::Pending, name,
        hasFailed
            ? QStringLiteral("none answers on %1; start one, as \"First start\" in the help tells").arg(host)
            : QStringLiteral("connecting to %1").arg(host),
        setup};
}

Line Position(const GroundStation& station) {
    const bool isKnown = station.station.PositionKnown();
    return {Judge(isKnown), QStringLiteral("Station position"),
            isKnown ? QStringLiteral("entered")
                    : QStringLiteral("not entered, so no passes can be predicted"),
            QStringLiteral("St&ation Information")};
}

Line Elements(const GroundStation& station) {
    const QString missing = station.satellites.NoKepsMessage();
    return {Judge(missing.isEmpty()), QStringLiteral("Elements"),
            missing.isEmpty() ? QStringLiteral("found for both satellites") : missing,
            QStringLiteral("Download &Keps")};
}

} // namespace

std::array<Line, steps> Of(const GroundStation& station) {
    return {Formulae(station), Engine(station), Position(station), Elements(station)};
}

} // namespace StartGuide
