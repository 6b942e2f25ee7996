#include "cli/commands/Answers.h"
#include "cli/commands/NamedSetting.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "telemetry/callsigns/CallsignList.h"

namespace Commands {

int ConfigList(const Session& session);

int ConfigList(const Session& session) {
    clsIni ini(session.folder.IniFile());
    RecordWriter writer(session.console, Records::setting, Answers::FormatOf(session));
    writer.Head();
    for (const Setting* setting : Settings::All())
        writer.Write(RecordOf(ini, *setting));
    CallsignList callsigns(ini);
    callsigns.PeekCallsigns();
    for (const clsCallsign& callsign : callsigns.cCallsigns())
        writer.Write(RecordOfCallsign(callsign.strCallsign, callsign.strSide));
    return ExitCode::Done;
}

} // namespace Commands
