#include "foundation/settings/Settings.h"

namespace Settings {
namespace {

QString String(const char16_t* text) {
    return QString::fromUtf16(text);
}

} // namespace

QString Read(clsIni& ini, const Setting& setting, const QString& file) {
    return ini.GetIniStringWriteDefault(String(setting.section), String(setting.key),
                                        String(setting.defaultValue), file);
}

QString ReadOr(clsIni& ini, const Setting& setting, const QString& defaultValue) {
    return ini.GetIniStringWriteDefault(String(setting.section), String(setting.key), defaultValue);
}

void Save(clsIni& ini, const Setting& setting, const QString& value) {
    ini.SaveIniString(String(setting.section), String(setting.key), value);
}

} // namespace Settings
