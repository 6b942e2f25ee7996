#include "ClientEvents.h"
#include "link/agwpe/AgwFrame.h"
#include "pesim/EngineSimulator.h"

#include <QDir>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <atomic>
#include <fcntl.h>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>

namespace {

const QString localhost = QStringLiteral("127.0.0.1");
const QString connected = QStringLiteral("connected 127.0.0.1");
const QString disconnected = QStringLiteral("disconnected 127.0.0.1");
const QString error = QStringLiteral("error");

QByteArray Frame(char kind, const QByteArray& data, const QByteArray& from = "XQ9ZZ-1",
                 const QByteArray& to = "APRS", quint8 port = 0) {
    return AgwFrame{.port = port, .kind = kind, .callFrom = from, .callTo = to, .data = data}.ToBytes();
}

/// Listens on a port that fits the client's 16 bits with a sign.
void ListenLow(QTcpServer& server) {
    quint16 port = 24000;
    while (!server.listen(QHostAddress::LocalHost, port))
        QVERIFY(++port < 32767);
}

qsizetype OpenDescriptors() {
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace

/// The client against an engine in the same process, both real on the loopback address.
class MERAGWTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void withoutLogInItAsksVersionPortsMonitoring();
    void withALogInIdItLogsInFirst();
    void theEnginesAnswersBecomeEvents();
    void thePortListIsCutToTheNumberAtItsHead_data();
    void thePortListIsCutToTheNumberAtItsHead();
    void aVersionThatIsTooShortSaysNothing();

    void framesOfARealEngineArriveByteForByte_data();
    void framesOfARealEngineArriveByteForByte();
    void theOtherKindsAreMonitoringEvents();
    void allBytesPassAndOnlyTheEndMarkGoes();
    void framesWithoutDataAndUnknownKindsDoNoHarm();
    void dribbledBytesMakeTheSameFrames();
    void tenThousandFramesInOneWriteAllArriveInOrder();
    void aFloodLeavesTheEventLoopItsTurns();

    void nothingHappensInsideConnect();
    void aRefusedAttemptIsOneError();
    void anUnknownHostIsOneError();
    void anAttemptThatHangsIsOneError();
    void theTimeLimitEndsWithTheAttempt();
    void anAttemptGivenUpSaysNothing();
    void anEngineThatSaysNothingIsConnected();
    void anEngineThatClosesIsOneDisconnected_data();
    void anEngineThatClosesIsOneDisconnected();
    void framesBeforeTheCloseStillArrive();
    void disconnectIsReportedLaterAndOnce();
    void connectWhileConnectedBeginsAnew();
    void aLyingLengthIsErrorThenDisconnected();
    void aNetworkFaultIsErrorThenDisconnected();
    void halfAFrameDoesNotReachTheNextConnection();
    void garbageEndsTheConnectionOrDoesNothing();
    void aReceiverMayEndTheConnectionFromWithinAFrame();
    void aReceiverMayRunItsOwnEventLoop();
    void theConnectionIsKeptAlive();
    void aThousandReconnectionsLeakNothing();

    void aFrameWithoutPathGoesOutAsM_data();
    void aFrameWithoutPathGoesOutAsM();
    void aPathGoesOutAsV_data();
    void aPathGoesOutAsV();
    void callsignsOfNineCharactersGoOut();
    void whatWasSentComesBackTransmitted();
    void whatCannotBeSentIsRefused_data();
    void whatCannotBeSentIsRefused();
    void nothingIsSentWithoutAConnection();
    void anEngineThatDoesNotReadFillsNoMemory();

private:
    /// The client has let go of its connection, and the event loop has removed it.
    bool NothingCanCome() const { return m_client->findChildren<QTcpSocket*>().isEmpty(); }

    void Connect();
    void ConnectAndMonitor();
    QByteArrayList m_received; // by the engine
    std::unique_ptr<EngineSimulator> m_engine;
    std::unique_ptr<MERAGW> m_client;
    std::unique_ptr<ClientEvents> m_seen;
};

void MERAGWTest::init() {
    m_received.clear();
    m_engine = std::make_unique<EngineSimulator>();
    QVERIFY(m_engine->Listen());
    connect(m_engine.get(), &EngineSimulator::FrameReceived, this,
            [this](int, const QByteArray& frame) { m_received.append(frame); });
    m_client = std::make_unique<MERAGW>();
    m_seen = std::make_unique<ClientEvents>(*m_client);
    m_client->SetHost(localhost);
    m_client->SetPort(static_cast<qint16>(m_engine->Port()));
}

void MERAGWTest::cleanup() {
    m_seen.reset();
    m_client.reset();
    m_engine.reset();
}

void MERAGWTest::Connect() {
    m_client->Connect();
    QTRY_VERIFY(m_client->IsConnected());
}

void MERAGWTest::ConnectAndMonitor() {
    Connect();
    QTRY_COMPARE(m_engine->MonitoringCount(), 1);
    QTRY_COMPARE(m_seen->events.size(), 3); // connected, version, ports
}

void MERAGWTest::withoutLogInItAsksVersionPortsMonitoring() {
    m_client->SetPassword(QStringLiteral("unused"));
    Connect();
    QTRY_COMPARE(m_received.size(), 3);
    const QByteArray nothing(31, '\0');
    QCOMPARE(m_received[0], QByteArray(4, '\0') + 'R' + nothing);
    QCOMPARE(m_received[1], QByteArray(4, '\0') + 'G' + nothing);
    QCOMPARE(m_received[2], QByteArray(4, '\0') + 'm' + nothing);
}

void MERAGWTest::withALogInIdItLogsInFirst() {
    m_client->SetLoginId(QStringLiteral("jos\u00E9"));
    m_client->SetPassword(QStringLiteral("secret"));
    Connect();
    QTRY_COMPARE(m_received.size(), 4);
    QByteArray header(36, '\0');
    header[4] = 'P';
    header[28] = '\xFE'; // 510
    header[29] = '\x01';
    QCOMPARE(m_received[0], header + "jos\xE9" + QByteArray(251, '\0') + "secret" + QByteArray(249, '\0'));
    QCOMPARE(m_received[1][4], 'R');
}

void MERAGWTest::theEnginesAnswersBecomeEvents() {
    m_engine->SetPorts("2;Port1 first soundcard mono;Port2 second;");
    QCOMPARE(m_client->PortCount(), 0);
    Connect();
    QTRY_COMPARE(m_seen->events,
                 QStringList({connected, QStringLiteral("version 2005.127"),
                              QStringLiteral("ports Port1 first soundcard mono|Port2 second")}));
    QCOMPARE(m_client->PortCount(), 2);
    m_engine->DropConnections();
    QTRY_VERIFY(!m_client->IsConnected());
    QCOMPARE(m_client->PortCount(), 0);
}

void MERAGWTest::thePortListIsCutToTheNumberAtItsHead_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("ports");
    QTest::newRow("a real engine lists six items behind a 1")
        << QByteArray(
               "1;Port1 first soundcard mono;Port2 INVALID CHANNEL;Port3 INVALID CHANNEL;Port4 INVALID "
               "CHANNEL;Port5 INVALID CHANNEL;Port6 INVALID CHANNEL;")
        << QStringLiteral("Port1 first soundcard mono");
    QTest::newRow("three") << QByteArray("3;a;b;c;") << QStringLiteral("a|b|c");
    QTest::newRow("fewer than announced") << QByteArray("9;a;b;") << QStringLiteral("a|b");
    QTest::newRow("none") << QByteArray("0;a;b;") << QString();
    QTest::newRow("negative") << QByteArray("-1;a;b;") << QString();
    QTest::newRow("no number") << QByteArray("a;b;") << QString();
    QTest::newRow("huge number") << QByteArray("99999999999999999999;a;") << QStringLiteral("a");
    QTest::newRow("nothing at all") << QByteArray() << QString();
    QTest::newRow("no closing separator") << QByteArray("2;a;b") << QStringLiteral("a|b");
    QTest::newRow("an empty description") << QByteArray("2;;b;") << QStringLiteral("|b");
}

