#include "keps/KepsFetch.h"

#include "cli/commands/Answers.h"
#include "cli/commands/FetchWords.h"
#include "cli/output/Console.h"
#include "cli/table/Options.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/system/EndRequests.h"
#include "keps/HttpTransfer.h"

#include <QCoreApplication>

#include <algorithm>

namespace Commands {

int KepsFetch(const Session& session);

namespace {

// Answers whether all elements are as new as they can be had.
bool Print(const Session& session, const QList<KepsFetchResult>& results) {
    for (const KepsFetchResult& result : results) {
        const QString line = FetchWords(result);
        if (result.IsCurrent())
            session.console.Print(line + u'\n');
        else
            session.console.Say(line);
    }
    return std::ranges::all_of(results, &KepsFetchResult::IsCurrent);
}

} // namespace

int KepsFetch(const Session& session) {
    const clsIni ini(session.folder.IniFile());
    const std::array addresses{Settings::Peek(ini, Settings::kepsFile1),
                               Settings::Peek(ini, Settings::kepsFile2)};
    if (std::ranges::all_of(addresses, [](const QString& address) { return address.trimmed().isEmpty(); }))
        return Answers::Fail(
            session, QStringLiteral("no address is set; set KEPS/FILE_1 with 'qirandecode-cli config set'"));
    EndRequests::Hold();
    const EndRequests requests;
    HttpTransfer inet;
    ::KepsFetch fetch(inet, session.folder, session.clock);
    QObject::connect(&fetch, &::KepsFetch::Finished, qApp, [&](const QList<KepsFetchResult>& results) {
        QCoreApplication::exit(Print(session, results) ? ExitCode::Done : ExitCode::Failed);
    });
    QObject::connect(&requests, &EndRequests::Requested, qApp,
                     [] { QCoreApplication::exit(ExitCode::Failed); });
    if (!fetch.Start(addresses, session.call.Has(Options::force)))
        return Answers::Fail(session,
                             QStringLiteral("elements are being fetched already, by %1").arg(fetch.Holder()));
    return QCoreApplication::exec();
}

} // namespace Commands
