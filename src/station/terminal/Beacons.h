#pragma once

#include <QString>

class clsIni;
class ProgramFolder;
class Station;

/// The version of the program.
struct ProgramVersion {
    int major = 0;
    int minor = 0;
    int revision = 0;
};

/// How the station is drawn on other people's maps, in APRS terms.
struct AprsSymbol {
    QChar code = u'-';
    QChar table = u'/';
};

/// The texts of the beacons, and what they are addressed to.
namespace Beacons {

/// The destination of beacons, which tells the program and its version: "APQ3" and two digits in base 36.
QString strUivDest(const ProgramVersion& version);

/// The symbol that the user chose in "USER.INI", the file of an APRS program; keys that it lacks are added.
/// An empty value counts as a blank, so that what follows keeps its place in the beacon.
AprsSymbol LoadSymbol(clsIni& cIni, const ProgramFolder& folder);

/// An APRS position report without time stamp; empty when the position is missing.
QString Position(const Station& station, const AprsSymbol& symbol);

/// An APRS status report with a Maidenhead locator; empty when the locator is missing.
QString Locator(const Station& station, const AprsSymbol& symbol);

} // namespace Beacons
