#include "cli/commands/Answers.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "foundation/text/UtcTime.h"
#include "orbit/panel/TrackingDisplay.h"
#include "orbit/service/KVRSatLib.h"

#include <QFile>

#include <algorithm>
#include <map>

namespace Commands {

int KepsList(const Session& session);

namespace {

/// An object of the folder: where it stands, and its newest elements.
struct Held {
    QString name;
    QStringList files;
    double newest = 0; ///< epoch, date-time
};

using Objects = std::map<std::uint32_t, Held>;

/// Objects of which the same is to be said: the first one, and how many there are.
struct Group {
    QString first;
    int count = 0;

    void Add(std::uint32_t number, const Held& held) {
        if (count++ == 0)
            first = QStringLiteral("%1 %2").arg(number).arg(held.name).trimmed();
    }
    QString Text() const {
        return count == 1 ? first : QStringLiteral("%1 and %2 more").arg(first).arg(count - 1);
    }
};

void SayRepeated(const Session& session, const Objects& objects) {
    std::map<QStringList, Group> groups;
    for (const auto& [number, held] : objects)
        if (held.files.size() > 1)
            groups[held.files].Add(number, held);
    for (const auto& [files, group] : groups)
        session.console.Say(QStringLiteral("%1 in %2; the newest elements count")
                                .arg(group.Text(), files.join(QStringLiteral(" and in "))));
}

void SayOld(const Session& session, const Objects& objects, double now) {
    Group old;
    for (const auto& [number, held] : objects)
        if (now - held.newest > TrackingDisplay::maxElementDays)
            old.Add(number, held);
    if (old.count > 0)
        session.console.Say(QStringLiteral("older than %1 days, so that passes may be wrong: %2")
                                .arg(TrackingDisplay::maxElementDays)
                                .arg(old.Text()));
}

} // namespace

int KepsList(const Session& session) {
    constexpr double millisecondsPerDay = secondsPerDay * 1000.0;
    const qint64 now = session.clock.Milliseconds();
    KVRSatLib library([&](const std::string& damage) {
        session.console.Say(QFile::decodeName(QByteArray::fromStdString(damage)));
    });
    if (!library.SetElementFolder(QFile::encodeName(session.folder.KepsFolder()).toStdString()))
        return Answers::Fail(session,
                             QStringLiteral("%1 cannot be read; 'qirandecode-cli keps fetch' makes it")
                                 .arg(session.folder.KepsFolder()));
    RecordWriter writer(session.console, Records::elements, Answers::FormatOf(session),
                        Answers::ZoneOf(session));
    writer.Head();
    Objects objects;
    library.ForEachElementSet([&](const ElementSource& source) {
        const qint64 epoch = UtcTime::FromDateTime(source.epochUtc);
        const QString file = QFile::decodeName(QByteArray::fromStdString(source.file));
        const QString name = Text::FromBytes(QByteArray::fromStdString(source.name));
        writer.Write(
            {file, QString::fromUtf8(source.format.data(), static_cast<qsizetype>(source.format.size())),
             qint64{source.number}, name, epoch, static_cast<double>(now - epoch) / millisecondsPerDay});
        Held& held = objects[source.number];
        if (!held.files.contains(file))
            held.files.append(file);
        if (held.name.isEmpty())
            held.name = name;
        held.newest = std::max(held.newest, source.epochUtc);
    });
    SayRepeated(session, objects);
    SayOld(session, objects, UtcTime::ToDateTime(now));
    return ExitCode::Done;
}

} // namespace Commands
