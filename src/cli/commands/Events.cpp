#include "cli/commands/Answers.h"
#include "cli/commands/FrameRecords.h"
#include "cli/commands/Kept.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "telemetry/limits/EventFile.h"

namespace Commands {

int Events(const Session& session);

int Events(const Session& session) {
    const std::optional<Kept> kept = Kept::Read(session);
    if (!kept)
        return ExitCode::WrongCall;
    RecordWriter writer(session.console, Records::event, Answers::FormatOf(session),
                        Answers::ZoneOf(session));
    writer.Head();
    for (const LimitEvent& event : EventFile::Read(session.folder.File(QStringLiteral("events.txt"))))
        if (kept->Has(event.cell, event.utc))
            writer.Write(RecordOf(event));
    return ExitCode::Done;
}

} // namespace Commands
