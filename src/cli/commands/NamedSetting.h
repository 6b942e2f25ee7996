#pragma once

#include "foundation/records/Record.h"
#include "foundation/settings/Settings.h"

#include <QString>

#include <optional>

/// A setting by the name that the user gives it: SECTION/KEY. The section CALLSIGNS has a key for each of the
/// satellite's callsigns, whose value is its side.
struct NamedSetting {
    QString section;
    QString key;
    const Setting* setting = nullptr; ///< null: a callsign

    /// Nothing when there is no such setting.
    static std::optional<NamedSetting> Find(const QString& name);

    bool IsSecret() const { return setting != nullptr && setting->type == SettingType::Secret; }

    QString Name() const { return section + u'/' + key; }
};

/// A setting as it may be shown: its value, or asterisks where it is secret.
QString ShownValue(const clsIni& ini, const Setting& setting);

Record RecordOf(const clsIni& ini, const Setting& setting);
Record RecordOfCallsign(const QString& callsign, const QString& side);
