#include "station/terminal/Transmitter.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "station/RecordingLink.h"
#include "station/identity/Station.h"
#include "support/RecordingPresenter.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString noCallsign =
    u"To be able to transmit, you must input your callsign in 'Station Information'."_s;
const QString noDestination =
    u"To be able to transmit, you must put a valid AX25 callsign or alias in 'To'."_s;
const QString notConnected = u"To be able to transmit, you must be connected to AGWPE."_s;
const QString noPosition = u"To be able to transmit a beacon, you must input your latitude and longitude in "
                           u"'Station Information'."_s;

} // namespace

class TransmitterTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void theVersionMakesTheDestination_data();
    void theVersionMakesTheDestination();
    void withoutCallsignNothingIsSent();
    void withoutDestinationALineIsRefusedButNotABeacon();
    void withoutConnectionItWarnsAndSendsOnce();
    void aPasteWithoutConnectionWarnsOnce();
    void portZeroAndAnEmptyOneAreOne();
    void aPortBeyond16BitsIsRefused();
    void anEmptyPathLeavesOneBlank();
    void thePositionBeaconIsAnAprsPosition();
    void theLocatorBeaconIsAnAprsStatus();
    void beaconsNeedTheirPosition();
    void aStationAtZeroMaySendItsBeacons();
    void theSymbolIsTheUsers_data();
    void theSymbolIsTheUsers();
    void theOtherProgramsFileOnlyGainsMissingKeys_data();
    void theOtherProgramsFileOnlyGainsMissingKeys();

private:
    Transmitter Make(const AprsSymbol& symbol = {}) {
        Transmitter transmitter(*m_station, m_link, m_messages, {2, 4, 2});
        transmitter.SetOwner(this);
        transmitter.SetSymbol(symbol);
        return transmitter;
    }
    void SetPosition() {
        m_station->setStrLat(u"5130.00N"_s);
        m_station->setStrLong(u"00030.00W"_s);
        m_station->setStrLoc(u"IO91SM"_s);
    }

    QTemporaryDir m_folder;
    clsIni m_ini{m_folder.filePath(u"x.INI"_s)};
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    RecordingLink m_link;
    std::unique_ptr<Station> m_station;
    const AddressFields m_fields{u"CQ"_s, u"QIRAN-1,WIDE2-2"_s, u"2"_s};
};

void TransmitterTest::init() {
    m_presenter.messages.clear();
    m_link.sent.clear();
    m_link.isConnected = true;
    m_station = std::make_unique<Station>(m_ini);
    m_station->setStrCallsign(u"XQ9ZZ-1"_s);
}

void TransmitterTest::theVersionMakesTheDestination_data() {
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<int>("revision");
    QTest::addColumn<QString>("destination");
    QTest::newRow("2.4.2") << 2 << 4 << 2 << "APQ36Q";
    QTest::newRow("0.0.0") << 0 << 0 << 0 << "APQ300";
    QTest::newRow("0.0.35") << 0 << 0 << 35 << "APQ30Z";
    QTest::newRow("1.0.0") << 1 << 0 << 0 << "APQ32S";
    QTest::newRow("3.6.0") << 3 << 6 << 0 << "APQ3A0";
    QTest::newRow("12.9.5") << 12 << 9 << 5 << "APQ3ZZ";
}

void TransmitterTest::theVersionMakesTheDestination() {
    QFETCH(const int, major);
    QFETCH(const int, minor);
    QFETCH(const int, revision);
    QTEST(Beacons::strUivDest({major, minor, revision}), "destination");
}

void TransmitterTest::withoutCallsignNothingIsSent() {
    m_station->setStrCallsign(QString());
    m_link.isConnected = false;
    Make().TransmitText({u"hello"_s}, {}, QString());
    QCOMPARE(m_presenter.Texts(), QStringList{noCallsign});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Information);
    QCOMPARE(m_presenter.messages[0].owner, this);
    QVERIFY(m_link.sent.isEmpty());
}