void MERAGWTest::thePortListIsCutToTheNumberAtItsHead() {
    QFETCH(QByteArray, text);
    QFETCH(QString, ports);
    m_engine->SetPorts(text);
    Connect();
    QTRY_VERIFY(m_seen->events.contains(QStringLiteral("ports ") + ports));
}

void MERAGWTest::aVersionThatIsTooShortSaysNothing() {
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('R', QByteArray(5, '\1')) + Frame('R', {}) + Frame('U', "mark"));
    QTRY_COMPARE(m_seen->frames.size(), 1);
    QCOMPARE(m_seen->events.size(), 3);
}

void MERAGWTest::framesOfARealEngineArriveByteForByte_data() {
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("side A") << QByteArray("XQ9ZZ-1") << QByteArray("APRS")
                            << QByteArray(" 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=33 PF=0 "
                                          ">[00:16:57]\rT#001,10,20,30,40,0,0,00101111,0\n\r");
    QTest::newRow("side B") << QByteArray("QIRAN-3") << QByteArray("APRS")
                            << QByteArray(" 1:Fm QIRAN-3 To APRS Via QIRAN-1 <UI pid=F0 Len=33 PF=0 "
                                          ">[00:16:57]\rT#002,11,21,31,41,0,0,00001111,0\n\r");
}

