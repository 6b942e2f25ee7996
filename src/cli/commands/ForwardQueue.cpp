#include "cli/commands/Answers.h"
#include "cli/commands/Forwarding.h"
#include "cli/output/Console.h"
#include "foundation/files/BoundedFile.h"
#include "sharing/ForwardCatchUp.h"
#include "sharing/ForwardRequest.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/replay/KissReplay.h"

#include <QFile>

namespace Commands {

int ForwardQueue(const Session& session);

namespace {

constexpr qint64 pieceSize = 65536;

// Answers an empty text, or why the file cannot be read.
QString ReadRecording(const QString& path, KissReplay& replay) {
    QFile file(path);
    if (const QString reason = OpenRegularFile(file); !reason.isEmpty())
        return reason;
    if (!KissReplay::IsRecording(file.peek(1)))
        return QStringLiteral("it is no KISS recording");
    for (QByteArray piece; !(piece = file.read(pieceSize)).isEmpty();)
        replay.Add(piece);
    return file.error() == QFileDevice::NoError ? QString() : file.errorString();
}

} // namespace

int ForwardQueue(const Session& session) {
    Forwarding::Setup setup(session);
    if (const QStringList missing = SidsRequest::Missing(setup.station); !missing.isEmpty())
        return Answers::Fail(session,
                             QStringLiteral("nothing can be sent; missing: %1").arg(missing.join(u", ")));
    CallsignList callsigns(setup.ini);
    callsigns.PeekCallsigns();
    ForwardCatchUp catchUp(callsigns, setup.station, setup.settings.keepAtMost);
    qint64 refused = 0;
    for (const QString& path : session.call.Arguments()) {
        KissReplay replay([&catchUp](const HeardFrame& frame) { catchUp.Take(frame); });
        if (const QString reason = ReadRecording(path, replay); !reason.isEmpty())
            return Answers::Fail(session, QStringLiteral("%1 cannot be read: %2").arg(path, reason));
        refused += replay.Refused();
    }
    const auto say = [&](const QString& what, qint64 number) {
        if (number > 0)
            session.console.Say(QStringLiteral("%1: %2").arg(what).arg(number));
    };
    say(QStringLiteral("frames of others"), catchUp.NotTheSatellites());
    say(QStringLiteral("frames that cannot be sent, without a time for example"), catchUp.NotWhole());
    say(QStringLiteral("frames that were damaged"), refused);
    say(QStringLiteral("frames beyond FORWARD/KEEP_AT_MOST, the oldest"), catchUp.TooMany());
    return Forwarding::DoOrLeave(session, {ForwardRequest::Kind::Queue, catchUp.Bodies()},
                                 QStringLiteral("frames queued"));
}

} // namespace Commands
