#include "e2e/DirewolfRig.h"
#include "foundation/text/Clock.h"
#include "link/ClientEvents.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

#include <memory>

/// The link against a real packet engine that demodulates real audio.
class DirewolfLinkTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void itTellsVersionAndItsOnePort();
    void whatIsOnTheAirArrives();
    void whatIsSentComesBackTransmitted();
    void anEngineThatEndsAndComesBackIsConnectedAgain();

private:
    DirewolfRig m_engine;
    TemporaryProgramFolder m_folder;
    clsIni m_ini{m_folder.IniFile()};
    AgwSettings m_settings{m_ini};
    const Clock m_clock{};
    std::unique_ptr<AgwLink> m_link;
    std::unique_ptr<ClientEvents> m_seen;
    QStringList m_lines;
};

void DirewolfLinkTest::initTestCase() {
    const QString fault = m_engine.Start();
    if (fault.contains(QStringLiteral("missing")))
        QSKIP(qPrintable(fault));
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

void DirewolfLinkTest::cleanupTestCase() {
    QVERIFY(m_engine.End());
}

void DirewolfLinkTest::init() {
    m_lines.clear();
    m_settings.setStrAgwHost(QStringLiteral("localhost"));
    m_settings.setIntAgwPort(m_engine.AgwPort());
    m_link = std::make_unique<AgwLink>(m_settings, m_clock);
    m_link->SetRetryInterval(500);
    connect(m_link.get(), &AgwLink::StatusText, this, [this](const QString& text) { m_lines.append(text); });
    m_seen = std::make_unique<ClientEvents>(m_link->Client());
    m_link->Connect();
    QTRY_COMPARE_WITH_TIMEOUT(m_lines.size(), 3, 20000);
}

void DirewolfLinkTest::cleanup() {
    m_seen.reset();
    m_link.reset();
}

void DirewolfLinkTest::itTellsVersionAndItsOnePort() {
    QCOMPARE(m_lines[0], QStringLiteral("*** AGW-Connected to - localhost\r\n"));
    QVERIFY2(m_lines[1].startsWith(QStringLiteral("*** AGWPE V2005.")), qPrintable(m_lines[1]));
    QVERIFY2(m_lines[2].startsWith(QStringLiteral("*** Port1 ")), qPrintable(m_lines[2]));
    QCOMPARE(m_link->PortCount(), 1);
}

void DirewolfLinkTest::whatIsOnTheAirArrives() {
    QVERIFY(m_engine.Command("play XQ9ZZ-1>APRS,WIDE2-2:T#001,10,20,30,40,0,0,00101111,0"));
    QVERIFY(m_engine.Command("play QIRAN-3>APRS,QIRAN-1:T#002,11,21,31,41,0,0,00001111,0"));
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->frames.size(), 2, 30000);
    const auto [port, source, destination, data] = m_seen->frames[0];
    QCOMPARE(port, 1);
    QCOMPARE(source, QByteArray("XQ9ZZ-1"));
    QCOMPARE(destination, QByteArray("APRS"));
    QVERIFY2(data.startsWith(" 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len="), data.constData());
    QVERIFY2(data.contains("]\rT#001,10,20,30,40,0,0,00101111,0"), data.constData());
    QVERIFY(!data.contains('\0'));
    QCOMPARE(m_seen->frames[1].source, QByteArray("QIRAN-3"));
}

void DirewolfLinkTest::whatIsSentComesBackTransmitted() {
    m_link->SendUnproto(1, QStringLiteral("N0CALL-7"), QStringLiteral("CQ "), QStringLiteral("test tx\r"));
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->texts.size(), 1, 30000);
    m_link->SendUnproto(1, QStringLiteral("N0CALL-7"), QStringLiteral("CQ QIRAN-1,WIDE2-2"),
                        QStringLiteral("test tx via\r"));
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->texts.size(), 2, 30000);
    QCOMPARE(m_seen->texts[0].kind, 4);
    QVERIFY2(m_seen->texts[0].data.startsWith(" 1:Fm N0CALL-7 To CQ <UI pid=F0 Len=8 PF=0 >["),
             m_seen->texts[0].data.constData());
    QVERIFY(m_seen->texts[0].data.endsWith("]\rtest tx\r\r"));
    QVERIFY2(m_seen->texts[1].data.startsWith(
                 " 1:Fm N0CALL-7 To CQ Via QIRAN-1,WIDE2-2 <UI pid=F0 Len=12 PF=0 >["),
             m_seen->texts[1].data.constData());
}

void DirewolfLinkTest::anEngineThatEndsAndComesBackIsConnectedAgain() {
    QVERIFY(m_engine.Command("stop"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_link->blnConectedToAgw(), 20000);
    QVERIFY(m_lines.contains(QStringLiteral("*** AGW-Disconnected from - localhost\r\n"
                                            "Will automatically retry in 30 seconds time.\r\n")));
    QVERIFY(m_engine.Command("start"));
    QTRY_VERIFY_WITH_TIMEOUT(m_link->blnConectedToAgw(), 20000);
    QVERIFY(m_engine.Command("play XQ9ZZ-1>APRS:T#003,1,2,3,4,0,0,00001111,0"));
    QTRY_COMPARE_WITH_TIMEOUT(m_seen->frames.size(), 1, 30000);
}

QTEST_GUILESS_MAIN(DirewolfLinkTest)
#include "DirewolfLinkTest.moc"
