#include "cli/commands/Answers.h"
#include "cli/output/Console.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/system/FolderLock.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/imports/HistoryImport.h"
#include "telemetry/imports/ImportTexts.h"

namespace Commands {

int Import(const Session& session);

namespace {

void PrintCount(const Session& session, const ImportCount& count) {
    for (const QString& line : ImportLines(count))
        session.console.Print(RecordText::Shown(line) + u'\n');
}

int Undo(const Session& session, const QString& path) {
    const QString fault = HistoryImport::Undo(path);
    return fault.isEmpty() ? ExitCode::Done : Answers::Fail(session, fault);
}

} // namespace

int Import(const Session& session) {
    const QStringList files = session.call.Arguments();
    const bool isUndone = session.call.Has(Options::undo);
    if (files.isEmpty() != isUndone)
        return Answers::Wrong(session, isUndone ? QStringLiteral("--undo takes no files")
                                                : QStringLiteral("name the files to be imported"));
    const std::optional<ImportZone> zone =
        ImportZone::Named(session.call.Get<QString>(Options::zone).value_or(QStringLiteral("utc")));
    if (!zone)
        return Answers::Wrong(session, QStringLiteral("--zone takes utc, local or a name such as "
                                                      "Europe/Berlin"));
    FolderLock lock = FolderLock::OfProgram(session.folder);
    if (!lock.TryLock())
        return Answers::Fail(session, QStringLiteral("the folder %1 is held by %2; end it first")
                                          .arg(session.folder.Path(), lock.Holder()));
    const QString path = session.folder.File(QStringLiteral("tlm.txt"));
    if (isUndone)
        return Undo(session, path);
    clsIni ini(session.folder.IniFile());
    CallsignList callsigns(ini);
    callsigns.PeekCallsigns();
    HistoryImport import(path, SidesOf(callsigns));
    using Result = HistoryImport::Result;
    if (import.Count(files, {.zone = *zone, .utc = session.call.Get<qint64>(Options::recordingTime)}) !=
        Result::Done)
        return Answers::Fail(session, import.Reason());
    PrintCount(session, import.Counted());
    if (session.call.Has(Options::dryRun) || import.Counted().frames == 0)
        return ExitCode::Done;
    if (import.Prepare() != Result::Done || import.Commit() != Result::Done)
        return Answers::Fail(session, import.Reason());
    return ExitCode::Done;
}

} // namespace Commands
