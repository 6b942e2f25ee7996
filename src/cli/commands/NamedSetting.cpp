#include "cli/commands/NamedSetting.h"

#include "foundation/text/QIRUtil.h"

std::optional<NamedSetting> NamedSetting::Find(const QString& name) {
    const qsizetype slash = name.indexOf(u'/');
    if (slash < 0)
        return std::nullopt;
    const QString section = name.first(slash).toUpper();
    const QString key = name.sliced(slash + 1).toUpper();
    if (section == QStringView(Settings::callsignsSection))
        return QIRUtil::IsValidCallsign(key) ? std::optional(NamedSetting{section, key}) : std::nullopt;
    const Setting* setting = Settings::Find(section, key);
    return setting != nullptr ? std::optional(NamedSetting{section, key, setting}) : std::nullopt;
}

QString ShownValue(const clsIni& ini, const Setting& setting) {
    const QString value = Settings::Peek(ini, setting);
    // Always as many: not even its length is told.
    return setting.type == SettingType::Secret && !value.isEmpty() ? QStringLiteral("********") : value;
}

Record RecordOf(const clsIni& ini, const Setting& setting) {
    return {QString::fromUtf16(setting.section), QString::fromUtf16(setting.key), ShownValue(ini, setting),
            QString::fromUtf16(setting.defaultValue)};
}

Record RecordOfCallsign(const QString& callsign, const QString& side) {
    return {QString::fromUtf16(Settings::callsignsSection), callsign, side, FieldValue()};
}
