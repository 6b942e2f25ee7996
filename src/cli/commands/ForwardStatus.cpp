#include "cli/commands/Answers.h"
#include "cli/commands/Forwarding.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "sharing/ForwardQueue.h"

#include <QMap>

namespace Commands {

int ForwardStatus(const Session& session);

namespace {

/// Frames of one state, the refused ones with the same words.
struct Group {
    qint64 frames = 0;
    QByteArray oldest; ///< the body of the first in the queue
};

void SayWhatHinders(const Session& session, const Forwarding::Setup& setup) {
    if (!setup.settings.use)
        session.console.Say(QStringLiteral("nothing is sent: 'config set FORWARD/USE TRUE' switches it on"));
    else if (setup.settings.dryRun)
        session.console.Say(QStringLiteral("nothing is sent: FORWARD/DRY_RUN is on"));
    QStringList missing = SidsRequest::Missing(setup.station);
    if (!ForwardSettings::Address(setup.settings.url).isValid())
        missing += QStringLiteral("address of a server");
    if (!missing.isEmpty())
        session.console.Say(QStringLiteral("nothing can be sent; missing: %1").arg(missing.join(u", ")));
}

} // namespace

int ForwardStatus(const Session& session) {
    SayWhatHinders(session, Forwarding::Setup(session));
    qint64 damaged = 0;
    const ForwardList list = ForwardQueue::Read(session.folder, &damaged);
    if (damaged > 0)
        session.console.Say(
            QStringLiteral("lines of %1 that cannot be read: %2").arg(ForwardQueue::FileName()).arg(damaged));
    Group waiting;
    QMap<QString, Group> parked; // by the server's words
    for (const auto& [number, frame] : list.Frames()) {
        Group& group = frame.isParked ? parked[frame.words] : waiting;
        if (group.frames++ == 0)
            group.oldest = frame.body;
    }
    RecordWriter writer(session.console, Records::forward, Answers::FormatOf(session));
    const auto write = [&](const char16_t* state, const Group& group, const FieldValue& words) {
        writer.Write({QString::fromUtf16(state), group.frames,
                      group.oldest.isEmpty() ? FieldValue() : FieldValue(SidsRequest::TimeIn(group.oldest)),
                      words});
    };
    writer.Head();
    write(u"waiting", waiting, {});
    for (const auto& [words, group] : parked.asKeyValueRange())
        write(u"refused", group, words);
    const ForwardCounts counts = list.Counts();
    write(u"sent", {counts.sent, {}}, {});
    write(u"discarded", {counts.discarded, {}}, {});
    write(u"dropped", {counts.dropped, {}}, {});
    return ExitCode::Done;
}

} // namespace Commands
