#include "cli/table/Invocation.h"

#include "cli/table/Commands.h"
#include "cli/table/Options.h"
#include "cli/texts/HelpText.h"

#include <QTemporaryDir>
#include <QTest>

using Action = Invocation::Action;

class InvocationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void takesACommandItsOptionsAndItsArguments();
    void takesValuesBehindAnEqualsSignAndBelowZero();
    void theLastOfTwoCounts();
    void afterTwoDashesEverythingIsAnArgument();
    void takesAFolderBeforeAndAfterTheCommand();
    void helpIsOfACommandOrOfAll();
    void refusesAWrongCallAndSaysWhereHelpIs_data();
    void refusesAWrongCallAndSaysWhereHelpIs();
    void everyCommandIsInTheHelpAndNoLineIsTooWide();
};

namespace {

Invocation Read(const char* words) {
    return Invocation::Read(QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts));
}

QString Name(const Command& command) {
    return QString::fromUtf16(command.name);
}

} // namespace

void InvocationTest::takesACommandItsOptionsAndItsArguments() {
    const Invocation set = Read("config set SETUP/COMMENT five");
    QCOMPARE(set.action, Action::Run);
    QCOMPARE(Name(*set.command), QStringLiteral("config set"));
    QCOMPARE(set.call.Arguments(), (QStringList{QStringLiteral("SETUP/COMMENT"), QStringLiteral("five")}));
    const Invocation list = Read("config list --format csv");
    QCOMPARE(list.action, Action::Run);
    QCOMPARE(list.call.Get<QString>(Options::format), QStringLiteral("csv"));
    QVERIFY(!list.call.Has(Options::local));
}

void InvocationTest::takesValuesBehindAnEqualsSignAndBelowZero() {
    const Invocation passes =
        Read("passes --days=5 --at -33.9,-151.25 --min-elevation 2.5 --from 2026-11-21T15:00Z");
    QCOMPARE(passes.wrong, QString());
    QCOMPARE(passes.call.Get<int>(Options::days), 5);
    QCOMPARE(passes.call.Get<PlaceOnEarth>(Options::at)->latitude, -33.9);
    QCOMPARE(passes.call.Get<PlaceOnEarth>(Options::at)->longitude, -151.25);
    QCOMPARE(passes.call.Get<double>(Options::minElevation), 2.5);
    QCOMPARE(passes.call.Get<qint64>(Options::from), 1795273200000);
    const Invocation set = Read("config set NOTICE/MINUTES -5");
    QCOMPARE(set.call.Arguments().last(), QStringLiteral("-5"));
}

void InvocationTest::theLastOfTwoCounts() {
    QCOMPARE(Read("passes --satellite iss --satellite qiran").call.Get<QString>(Options::satellite),
             QStringLiteral("QIRAN"));
}

void InvocationTest::afterTwoDashesEverythingIsAnArgument() {
    QCOMPARE(Read("config set SETUP/COMMENT -- --help").call.Arguments().last(), QStringLiteral("--help"));
}

void InvocationTest::takesAFolderBeforeAndAfterTheCommand() {
    const QTemporaryDir folder;
    const QString option = QStringLiteral("--folder");
    const QString list = QStringLiteral("list");
    const QString config = QStringLiteral("config");
    for (const QStringList& words :
         {QStringList{option, folder.path(), config, list}, QStringList{config, list, option, folder.path()}})
        QCOMPARE(Invocation::Read(words).folder, QFileInfo(folder.path()).canonicalFilePath());
    const Invocation none = Invocation::Read({option, folder.filePath(QStringLiteral("none")), config, list});
    QCOMPARE(none.action, Action::Wrong);
    QVERIFY2(none.wrong.contains(folder.filePath(QStringLiteral("none"))), qPrintable(none.wrong));
}

void InvocationTest::helpIsOfACommandOrOfAll() {
    for (const char* words : {"--help", "-h", "keps --help", "--help passes"}) {
        const Invocation help = Read(words);
        QCOMPARE(help.action, Action::Help);
        QVERIFY(help.command == nullptr);
    }
    const Invocation help = Read("passes --days 5 --help --nonsense");
    QCOMPARE(help.action, Action::Help);
    QCOMPARE(Name(*help.command), QStringLiteral("passes"));
    QCOMPARE(Read("--version").action, Action::Version);
}

void InvocationTest::refusesAWrongCallAndSaysWhereHelpIs_data() {
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<QString>("names");
    const auto add = [](const char* words, const char* names) {
        QTest::newRow(words) << QByteArray(words) << QString::fromUtf8(names);
    };
    add("", "name a command");
    add("pass", "'pass'");
    add("config", "config list, config get, config set");
    add("config sett X", "config list, config get, config set");
    add("passes --loud", "--loud");
    add("passes --days", "--days needs a value");
    add("passes --local=yes", "--local takes no value");
    add("passes --days 0", "a whole number from 1 to 366, not '0'");
    add("passes --days 1.5", "'1.5'");
    add("passes --count x", "'x'");
    add("passes --from tomorrow", "'tomorrow'");
    add("passes --at 91,0", "'91,0'");
    add("passes --at 60", "'60'");
    add("passes --at 60,nan", "'60,nan'");
    add("passes --at 60,1,5", "'60,1,5'");
    add("passes --satellite moon", "QIRAN, ISS, a catalogue number or all, not 'moon'");
    add("passes --satellite 1234567890", "'1234567890'");
    add("passes --format xml", "text, csv, json, ical, not 'xml'");
    add("where --format ical", "text, csv, json, not 'ical'");
    add("where --frequency 0", "'0'");
    add("passes now", "'now' is too much");
    add("config get", "SECTION/KEY is missing");
}

void InvocationTest::refusesAWrongCallAndSaysWhereHelpIs() {
    QFETCH(const QByteArray, words);
    QFETCH(const QString, names);
    const Invocation wrong = Read(words.constData());
    QCOMPARE(wrong.action, Action::Wrong);
    QVERIFY2(wrong.wrong.contains(names), qPrintable(wrong.wrong));
    QVERIFY2(wrong.wrong.contains(QStringLiteral("--help'")), qPrintable(wrong.wrong));
}

void InvocationTest::everyCommandIsInTheHelpAndNoLineIsTooWide() {
    QStringList texts{HelpText::Of(nullptr)};
    for (const Command& command : Commands::All()) {
        const QString help = HelpText::Of(&command);
        texts.append(help);
        QCOMPARE(texts.first().contains(QStringLiteral("\n  %1 ").arg(Name(command))), !command.isHidden);
        for (const Option* option : command.options)
            QVERIFY2(help.contains(QStringLiteral("\n  ") + HelpText::Called(*option)), qPrintable(help));
    }
    for (const QString& text : texts)
        for (const QString& line : text.split(u'\n'))
            QVERIFY2(line.size() < 80, qPrintable(line));
}

QTEST_GUILESS_MAIN(InvocationTest)
#include "InvocationTest.moc"
