#include "cli/Program.h"
#include "cli/output/Console.h"
#include "orbit/service/KVRSatLib.h"
#include "orbit/service/clsSats.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QTemporaryFile>
#include <QTest>

class PassesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theTextIsThePassWindowsToTheByte_data();
    void theTextIsThePassWindowsToTheByte();
};

namespace {

// What a call prints.
QByteArray Printed(const QStringList& words, const ProgramFolder& folder, const Clock& clock) {
    QTemporaryFile output;
    if (!output.open())
        qFatal("no temporary file");
    Console console(output.handle(), STDERR_FILENO);
    if (RunProgram(words, folder.Path(), console, clock) != 0)
        qFatal("the call failed");
    output.seek(0);
    return output.readAll();
}

} // namespace

void PassesTest::theTextIsThePassWindowsToTheByte_data() {
    QTest::addColumn<QString>("satellite");
    QTest::addColumn<QString>("object");
    QTest::addColumn<bool>("local");
    QTest::addColumn<int>("milliseconds");
    const QString qiran = QStringLiteral("90417");
    const QString iss = QStringLiteral("25544");
    QTest::newRow("QIRAN") << QStringLiteral("QIRAN") << qiran << false << 0;
    QTest::newRow("ISS") << QStringLiteral("iss") << iss << false << 501;
    QTest::newRow("a number") << iss << iss << false << 499;
    QTest::newRow("local time") << QStringLiteral("QIRAN") << qiran << true << 0;
}

void PassesTest::theTextIsThePassWindowsToTheByte() {
    QFETCH(const QString, satellite);
    QFETCH(const QString, object);
    QFETCH(const bool, local);
    QFETCH(const int, milliseconds);
    const TemporaryProgramFolder folder;
    QFile demo(QStringLiteral(QIRAN_DATA_FOLDER "/demo/Keps/example.txt"));
    QVERIFY(demo.open(QIODevice::ReadOnly));
    folder.Write(QStringLiteral("Keps/example.txt"), demo.readAll());
    folder.Write(QStringLiteral("QiranDecode.INI"),
                 "[SETUP]\r\nLATITUDE=6010.20N\r\nLONGITUDE=02456.40E\r\n");

    for (int day = 0; day < 20; ++day) {
        TestClock clock(DateOf(2026, 11, 11 + day) + 0.137 * day);
        clock.SetMilliseconds(clock.Milliseconds() + milliseconds);
        clock.SetOffsetHours(5.5);
        clsSats sats(std::make_unique<KVRSatLib>(), clock);
        sats.setStrKeplerPath(folder.Program().KepsFolder());
        sats.setDblObsLat(60.0 + 10.2 / 60.0);
        sats.setDblObsLong(24.0 + 56.4 / 60.0);
        sats.setBlnLocalTime(local);
        const QString window = sats.strPassInfo(object);
        QVERIFY(window.count(u'\n') > 10);
        QStringList words{QStringLiteral("passes"), QStringLiteral("--satellite"), satellite};
        if (local)
            words.append(QStringLiteral("--local"));
        QCOMPARE(QString::fromUtf8(Printed(words, folder.Program(), clock)), window);
    }
}

QTEST_GUILESS_MAIN(PassesTest)
#include "PassesTest.moc"
