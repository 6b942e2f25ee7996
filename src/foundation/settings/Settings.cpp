#include "foundation/settings/Settings.h"

namespace Settings {
namespace {

QString String(const char16_t* text) {
    return QString::fromUtf16(text);
}

} // namespace

QString Read(clsIni& ini, const Setting& setting, const QString& file) {
    if (setting.firstWrite == FirstWrite::OnChange)
        return ini.GetIniString(String(setting.section), String(setting.key), String(setting.defaultValue),
                                file);
    return ini.GetIniStringWriteDefault(String(setting.section), String(setting.key),
                                        String(setting.defaultValue), file);
}

QString ReadOr(clsIni& ini, const Setting& setting, const QString& defaultValue) {
    return ini.GetIniStringWriteDefault(String(setting.section), String(setting.key), defaultValue);
}

QString Peek(const clsIni& ini, const Setting& setting) {
    return ini.GetIniString(String(setting.section), String(setting.key), String(setting.defaultValue));
}

bool IsOn(const clsIni& ini, const Setting& setting) {
    QString value = Peek(ini, setting);
    return clsIni::IsItTrue(value);
}

int NumberOf(const clsIni& ini, const Setting& setting) {
    return Accept(setting, Peek(ini, setting)).value_or(String(setting.defaultValue)).toInt();
}

void Save(clsIni& ini, const Setting& setting, const QString& value) {
    ini.SaveIniString(String(setting.section), String(setting.key), value);
}

std::span<const Setting* const> All() {
    return listed;
}

const Setting* Find(QStringView section, QStringView key) {
    for (const Setting* setting : listed)
        if (section.compare(QStringView(setting->section), Qt::CaseInsensitive) == 0 &&
            key.compare(QStringView(setting->key), Qt::CaseInsensitive) == 0)
            return setting;
    return nullptr;
}

} // namespace Settings
