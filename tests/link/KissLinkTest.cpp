#include "link/kiss/KissLink.h"

#include "support/TestClock.h"
#include "support/Tnc.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const QString localhost = QStringLiteral("127.0.0.1");
const QString retry = QStringLiteral("Will automatically retry in 30 seconds time.\r\n");
const QString connectedLine = QStringLiteral("*** KISS-Connected to - 127.0.0.1\r\n");
const QString disconnectedLine = QStringLiteral("*** KISS-Disconnected from - 127.0.0.1\r\n");
const QString errorStart = QStringLiteral("*** KISS-Error with connection to 127.0.0.1 - ");

const QByteArray heardText(" 1:Fm XQ9ZZ-1 To APRS Via QIRAN-1 <UI pid=F0 Len=5 P=0 >[12:00:00]\rT#001\r");

} // namespace

/// The link against a TNC in the same process, both real on the loopback address.
class KissLinkTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void theRetryTimerIsThirtySecondsOnceAndOff();
    void aConnectionIsPutIntoWordsAndAsksNothing();
    void nothingHappensInsideConnect();
    void withoutATncEveryAttemptIsOneErrorAndARetry();
    void anAttemptThatHangsIsOneError();
    void aTncThatClosesIsConnectedAgainAfterTheRetry();
    void aNetworkFaultIsErrorThenDisconnected();
    void anErrorAloneLeavesTheLinkConnected();
    void reconnectingSaysNothingOfARetryAndTakesTheNewAddress();
    void reconnectingWhileConnectingIsOneConnection();
    void reconnectingRunsNoOtherEvents();
    void stoppedItSaysNothingAndRetriesNothing();
    void theConnectionIsKeptAlive();

    void whatIsHeardIsHandedOn();
    void theRadioPortIsToldFromOne();
    void dribbledBytesMakeTheSameFrames();
    void otherCommandsAndBadFramesDoNoHarm();
    void halfAFrameDoesNotReachTheNextConnection();
    void framesBeforeTheCloseStillArrive();
    void aReceiverMayReconnectFromWithinAFrame();
    void aReceiverMayRunItsOwnEventLoop();
    void aTncMayCloseWhileAReceiverRunsItsOwnEventLoop();
    void aFloodLeavesTheEventLoopItsTurns();

    void whatIsSentGoesOutAndIsShownAsTransmitted();
    void textGoesOutInWindows1252();
    void aPathOfEightGoesOut();
    void whatCannotBeSentIsAStatusLine_data();
    void whatCannotBeSentIsAStatusLine();
    void nothingIsSentWithoutAConnection();
    void aTncThatDoesNotReadFillsNoMemory();

private:
    void Connect();

    struct Kept {
        qint64 utc;
        char kind;
        int port;
        QByteArray source, path, information, text, raw;
    };
    QStringList m_lines;
    QList<bool> m_enabled;
    QList<Kept> m_heard;
    KissAddress m_address;
    TestClock m_clock;
    std::unique_ptr<Tnc> m_tnc;
    std::unique_ptr<KissLink> m_link;
};

void KissLinkTest::init() {
    m_lines.clear();
    m_enabled.clear();
    m_heard.clear();
    m_clock.Set(DateOf(2026, 11, 21) + 0.5);
    m_clock.SetOffsetHours(0.0);
    m_tnc = std::make_unique<Tnc>();
    QVERIFY(m_tnc->listen(QHostAddress::LocalHost));
    m_address = {localhost, m_tnc->serverPort()};
    m_link = std::make_unique<KissLink>([this] { return m_address; }, m_clock);
    m_link->SetRetryInterval(50);
    connect(m_link.get(), &PacketLink::StatusText, this,
            [this](const QString& text) { m_lines.append(text); });
    connect(m_link.get(), &PacketLink::MonitorEnabled, this,
            [this](bool enabled) { m_enabled.append(enabled); });
    connect(m_link.get(), &PacketLink::Heard, this, [this](const HeardFrame& frame) {
        m_heard.append({frame.utc, static_cast<char>(frame.kind), frame.port, frame.source.toByteArray(),
                        frame.path.toByteArray(), frame.information.toByteArray(),
                        frame.engineText.toByteArray(), frame.raw.toByteArray()});
    });
}

