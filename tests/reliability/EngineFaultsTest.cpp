#include "app/MainWindowRig.h"
#include "reliability/ProcessFigures.h"
#include "support/Seed.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

/// The whole program beside an engine that misbehaves.
class EngineFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEngineThatRefusesIsTriedAgainOneAttemptAtATime();
    void anEngineThatSaysNothingIsWaitedFor();
    void anEngineThatClosesAfterAnAnswerIsTriedAgain_data();
    void anEngineThatClosesAfterAnAnswerIsTriedAgain();
    void garbageEndsTheConnectionOrIsPassedOver();
    void anEngineThatDribblesIsUnderstood();
    void anEngineThatReturnsAsAnotherVersionWithOtherPortsIsShown();
    void aThousandReconnectionsLeaveNothingBehind();
};

namespace {

const QString retryLine = u"Will automatically retry in 30 seconds time."_s;
const QString connectedLine = u"*** AGW-Connected to - 127.0.0.1"_s;

void RetrySoon(const MainWindowRig& rig) {
    rig.Find<QTimer>("timRetry")->setInterval(10);
}

} // namespace

void EngineFaultsTest::anEngineThatRefusesIsTriedAgainOneAttemptAtATime() {
    MainWindowRig rig;
    const quint16 port = rig.engine.Port();
    rig.engine.StopListening();
    QVERIFY(rig.Start());
    RetrySoon(rig);
    const QString line = u"*** AGW-Error with connection to 127.0.0.1 - Connection refused\n"_s + retryLine;
    QTRY_VERIFY2(rig.Monitor().contains(line), qPrintable(rig.Monitor()));
    QTRY_VERIFY(rig.Monitor().count(line) >= 5 || rig.Monitor().size() > 1000);
    QVERIFY(!rig.Find<QWidget>("txtMon")->isEnabled());
    QVERIFY(rig.engine.Listen(port));
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QTRY_VERIFY(
        rig.Monitor().contains(u"*** AGWPE V2005.127"_s)); // a second attempt would have come in by now
    QCOMPARE(rig.engine.ConnectionCount(), 1);
    QVERIFY(rig.Monitor().contains(connectedLine));
    QVERIFY(!rig.Find<QTimer>("timRetry")->isActive());
}

void EngineFaultsTest::anEngineThatSaysNothingIsWaitedFor() {
    MainWindowRig rig;
    rig.engine.SetMute(true);
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(connectedLine));
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1); // it has read every question
    QVERIFY(!rig.Find<QTimer>("timRetry")->isActive());
    QVERIFY(!rig.Monitor().contains(u"AGWPE V"_s));
}

void EngineFaultsTest::anEngineThatClosesAfterAnAnswerIsTriedAgain_data() {
    QTest::addColumn<char>("kind");
    for (const char kind : {'P', 'R', 'G', 'm'})
        QTest::addRow("%c", kind) << kind;
}

void EngineFaultsTest::anEngineThatClosesAfterAnAnswerIsTriedAgain() {
    QFETCH(const char, kind);
    MainWindowRig rig;
    rig.Set("AGWPE", "LOGIN_ID", u"somebody"_s);
    rig.engine.SetCloseAfter(kind);
    QVERIFY(rig.Start());
    QTRY_VERIFY2(rig.Monitor().contains(retryLine), qPrintable(rig.Monitor()));
    QCOMPARE(rig.Monitor().count(retryLine), 1);
    QVERIFY(rig.Monitor().contains(u"*** AGW-Disconnected from - 127.0.0.1\n"_s));
    RetrySoon(rig);
    rig.Find<QTimer>("timRetry")->start();
    rig.engine.SetCloseAfter('\0');
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QCOMPARE(rig.engine.ConnectionCount(), 1);
}

