#include "cli/commands/Answers.h"
#include "cli/commands/NamedSetting.h"
#include "cli/output/Console.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/system/FolderLock.h"
#include "foundation/system/SecretInput.h"
#include "telemetry/callsigns/CallsignList.h"

#include <algorithm>

namespace Commands {

int ConfigSet(const Session& session);

namespace {

// Blanks at the ends, and a pair of double quotes, are kept by another pair.
QString Stored(const QString& value) {
    const bool hasQuotes = value.size() > 1 && value.startsWith(u'"') && value.endsWith(u'"');
    return value.startsWith(u' ') || value.endsWith(u' ') || hasQuotes ? u'"' + value + u'"' : value;
}

// What is stored for the value that the user gave; nothing, and what is allowed is said, when it cannot be.
std::optional<QString> Accept(const Session& session, const NamedSetting& named, const QString& given) {
    QString allowed = QStringLiteral("the side A or B, or nothing to remove the callsign");
    if (named.setting != nullptr) {
        if (const std::optional<QString> value = Settings::Accept(*named.setting, given))
            return value;
        allowed = Settings::Allowed(*named.setting);
    } else if (const QString side = given.trimmed().toUpper();
               side.isEmpty() || side == u"A" || side == u"B") {
        return side;
    }
    session.console.Say(QStringLiteral("%1 takes %2").arg(named.Name(), allowed));
    return std::nullopt;
}

int SetSide(const Session& session, clsIni& ini, const QString& callsign, const QString& side) {
    CallsignList list(ini);
    list.PeekCallsigns();
    QList<clsCallsign> callsigns = list.cCallsigns();
    const auto found = std::ranges::find(callsigns, callsign, &clsCallsign::strCallsign);
    if (side.isEmpty()) {
        if (found == callsigns.end())
            return Answers::Fail(session,
                                 QStringLiteral("%1 is none of the satellite's callsigns").arg(callsign));
        if (callsigns.size() == 1)
            return Answers::Fail(
                session, QStringLiteral("%1 stays: it is the satellite's last callsign").arg(callsign));
        callsigns.erase(found);
    } else if (found != callsigns.end()) {
        found->strSide = side;
    } else {
        callsigns.append({callsign, side});
    }
    list.setCCallsigns(callsigns);
    return ExitCode::Done;
}

// The value that the user gave on the command line or, of a secret, enters.
std::optional<QString> ValueOf(const Session& session, const NamedSetting& named, int& code) {
    const QStringList& arguments = session.call.Arguments();
    const bool isGiven = arguments.size() > 1;
    if (isGiven != named.IsSecret())
        return isGiven ? arguments[1] : ReadSecretLine(named.Name() + QStringLiteral(": "));
    code = Answers::Wrong(
        session,
        isGiven ? QStringLiteral("%1 is read from standard input, so that no other user sees it among the "
                                 "running programs; leave the value out")
                      .arg(named.Name())
                : QStringLiteral("VALUE is missing; see 'qirandecode-cli config set --help'"));
    return std::nullopt;
}

} // namespace

int ConfigSet(const Session& session) {
    const QString& name = session.call.Arguments().first();
    const std::optional<NamedSetting> named = NamedSetting::Find(name);
    if (!named)
        return Answers::Wrong(session,
                              QStringLiteral("there is no setting '%1'; 'config list' names all").arg(name));
    int code = ExitCode::Done;
    const std::optional<QString> value = ValueOf(session, *named, code);
    if (!value)
        return code;
    const std::optional<QString> accepted = Accept(session, *named, *value);
    if (!accepted)
        return ExitCode::Failed;
    FolderLock lock = FolderLock::OfProgram(session.folder);
    if (!lock.TryLock())
        return Answers::Fail(
            session, QStringLiteral("a station is running in %1: %2; end it, or change the setting there")
                         .arg(session.folder.Path(), lock.Holder()));
    clsIni ini(session.folder.IniFile());
    QString failure;
    ini.SetWriteFailed([&failure](const QString& file, const QString& reason) {
        failure = QStringLiteral("%1 cannot be written: %2").arg(file, reason);
    });
    if (named->setting != nullptr)
        Settings::Save(ini, *named->setting, Stored(*accepted));
    else
        code = SetSide(session, ini, named->key, *accepted);
    return failure.isEmpty() ? code : Answers::Fail(session, failure);
}

} // namespace Commands
