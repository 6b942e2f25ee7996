#include "link/agwpe/AgwLink.h"

#include "link/agwpe/AgwSettings.h"
#include "pesim/EngineSimulator.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

const QString retry = QStringLiteral("Will automatically retry in 30 seconds time.\r\n");
const QString connectedLine = QStringLiteral("*** AGW-Connected to - 127.0.0.1\r\n");
const QString disconnectedLine = QStringLiteral("*** AGW-Disconnected from - 127.0.0.1\r\n");
const QString versionLine = QStringLiteral("*** AGWPE V2005.127\r\n");
const AirFrame heardFrame{
    .port = 3, .from = "XQ9ZZ-1", .to = "APRS", .via = {"QIRAN-1"}, .information = "hello"};
const QString portLine = QStringLiteral("*** Port1 simulated radio\r\n");

} // namespace

class AgwLinkTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void theRetryTimerIsThirtySecondsOnceAndOff();
    void aConnectionIsPutIntoWords();
    void threePortsAreThreeLines();
    void withoutAnEngineEveryAttemptIsOneErrorAndARetry();
    void anEngineThatClosesIsConnectedAgainAfterTheRetry();
    void aLyingLengthWritesErrorAndDisconnectedAndIsRetried();
    void anErrorAloneLeavesTheLinkConnected();
    void reconnectingWhileConnectedSaysNothingOfARetry();
    void reconnectingTakesTheNewSettings();
    void reconnectingWhileWaitingGivesTheRetryUp();
    void reconnectingWhileConnectingIsOneConnection();
    void reconnectingRunsNoOtherEvents();
    void stoppedItSaysNothingAndRetriesNothing();
    void textGoesOutInWindows1252();
    void whatCannotBeSentIsAStatusLine();
    void bothFormsOfAFrameComeAsOne();
    void aMonitoredFrameComesAtOnceThoughRawOnesAreOn();
    void aRawFrameWaitsASecondForItsTextAndNoLonger();
    void rawFramesThatWaitComeBeforeTheEndOfTheConnection();
    void rawFramesThatNobodyAskedForArePassedOver();

private:
    void ConnectForRawFrames();

    bool RetryIsDue() const { return m_link->findChild<QTimer*>(QStringLiteral("timRetry"))->isActive(); }

    struct Kept {
        int port;
        QByteArray raw, information, text;
    };
    QList<Kept> m_heard;
    QStringList m_lines;
    QList<bool> m_enabled;
    QByteArrayList m_received;
    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    TestClock m_clock;
    std::unique_ptr<AgwSettings> m_settings;
    std::unique_ptr<EngineSimulator> m_engine;
    std::unique_ptr<AgwLink> m_link;
};

void AgwLinkTest::init() {
    m_heard.clear();
    m_lines.clear();
    m_enabled.clear();
    m_received.clear();
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_settings = std::make_unique<AgwSettings>(*m_ini);
    m_engine = std::make_unique<EngineSimulator>();
    connect(m_engine.get(), &EngineSimulator::FrameReceived, this,
            [this](int, const QByteArray& frame) { m_received.append(frame); });
    QVERIFY(m_engine->Listen());
    m_settings->setStrAgwHost(QStringLiteral("127.0.0.1"));
    m_settings->setIntAgwPort(static_cast<qint16>(m_engine->Port()));
    m_link = std::make_unique<AgwLink>(*m_settings, m_clock);
    m_link->SetRetryInterval(50);
    connect(m_link.get(), &AgwLink::StatusText, this, [this](const QString& text) { m_lines.append(text); });
    connect(m_link.get(), &AgwLink::MonitorEnabled, this,
            [this](bool enabled) { m_enabled.append(enabled); });
}

void AgwLinkTest::cleanup() {
    m_link.reset();
    m_engine.reset();
    m_settings.reset();
    m_ini.reset();
    m_folder.reset();
}

void AgwLinkTest::theRetryTimerIsThirtySecondsOnceAndOff() {
    const AgwLink link(*m_settings, m_clock);
    const auto* timer = link.findChild<QTimer*>(QStringLiteral("timRetry"));
    QVERIFY(timer != nullptr);
    QCOMPARE(timer->interval(), 30000);
    QVERIFY(timer->isSingleShot());
    QVERIFY(!timer->isActive());
}

void AgwLinkTest::aConnectionIsPutIntoWords() {
    QVERIFY(!m_link->blnConectedToAgw());
    m_link->Connect();
    QTRY_COMPARE(m_lines, QStringList({connectedLine, versionLine, portLine}));
    QCOMPARE(m_enabled, QList<bool>{true});
    QVERIFY(m_link->blnConectedToAgw());
    QCOMPARE(m_link->PortCount(), 1);
}

void AgwLinkTest::threePortsAreThreeLines() {
    m_engine->SetPorts("3;one;two;three;");
    m_link->Connect();
    QTRY_COMPARE(m_lines.mid(2), QStringList({QStringLiteral("*** one\r\n"), QStringLiteral("*** two\r\n"),
                                              QStringLiteral("*** three\r\n")}));
    QCOMPARE(m_link->PortCount(), 3);
}

