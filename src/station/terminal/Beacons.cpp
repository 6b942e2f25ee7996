#include "station/terminal/Beacons.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "station/identity/Station.h"

namespace Beacons {
namespace {

QChar Digit36(int value) {
    return QChar(static_cast<char16_t>(value < 10 ? u'0' + value : u'A' + value - 10));
}

QChar FirstCharacter(const QString& value) {
    return value.isEmpty() ? QChar(u' ') : value.front();
}

} // namespace

QString strUivDest(const ProgramVersion& version) {
    const int number = version.major * 100 + version.minor * 10 + version.revision;
    return QStringLiteral("APQ3") + Digit36(number / 36 % 36) + Digit36(number % 36);
}

AprsSymbol LoadSymbol(clsIni& cIni, const ProgramFolder& folder) {
    const QString file = folder.File(QStringLiteral("USER.INI"));
    AprsSymbol symbol;
    symbol.code = FirstCharacter(Settings::Read(cIni, Settings::aprsSymbol, file));
    symbol.table = FirstCharacter(Settings::Read(cIni, Settings::aprsSymbolTable, file));
    return symbol;
}

QString Position(const Station& station, const AprsSymbol& symbol) {
    if (station.strLat().isEmpty() || station.strLong().isEmpty())
        return {};
    return u'!' + station.strLat() + symbol.table + station.strLong() + symbol.code + station.strComment();
}

QString Locator(const Station& station, const AprsSymbol& symbol) {
    if (station.strLoc().isEmpty())
        return {};
    const QString report = u'>' + station.strLoc() + symbol.table + symbol.code;
    return station.strComment().isEmpty() ? report : report + u' ' + station.strComment();
}

} // namespace Beacons
