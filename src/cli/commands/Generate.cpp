#include "cli/commands/Answers.h"
#include "cli/output/Console.h"
#include "cli/texts/Completion.h"
#include "cli/texts/ManualPage.h"
#include "core/Texts.h"

namespace Commands {

int Generate(const Session& session);

int Generate(const Session& session) {
    const QString& wanted = session.call.Arguments().first();
    if (wanted == u"manual")
        session.console.Print(ManualPage(Texts::VersionNumber()));
    else if (wanted == u"completion")
        session.console.Print(Completion());
    else
        return Answers::Wrong(
            session, QStringLiteral("there is nothing to be generated that is called '%1'").arg(wanted));
    return ExitCode::Done;
}

} // namespace Commands
