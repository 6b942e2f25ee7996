#include "cli/Program.h"

#include "cli/output/Console.h"
#include "cli/table/Invocation.h"
#include "cli/table/Session.h"
#include "cli/texts/HelpText.h"
#include "core/Texts.h"
#include "foundation/settings/ProgramFolder.h"

int RunProgram(const QStringList& words, const QString& executableFolder, Console& console,
               const Clock& clock) {
    const Invocation invocation = Invocation::Read(words);
    switch (invocation.action) {
    case Invocation::Action::Wrong:
        console.Say(invocation.wrong);
        return ExitCode::WrongCall;
    case Invocation::Action::Help:
        console.Print(HelpText::Of(invocation.command));
        return console.Finish(ExitCode::Done);
    case Invocation::Action::Version:
        console.Print(QStringLiteral("qirandecode-cli %1\n").arg(Texts::VersionNumber()));
        return console.Finish(ExitCode::Done);
    case Invocation::Action::Run:
        break;
    }
    // The settings file is the windowed program's, whatever this one is called.
    const ProgramFolder folder(invocation.folder.isEmpty() ? executableFolder : invocation.folder,
                               QStringLiteral("QiranDecode"));
    return console.Finish(invocation.command->run(Session{folder, invocation.call, console, clock}));
}
