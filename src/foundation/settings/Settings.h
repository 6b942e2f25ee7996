#pragma once

#include "foundation/settings/clsIni.h"

#include <array>
#include <optional>
#include <span>

/// What values a setting takes.
enum class SettingType {
    Text,            ///< whatever a line of the file can hold
    Secret,          ///< the same, and never shown
    Boolean,         ///< TRUE or FALSE
    Number,          ///< a whole number from `least` to `greatest`
    CatalogueNumber, ///< of a satellite: one to nine digits
    Callsign,        ///< one callsign with or without SSID, or none
    Callsigns,       ///< any number of them, commas between them
    Latitude,        ///< DDMM.hhN, or none
    Longitude,       ///< DDDMM.hhE, or none
    Locator,         ///< six characters of a Maidenhead locator, or none
    Host,            ///< a host's name or address
    WebAddress,      ///< http:// or https://
};

/// Whether a key that the file lacks is written there with its default when it is first read.
enum class FirstWrite { OnRead, OnChange };

/// A setting: where it stands in the settings file, what it is before the user changes it, and what it may
/// be.
struct Setting {
    const char16_t* section;
    const char16_t* key;
    const char16_t* defaultValue;
    SettingType type = SettingType::Text;
    int least = 0;
    int greatest = 0;
    FirstWrite firstWrite = FirstWrite::OnRead;
};

