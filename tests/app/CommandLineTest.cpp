#include "app/CommandLine.h"

#include "core/Texts.h"

#include <QTemporaryDir>
#include <QTest>

class CommandLineTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void runsInTheExecutablesFolderUnlessToldOtherwise();
    void takesAFolder();
    void refusesAFolderThatIsNotThere();
    void refusesWhatItDoesNotKnow_data();
    void refusesWhatItDoesNotKnow();
    void printsVersionAndHelp();
    void theCaptionHasNoPointBeforeTheRevision();
};

namespace {

CommandLine Read(QStringList arguments) {
    arguments.prepend(QStringLiteral("QiranDecode"));
    return CommandLine::Read(arguments);
}

} // namespace

void CommandLineTest::runsInTheExecutablesFolderUnlessToldOtherwise() {
    const CommandLine line = Read({});
    QCOMPARE(line.action, CommandLine::Action::Run);
    QCOMPARE(line.folder, QString());
    QCOMPARE(line.reportFolder, QString());
}

void CommandLineTest::takesAFolder() {
    const QTemporaryDir folder;
    const CommandLine line = Read({QStringLiteral("--folder"), folder.path()});
    QCOMPARE(line.action, CommandLine::Action::Run);
    QCOMPARE(line.folder, QFileInfo(folder.path()).canonicalFilePath());
}

void CommandLineTest::refusesAFolderThatIsNotThere() {
    const QTemporaryDir folder;
    const CommandLine line = Read({QStringLiteral("--folder"), folder.filePath(QStringLiteral("none"))});
    QCOMPARE(line.action, CommandLine::Action::Fail);
    QVERIFY2(line.text.contains(folder.filePath(QStringLiteral("none"))), qPrintable(line.text));
}

void CommandLineTest::refusesWhatItDoesNotKnow_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("an option") << QStringList{QStringLiteral("--loud")};
    QTest::newRow("a word") << QStringList{QStringLiteral("formula.txt")};
    QTest::newRow("no time") << QStringList{QStringLiteral("--demo-seconds"), QStringLiteral("0")};
    QTest::newRow("no number") << QStringList{QStringLiteral("--demo-seconds"), QStringLiteral("soon")};
    QTest::newRow("a folder option without a folder") << QStringList{QStringLiteral("--folder")};
}

void CommandLineTest::refusesWhatItDoesNotKnow() {
    QFETCH(const QStringList, arguments);
    const CommandLine line = Read(arguments);
    QCOMPARE(line.action, CommandLine::Action::Fail);
    QVERIFY2(line.text.startsWith(QStringLiteral("QiranDecode: ")), qPrintable(line.text));
    QVERIFY(line.text.contains(QStringLiteral("--help")));
}

void CommandLineTest::printsVersionAndHelp() {
    const CommandLine version = Read({QStringLiteral("--version")});
    QCOMPARE(version.action, CommandLine::Action::Print);
    QCOMPARE(version.text, QStringLiteral("QiranDecode 2.4.2\n"));
    const CommandLine help = Read({QStringLiteral("--help")});
    QCOMPARE(help.action, CommandLine::Action::Print);
    QVERIFY2(help.text.startsWith(QStringLiteral("Usage: QiranDecode [options]\n")), qPrintable(help.text));
    QVERIFY(help.text.contains(QStringLiteral("--folder")));
}

void CommandLineTest::theCaptionHasNoPointBeforeTheRevision() {
    QCOMPARE(Texts::Caption(QStringLiteral("QIRAN Telemetry Decoder")),
             QStringLiteral("QIRAN Telemetry Decoder    V2.42"));
}

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
