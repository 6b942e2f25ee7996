#include "app/MainWindowRig.h"
#include "orbit/panel/framLocation.h"
#include "reliability/ProcessFigures.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>
#include <QTextBlock>

#include <atomic>
#include <chrono>
#include <mutex>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

/// The whole program with all its lasting windows open and logging on, under more than it will ever hear.
class LoadTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyFrameOfASoakIsDecodedAndLoggedInConstantMemory();
    void aFloodLeavesTheWindowsAlive();
    void theNewestFrameShownIsNew_data();
    void theNewestFrameShownIsNew();
    void thirtyThousandObjectsDelayTheStartLittleAndNoRefresh();
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

void OpenWindows(MainWindowRig& rig) {
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    rig.Find<QAction>("mnuMap")->trigger();
}

void OpenEverything(MainWindowRig& rig) {
    OpenWindows(rig);
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

/// An engine in a thread of its own that sends as fast as the wire takes it, or so many frames a second.
class Flood {
public:
    using Clock = std::chrono::steady_clock;

    explicit Flood(int framesASecond = 0)
        : m_pause(framesASecond == 0 ? 0 : 1000000 * framesAtOnce / framesASecond) {
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

    /// How long ago the wire took a frame, in ms.
    qint64 AgeOf(int frame) const {
        const auto batch = static_cast<std::size_t>(frame / framesAtOnce);
        const std::lock_guard lock(m_mutex);
        return batch < m_times.size()
                   ? std::chrono::round<std::chrono::milliseconds>(Clock::now() - m_times[batch]).count()
                   : 0; // its sender has not yet come to say so
    }

private:
    static constexpr int framesAtOnce = 50;

    void Run() {
        m_client = accept(m_server, nullptr, nullptr);
        auto next = Clock::now();
        while (!m_stop) {
            std::this_thread::sleep_until(next);
            next += m_pause;
            QByteArray batch;
            for (int i = 0; i < framesAtOnce; ++i)
                batch += HeardBytes(m_sent + i);
            for (qsizetype at = 0; at < batch.size();) {
                const ssize_t taken = send(m_client, batch.constData() + at,
                                           static_cast<std::size_t>(batch.size() - at), MSG_NOSIGNAL);
                if (taken <= 0)
                    return;
                at += taken;
            }
            m_sent += framesAtOnce;
            const std::lock_guard lock(m_mutex);
            m_times.push_back(Clock::now());
        }
        m_isOver = true;
    }

    const std::chrono::microseconds m_pause;
    mutable std::mutex m_mutex;
    std::vector<Clock::time_point> m_times; // of every batch
    int m_server = -1;
    std::atomic<int> m_client = -1;
    int m_port = 0;
    std::thread m_thread;
    std::atomic<bool> m_stop = false;
    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_sent = 0;
};

/// Watches the monitor's painting: what was painted last is shown until the next, and grows older.
class NewestShown : public QObject {
public:
    NewestShown(QPlainTextEdit& monitor, const Flood& flood)
        : m_monitor(monitor)
        , m_flood(flood) {
        monitor.viewport()->installEventFilter(this);
    }

    qint64 Oldest() const { return m_oldest; }
    int Pictures() const { return m_pictures; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint)
            return QObject::eventFilter(watched, event);
        if (m_frame >= 0)
            m_oldest = std::max(m_oldest, m_flood.AgeOf(m_frame));
        for (QTextBlock line = m_monitor.document()->lastBlock(); line.isValid(); line = line.previous())
            if (line.text().startsWith(u"T#")) {
                m_frame = line.text().sliced(2).section(u',', 0, 0).toInt();
                ++m_pictures;
                break;
            }
        return QObject::eventFilter(watched, event);
    }

private:
    QPlainTextEdit& m_monitor;
    const Flood& m_flood;
    int m_frame = -1;
    qint64 m_oldest = 0;
    int m_pictures = 0;
};

QByteArray WithChecksum(const QByteArray& line) {
    int sum = 0;
    for (const char c : line)
        sum += c >= '0' && c <= '9' ? c - '0' : c == '-' ? 1 : 0;
    return line + QByteArray::number(sum % 10) + "\r\n";
}

QByteArray Elements(const QByteArray& number) {
    return "OBJECT " + number + "\r\n" +
           WithChecksum("1 " + number + "U 26001A   26325.50000000  .00000000  00000-0  00000-0 0  999") +
           WithChecksum("2 " + number + "  97.5000 100.0000 0010000 100.0000 260.0000 15.00000000    1");
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
    OpenWindows(rig);
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
    for (const char key : QByteArray("typed in a flood")) {
        QElapsedTimer typed;
        typed.start();
        // As the window system delivers it: behind what already waits.
        QCoreApplication::postEvent(
            line, new QKeyEvent(QEvent::KeyPress, 0, Qt::NoModifier, QString(QLatin1Char(key))));
        QTRY_VERIFY(line->text().endsWith(QLatin1Char(key)));
        slowestKey = std::max(slowestKey, typed.elapsed());
        const QString shown = rig.Monitor().right(60);
        QTRY_VERIFY2(rig.Monitor().right(60) != shown, "the monitor goes on");
    }
    QCOMPARE(line->text(), u"typed in a flood"_s);
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

void LoadTest::theNewestFrameShownIsNew_data() {
    QTest::addColumn<int>("framesASecond");
    QTest::addRow("2,000 a second") << 2000;
    QTest::addRow("as fast as the wire takes them") << 0;
}

void LoadTest::theNewestFrameShownIsNew() {
    QFETCH(const int, framesASecond);
    Flood flood(framesASecond);
    MainWindowRig rig;
    rig.Set("AGWPE", "HOST_PORT", QString::number(flood.Port()));
    OpenWindows(rig);
    auto* monitor = rig.Find<QPlainTextEdit>("txtMon");
    QVERIFY(monitor->isVisible());
    QTRY_VERIFY(rig.Monitor().contains(u"T#"_s));
    const NewestShown newest(*monitor, flood);
    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY_WITH_TIMEOUT(timer.elapsed() > 2000 && newest.Pictures() > 5, 60000);
    flood.Stop();
    QTRY_VERIFY(flood.IsOver());
    // However fast they came: each is decoded and logged.
    const QByteArray last = "T#" + QByteArray::number(flood.Sent() - 1) + ',';
    QTRY_VERIFY_WITH_TIMEOUT(Log(rig).right(400).contains(last), 60000);
    QCOMPARE(LoggedFrames(Log(rig)), flood.Sent());
    QVERIFY(rig.Cell("gTlm2", 1, TelemetryGrid::LabelA).startsWith(u"T#%1 "_s.arg(flood.Sent() - 1)));
    qInfo("%d frames, %d pictures of the monitor: the newest frame shown was at most %lld ms old",
          flood.Sent(), newest.Pictures(), static_cast<long long>(newest.Oldest()));
    // Faster than it can be shown, the wire's own buffers hold seconds of it.
    QVERIFY2(framesASecond == 0 || newest.Oldest() < 5000, "the windows fall behind");
}

void LoadTest::thirtyThousandObjectsDelayTheStartLittleAndNoRefresh() {
    struct Cost {
        qint64 start = -1;   // ms
        qint64 refresh = -1; // us
    };
    const auto measure = [](int objects) {
        MainWindowRig rig;
        QByteArray file;
        for (int k = 0; k < objects; ++k)
            file += Elements(QByteArray::number(40000 + k));
        // The two that are tracked come last.
        rig.folder.Write(u"Keps/all.txt"_s, file + Elements("90417") + Elements("25544"));
        rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
        rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
        rig.MakeWindow();
        QElapsedTimer timer;
        timer.start();
        if (!rig.window->Load() || !rig.presenter.Texts().isEmpty())
            return Cost{};
        const qint64 start = timer.elapsed();
        auto* panel = rig.Find<framLocation>("framLocation");
        constexpr int refreshes = 200;
        timer.start();
        for (int i = 0; i < refreshes; ++i)
            panel->Refresh();
        return Cost{start, timer.nsecsElapsed() / 1000 / refreshes};
    };
    measure(0); // what only the first window costs
    const Cost few = measure(0);
    const Cost many = measure(30000);
    QVERIFY(few.start >= 0 && many.start >= 0);
    qInfo("the tracked two alone: start %lld ms, a refresh %lld us; among 30,000 more: %lld ms, %lld us",
          static_cast<long long>(few.start), static_cast<long long>(few.refresh),
          static_cast<long long>(many.start), static_cast<long long>(many.refresh));
    QVERIFY2(many.start < few.start + 15000, "the start hangs");
    QVERIFY2(many.refresh < 20 * few.refresh + 5000, "a refresh looks through the folder");
}

QTEST_MAIN(LoadTest)
#include "LoadTest.moc"