void AgwLinkTest::withoutAnEngineEveryAttemptIsOneErrorAndARetry() {
    m_engine->StopListening();
    m_link->Connect();
    QTRY_VERIFY(m_lines.size() >= 3);
    for (const QString& line : m_lines)
        QCOMPARE(line, QStringLiteral("*** AGW-Error with connection to 127.0.0.1 - Connection refused\r\n") +
                           retry);
    QVERIFY(!m_enabled.contains(true));
    QVERIFY(!m_link->blnConectedToAgw());
    m_lines.clear();
    QVERIFY(m_engine->Listen(m_engine->Port()));
    QTRY_VERIFY(m_lines.contains(connectedLine));
}

void AgwLinkTest::anEngineThatClosesIsConnectedAgainAfterTheRetry() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_lines.clear();
    m_engine->DropConnections();
    QTRY_COMPARE(m_lines.size(), 1);
    QCOMPARE(m_lines[0], disconnectedLine + retry);
    QVERIFY(!m_link->blnConectedToAgw());
    QCOMPARE(m_enabled.last(), false);
    const auto* timer = m_link->findChild<QTimer*>(QStringLiteral("timRetry"));
    QVERIFY(timer->isActive());
    QTRY_COMPARE(m_lines.mid(1), QStringList({connectedLine, versionLine, portLine}));
    QVERIFY(!timer->isActive());
    QCOMPARE(m_enabled.last(), true);
}

void AgwLinkTest::aLyingLengthWritesErrorAndDisconnectedAndIsRetried() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_lines.clear();
    m_engine->SendRaw(QByteArray(36, '\xFF'));
    QTRY_VERIFY(m_lines.size() >= 2);
    QVERIFY(m_lines[0].startsWith(QStringLiteral("*** AGW-Error with connection to 127.0.0.1 - ")));
    QVERIFY(m_lines[0].endsWith(QStringLiteral("\r\n") + retry));
    QCOMPARE(m_lines[1], disconnectedLine + retry);
    QTRY_COMPARE(m_lines.count(connectedLine), 1);
}

void AgwLinkTest::anErrorAloneLeavesTheLinkConnected() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    Q_EMIT m_link->Client().Error(QStringLiteral("a fault"));
    QVERIFY(m_link->blnConectedToAgw());
    QCOMPARE(m_enabled.last(), false);
    Q_EMIT m_link->Client().Disconnected(QStringLiteral("x"));
    QVERIFY(!m_link->blnConectedToAgw());
}

void AgwLinkTest::reconnectingWhileConnectedSaysNothingOfARetry() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_lines.clear();
    m_link->AgwReconnect();
    QCOMPARE(m_lines, QStringList{disconnectedLine}); // before it returned
    QVERIFY(!RetryIsDue());
    QTRY_COMPARE(m_lines, QStringList({disconnectedLine, connectedLine, versionLine, portLine}));
    QVERIFY(!RetryIsDue());
    QCOMPARE(m_lines.size(), 4);
    QCOMPARE(m_engine->ConnectionCount(), 1);
}

void AgwLinkTest::reconnectingTakesTheNewSettings() {
    EngineSimulator other;
    QVERIFY(other.Listen());
    QByteArrayList atOther;
    connect(&other, &EngineSimulator::FrameReceived, this,
            [&atOther](int, const QByteArray& frame) { atOther.append(frame); });
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_lines.clear();
    m_settings->setStrAgwHost(QStringLiteral("localhost"));
    m_settings->setIntAgwPort(static_cast<qint16>(other.Port()));
    m_settings->setStrAgwLoginId(QStringLiteral("me"));
    m_link->AgwReconnect();
    QTRY_COMPARE(m_lines.mid(0, 2),
                 QStringList({disconnectedLine, QStringLiteral("*** AGW-Connected to - localhost\r\n")}));
    QTRY_COMPARE(atOther.size(), 4);
    QCOMPARE(atOther[0][4], 'P');
    QTRY_COMPARE(m_engine->ConnectionCount(), 0);
}

void AgwLinkTest::reconnectingWhileWaitingGivesTheRetryUp() {
    m_link->SetRetryInterval(30000);
    m_engine->StopListening();
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 1);
    QVERIFY(m_engine->Listen(m_engine->Port()));
    m_lines.clear();
    m_link->AgwReconnect();
    QTRY_COMPARE(m_lines, QStringList({connectedLine, versionLine, portLine}));
    QVERIFY(!RetryIsDue()); // the old one does not come on top
    QCOMPARE(m_lines.size(), 3);
}

void AgwLinkTest::reconnectingWhileConnectingIsOneConnection() {
    m_link->Connect();
    m_link->AgwReconnect();
    QTRY_COMPARE(m_lines, QStringList({connectedLine, versionLine, portLine}));
    QCOMPARE(m_engine->ConnectionCount(), 1);
}

