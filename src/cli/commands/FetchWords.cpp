#include "cli/commands/FetchWords.h"

#include "keps/KepsFetch.h"

QString FetchWords(const KepsFetchResult& result) {
    using Outcome = KepsFetchResult::Outcome;
    QString words;
    switch (result.outcome) {
    case Outcome::Stored:
        words = QStringLiteral("fetched into %1").arg(result.fileName);
        break;
    case Outcome::CurrentAlready:
        words = QStringLiteral("%1 is current already").arg(result.fileName);
        break;
    case Outcome::Refused:
        words = QStringLiteral("refused");
        break;
    case Outcome::Failed:
        words = QStringLiteral("failed");
        break;
    case Outcome::NotYet:
    case Outcome::NotAsked:
        break;
    }
    const QString between = words.isEmpty() || result.text.isEmpty() ? QString() : QStringLiteral(" - ");
    return QStringLiteral("%1: %2").arg(result.address.trimmed(), words + between + result.text);
}