void MERAGWTest::framesOfARealEngineArriveByteForByte() {
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QByteArray, text);
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('U', text + '\0', from, to, 1));
    QTRY_COMPARE(m_seen->frames.size(), 1);
    QCOMPARE(m_seen->frames[0], (ClientEvents::Frame{2, from, to, text}));
}

void MERAGWTest::theOtherKindsAreMonitoringEvents() {
    ConnectAndMonitor();
    const QByteArray sent =
        " 1:Fm N0CALL-7 To CQ Via QIRAN-1 <UI pid=F0 Len=12 PF=0 >[00:16:56]\rtest tx via\r\r";
    m_engine->SendRaw(Frame('I', QByteArray("info\r\0", 6)) + Frame('S', QByteArray("super\r\0", 7)) +
                      Frame('T', sent + '\0'));
    QTRY_COMPARE(m_seen->texts.size(), 3);
    QCOMPARE(m_seen->texts[0], (ClientEvents::Text{3, "info\r"}));
    QCOMPARE(m_seen->texts[1], (ClientEvents::Text{5, "super\r"}));
    QCOMPARE(m_seen->texts[2], (ClientEvents::Text{4, sent}));
    QVERIFY(m_seen->frames.isEmpty());
}

void MERAGWTest::allBytesPassAndOnlyTheEndMarkGoes() {
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('U', all) + Frame('U', all + QByteArray("\r\n\0", 3)) +
                      Frame('U', QByteArray("x \0\0", 4)));
    QTRY_COMPARE(m_seen->frames.size(), 3);
    QCOMPARE(m_seen->frames[0].data, all);
    QCOMPARE(m_seen->frames[1].data, all + "\r\n");
    QCOMPARE(m_seen->frames[2].data, QByteArray("x \0", 3));
}

void MERAGWTest::framesWithoutDataAndUnknownKindsDoNoHarm() {
    ConnectAndMonitor();
    QByteArray stream(36, '\0');
    for (int kind = 0; kind < 256; ++kind) {
        if (!QByteArray("UISTRG").contains(static_cast<char>(kind)))
            stream += Frame(static_cast<char>(kind), "not asked for");
    }
    m_engine->SendRaw(stream + Frame('U', {}) + Frame('I', {}));
    QTRY_COMPARE(m_seen->texts.size(), 1);
    QCOMPARE(m_seen->frames.size(), 1);
    QVERIFY(m_seen->frames[0].data.isEmpty());
    QCOMPARE(m_seen->events.size(), 3);
    QVERIFY(m_client->IsConnected());
}