/// Every setting of the program.
namespace Settings {

constexpr int highestPort = 65535;
constexpr int highestEnginePort = 32767; // as far as the packet engine's own setting goes

inline constexpr Setting qiranObjNum{u"SETUP", u"QIRAN_OBJ_NUM", u"90417", SettingType::CatalogueNumber};
inline constexpr Setting issObjNum{u"SETUP", u"ISS_OBJ_NUM", u"25544", SettingType::CatalogueNumber};
inline constexpr Setting objIndex{u"SETUP", u"OBJ_INDEX", u"0", SettingType::Number, 0, 1};
inline constexpr Setting useLocalTime{u"SETUP", u"USE_LOCAL_TIME", u"FALSE", SettingType::Boolean};
inline constexpr Setting onlyShowQiran{u"SETUP", u"ONLY_SHOW_QIRAN", u"TRUE", SettingType::Boolean};
inline constexpr Setting latitude{u"SETUP", u"LATITUDE", u"", SettingType::Latitude};
inline constexpr Setting longitude{u"SETUP", u"LONGITUDE", u"", SettingType::Longitude};
inline constexpr Setting locator{u"SETUP", u"LOCATOR", u"", SettingType::Locator};
inline constexpr Setting callsign{u"SETUP", u"CALLSIGN", u"", SettingType::Callsign};
inline constexpr Setting comment{u"SETUP", u"COMMENT", u""};

inline constexpr Setting hostAddress{u"AGWPE", u"HOST_ADDRESS", u"localhost", SettingType::Host};
inline constexpr Setting hostPort{u"AGWPE", u"HOST_PORT", u"8000", SettingType::Number, 1, highestEnginePort};
inline constexpr Setting loginId{u"AGWPE", u"LOGIN_ID", u""};
inline constexpr Setting password{u"AGWPE", u"PASSWORD", u"", SettingType::Secret};

inline constexpr Setting terminalTo{u"TERMINAL", u"TO", u"CQ", SettingType::Callsign};
inline constexpr Setting terminalVia{u"TERMINAL", u"VIA", u"QIRAN-1", SettingType::Callsigns};
inline constexpr Setting terminalPort{u"TERMINAL", u"PORT", u"1", SettingType::Number, 1, 256};
inline constexpr Setting logging{u"TERMINAL", u"LOGGING", u"False", SettingType::Boolean};

inline constexpr Setting kepsFile1{u"KEPS", u"FILE_1", u"celestrak.org/NORAD/elements/amateur.txt"};
inline constexpr Setting kepsFile2{u"KEPS", u"FILE_2", u""};

inline constexpr Setting historyKeep{u"HISTORY",          u"KEEP", u"TRUE", SettingType::Boolean, 0, 0,
                                     FirstWrite::OnChange};
inline constexpr Setting statusShow{u"STATUS",           u"SHOW", u"TRUE", SettingType::Boolean, 0, 0,
                                    FirstWrite::OnChange};
inline constexpr Setting noticeMinutes{u"NOTICE", u"MINUTES",          u"5", SettingType::Number, 0,
                                       1440,      FirstWrite::OnChange};
inline constexpr Setting noticeMinElevation{u"NOTICE", u"MIN_ELEVATION",    u"10", SettingType::Number, 0,
                                            90,        FirstWrite::OnChange};
inline constexpr Setting noticeEvents{u"NOTICE", u"EVENTS",           u"FALSE", SettingType::Boolean, 0,
                                      0,         FirstWrite::OnChange};
inline constexpr Setting kissUse{u"KISS", u"USE", u"FALSE", SettingType::Boolean, 0, 0, FirstWrite::OnChange};
inline constexpr Setting kissHostAddress{u"KISS", u"HOST_ADDRESS",     u"localhost", SettingType::Host, 0,
                                         0,       FirstWrite::OnChange};
inline constexpr Setting kissHostPort{u"KISS",     u"HOST_PORT",        u"8001", SettingType::Number, 1,
                                      highestPort, FirstWrite::OnChange};
inline constexpr Setting forwardUse{u"FORWARD",          u"USE", u"FALSE", SettingType::Boolean, 0, 0,
                                    FirstWrite::OnChange};
inline constexpr Setting forwardDryRun{u"FORWARD", u"DRY_RUN",          u"FALSE", SettingType::Boolean, 0,
                                       0,          FirstWrite::OnChange};
inline constexpr Setting forwardUrl{
    u"FORWARD",          u"URL", u"https://db.satnogs.org/api/telemetry/", SettingType::WebAddress, 0, 0,
    FirstWrite::OnChange};
inline constexpr Setting forwardToken{u"FORWARD",          u"TOKEN", u"", SettingType::Secret, 0, 0,
                                      FirstWrite::OnChange};
inline constexpr Setting forwardKeepAtMost{u"FORWARD", u"KEEP_AT_MOST",     u"10000", SettingType::Number, 1,
                                           1000000,    FirstWrite::OnChange};

inline constexpr Setting guideShow{
    u"GUIDE", u"SHOW", u"TRUE", SettingType::Boolean, 0, 0, FirstWrite::OnChange};
inline constexpr Setting gridsDimOld{u"GRIDS", u"DIM_OLD",          u"FALSE", SettingType::Boolean, 0,
                                     0,        FirstWrite::OnChange};
// The text of the terminal's panes in pixels; 0: as large as the desktop's.
inline constexpr Setting terminalFontSize{u"TERMINAL", u"FONT_SIZE",        u"0", SettingType::Number, 0,
                                          27,          FirstWrite::OnChange};

/// Those that a user may look at and change, in the order of their sections.
inline constexpr std::array listed{
    &qiranObjNum,      &issObjNum,     &objIndex,           &useLocalTime, &onlyShowQiran, &latitude,
    &longitude,        &locator,       &callsign,           &comment,      &hostAddress,   &hostPort,
    &loginId,          &password,      &terminalTo,         &terminalVia,  &terminalPort,  &logging,
    &terminalFontSize, &kepsFile1,     &kepsFile2,          &historyKeep,  &statusShow,    &guideShow,
    &gridsDimOld,      &noticeMinutes, &noticeMinElevation, &noticeEvents, &kissUse,       &kissHostAddress,
    &kissHostPort,     &forwardUse,    &forwardDryRun,      &forwardUrl,   &forwardToken,  &forwardKeepAtMost,
};

// Places of windows, in no list of settings: the windows alone know what to do with them.
constexpr Setting left{u"SETUP", u"LEFT", u""}; // default: the centred window's place
constexpr Setting top{u"SETUP", u"TOP", u""};
constexpr Setting mapLeft{u"SETUP", u"MAP_LEFT", u""}; // default: where the window system puts the map
constexpr Setting mapTop{u"SETUP", u"MAP_TOP", u""};

// How the sky is drawn: chosen in its window.
inline constexpr Setting skyEastLeft{u"SETUP", u"SKY_EAST_LEFT",    u"FALSE", SettingType::Boolean, 0,
                                     0,        FirstWrite::OnChange};

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

/// The setting's value; where the file lacks it, its default, which is written there too unless the setting
/// is one that is not written before it is changed. `file`: see clsIni.
QString Read(clsIni& ini, const Setting& setting, const QString& file = {});

/// The same with a default that only the running program knows.
QString ReadOr(clsIni& ini, const Setting& setting, const QString& defaultValue);

/// The setting's value or its default; writes nothing.
QString Peek(const clsIni& ini, const Setting& setting);

/// The same of a boolean.
bool IsOn(const clsIni& ini, const Setting& setting);

/// The same of a number; its default where the stored one is not allowed.
int NumberOf(const clsIni& ini, const Setting& setting);

void Save(clsIni& ini, const Setting& setting, const QString& value);

/// All of `listed`.
std::span<const Setting* const> All();

/// The one of them with these names, in any case; null when there is none.
const Setting* Find(QStringView section, QStringView key);

/// The value as it is stored for what a user gave; nothing when the setting cannot take it.
std::optional<QString> Accept(const Setting& setting, const QString& given);

/// What a setting takes, in words: "a whole number from 0 to 90".
QString Allowed(const Setting& setting);

} // namespace Settings