void KissLinkTest::cleanup() {
    m_link.reset();
    m_tnc.reset();
}

void KissLinkTest::Connect() {
    m_link->Connect();
    QTRY_VERIFY(m_link->blnConectedToAgw());
    QTRY_COMPARE(m_tnc->connections.size(), 1);
}

void KissLinkTest::theRetryTimerIsThirtySecondsOnceAndOff() {
    const KissLink link([this] { return m_address; }, m_clock);
    const auto* timer = link.findChild<QTimer*>(QStringLiteral("timRetry"));
    QVERIFY(timer != nullptr);
    QCOMPARE(timer->interval(), 30000);
    QVERIFY(timer->isSingleShot());
    QVERIFY(!timer->isActive());
}

void KissLinkTest::aConnectionIsPutIntoWordsAndAsksNothing() {
    QVERIFY(!m_link->blnConectedToAgw());
    QCOMPARE(m_link->PortCount(), 0);
    Connect();
    QCOMPARE(m_lines, QStringList{connectedLine});
    QCOMPARE(m_enabled, QList<bool>{true});
    QCOMPARE(m_link->PortCount(), 16);
    m_tnc->Send(Kiss(Raw("T#001")));
    QTRY_COMPARE(m_heard.size(), 1);
    QCOMPARE(m_tnc->received, QByteArray()); // its parameters are the TNC's own
}

void KissLinkTest::nothingHappensInsideConnect() {
    m_address.host = QStringLiteral("256.256.256.256");
    m_link->Connect();
    QVERIFY(m_lines.isEmpty());
    QTRY_VERIFY(!m_lines.isEmpty());
}

void KissLinkTest::withoutATncEveryAttemptIsOneErrorAndARetry() {
    m_tnc->close();
    m_link->Connect();
    QTRY_VERIFY(m_lines.size() >= 3);
    for (const QString& line : m_lines)
        QCOMPARE(line, errorStart + QStringLiteral("Connection refused\r\n") + retry);
    QVERIFY(!m_enabled.contains(true));
    QVERIFY(!m_link->blnConectedToAgw());
    m_lines.clear();
    QVERIFY(m_tnc->listen(QHostAddress::LocalHost, m_address.port));
    QTRY_VERIFY(m_lines.contains(connectedLine));
}

void KissLinkTest::anAttemptThatHangsIsOneError() {
    // A backlog that is full: what comes now is not answered.
    QTcpServer full;
    full.setListenBacklogSize(0);
    QVERIFY(full.listen(QHostAddress::LocalHost));
    full.pauseAccepting();
    std::vector<std::unique_ptr<QTcpSocket>> others;
    for (int i = 0; i < 8; ++i) {
        others.push_back(std::make_unique<QTcpSocket>());
        others.back()->connectToHost(localhost, full.serverPort());
        others.back()->waitForConnected(50);
    }
    m_address.port = full.serverPort();
    m_link->SetRetryInterval(60000);
    m_link->findChild<TcpClient*>()->SetConnectTimeout(100);
    m_link->Connect();
    QTRY_COMPARE(m_lines, QStringList{errorStart + QStringLiteral("Connection timed out\r\n") + retry});
}

void KissLinkTest::aTncThatClosesIsConnectedAgainAfterTheRetry() {
    Connect();
    m_lines.clear();
    m_tnc->connections[0]->close();
    QTRY_COMPARE(m_lines.size(), 1);
    QCOMPARE(m_lines[0], disconnectedLine + retry);
    QVERIFY(!m_link->blnConectedToAgw());
    QCOMPARE(m_link->PortCount(), 0);
    QCOMPARE(m_enabled.last(), false);
    const auto* timer = m_link->findChild<QTimer*>(QStringLiteral("timRetry"));
    QVERIFY(timer->isActive());
    QTRY_COMPARE(m_lines.mid(1), QStringList{connectedLine});
    QVERIFY(!timer->isActive());
    QCOMPARE(m_enabled.last(), true);
}