void MERAGWTest::dribbledBytesMakeTheSameFrames() {
    m_engine->SetDribble(true);
    ConnectAndMonitor();
    m_engine->SendHeard({.from = "QIRAN-3", .to = "APRS", .via = {"QIRAN-1"}, .information = "T#1\n"});
    m_engine->SendHeard({.from = "XQ9ZZ", .to = "CQ", .via = {}, .information = "T#2"});
    QTRY_COMPARE(m_seen->frames.size(), 2);
    QVERIFY(m_seen->frames[0].data.endsWith("]\rT#1\n\r"));
    QCOMPARE(m_seen->frames[1].source, QByteArray("XQ9ZZ"));
}

void MERAGWTest::tenThousandFramesInOneWriteAllArriveInOrder() {
    ConnectAndMonitor();
    QByteArray stream;
    for (int i = 0; i < 10000; ++i)
        stream += Frame('U', QByteArray::number(i) + '\0');
    m_engine->SendRaw(stream);
    QTRY_COMPARE(m_seen->frames.size(), 10000);
    for (int i = 0; i < 10000; ++i)
        QCOMPARE(m_seen->frames[i].data, QByteArray::number(i));
}

void MERAGWTest::aFloodLeavesTheEventLoopItsTurns() {
    QTcpServer server;
    ListenLow(server);
    server.pauseAccepting();
    const int listener = static_cast<int>(server.socketDescriptor());
    std::atomic<bool> stop = false;
    std::thread flood([listener, &stop] {
        int peer = -1;
        while (peer < 0 && !stop)
            peer = ::accept(listener, nullptr, nullptr);
        const QByteArray frames = Frame('U', QByteArray(80, 'x')).repeated(1000);
        while (!stop &&
               ::send(peer, frames.constData(), static_cast<size_t>(frames.size()), MSG_NOSIGNAL) > 0) {
        }
        if (peer >= 0)
            ::close(peer);
    });
    MERAGW client;
    qint64 frames = 0;
    connect(&client, &MERAGW::FrameArrival, this, [&frames] { ++frames; });
    client.SetHost(localhost);
    client.SetPort(static_cast<qint16>(server.serverPort()));
    client.Connect();
    QTRY_VERIFY(frames > 0);
    int ticks = 0;
    QTimer tick;
    connect(&tick, &QTimer::timeout, this, [&ticks] { ++ticks; });
    tick.start(1);
    const qint64 begin = frames;
    QTRY_VERIFY(frames > begin + 200000);
    stop = true;
    client.Disconnect();
    flood.join();
    // 200,000 frames take some 180 turns of the event loop.
    QVERIFY2(ticks > 10, qPrintable(QString::number(ticks)));
}

void MERAGWTest::nothingHappensInsideConnect() {
    m_engine->StopListening();
    m_client->Connect();
    QVERIFY(m_seen->events.isEmpty());
    QTRY_COMPARE(m_seen->events, QStringList{error});
}

void MERAGWTest::aRefusedAttemptIsOneError() {
    m_engine->StopListening();
    m_client->Connect();
    QTRY_COMPARE(m_seen->events, QStringList{error});
    QCOMPARE(m_seen->lastError, QStringLiteral("Connection refused"));
    QCOMPARE(m_client->LastErrorNumber(), int(MERAGW::ConnectionFault));
    QCOMPARE(m_client->LastErrorText(), m_seen->lastError);
    QTRY_VERIFY(NothingCanCome());
    QCOMPARE(m_seen->events.size(), 1);
}

void MERAGWTest::anUnknownHostIsOneError() {
    m_client->SetHost(QStringLiteral("no-such-host.invalid"));
    m_client->Connect();
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->events, QStringList{error}, 25000);
    QVERIFY(!m_seen->lastError.isEmpty());
}

void MERAGWTest::anAttemptThatHangsIsOneError() {
    // A listener whose queue is full drops what knocks, as a host behind a firewall does.
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    for (int port = 21000; port < 32000; ++port) {
        address.sin_port = htons(static_cast<quint16>(port));
        if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) == 0)
            break;
    }
    QCOMPARE(::listen(listener, 0), 0);
    QList<int> queue;
    for (int i = 0; i < 4; ++i) {
        queue.append(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        static_cast<void>(::connect(queue.last(), reinterpret_cast<sockaddr*>(&address), length));
    }
    m_client->SetPort(static_cast<qint16>(ntohs(address.sin_port)));
    m_client->SetConnectTimeout(100);
    m_client->Connect();
    QTRY_COMPARE(m_seen->events, QStringList{error});
    QCOMPARE(m_seen->lastError, QStringLiteral("Connection timed out"));
    for (const int descriptor : queue)
        ::close(descriptor);
    ::close(listener);
}

