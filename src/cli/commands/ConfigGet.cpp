#include "cli/commands/Answers.h"
#include "cli/commands/NamedSetting.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "telemetry/callsigns/CallsignList.h"

namespace Commands {

int ConfigGet(const Session& session);

int ConfigGet(const Session& session) {
    const QString& name = session.call.Arguments().first();
    const std::optional<NamedSetting> found = NamedSetting::Find(name);
    if (!found)
        return Answers::Wrong(session,
                              QStringLiteral("there is no setting '%1'; 'config list' names all").arg(name));
    clsIni ini(session.folder.IniFile());
    Record record;
    if (found->setting != nullptr) {
        record = RecordOf(ini, *found->setting);
    } else {
        CallsignList callsigns(ini);
        callsigns.PeekCallsigns();
        const clsCallsign* callsign = callsigns.Find(found->key.toLatin1());
        if (callsign == nullptr)
            return Answers::Fail(session,
                                 QStringLiteral("%1 is none of the satellite's callsigns").arg(found->key));
        record = RecordOfCallsign(callsign->strCallsign, callsign->strSide);
    }
    const RecordWriter::Format format = Answers::FormatOf(session);
    if (format == RecordWriter::Format::Text) {
        constexpr qsizetype columnOfValue = 2;
        session.console.Print(std::get<QString>(record[columnOfValue]) + u'\n'); // alone, for scripts
        return ExitCode::Done;
    }
    RecordWriter writer(session.console, Records::setting, format);
    writer.Head();
    writer.Write(record);
    return ExitCode::Done;
}

} // namespace Commands