void EngineFaultsTest::garbageEndsTheConnectionOrIsPassedOver() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    RetrySoon(rig);
    const quint32 seed = ChanceSeed();
    QRandomGenerator random(seed);
    for (int trial = 0; trial < 100; ++trial) {
        QTRY_VERIFY2(rig.engine.MonitoringCount() == 1, qPrintable(u"seed %1"_s.arg(seed)));
        QByteArray garbage(random.bounded(1, 2000), '\0');
        for (char& byte : garbage)
            byte = static_cast<char>(random.bounded(256));
        rig.engine.SendRaw(garbage);
        rig.engine.SendRaw(QByteArray(72, '\xFF')); // whatever the first was, this is a length beyond all
        QTRY_VERIFY2(rig.engine.ConnectionCount() == 0 || rig.Monitor().contains(u"too long"_s),
                     qPrintable(u"seed %1"_s.arg(seed)));
        rig.engine.DropConnections();
    }
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QVERIFY(rig.Monitor().contains(u"The packet engine announced a frame that is too long"_s));
}

void EngineFaultsTest::anEngineThatDribblesIsUnderstood() {
    MainWindowRig rig;
    rig.engine.SetDribble(true);
    QVERIFY(rig.Start());
    QTRY_VERIFY_WITH_TIMEOUT(rig.Monitor().contains(u"*** AGWPE V2005.127"_s), 30000);
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard(
        {.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = "T#001,10,20,30,40,0,0,00101111,0"});
    QTRY_COMPARE_WITH_TIMEOUT(rig.Cell("gTlm2", 1, TelemetryGrid::ValueA), u"10.0"_s, 30000);
}

void EngineFaultsTest::anEngineThatReturnsAsAnotherVersionWithOtherPortsIsShown() {
    MainWindowRig rig;
    const quint16 port = rig.engine.Port();
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.StopListening();
    rig.engine.DropConnections();
    QTRY_VERIFY(rig.Monitor().contains(retryLine));
    rig.engine.SetVersion(3000, 7);
    rig.engine.SetPorts("2;Port1 the new one;Port2 another;");
    QVERIFY(rig.engine.Listen(port));
    RetrySoon(rig);
    rig.Find<QTimer>("timRetry")->start();
    QTRY_VERIFY(rig.Monitor().contains(u"*** AGWPE V3000.7"_s));
    QTRY_VERIFY(rig.Monitor().contains(u"*** Port1 the new one\n*** Port2 another"_s));
}

void EngineFaultsTest::aThousandReconnectionsLeaveNothingBehind() {
    MainWindowRig rig;
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    QVERIFY(rig.Start());
    rig.Find<QTimer>("timRetry")->setInterval(0);
    qint64 memory = 0;
    qsizetype descriptors = 0;
    qsizetype objects = 0;
    for (int connection = 0; connection <= 1100; ++connection) {
        QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
        QTRY_VERIFY(!rig.Find<QTimer>("timRetry")->isActive());
        if (connection == 100) { // by then everything has its size
            memory = ProcessFigures::ResidentKib();
            descriptors = ProcessFigures::Descriptors();
            objects = rig.window->findChildren<QObject*>().size();
        }
        if (connection < 1100)
            rig.engine.DropConnections();
        QTRY_VERIFY(connection == 1100 || rig.engine.ConnectionCount() == 0 ||
                    rig.engine.MonitoringCount() == 0);
    }
    QTRY_VERIFY(rig.window->findChildren<QObject*>().size() <= objects);
    const qint64 grown = ProcessFigures::ResidentKib() - memory;
    qInfo("1,000 reconnections: memory %+lld KiB, descriptors %+lld, objects %+lld",
          static_cast<long long>(grown), static_cast<long long>(ProcessFigures::Descriptors() - descriptors),
          static_cast<long long>(rig.window->findChildren<QObject*>().size() - objects));
    QVERIFY(ProcessFigures::Descriptors() <= descriptors);
    if (ProcessFigures::IsMemoryKnown())
        QVERIFY2(grown <= 2048, "1,000 reconnections cost memory");
}

QTEST_MAIN(EngineFaultsTest)
#include "EngineFaultsTest.moc"
