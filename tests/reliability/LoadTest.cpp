#include "app/MainWindowRig.h"
#include "reliability/ProcessFigures.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>

#include <atomic>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>

using namespace Qt::StringLiterals;

/// The whole program with all its lasting windows open and logging on, under more than it will ever hear.
class LoadTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyFrameOfASoakIsDecodedAndLoggedInConstantMemory();
    void aFloodLeavesTheWindowsAlive();
    void thirtyThousandObjectsDelayTheStartLittle();
};

namespace {

constexpr int framesOfABatch = 200;

QByteArray Telemetry(int number) {
    return "T#" + QByteArray::number(number) + ',' + QByteArray::number(number % 251) +
           ",20,30,40,0,0,00101111,0";
}

QByteArray HeardBytes(int number) {
    return EngineSimulator::HeardBytes(
        {.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = Telemetry(number)}, "12:00:00");
}

void OpenEverything(MainWindowRig& rig) {
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    rig.Find<QAction>("mnuMap")->trigger();
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
}

QWidget* Terminal() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == u"frmTerm")
            return window;
    return nullptr;
}

QByteArray Log(const MainWindowRig& rig) {
    return rig.folder.Read(u"LOGS/20261121.TXT"_s);
}

// How many of the telemetry lines the log holds; -1 unless they are there in order without a gap.
int LoggedFrames(const QByteArray& log) {
    int count = 0;
    for (qsizetype at = log.indexOf("T#"); at >= 0; at = log.indexOf("T#", at + 2), ++count)
        if (log.sliced(at + 2, log.indexOf(',', at) - at - 2).toInt() != count)
            return -1;
    return count;
}

/// An engine in a thread of its own that sends as fast as the wire takes it.
class Flood {
public:
    Flood() {
        m_server = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        do
            address.sin_port = htons(static_cast<quint16>(QRandomGenerator::global()->bounded(10000, 32768)));
        while (bind(m_server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0);
        listen(m_server, 1);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { Run(); });
    }
    ~Flood() {
        Stop();
        shutdown(m_server, SHUT_RDWR); // frees an accept or a send that waits
        shutdown(m_client, SHUT_RDWR);
        m_thread.join();
        close(m_client);
        close(m_server);
    }
    int Port() const { return m_port; }

    /// Ends the flood after a whole frame; the wire must still be read until it IsOver.
    void Stop() { m_stop = true; }
    bool IsOver() const { return m_isOver; }
    int Sent() const { return m_sent; }

private:
    void Run() {
        m_client = accept(m_server, nullptr, nullptr);
        while (!m_stop) {
            QByteArray batch;
            for (int i = 0; i < 50; ++i)
                batch += HeardBytes(m_sent + i);
            for (qsizetype at = 0; at < batch.size();) {
                const ssize_t taken = send(m_client, batch.constData() + at,
                                           static_cast<std::size_t>(batch.size() - at), MSG_NOSIGNAL);
                if (taken <= 0)
                    return;
                at += taken;
            }
            m_sent += 50;
        }
        m_isOver = true;
    }

    int m_server = -1;
    std::atomic<int> m_client = -1;
    int m_port = 0;
    std::thread m_thread;
    std::atomic<bool> m_stop = false;
    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_sent = 0;
};

QByteArray WithChecksum(const QByteArray& line) {
    int sum = 0;
    for (const char c : line)
        sum += c >= '0' && c <= '9' ? c - '0' : c == '-' ? 1 : 0;
    return line + QByteArray::number(sum % 10) + "\r\n";
}

} // namespace

void LoadTest::everyFrameOfASoakIsDecodedAndLoggedInConstantMemory() {
    const int frames = ProcessFigures::IsLongRun() ? 1000000 : 100000;
    MainWindowRig rig;
    OpenEverything(rig);
    qint64 early = 0;
    QElapsedTimer timer;
    timer.start();
    for (int first = 0; first < frames; first += framesOfABatch) {
        QByteArray batch;
        for (int i = 0; i < framesOfABatch; ++i)
            batch += HeardBytes(first + i);
        rig.engine.SendRaw(batch);
        // The cell shows the last frame of the batch: it was decoded, and by then so were those before it.
        const QString label = u"T#%1 "_s.arg(first + framesOfABatch - 1);
        while (!rig.Cell("gTlm2", 1, TelemetryGrid::LabelA).startsWith(label)) {
            QVERIFY2(timer.elapsed() < 200000, qPrintable(label));
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        }
        QCOMPARE(rig.Cell("gTlm2", 1, TelemetryGrid::ValueA).toDouble(), (first + framesOfABatch - 1) % 251);
        if (first + framesOfABatch == frames / 10)
            early = ProcessFigures::ResidentKib();
    }
    const qint64 seconds = timer.elapsed() / 1000;
    const qint64 grown = ProcessFigures::ResidentKib() - early;
    QCOMPARE(LoggedFrames(Log(rig)), frames);
    qInfo("%d frames in %lld s; memory after the last nine tenths %+lld KiB", frames,
          static_cast<long long>(seconds), static_cast<long long>(grown));
    if (ProcessFigures::IsMemoryKnown())
        QVERIFY2(grown <= 2048, "the soak costs memory");
}

