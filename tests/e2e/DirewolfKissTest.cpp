#include "e2e/DirewolfRig.h"
#include "foundation/text/Clock.h"
#include "link/ClientEvents.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "link/kiss/KissLink.h"
#include "support/TemporaryProgramFolder.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

/// An engine's text without the time in its header.
QByteArray WithoutTime(const QByteArray& text) {
    static const QRegularExpression time(QStringLiteral("\\[\\d\\d:\\d\\d:\\d\\d\\]\r"));
    return QString::fromLatin1(text).replace(time, QStringLiteral("[]\r")).toLatin1();
}

} // namespace

/// The KISS link beside the AGW client, both on one real packet engine that demodulates real audio: what they
/// show is the same.
class DirewolfKissTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void whatIsOnTheAirIsShownAsTheOtherPortShowsIt();
    void aNulIsKeptThatTheOtherPortLoses();
    void whatIsSentIsTransmittedAndShownAsTheOtherPortShowsIt();
    void rawAndMonitoredFormsMarry();
    void anEngineThatEndsAndComesBackIsConnectedAgain();

private:
    struct Kept {
        QByteArray source, path, information, text;
    };

    DirewolfRig m_engine;
    const Clock m_clock{};
    std::unique_ptr<KissLink> m_link;
    std::unique_ptr<MERAGW> m_client;
    std::unique_ptr<ClientEvents> m_seen;
    QStringList m_lines;
    QList<Kept> m_heard;
};

void DirewolfKissTest::initTestCase() {
    const QString fault = m_engine.Start();
    if (fault.contains(QStringLiteral("missing")))
        QSKIP(qPrintable(fault));
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

void DirewolfKissTest::cleanupTestCase() {
    QVERIFY(m_engine.End());
}

void DirewolfKissTest::init() {
    m_lines.clear();
    m_heard.clear();
    m_client = std::make_unique<MERAGW>();
    m_client->SetHost(QStringLiteral("localhost"));
    m_client->SetPort(m_engine.AgwPort());
    m_seen = std::make_unique<ClientEvents>(*m_client);
    m_client->Connect();
    m_link = std::make_unique<KissLink>(
        [this] {
            return KissAddress{QStringLiteral("localhost"), m_engine.KissPort()};
        },
        m_clock);
    m_link->SetRetryInterval(500);
    connect(m_link.get(), &PacketLink::StatusText, this,
            [this](const QString& text) { m_lines.append(text); });
    connect(m_link.get(), &PacketLink::Heard, this, [this](const HeardFrame& frame) {
        m_heard.append({frame.source.toByteArray(), frame.path.toByteArray(), frame.information.toByteArray(),
                        frame.engineText.toByteArray()});
    });
    m_link->Connect();
    QTRY_COMPARE_WITH_TIMEOUT(m_lines, QStringList{QStringLiteral("*** KISS-Connected to - localhost\r\n")},
                              20000);
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->events.size(), 3, 20000); // connected, version, ports
}

void DirewolfKissTest::cleanup() {
    m_link.reset();
    m_seen.reset();
    m_client.reset();
}

void DirewolfKissTest::whatIsOnTheAirIsShownAsTheOtherPortShowsIt() {
    const QByteArrayList frames{"XQ9ZZ-1>APRS,WIDE2-2:T#001,10,20,30,40,0,0,00101111,0",
                                "QIRAN-3>APRS:T#002,11,21,31,41,0,0,00001111,0",
                                "XQ9ZZ-15>APRS,QIRAN-1,RELAY,WIDE2-2:hello", "A1>B2:x"};
    for (const QByteArray& frame : frames)
        QVERIFY(m_engine.Command("play " + frame));
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), frames.size(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->frames.size(), frames.size(), 30000);
    for (qsizetype i = 0; i < frames.size(); ++i) {
        QCOMPARE(WithoutTime(m_heard[i].text), WithoutTime(m_seen->frames[i].data));
        QCOMPARE(m_heard[i].source, m_seen->frames[i].source);
    }
    QVERIFY(m_heard[0].information.startsWith("T#001,10,20,30,40,0,0,00101111,0"));
    QCOMPARE(m_heard[2].path, QByteArray("QIRAN-1,RELAY,WIDE2-2"));
}