void MERAGWTest::theTimeLimitEndsWithTheAttempt() {
    const auto* limit = m_client->findChild<QTimer*>();
    m_client->Connect();
    QVERIFY(limit->isActive());
    QTRY_VERIFY(m_client->IsConnected());
    QVERIFY(!limit->isActive());
}

void MERAGWTest::anAttemptGivenUpSaysNothing() {
    m_client->Connect();
    m_client->Disconnect();
    QTRY_VERIFY(NothingCanCome());
    QVERIFY(m_seen->events.isEmpty());
    QCOMPARE(m_engine->ConnectionCount(), 0);
}

void MERAGWTest::anEngineThatSaysNothingIsConnected() {
    m_engine->SetMute(true);
    Connect();
    QTRY_COMPARE(m_engine->MonitoringCount(), 1);
    QCOMPARE(m_seen->events, QStringList{connected});
}

void MERAGWTest::anEngineThatClosesIsOneDisconnected_data() {
    QTest::addColumn<char>("kind");
    QTest::addColumn<QStringList>("events");
    const QString version = QStringLiteral("version 2005.127");
    const QString ports = QStringLiteral("ports Port1 simulated radio");
    QTest::newRow("after the log-in") << 'P' << QStringList{connected, disconnected};
    QTest::newRow("after the version") << 'R' << QStringList{connected, version, disconnected};
    QTest::newRow("after the ports") << 'G' << QStringList{connected, version, ports, disconnected};
    QTest::newRow("after monitoring") << 'm' << QStringList{connected, version, ports, disconnected};
    QTest::newRow("after a frame") << 'M' << QStringList{connected, version, ports, disconnected};
}

void MERAGWTest::anEngineThatClosesIsOneDisconnected() {
    QFETCH(char, kind);
    QFETCH(QStringList, events);
    m_client->SetLoginId(QStringLiteral("me"));
    m_engine->SetCloseAfter(kind);
    m_client->Connect();
    if (kind == 'M') {
        QTRY_COMPARE(m_seen->events.size(), 3);
        QVERIFY(m_client->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), "x"));
    }
    QTRY_COMPARE(m_seen->events, events);
    QTRY_VERIFY(NothingCanCome());
    QCOMPARE(m_seen->events, events);
    QVERIFY(!m_client->IsConnected());
}

void MERAGWTest::framesBeforeTheCloseStillArrive() {
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('U', "last").repeated(5000));
    m_engine->DropConnections();
    QTRY_COMPARE(m_seen->events.last(), disconnected);
    QCOMPARE(m_seen->frames.size(), 5000);
}

void MERAGWTest::disconnectIsReportedLaterAndOnce() {
    ConnectAndMonitor();
    m_client->Disconnect();
    m_client->Disconnect();
    QCOMPARE(m_seen->events.size(), 3);
    QTRY_COMPARE(m_seen->events.size(), 4);
    QCOMPARE(m_seen->events.last(), disconnected);
    QTRY_COMPARE(m_engine->ConnectionCount(), 0);
    QCOMPARE(m_seen->events.size(), 4);
}

void MERAGWTest::connectWhileConnectedBeginsAnew() {
    ConnectAndMonitor();
    m_client->Connect();
    QTRY_COMPARE(m_seen->events.count(connected), 2);
    QCOMPARE(m_seen->events.mid(3, 2), QStringList({disconnected, connected}));
    QTRY_COMPARE(m_engine->ConnectionCount(), 1);
}