void KissLinkTest::aNetworkFaultIsErrorThenDisconnected() {
    Connect();
    m_lines.clear();
    m_link->SetRetryInterval(60000);
    // A folder in the connection's place: reading from it is an error of the system, not an end.
    const int folder = ::open("/", O_RDONLY | O_DIRECTORY);
    const auto connection = static_cast<int>(m_link->findChild<QTcpSocket*>()->socketDescriptor());
    QCOMPARE(::dup2(folder, connection), connection);
    ::close(folder);
    QTRY_COMPARE(m_lines.size(), 2);
    QVERIFY2(m_lines[0].startsWith(errorStart), qPrintable(m_lines[0]));
    QVERIFY(m_lines[0].endsWith(retry));
    QCOMPARE(m_lines[1], disconnectedLine + retry);
}

void KissLinkTest::anErrorAloneLeavesTheLinkConnected() {
    Connect();
    auto* client = m_link->findChild<TcpClient*>();
    Q_EMIT client->Error(QStringLiteral("a fault"));
    QVERIFY(m_link->blnConectedToAgw());
    QCOMPARE(m_enabled.last(), false);
    Q_EMIT client->Disconnected(QStringLiteral("x"));
    QVERIFY(!m_link->blnConectedToAgw());
}

void KissLinkTest::reconnectingSaysNothingOfARetryAndTakesTheNewAddress() {
    Tnc other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    Connect();
    m_lines.clear();
    m_address = {QStringLiteral("localhost"), other.serverPort()};
    m_link->Reconnect();
    QCOMPARE(m_lines, QStringList{disconnectedLine}); // before it returned
    QVERIFY(!m_link->findChild<QTimer*>(QStringLiteral("timRetry"))->isActive());
    QTRY_COMPARE(m_lines,
                 QStringList({disconnectedLine, QStringLiteral("*** KISS-Connected to - localhost\r\n")}));
    QTRY_COMPARE(other.connections.size(), 1);
    QTRY_COMPARE(m_tnc->connections.size(), 0);
}

void KissLinkTest::reconnectingWhileConnectingIsOneConnection() {
    m_link->Connect();
    m_link->Reconnect();
    QTRY_COMPARE(m_lines, QStringList{connectedLine});
    QTRY_COMPARE(m_tnc->connections.size(), 1);
}

void KissLinkTest::reconnectingRunsNoOtherEvents() {
    Connect();
    bool ran = false;
    QMetaObject::invokeMethod(
        this, [&ran] { ran = true; }, Qt::QueuedConnection);
    m_link->Reconnect();
    QVERIFY(!ran);
    QTRY_VERIFY(ran);
}

void KissLinkTest::stoppedItSaysNothingAndRetriesNothing() {
    Connect();
    m_lines.clear();
    m_enabled.clear();
    m_link->Stop();
    QVERIFY(!m_link->blnConectedToAgw());
    QTRY_COMPARE(m_tnc->connections.size(), 0);
    for (const QTimer* timer : m_link->findChildren<QTimer*>())
        QVERIFY2(!timer->isActive(), qPrintable(timer->objectName()));
    QCOMPARE(m_lines, QStringList());
    QVERIFY(m_enabled.isEmpty());
    QCOMPARE(m_tnc->connections.size(), 0);
}

void KissLinkTest::theConnectionIsKeptAlive() {
    Connect();
    const auto descriptor = static_cast<int>(m_link->findChild<QTcpSocket*>()->socketDescriptor());
    const auto option = [descriptor](int level, int name) {
        int value = 0;
        socklen_t length = sizeof value;
        getsockopt(descriptor, level, name, &value, &length);
        return value;
    };
    QCOMPARE(option(SOL_SOCKET, SO_KEEPALIVE), 1);
    QCOMPARE(option(IPPROTO_TCP, TCP_KEEPIDLE), 60);
    QCOMPARE(option(IPPROTO_TCP, TCP_KEEPINTVL), 15);
    QCOMPARE(option(IPPROTO_TCP, TCP_KEEPCNT), 4);
    QCOMPARE(option(IPPROTO_TCP, TCP_USER_TIMEOUT), 120000);
}

