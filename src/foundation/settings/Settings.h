#pragma once

#include "foundation/settings/clsIni.h"

/// A setting: where it stands in the settings file, and what it is before the user changes it.
struct Setting {
    const char16_t* section;
    const char16_t* key;
    const char16_t* defaultValue;
};

/// Every setting of the program.
namespace Settings {

constexpr Setting qiranObjNum{u"SETUP", u"QIRAN_OBJ_NUM", u"90417"};
constexpr Setting issObjNum{u"SETUP", u"ISS_OBJ_NUM", u"25544"};
constexpr Setting objIndex{u"SETUP", u"OBJ_INDEX", u"0"};
constexpr Setting left{u"SETUP", u"LEFT", u""}; // default: the centred window's place
constexpr Setting top{u"SETUP", u"TOP", u""};
constexpr Setting useLocalTime{u"SETUP", u"USE_LOCAL_TIME", u"FALSE"};
constexpr Setting onlyShowQiran{u"SETUP", u"ONLY_SHOW_QIRAN", u"TRUE"};
constexpr Setting latitude{u"SETUP", u"LATITUDE", u""};
constexpr Setting longitude{u"SETUP", u"LONGITUDE", u""};
constexpr Setting locator{u"SETUP", u"LOCATOR", u""};
constexpr Setting callsign{u"SETUP", u"CALLSIGN", u""};
constexpr Setting comment{u"SETUP", u"COMMENT", u""};
constexpr Setting mapLeft{u"SETUP", u"MAP_LEFT", u""}; // default: where the window system puts the map
constexpr Setting mapTop{u"SETUP", u"MAP_TOP", u""};

constexpr Setting hostAddress{u"AGWPE", u"HOST_ADDRESS", u"localhost"};
constexpr Setting hostPort{u"AGWPE", u"HOST_PORT", u"8000"};
constexpr Setting loginId{u"AGWPE", u"LOGIN_ID", u""};
constexpr Setting password{u"AGWPE", u"PASSWORD", u""};

constexpr Setting terminalTo{u"TERMINAL", u"TO", u"CQ"};
constexpr Setting terminalVia{u"TERMINAL", u"VIA", u"QIRAN-1"};
constexpr Setting terminalPort{u"TERMINAL", u"PORT", u"1"};
constexpr Setting logging{u"TERMINAL", u"LOGGING", u"False"};

constexpr Setting kepsFile1{u"KEPS", u"FILE_1", u"celestrak.org/NORAD/elements/amateur.txt"};
constexpr Setting kepsFile2{u"KEPS", u"FILE_2", u""};

// In USER.INI, the file of an APRS program.
constexpr Setting aprsSymbol{u"APRS", u"APRS_SYMBOL_CHARACTER", u"-"};
constexpr Setting aprsSymbolTable{u"APRS", u"APRS_SYMBOL_TABLE_CHARACTER", u"/"};

// Keys of an older layout of the file, removed at start-up.
constexpr Setting oldObjectName{u"SETUP", u"OBJECT_NAME", u""};
constexpr Setting oldCallA{u"SETUP", u"CALL_A", u""};
constexpr Setting oldCallB{u"SETUP", u"CALL_B", u""};
constexpr const char16_t* oldSidesSection = u"SIDES";

// Every key of this section is a callsign, its value a side.
constexpr const char16_t* callsignsSection = u"CALLSIGNS";

// Window placements stand in this section under a prefix.
constexpr const char16_t* setupSection = u"SETUP";

/// The setting's value; where the file lacks it, its default is written there. `file`: see clsIni.
QString Read(clsIni& ini, const Setting& setting, const QString& file = {});

/// The same with a default that only the running program knows.
QString ReadOr(clsIni& ini, const Setting& setting, const QString& defaultValue);

void Save(clsIni& ini, const Setting& setting, const QString& value);

} // namespace Settings
