#include "cli/commands/Answers.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "foundation/text/UtcTime.h"
#include "orbit/service/KVRSatLib.h"

#include <QFile>

namespace Commands {

int KepsList(const Session& session);

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
    library.ForEachElementSet([&](const ElementSource& source) {
        const qint64 epoch = UtcTime::FromDateTime(source.epochUtc);
        writer.Write({QFile::decodeName(QByteArray::fromStdString(source.file)),
                      QString::fromUtf8(source.format.data(), static_cast<qsizetype>(source.format.size())),
                      qint64{source.number}, Text::FromBytes(QByteArray::fromStdString(source.name)), epoch,
                      static_cast<double>(now - epoch) / millisecondsPerDay});
    });
    return ExitCode::Done;
}

} // namespace Commands