void KissLinkTest::whatIsHeardIsHandedOn() {
    Connect();
    m_tnc->Send(Kiss(Raw("T#001")));
    QTRY_COMPARE(m_heard.size(), 1);
    const Kept frame = m_heard[0];
    QCOMPARE(frame.utc, m_clock.Milliseconds());
    QCOMPARE(frame.kind, 'U');
    QCOMPARE(frame.port, 1);
    QCOMPARE(frame.source, QByteArray("XQ9ZZ-1"));
    QCOMPARE(frame.path, QByteArray("QIRAN-1*"));
    QCOMPARE(frame.information, QByteArray("T#001"));
    QCOMPARE(frame.text, heardText);
    QCOMPARE(frame.raw, Raw("T#001"));
    // The time in the text is local, as an engine's own; the zone is asked for once a second.
    m_clock.SetOffsetHours(2.0);
    m_clock.Advance(1.0);
    m_tnc->Send(Kiss(Raw("T#001")));
    QTRY_COMPARE(m_heard.size(), 2);
    QVERIFY(m_heard[1].text.contains("[14:00:01]"));
    QCOMPARE(m_heard[1].utc, frame.utc + 1000);
}

void KissLinkTest::theRadioPortIsToldFromOne() {
    Connect();
    m_tnc->Send(Kiss(Raw("x"), 15));
    QTRY_COMPARE(m_heard.size(), 1);
    QCOMPARE(m_heard[0].port, 16);
    QVERIFY(m_heard[0].text.startsWith(" 16:Fm"));
}

void KissLinkTest::dribbledBytesMakeTheSameFrames() {
    Connect();
    for (const char byte : Kiss(Raw("\xC0\xDB x")) + Kiss(Raw("second"))) {
        m_tnc->Send(QByteArray(1, byte));
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(m_heard.size(), 2);
    QCOMPARE(m_heard[0].information, QByteArray("\xC0\xDB x"));
    QCOMPARE(m_heard[1].information, QByteArray("second"));
}

void KissLinkTest::otherCommandsAndBadFramesDoNoHarm() {
    Connect();
    m_tnc->Send("tail" + Kiss("\x10", 0, 1) + Kiss("HW", 0, 6) + Kiss(QByteArray(), 15, 15) +
                Kiss(QByteArray(70000, 'x')) + "\xC0\xDBx\xC0" + Kiss("no frame") + Kiss(Raw("T#001")));
    QTRY_COMPARE(m_heard.size(), 2);
    QCOMPARE(m_heard[0].source, QByteArray());
    QVERIFY(m_heard[0].text.startsWith(" 1:Not an AX.25 frame, 8 bytes\r6E 6F "));
    QCOMPARE(m_heard[1].information, QByteArray("T#001"));
    QCOMPARE(m_lines, QStringList{connectedLine});
}

void KissLinkTest::halfAFrameDoesNotReachTheNextConnection() {
    Connect();
    const QByteArray bytes = Kiss(Raw("T#001"));
    m_tnc->Send(bytes.first(10));
    m_tnc->connections[0]->close();
    QTRY_COMPARE(m_lines.count(connectedLine), 2);
    QTRY_COMPARE(m_tnc->connections.size(), 1);
    m_tnc->Send(bytes.sliced(10) + bytes);
    QTRY_COMPARE(m_heard.size(), 1);
    QCOMPARE(m_heard[0].raw, Raw("T#001"));
}

void KissLinkTest::framesBeforeTheCloseStillArrive() {
    Connect();
    QByteArray bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += Kiss(Raw("x"));
    m_tnc->connections[0]->write(bytes);
    m_tnc->connections[0]->disconnectFromHost();
    QTRY_COMPARE(m_heard.size(), 5000);
    QTRY_VERIFY(m_lines.contains(disconnectedLine + retry));
}

void KissLinkTest::aReceiverMayReconnectFromWithinAFrame() {
    Connect();
    bool isFirst = true;
    connect(m_link.get(), &PacketLink::Heard, this, [this, &isFirst] {
        if (std::exchange(isFirst, false))
            m_link->Reconnect();
    });
    m_tnc->Send(Kiss(Raw("one")) + Kiss(Raw("two")));
    QTRY_COMPARE(m_lines, QStringList({connectedLine, disconnectedLine, connectedLine}));
    QCOMPARE(m_heard.size(), 1); // the rest went with its connection
    QTRY_COMPARE(m_tnc->connections.size(), 1);
    m_tnc->Send(Kiss(Raw("three")));
    QTRY_COMPARE(m_heard.size(), 2);
    QCOMPARE(m_heard[1].information, QByteArray("three"));
}

void KissLinkTest::aReceiverMayRunItsOwnEventLoop() {
    Connect();
    bool isFirst = true;
    QByteArray after;
    connect(m_link.get(), &PacketLink::Heard, this, [&](const HeardFrame& frame) {
        if (!std::exchange(isFirst, false))
            return;
        m_tnc->Send(Kiss(Raw("three")));
        QEventLoop loop;
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
        after = frame.information.toByteArray() + frame.engineText.toByteArray().first(13);
    });
    m_tnc->Send(Kiss(Raw("one")) + Kiss(Raw("two")));
    QTRY_COMPARE(m_heard.size(), 3);
    QCOMPARE(after, QByteArray("one 1:Fm XQ9ZZ-1"));
    QCOMPARE(m_heard[1].information, QByteArray("two"));
    QCOMPARE(m_heard[2].information, QByteArray("three"));
}

void KissLinkTest::aTncMayCloseWhileAReceiverRunsItsOwnEventLoop() {
    Connect();
    m_link->SetRetryInterval(60000);
    bool isFirst = true;
    QStringList linesInside;
    connect(m_link.get(), &PacketLink::Heard, this, [&] {
        if (!std::exchange(isFirst, false))
            return;
        m_tnc->Send(Kiss(Raw("three")));
        m_tnc->connections[0]->close();
        QEventLoop loop;
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
        linesInside = m_lines;
    });
    m_tnc->Send(Kiss(Raw("one")) + Kiss(Raw("two")));
    QTRY_COMPARE(m_lines, QStringList({connectedLine, disconnectedLine + retry}));
    QCOMPARE(linesInside, QStringList{connectedLine}); // the frames first
    QCOMPARE(m_heard.size(), 3);
    QCOMPARE(m_heard[1].information, QByteArray("two"));
    QCOMPARE(m_heard[2].information, QByteArray("three"));
}

void KissLinkTest::aFloodLeavesTheEventLoopItsTurns() {
    Connect();
    QByteArray bytes;
    while (bytes.size() < 4 * 1024 * 1024)
        bytes += Kiss(Raw("x"));
    m_tnc->Send(bytes);
    qsizetype before = 0;
    qsizetype most = 0;
    QTimer turns;
    connect(&turns, &QTimer::timeout, this, [&] {
        most = std::max(most, m_heard.size() - before);
        before = m_heard.size();
    });
    turns.start(0);
    const qsizetype expected = bytes.size() / Kiss(Raw("x")).size();
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), expected, 30000);
    QVERIFY2(most < expected / 4, qPrintable(QString::number(most)));
}