void MERAGWTest::aLyingLengthIsErrorThenDisconnected() {
    ConnectAndMonitor();
    QByteArray lie = Frame('U', {});
    lie.replace(28, 4, QByteArray::fromHex("01000100")); // 65,537
    m_engine->SendRaw(Frame('U', "before") + lie + Frame('U', "after"));
    QTRY_COMPARE(m_seen->events.mid(3), QStringList({error, disconnected}));
    QCOMPARE(m_seen->frames.size(), 1);
    QVERIFY(!m_seen->lastError.isEmpty());
    QTRY_COMPARE(m_engine->ConnectionCount(), 0);
}

void MERAGWTest::aNetworkFaultIsErrorThenDisconnected() {
    ConnectAndMonitor();
    // A folder in the connection's place: reading from it is an error of the system, not an end.
    const int folder = ::open("/", O_RDONLY | O_DIRECTORY);
    const auto connection = static_cast<int>(m_client->findChild<QTcpSocket*>()->socketDescriptor());
    QCOMPARE(::dup2(folder, connection), connection);
    ::close(folder);
    QTRY_COMPARE(m_seen->events.mid(3), QStringList({error, disconnected}));
    QCOMPARE(m_seen->lastError, m_client->LastErrorText());
    QVERIFY(!m_seen->lastError.isEmpty());
}

void MERAGWTest::halfAFrameDoesNotReachTheNextConnection() {
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('U', "half").first(37));
    m_engine->DropConnections();
    QTRY_COMPARE(m_seen->events.last(), disconnected);
    m_seen->events.clear();
    ConnectAndMonitor();
    m_engine->SendRaw(Frame('U', "whole"));
    QTRY_COMPARE(m_seen->frames.size(), 1);
    QCOMPARE(m_seen->frames[0].data, QByteArray("whole"));
}

void MERAGWTest::garbageEndsTheConnectionOrDoesNothing() {
    ConnectAndMonitor();
    QByteArray garbage;
    for (int i = 0; i < 5000; ++i)
        garbage += static_cast<char>(i * 167 + 13);
    m_engine->SendRaw(garbage);
    m_engine->DropConnections();
    QTRY_COMPARE(m_seen->events.count(disconnected), 1);
    QVERIFY(m_seen->events.count(error) <= 1);
    QCOMPARE(m_seen->events.last(), disconnected);
}

void MERAGWTest::aReceiverMayEndTheConnectionFromWithinAFrame() {
    ConnectAndMonitor();
    connect(m_client.get(), &MERAGW::FrameArrival, m_client.get(), [this] { m_client->Disconnect(); });
    m_engine->SendRaw(Frame('U', "x").repeated(10));
    QTRY_COMPARE(m_seen->events.last(), disconnected);
    QCOMPARE(m_seen->frames.size(), 1);
}

void MERAGWTest::aReceiverMayRunItsOwnEventLoop() {
    ConnectAndMonitor();
    bool entered = false;
    connect(m_client.get(), &MERAGW::FrameArrival, m_client.get(), [&](const MonitoredFrame& frame) {
        if (std::exchange(entered, true))
            return;
        const QByteArray before = frame.data.toByteArray();
        m_engine->SendRaw(Frame('U', "third"));
        m_engine->DropConnections();
        QEventLoop loop;
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
        QCOMPARE(frame.data.toByteArray(), before); // the view still holds
    });
    m_engine->SendRaw(Frame('U', "first") + Frame('U', "second"));
    QTRY_COMPARE(m_seen->events.last(), disconnected);
    QCOMPARE(m_seen->frames.size(), 3);
    QCOMPARE(m_seen->frames[2].data, QByteArray("third"));
}

void MERAGWTest::theConnectionIsKeptAlive() {
    ConnectAndMonitor();
    const auto* socket = m_client->findChild<QTcpSocket*>();
    const auto option = [socket](int level, int name) {
        int value = 0;
        socklen_t length = sizeof value;
        getsockopt(static_cast<int>(socket->socketDescriptor()), level, name, &value, &length);
        return value;
    };
    QCOMPARE(option(SOL_SOCKET, SO_KEEPALIVE), 1);
    // A dead peer is noticed within two minutes, whether something was under way or not.
    QVERIFY(option(IPPROTO_TCP, TCP_KEEPIDLE) +
                option(IPPROTO_TCP, TCP_KEEPINTVL) * option(IPPROTO_TCP, TCP_KEEPCNT) <=
            120);
    QCOMPARE(option(IPPROTO_TCP, TCP_USER_TIMEOUT), 120000);
}