void AgwLinkTest::reconnectingRunsNoOtherEvents() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    bool ran = false;
    QMetaObject::invokeMethod(
        this, [&ran] { ran = true; }, Qt::QueuedConnection);
    m_link->AgwReconnect();
    QVERIFY(!ran);
    QTRY_VERIFY(ran);
}

void AgwLinkTest::stoppedItSaysNothingAndRetriesNothing() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_link->Stop();
    QTRY_COMPARE(m_engine->ConnectionCount(), 0);
    QVERIFY(!RetryIsDue());
    QCoreApplication::processEvents();
    QCOMPARE(m_lines.size(), 3);
    QCOMPARE(m_engine->ConnectionCount(), 0);
    QVERIFY(!m_link->blnConectedToAgw());
}

void AgwLinkTest::textGoesOutInWindows1252() {
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 3);
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ "),
                        QStringLiteral("\u20AC\u00E9\u4E2D\r"));
    QTRY_COMPARE(m_received.size(), 4);
    QCOMPARE(m_received.last().mid(36), QByteArray("\x80\xE9?\r"));
}

void AgwLinkTest::whatCannotBeSentIsAStatusLine() {
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ "), QStringLiteral("x\r"));
    QCOMPARE(m_lines, QStringList{QStringLiteral("1 Not connected to AGWPE\r\n")});
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 4);
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ A,B,C,D,E,F,G,H"),
                        QStringLiteral("x\r"));
    QCOMPARE(m_lines.last(), QStringLiteral("4 At most 7 digipeaters can be used\r\n"));
}

// From here on `m_heard` has what is handed on: how, and what stands in it.
void AgwLinkTest::ConnectForRawFrames() {
    connect(m_link.get(), &PacketLink::Heard, this, [this](const HeardFrame& frame) {
        m_heard.append({frame.port, frame.raw.toByteArray(), frame.information.toByteArray(),
                        frame.engineText.toByteArray()});
        m_lines.append(QStringLiteral("frame"));
    });
    m_link->SetWantsRawFrames(true);
    m_link->Connect();
    QTRY_COMPARE(m_received.size(), 4); // the last one asks for raw frames
    m_lines.clear();
}

void AgwLinkTest::bothFormsOfAFrameComeAsOne() {
    ConnectForRawFrames();
    m_engine->SendHeard(heardFrame);
    QTRY_COMPARE(m_heard.size(), 1);
    QCOMPARE(m_heard[0].port, 3);
    QVERIFY(m_heard[0].raw.endsWith("\x03\xF0hello"));
    QVERIFY(m_heard[0].text.startsWith(" 3:Fm XQ9ZZ-1 To APRS Via QIRAN-1 <UI"));
}

void AgwLinkTest::aMonitoredFrameComesAtOnceThoughRawOnesAreOn() {
    ConnectForRawFrames();
    m_engine->SendRaw(EngineSimulator::HeardBytes(heardFrame, "12:00:00"));
    QElapsedTimer time;
    time.start();
    QTRY_COMPARE(m_heard.size(), 1);
    QVERIFY(time.elapsed() < 900);
    QVERIFY(m_heard[0].raw.isEmpty());
}

void AgwLinkTest::aRawFrameWaitsASecondForItsTextAndNoLonger() {
    ConnectForRawFrames();
    m_engine->SendRaw(EngineSimulator::RawBytes(heardFrame));
    auto* timer = m_link->findChild<QTimer*>(QStringLiteral("timRaw"));
    QTRY_VERIFY(timer->isActive());
    QVERIFY(timer->remainingTime() <= 1000 && timer->remainingTime() > 500);
    QVERIFY(m_heard.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), 1, 3000);
    QVERIFY(m_heard[0].raw.endsWith("hello"));
    QVERIFY(m_heard[0].text.isEmpty() &&
            m_heard[0].information.isEmpty()); // nothing is shown or decoded of it
    QVERIFY(!timer->isActive());
}

void AgwLinkTest::rawFramesThatWaitComeBeforeTheEndOfTheConnection() {
    m_link->SetRetryInterval(30000);
    ConnectForRawFrames();
    m_engine->SendRaw(EngineSimulator::RawBytes(heardFrame));
    QTRY_VERIFY(m_link->findChild<QTimer*>(QStringLiteral("timRaw"))->isActive());
    m_engine->DropConnections();
    QTRY_COMPARE(m_lines, QStringList({QStringLiteral("frame"), disconnectedLine + retry}));
}

void AgwLinkTest::rawFramesThatNobodyAskedForArePassedOver() {
    ConnectForRawFrames();
    m_link->SetWantsRawFrames(false);
    m_engine->SendRaw(EngineSimulator::RawBytes(heardFrame));
    m_engine->SendRaw(EngineSimulator::HeardBytes(heardFrame, "12:00:00"));
    QTRY_COMPARE(m_heard.size(), 1);
    QVERIFY(m_heard[0].raw.isEmpty());
    QVERIFY(!m_link->findChild<QTimer*>(QStringLiteral("timRaw"))->isActive());
}

QTEST_GUILESS_MAIN(AgwLinkTest)
#include "AgwLinkTest.moc"