void KissLinkTest::whatIsSentGoesOutAndIsShownAsTransmitted() {
    Connect();
    m_link->SendUnproto(2, QStringLiteral("N0CALL-7"), QStringLiteral("CQ QIRAN-1,WIDE2-2"),
                        QStringLiteral("test tx\r"));
    // 9C 60 86 82 98 98: "N0CALL" shifted; SSID bytes E0 (command), 6E, and the last of the field.
    const QByteArray raw = QByteArray::fromHex("86a240404040e0"
                                               "9c60868298986e"
                                               "a292a4829c4062"
                                               "ae92888a644065"
                                               "03f0") +
                           "test tx\r";
    QTRY_COMPARE(m_tnc->received, "\xC0\x10" + raw + "\xC0");
    QCOMPARE(m_heard.size(), 1);
    QCOMPARE(m_heard[0].kind, 'T');
    QCOMPARE(m_heard[0].port, 2);
    QCOMPARE(m_heard[0].utc, m_clock.Milliseconds());
    QCOMPARE(m_heard[0].raw, raw);
    QCOMPARE(
        m_heard[0].text,
        QByteArray(" 2:Fm N0CALL-7 To CQ Via QIRAN-1,WIDE2-2 <UI pid=F0 Len=8 P=0 >[12:00:00]\rtest tx\r\r"));
}

void KissLinkTest::textGoesOutInWindows1252() {
    Connect();
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ "),
                        QStringLiteral("\u20AC\u00C0\u4E2D\r"));
    QTRY_VERIFY(m_tnc->received.endsWith("\x80\xDB\xDC?\r\xC0"));
    QCOMPARE(m_heard[0].information, QByteArray("\x80\xC0?\r"));
}