void MERAGWTest::aThousandReconnectionsLeakNothing() {
    ConnectAndMonitor();
    const qsizetype descriptors = OpenDescriptors();
    const qsizetype children = m_client->findChildren<QObject*>().size();
    for (int i = 0; i < 1000; ++i) {
        if (i % 3 == 0)
            m_engine->DropConnections();
        else if (i % 3 == 1)
            m_client->Disconnect();
        m_client->Connect();
        QTRY_VERIFY(m_client->IsConnected());
    }
    QTRY_COMPARE(m_engine->ConnectionCount(), 1);
    QCOMPARE(m_client->findChildren<QObject*>().size(), children);
    QCOMPARE(OpenDescriptors(), descriptors);
}

void MERAGWTest::aFrameWithoutPathGoesOutAsM_data() {
    QTest::addColumn<QString>("destination");
    for (const auto* text : {u"CQ", u"CQ ", u" CQ  ", u"CQ ,", u"CQ ,, ,"})
        QTest::newRow(qPrintable(QString::fromUtf16(text))) << QString::fromUtf16(text);
}

void MERAGWTest::aFrameWithoutPathGoesOutAsM() {
    QFETCH(QString, destination);
    ConnectAndMonitor();
    QVERIFY(m_client->SendUnproto(3, QStringLiteral("N0CALL-7"), destination, "hello\r"));
    QTRY_COMPARE(m_received.size(), 4);
    QCOMPARE(m_received.last(), QByteArray::fromHex("02000000"
                                                    "4d00f000"
                                                    "4e3043414c4c2d370000"
                                                    "43510000000000000000"
                                                    "0600000000000000") +
                                    "hello\r");
}

void MERAGWTest::aPathGoesOutAsV_data() {
    QTest::addColumn<QString>("destination");
    for (const auto* text : {u"CQ QIRAN-1,WIDE2-2", u"CQ QIRAN-1, WIDE2-2", u"CQ   QIRAN-1,,WIDE2-2,"})
        QTest::newRow(qPrintable(QString::fromUtf16(text))) << QString::fromUtf16(text);
}

void MERAGWTest::aPathGoesOutAsV() {
    QFETCH(QString, destination);
    ConnectAndMonitor();
    QVERIFY(m_client->SendUnproto(1, QStringLiteral("N0CALL-7"), destination, "hello\r"));
    QTRY_COMPARE(m_received.size(), 4);
    QCOMPARE(m_received.last(), QByteArray::fromHex("00000000"
                                                    "5600f000"
                                                    "4e3043414c4c2d370000"
                                                    "43510000000000000000"
                                                    "1b00000000000000"
                                                    "02"
                                                    "514952414e2d31000000"
                                                    "57494445322d32000000") +
                                    "hello\r");
}

void MERAGWTest::callsignsOfNineCharactersGoOut() {
    ConnectAndMonitor();
    QVERIFY(
        m_client->SendUnproto(1, QStringLiteral("ABCDEF-10"), QStringLiteral("GHIJKL-11 MNOPQR-12"), "x"));
    QTRY_COMPARE(m_received.size(), 4);
    QCOMPARE(m_received.last().mid(8, 20), QByteArray("ABCDEF-10\0GHIJKL-11\0", 20));
    QCOMPARE(m_received.last().mid(37, 10), QByteArray("MNOPQR-12\0", 10));
}

void MERAGWTest::whatWasSentComesBackTransmitted() {
    ConnectAndMonitor();
    const QString via = QStringLiteral("CQ A,B,C,D,E,F,G"); // seven, the most
    QVERIFY(m_client->SendUnproto(1, QStringLiteral("N0CALL-7"), via, "test\r"));
    QTRY_COMPARE(m_seen->texts.size(), 1);
    QCOMPARE(m_seen->texts[0].kind, 4);
    QVERIFY(
        m_seen->texts[0].data.startsWith(" 1:Fm N0CALL-7 To CQ Via A,B,C,D,E,F,G <UI pid=F0 Len=5 PF=0 >["));
    QVERIFY(m_seen->texts[0].data.endsWith("]\rtest\r\r"));
}