void TransmitterTest::withoutDestinationALineIsRefusedButNotABeacon() {
    SetPosition();
    const AddressFields fields{QString(), QString(), u"1"_s};
    m_link.isConnected = false;
    Make().TransmitText({u"hello"_s}, fields, fields.to);
    QCOMPARE(m_presenter.Texts(), QStringList{noDestination});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Information);
    QVERIFY(m_link.sent.isEmpty());
    m_link.isConnected = true;
    Make().SendPosition(fields);
    Make().SendLocator(fields);
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(m_link.sent.size(), 2);
}

void TransmitterTest::withoutConnectionItWarnsAndSendsOnce() {
    m_link.isConnected = false;
    qsizetype sentBefore = -1;
    m_presenter.whileShown = [&](const Message&) { sentBefore = m_link.sent.size(); };
    Make().TransmitText({u"hello"_s}, m_fields, m_fields.to);
    m_presenter.whileShown = nullptr;
    QCOMPARE(m_presenter.Texts(), QStringList{notConnected});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Information);
    QCOMPARE(sentBefore, 0);
    QCOMPARE(m_link.sent,
             (QList<RecordingLink::Sent>{{2, u"XQ9ZZ-1"_s, u"CQ QIRAN-1,WIDE2-2"_s, u"hello\r"_s}}));
}

void TransmitterTest::aPasteWithoutConnectionWarnsOnce() {
    m_link.isConnected = false;
    Make().TransmitText({u"a"_s, u"b"_s, u"c"_s}, m_fields, m_fields.to);
    QCOMPARE(m_presenter.Texts(), QStringList{notConnected});
    QCOMPARE(m_link.Data(), (QStringList{u"a\r"_s, u"b\r"_s, u"c\r"_s}));
}

void TransmitterTest::portZeroAndAnEmptyOneAreOne() {
    for (const QString& port : {u"0"_s, QString(), u" "_s})
        Make().TransmitText({u"x"_s}, {u"CQ"_s, QString(), port}, u"CQ"_s);
    QCOMPARE(m_link.sent.size(), 3);
    for (const RecordingLink::Sent& frame : m_link.sent)
        QCOMPARE(frame.port, 1);
}

void TransmitterTest::aPortBeyond16BitsIsRefused() {
    Make().TransmitText({u"x"_s}, {u"CQ"_s, QString(), u"65536"_s}, u"CQ"_s);
    QVERIFY(m_link.sent.isEmpty());
    QCOMPARE(m_presenter.Texts(), QStringList{u"The highest available port is 2."_s});
}

void TransmitterTest::anEmptyPathLeavesOneBlank() {
    Make().TransmitText({QString()}, {u"CQ"_s, QString(), u"1"_s}, u"CQ"_s);
    QCOMPARE(m_link.sent, (QList<RecordingLink::Sent>{{1, u"XQ9ZZ-1"_s, u"CQ "_s, u"\r"_s}}));
}

void TransmitterTest::thePositionBeaconIsAnAprsPosition() {
    SetPosition();
    m_station->setStrComment(u"comment text"_s);
    Make().SendPosition(m_fields);
    m_station->setStrComment(QString());
    Make({u'>', u'\\'}).SendPosition(m_fields);
    QCOMPARE(m_link.sent,
             (QList<RecordingLink::Sent>{
                 {2, u"XQ9ZZ-1"_s, u"APQ36Q QIRAN-1,WIDE2-2"_s, u"!5130.00N/00030.00W-comment text\r"_s},
                 {2, u"XQ9ZZ-1"_s, u"APQ36Q QIRAN-1,WIDE2-2"_s, u"!5130.00N\\00030.00W>\r"_s}}));
}

void TransmitterTest::theLocatorBeaconIsAnAprsStatus() {
    SetPosition();
    m_station->setStrComment(QStringLiteral(u"Gr\u00fc\u00dfe"));
    Make().SendLocator(m_fields);
    m_station->setStrComment(QString());
    Make().SendLocator(m_fields);
    QCOMPARE(m_link.Data(), (QStringList{QStringLiteral(u">IO91SM/- Gr\u00fc\u00dfe\r"), u">IO91SM/-\r"_s}));
}