void DirewolfKissTest::aNulIsKeptThatTheOtherPortLoses() {
    QVERIFY(m_engine.Command("play XQ9ZZ-1>APRS:before<0x00>after"));
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), 1, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->frames.size(), 1, 30000);
    QVERIFY(m_heard[0].information.startsWith(QByteArrayView("before\0after", 12)));
    QVERIFY(m_seen->frames[0].data.endsWith("\rbefore\r"));
}

void DirewolfKissTest::whatIsSentIsTransmittedAndShownAsTheOtherPortShowsIt() {
    m_link->SendUnproto(1, QStringLiteral("N0CALL-7"), QStringLiteral("CQ "), QStringLiteral("test tx\r"));
    m_link->SendUnproto(1, QStringLiteral("N0CALL-7"), QStringLiteral("CQ QIRAN-1,WIDE2-2"),
                        QStringLiteral("test tx via\r"));
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->texts.size(), 2, 30000);
    QCOMPARE(m_heard.size(), 2);
    for (qsizetype i = 0; i < 2; ++i) {
        QCOMPARE(m_seen->texts[i].kind, 4);
        QCOMPARE(WithoutTime(m_heard[i].text), WithoutTime(m_seen->texts[i].data));
    }
}

void DirewolfKissTest::rawAndMonitoredFormsMarry() {
    QList<Kept> handed;
    TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    AgwSettings settings(ini);
    settings.setStrAgwHost(QStringLiteral("localhost"));
    settings.setIntAgwPort(m_engine.AgwPort());
    AgwLink link(settings, m_clock);
    link.SetWantsRawFrames(true);
    connect(&link, &PacketLink::Heard, this, [&handed](const HeardFrame& frame) {
        handed.append({frame.source.toByteArray(), frame.path.toByteArray(), frame.information.toByteArray(),
                       frame.engineText.toByteArray()});
        QVERIFY(!frame.raw.isEmpty());
    });
    link.Connect();
    QTRY_COMPARE_WITH_TIMEOUT(link.PortCount(), 1, 20000);
    const QByteArrayList frames{"XQ9ZZ-1>APRS,QIRAN-1*,WIDE2-2:T#001,10,20,30,40,0,0,00101111,0",
                                "XQ9ZZ-1>APRS:a<0x00>b", "XQ9ZZ-1>APRS:text<0x0d>", "XQ9ZZ-1>APRS:text"};
    for (const QByteArray& frame : frames)
        QVERIFY(m_engine.Command("play " + frame));
    QTRY_COMPARE_WITH_TIMEOUT(handed.size(), frames.size(), 30000);
    for (qsizetype i = 0; i < frames.size(); ++i)
        QCOMPARE(WithoutTime(handed[i].text), WithoutTime(m_seen->frames[i].data));
    QCOMPARE(handed[0].path, QByteArray("QIRAN-1*,WIDE2-2"));
    QVERIFY(handed[0].information.startsWith("T#001,10,20,30,40,0,0,00101111,0"));
    QCOMPARE(handed[1].information, QByteArray("a")); // what is decoded is what the text shows
}

void DirewolfKissTest::anEngineThatEndsAndComesBackIsConnectedAgain() {
    QVERIFY(m_engine.Command("stop"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_link->blnConectedToAgw(), 20000);
    QVERIFY(m_lines.contains(QStringLiteral("*** KISS-Disconnected from - localhost\r\n"
                                            "Will automatically retry in 30 seconds time.\r\n")));
    QVERIFY(m_engine.Command("start"));
    QTRY_VERIFY_WITH_TIMEOUT(m_link->blnConectedToAgw(), 20000);
    QVERIFY(m_engine.Command("play XQ9ZZ-1>APRS:T#003,1,2,3,4,0,0,00001111,0"));
    QTRY_COMPARE_WITH_TIMEOUT(m_heard.size(), 1, 30000);
}

QTEST_GUILESS_MAIN(DirewolfKissTest)
#include "DirewolfKissTest.moc"