void MERAGWTest::whatCannotBeSentIsRefused_data() {
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("number");
    const QString me = QStringLiteral("N0CALL");
    const QString cq = QStringLiteral("CQ");
    QTest::newRow("port 0") << 0 << me << cq << 1 << int(MERAGW::NoSuchPort);
    QTest::newRow("port -1") << -1 << me << cq << 1 << int(MERAGW::NoSuchPort);
    QTest::newRow("port beyond a byte") << 257 << me << cq << 1 << int(MERAGW::NoSuchPort);
    QTest::newRow("no source") << 1 << QString() << cq << 1 << int(MERAGW::BadCallsign);
    QTest::newRow("no destination") << 1 << me << QStringLiteral(" ") << 1 << int(MERAGW::BadCallsign);
    QTest::newRow("long source") << 1 << QStringLiteral("ABCDEFG-15") << cq << 1 << int(MERAGW::BadCallsign);
    QTest::newRow("long destination")
        << 1 << me << QStringLiteral("ABCDEFG-15") << 1 << int(MERAGW::BadCallsign);
    QTest::newRow("long digipeater") << 1 << me << QStringLiteral("CQ A,ABCDEFG-15") << 1
                                     << int(MERAGW::BadCallsign);
    QTest::newRow("beyond ASCII") << 1 << QStringLiteral("N0C\u00C4LL") << cq << 1
                                  << int(MERAGW::BadCallsign);
    QTest::newRow("eight digipeaters")
        << 1 << me << QStringLiteral("CQ A,B,C,D,E,F,G,H") << 1 << int(MERAGW::TooManyDigipeaters);
    QTest::newRow("too long") << 1 << me << cq << 65537 << int(MERAGW::FrameTooLong);
    QTest::newRow("too long with its path")
        << 1 << me << QStringLiteral("CQ A") << 65530 << int(MERAGW::FrameTooLong);
}

void MERAGWTest::whatCannotBeSentIsRefused() {
    QFETCH(int, port);
    QFETCH(QString, source);
    QFETCH(QString, destination);
    QFETCH(int, size);
    QFETCH(int, number);
    ConnectAndMonitor();
    QVERIFY(!m_client->SendUnproto(static_cast<qint16>(port), source, destination, QByteArray(size, 'x')));
    QCOMPARE(m_client->LastErrorNumber(), number);
    QVERIFY(!m_client->LastErrorText().isEmpty());
    QVERIFY(m_client->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), "ok"));
    QTRY_COMPARE(m_received.size(), 4); // nothing of the refused one went out
    QVERIFY(m_received.last().endsWith("ok"));
}

void MERAGWTest::nothingIsSentWithoutAConnection() {
    QVERIFY(!m_client->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), "x"));
    QCOMPARE(m_client->LastErrorNumber(), int(MERAGW::NotConnected));
    m_client->Connect();
    QVERIFY(!m_client->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), "x"));
}

void MERAGWTest::anEngineThatDoesNotReadFillsNoMemory() {
    QTcpServer deaf;
    ListenLow(deaf);
    m_client->SetPort(static_cast<qint16>(deaf.serverPort()));
    deaf.pauseAccepting();
    Connect();
    int sent = 0;
    while (m_client->SendUnproto(1, QStringLiteral("N0CALL"), QStringLiteral("CQ"), QByteArray(60000, 'x'))) {
        QVERIFY(++sent < 1000);
        QCoreApplication::processEvents();
    }
    QCOMPARE(m_client->LastErrorNumber(), int(MERAGW::EngineDoesNotRead));
    QVERIFY(m_client->findChild<QTcpSocket*>()->bytesToWrite() <= 256 * 1024);
    QVERIFY(m_client->IsConnected());
}

QTEST_GUILESS_MAIN(MERAGWTest)
#include "MERAGWTest.moc"