void KissLinkTest::aPathOfEightGoesOut() {
    Connect();
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ A,B,C,D,E,F,G,H-15"),
                        QStringLiteral("x"));
    QCOMPARE(m_heard.size(), 1);
    QCOMPARE(m_heard[0].path, QByteArray("A,B,C,D,E,F,G,H-15"));
}

void KissLinkTest::whatCannotBeSentIsAStatusLine_data() {
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("line");
    const QString me = QStringLiteral("N0CALL");
    const QString cq = QStringLiteral("CQ ");
    QTest::newRow("port 0") << 0 << me << cq << 1 << QStringLiteral("2 There is no radio port 0");
    QTest::newRow("port beyond a nibble")
        << 17 << me << cq << 1 << QStringLiteral("2 There is no radio port 17");
    QTest::newRow("no source") << 1 << QString() << cq << 1
                               << QStringLiteral("3 \"\" cannot be sent as a callsign");
    QTest::newRow("no destination") << 1 << me << QStringLiteral(" ") << 1
                                    << QStringLiteral("3 \"\" cannot be sent as a callsign");
    QTest::newRow("long source") << 1 << QStringLiteral("ABCDEFG") << cq << 1
                                 << QStringLiteral("3 \"ABCDEFG\" cannot be sent as a callsign");
    QTest::newRow("SSID") << 1 << QStringLiteral("A1-16") << cq << 1
                          << QStringLiteral("3 \"A1-16\" cannot be sent as a callsign");
    QTest::newRow("lower case") << 1 << me << QStringLiteral("cq ") << 1
                                << QStringLiteral("3 \"cq\" cannot be sent as a callsign");
    QTest::newRow("digipeater") << 1 << me << QStringLiteral("CQ A,\u00C4") << 1
                                << QStringLiteral("3 \"\u00C4\" cannot be sent as a callsign");
    QTest::newRow("nine digipeaters") << 1 << me << QStringLiteral("CQ A,B,C,D,E,F,G,H,I") << 1
                                      << QStringLiteral("4 At most 8 digipeaters can be used");
    QTest::newRow("too long") << 1 << me << cq << 65536
                              << QStringLiteral("5 The text is too long to be sent");
}

void KissLinkTest::whatCannotBeSentIsAStatusLine() {
    QFETCH(int, port);
    QFETCH(QString, source);
    QFETCH(QString, destination);
    QFETCH(int, size);
    QFETCH(QString, line);
    Connect();
    m_lines.clear();
    m_link->SendUnproto(static_cast<qint16>(port), source, destination, QString(size, u'x'));
    QCOMPARE(m_lines, QStringList{line + QStringLiteral("\r\n")});
    QCOMPARE(m_heard.size(), 0);
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), QStringLiteral("ok"));
    QTRY_VERIFY(m_tnc->received.endsWith("ok\xC0"));
    QCOMPARE(m_tnc->received.count('\xC0'), 2); // nothing of the refused one went out
}

void KissLinkTest::nothingIsSentWithoutAConnection() {
    const QStringList line{QStringLiteral("1 Not connected to a KISS TNC\r\n")};
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ "), QStringLiteral("x\r"));
    QCOMPARE(m_lines, line);
    m_link->Connect();
    m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ "), QStringLiteral("x\r"));
    QCOMPARE(m_lines, line + line);
    QCOMPARE(m_heard.size(), 0);
}

void KissLinkTest::aTncThatDoesNotReadFillsNoMemory() {
    QTcpServer deaf;
    QVERIFY(deaf.listen(QHostAddress::LocalHost));
    deaf.pauseAccepting();
    m_address.port = deaf.serverPort();
    m_link->Connect();
    QTRY_VERIFY(m_link->blnConectedToAgw());
    m_lines.clear();
    for (int sent = 0; m_lines.isEmpty(); ++sent) {
        QVERIFY(sent < 1000);
        m_link->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), QString(60000, u'x'));
        QCoreApplication::processEvents();
    }
    QCOMPARE(m_lines, QStringList{QStringLiteral("6 The KISS TNC does not take what is sent to it\r\n")});
    QVERIFY(m_link->findChild<QTcpSocket*>()->bytesToWrite() <= 256 * 1024);
    QVERIFY(m_link->blnConectedToAgw());
}

QTEST_GUILESS_MAIN(KissLinkTest)
#include "KissLinkTest.moc"