void LoadTest::aFloodLeavesTheWindowsAlive() {
    Flood flood;
    MainWindowRig rig;
    rig.Set("AGWPE", "HOST_PORT", QString::number(flood.Port()));
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    rig.Find<QAction>("mnuMap")->trigger();
    QTRY_VERIFY(rig.Monitor().contains(u"T#"_s));

    QTimer tick;
    tick.setInterval(10);
    tick.setTimerType(Qt::PreciseTimer);
    QElapsedTimer since;
    qint64 latest = 0;
    connect(&tick, &QTimer::timeout, this, [&] { latest = std::max(latest, since.restart() - 10); });
    since.start();
    tick.start();
    qint64 slowestKey = 0;
    auto* line = Terminal()->findChild<QLineEdit*>(u"txtTx"_s);
    const auto before = rig.Monitor().right(60);
    for (const char key : QByteArray("typed in a flood")) {
        QElapsedTimer typed;
        typed.start();
        // As the window system delivers it: behind what already waits.
        QCoreApplication::postEvent(
            line, new QKeyEvent(QEvent::KeyPress, 0, Qt::NoModifier, QString(QLatin1Char(key))));
        QTRY_VERIFY(line->text().endsWith(QLatin1Char(key)));
        slowestKey = std::max(slowestKey, typed.elapsed());
        QTest::qWait(100);
    }
    QCOMPARE(line->text(), u"typed in a flood"_s);
    QVERIFY2(rig.Monitor().right(60) != before, "the monitor goes on");
    tick.stop();
    flood.Stop();
    QTRY_VERIFY(flood.IsOver());
    const int sent = flood.Sent();
    const QByteArray last = "T#" + QByteArray::number(sent - 1) + ',';
    QTRY_VERIFY_WITH_TIMEOUT(Log(rig).right(400).contains(last), 60000);
    QCOMPARE(LoggedFrames(Log(rig)), sent);
    QTRY_VERIFY(rig.Monitor().contains(QString::fromLatin1(last)));
    QVERIFY(rig.Cell("gTlm2", 1, TelemetryGrid::LabelA).startsWith(u"T#%1 "_s.arg(sent - 1)));
    qInfo("flood of %d frames: a 10 ms timer late by at most %lld ms, a key by %lld ms", sent,
          static_cast<long long>(latest), static_cast<long long>(slowestKey));
    QVERIFY2(latest < 2000 && slowestKey < 4000, "the windows hang");
}

void LoadTest::thirtyThousandObjectsDelayTheStartLittle() {
    const auto start = [](int objects) {
        MainWindowRig rig;
        QByteArray file;
        for (int k = 0; k < objects; ++k) {
            const QByteArray number = QByteArray::number(10000 + k);
            file +=
                "OBJECT " + number + "\r\n" +
                WithChecksum("1 " + number +
                             "U 26001A   26325.50000000  .00000000  00000-0  00000-0 0  999") +
                WithChecksum("2 " + number + "  97.5000 100.0000 0010000 100.0000 260.0000 15.00000000    1");
        }
        rig.folder.Write(u"Keps/all.txt"_s, file);
        rig.MakeWindow();
        QElapsedTimer timer;
        timer.start();
        if (!rig.window->Load())
            return qint64(-1);
        const qint64 took = timer.elapsed();
        return objects > 15544 && rig.presenter.Texts().contains(u"No Keps found for QIRAN and ISS."_s)
                   ? -1
                   : took;
    };
    start(0); // what only the first window costs
    const qint64 empty = start(0);
    const qint64 full = start(30000);
    QVERIFY(empty >= 0 && full >= 0);
    qInfo("start beside an empty element folder %lld ms, beside 30,000 objects %lld ms",
          static_cast<long long>(empty), static_cast<long long>(full));
    QVERIFY2(full < empty + 15000, "the start hangs");
}

QTEST_MAIN(LoadTest)
#include "LoadTest.moc"
