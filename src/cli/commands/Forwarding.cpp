#include "cli/commands/Forwarding.h"

#include "cli/commands/Answers.h"
#include "cli/output/Console.h"
#include "core/SidsIdentity.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "sharing/ForwardRequest.h"
#include "station/identity/Station.h"

#include <QThread>

namespace Forwarding {
namespace {

constexpr int mostTries = 30;
constexpr unsigned long triesApart = 100; // milliseconds

} // namespace

Setup::Setup(const Session& session)
    : ini(session.folder.IniFile())
    , settings(ForwardSettings::Load(ini)) {
    Station own(ini);
    own.Peek();
    station = SidsStationOf(own, Settings::Peek(ini, Settings::qiranObjNum));
}

int DoOrLeave(const Session& session, const ForwardRequest& request, const QString& what) {
    const auto keepAtMost = static_cast<qsizetype>(Setup(session).settings.keepAtMost);
    ForwardRequest::Outcome outcome = request.DoOrLeave(session.folder, keepAtMost);
    // The station is about to carry out what another program left.
    for (int i = 1; i < mostTries && !outcome.error.isEmpty() && ForwardRequest::IsLeft(session.folder);
         ++i) {
        QThread::msleep(triesApart);
        outcome = request.DoOrLeave(session.folder, keepAtMost);
    }
    if (!outcome.error.isEmpty())
        return Answers::Fail(session, outcome.error);
    session.console.Print(
        outcome.isLeft ? QStringLiteral("left to the station that runs in %1\n").arg(session.folder.Path())
                       : QStringLiteral("%1: %2\n").arg(what).arg(outcome.frames));
    return ExitCode::Done;
}

} // namespace Forwarding
