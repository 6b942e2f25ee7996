#include "sharing/ForwardSettings.h"

#include "foundation/settings/Settings.h"

namespace {

constexpr Setting forwardUse{u"FORWARD", u"USE", u"FALSE"};
constexpr Setting forwardDryRun{u"FORWARD", u"DRY_RUN", u"FALSE"};
constexpr Setting forwardUrl{u"FORWARD", u"URL", u"https://db.satnogs.org/api/telemetry/"};
constexpr Setting forwardToken{u"FORWARD", u"TOKEN", u""};
constexpr Setting forwardKeepAtMost{u"FORWARD", u"KEEP_AT_MOST", u"10000"};

QString Peek(const clsIni& ini, const Setting& setting) {
    return ini.GetIniString(QString::fromUtf16(setting.section), QString::fromUtf16(setting.key),
                            QString::fromUtf16(setting.defaultValue));
}

bool IsOn(const clsIni& ini, const Setting& setting) {
    QString value = Peek(ini, setting);
    return clsIni::IsItTrue(value);
}

int NumberOf(const clsIni& ini, const Setting& setting) {
    bool isNumber = false;
    const int value = Peek(ini, setting).toInt(&isNumber);
    const bool isAllowed = isNumber && value >= 1 && value <= ForwardSettings::mostKept;
    return isAllowed ? value : QString::fromUtf16(setting.defaultValue).toInt();
}

} // namespace

ForwardSettings ForwardSettings::Load(const clsIni& ini) {
    return {IsOn(ini, forwardUse), IsOn(ini, forwardDryRun), Peek(ini, forwardUrl), Peek(ini, forwardToken),
            NumberOf(ini, forwardKeepAtMost)};
}

void ForwardSettings::Save(clsIni& ini) const {
    const ForwardSettings before = Load(ini);
    if (use != before.use)
        Settings::Save(ini, forwardUse, clsIni::TrueOrFalse(use));
    if (dryRun != before.dryRun)
        Settings::Save(ini, forwardDryRun, clsIni::TrueOrFalse(dryRun));
    if (url != before.url)
        Settings::Save(ini, forwardUrl, url);
    if (token != before.token)
        Settings::Save(ini, forwardToken, token);
    if (keepAtMost != before.keepAtMost)
        Settings::Save(ini, forwardKeepAtMost, QString::number(keepAtMost));
}

QUrl ForwardSettings::Address(const QString& text) {
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    return isWeb && !url.host().isEmpty() ? url : QUrl();
}
