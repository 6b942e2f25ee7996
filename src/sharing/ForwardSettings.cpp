#include "sharing/ForwardSettings.h"

#include "foundation/settings/Settings.h"

using namespace Settings;

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