void TransmitterTest::beaconsNeedTheirPosition() {
    SetPosition();
    m_station->setStrLoc(QString());
    Make().SendLocator(m_fields);
    m_station->setStrLoc(u"IO91SM"_s);
    m_station->setStrLong(QString());
    Make().SendPosition(m_fields);
    SetPosition();
    m_station->setStrLat(QString());
    Make().SendPosition(m_fields);
    QCOMPARE(m_presenter.Texts(), (QStringList{noPosition, noPosition, noPosition}));
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Information);
    QVERIFY(m_link.sent.isEmpty());
    Make().SendLocator(m_fields); // needs the locator alone
    QCOMPARE(m_link.sent.size(), 1);
}

void TransmitterTest::aStationAtZeroMaySendItsBeacons() {
    m_station->setStrLat(u"0000.00N"_s);
    m_station->setStrLong(u"00000.00E"_s);
    m_station->setStrLoc(u"JJ00AA"_s);
    Make().SendPosition(m_fields);
    Make().SendLocator(m_fields);
    QCOMPARE(m_link.Data(), (QStringList{u"!0000.00N/00000.00E-\r"_s, u">JJ00AA/-\r"_s}));
    QVERIFY(m_presenter.messages.isEmpty());
}

void TransmitterTest::theSymbolIsTheUsers_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("symbol"); // code, table
    QTest::newRow("none") << QByteArray() << "-/";
    QTest::newRow("of its own") << QByteArray(
                                       "[APRS]\nAPRS_SYMBOL_CHARACTER=>\nAPRS_SYMBOL_TABLE_CHARACTER=\\\n")
                                << ">\\";
    QTest::newRow("only first characters count")
        << QByteArray("[APRS]\nAPRS_SYMBOL_CHARACTER=abc\nAPRS_SYMBOL_TABLE_CHARACTER=xyz") << "ax";
    QTest::newRow("empty") << QByteArray("[APRS]\nAPRS_SYMBOL_CHARACTER=\nAPRS_SYMBOL_TABLE_CHARACTER=\"\"\n")
                           << "  ";
}

void TransmitterTest::theSymbolIsTheUsers() {
    QFETCH(const QByteArray, file);
    const QTemporaryDir folder;
    QFile user(folder.filePath(u"USER.INI"_s));
    QVERIFY(user.open(QIODevice::WriteOnly) && user.write(file) == file.size());
    user.close();
    const AprsSymbol symbol = Beacons::LoadSymbol(m_ini, ProgramFolder(folder.path(), u"x"_s));
    QTEST(QString(symbol.code) + symbol.table, "symbol");
}

void TransmitterTest::theOtherProgramsFileOnlyGainsMissingKeys_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const QByteArray whole = "; mine\n[aprs]\naprs_symbol_character = > \nAPRS_SYMBOL_TABLE_CHARACTER=\"\"\n";
    QTest::newRow("complete") << whole << whole;
    QTest::newRow("absent") << QByteArray()
                            << QByteArray("[APRS]\r\nAPRS_SYMBOL_CHARACTER=-\r\n"
                                          "APRS_SYMBOL_TABLE_CHARACTER=/\r\n");
    QTest::newRow("one missing, bytes above 127, odd line ends")
        << QByteArray("\xff\x80 junk\n\n[APRS]\r\nAPRS_SYMBOL_CHARACTER=k\n\n[X]\nY=\xe9 z ")
        << QByteArray("\xff\x80 junk\n\n[APRS]\r\nAPRS_SYMBOL_CHARACTER=k\nAPRS_SYMBOL_TABLE_CHARACTER=/\r\n"
                      "\n[X]\nY=\xe9 z ");
}

void TransmitterTest::theOtherProgramsFileOnlyGainsMissingKeys() {
    QFETCH(const QByteArray, before);
    const QTemporaryDir folder;
    QFile user(folder.filePath(u"USER.INI"_s));
    if (!before.isEmpty())
        QVERIFY(user.open(QIODevice::WriteOnly) && user.write(before) == before.size());
    user.close();
    Beacons::LoadSymbol(m_ini, ProgramFolder(folder.path(), u"x"_s));
    QFile again(user.fileName());
    QVERIFY(again.open(QIODevice::ReadOnly));
    QTEST(again.readAll(), "after");
}

QTEST_GUILESS_MAIN(TransmitterTest)
#include "TransmitterTest.moc"
