#include "core/GroundStation.h"

#include "core/StationRig.h"
#include "core/Texts.h"
#include "keps/ScriptedServer.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* iss = "ISS (ZARYA)\r\n"
                            "1 25544U 98067A   26324.50000000  .00010000  00000-0  18000-3 0  9995\r\n"
                            "2 25544  51.6400 100.0000 0005000  60.0000 300.0000 15.50000000000015\r\n";

} // namespace

class GroundStationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theRoofHasItsTurnsInTheOrderOfTheStart();
    void aSecondStationInTheFolderIsRefused();
    void withoutFormulaeNothingOfTheStartFollows();
    void aStationRunsWithoutAnyRoof();
    void theObserverFollowsTheStation();
    void elementsThatComeIntoTheFolderAreRead();
    void theLogIsWrittenWhileTheTerminalExists();
    void statusLinesAreToldOneByOne();
    void theSatelliteIsSavedWhereTheWindowsPlaceIs_data();
    void theSatelliteIsSavedWhereTheWindowsPlaceIs();
    void replayedFramesAreNeitherShownNorLogged();
    void whatIsMissingIsTold();
    void forwardingThatIsOffTouchesNothing();
    void heardFramesAreForwardedUnderTheStationsNameAndPosition();
};

void GroundStationTest::theRoofHasItsTurnsInTheOrderOfTheStart() {
    StationRig f;
    QStringList atPlace;
    f.roof.atTurn = [&](const QString& turn) {
        if (turn == u"place") // the settings that stand before the window's are read, those behind it are not
            atPlace = {f.Get("SETUP", "OBJ_INDEX"), f.Get("SETUP", "USE_LOCAL_TIME")};
        if (turn == u"terminal")
            QCOMPARE(f.Get("TERMINAL", "TO"), u"CQ"_s);
    };
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QCOMPARE(atPlace, (QStringList{u"0"_s, u"absent"_s}));
    f.station->Stop();
    f.station->Stop();
    QCOMPARE(f.roof.turns, (QStringList{u"announce"_s, u"place"_s, u"tracking"_s, u"terminal"_s, u"show"_s,
                                        u"release"_s, u"save"_s}));
}

void GroundStationTest::aSecondStationInTheFolderIsRefused() {
    StationRig f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    NotingRoof roof;
    GroundStation second(f.folder.Program(), f.clock, f.messages, roof);
    QCOMPARE(second.Start(), GroundStation::Outcome::AlreadyRunning);
    QCOMPARE(f.presenter.Texts(), QStringList{Texts::AlreadyRunning()});
    QVERIFY(roof.turns.isEmpty());
}

void GroundStationTest::withoutFormulaeNothingOfTheStartFollows() {
    StationRig f;
    QFile::remove(f.folder.File(u"formula.txt"_s));
    QCOMPARE(f.station->Start(), GroundStation::Outcome::NoFormulae);
    QCOMPARE(f.presenter.messages.size(), 1);
    QCOMPARE(f.roof.turns, QStringList{u"announce"_s});
    QCOMPARE(f.Get("SETUP", "OBJ_INDEX"), u"absent"_s);
    f.station->Stop();
    QCOMPARE(f.Get("SETUP", "OBJ_INDEX"), u"absent"_s);
}

void GroundStationTest::aStationRunsWithoutAnyRoof() {
    StationRig f;
    Roof none;
    GroundStation station(f.folder.Program(), f.clock, f.messages, none);
    QCOMPARE(station.Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.engine.MonitoringCount(), 1);
    f.engine.SendHeard(
        {.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = "T#1,10,20,30,40,0,0,00101111,0"});
    QTRY_COMPARE(station.grids[2]->TextMatrix(1, TelemetryGrid::ValueA), u"10"_s);
    station.Stop();
    QTRY_COMPARE(f.engine.ConnectionCount(), 0);
}

void GroundStationTest::theObserverFollowsTheStation() {
    StationRig f;
    f.folder.Write(u"Keps/iss.txt"_s, iss);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    const auto elevation = [&] {
        const auto place = f.station->cSats.PositionAt(u"25544"_s, f.station->cSats.datGmtTime());
        return place ? place->dblEl : 1000.0;
    };
    const double before = elevation();
    QVERIFY(before < 999.0);
    f.station->station.setStrLat(u"5130.00N"_s);
    f.station->station.setStrLong(u"00007.50W"_s);
    QVERIFY(std::abs(elevation() - before) > 0.1);
}

void GroundStationTest::elementsThatComeIntoTheFolderAreRead() {
    StationRig f;
    f.folder.Write(u"Keps/note.txt"_s, "no elements");
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QSignalSpy changed(f.station.get(), &GroundStation::ElementsChanged);
    QVERIFY(!f.station->cSats.ElementsOf(u"25544"_s));
    f.folder.Write(u"Keps/iss.txt"_s, iss);
    QTRY_COMPARE(changed.count(), 1);
    QVERIFY(f.station->cSats.ElementsOf(u"25544"_s));
    QCOMPARE(f.station->satellites.At(1).strName, u"ISS (ZARYA)"_s);
}

void GroundStationTest::theLogIsWrittenWhileTheTerminalExists() {
    StationRig f;
    f.Set("TERMINAL", "LOGGING", u"True"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    const auto log = [&] { return f.folder.Read(u"LOGS/20261121.TXT"_s); };
    f.station->ShowStatus(u"one\r\n"_s);
    QCOMPARE(log(), "one\r\n");
    f.station->terminal.Close();
    f.station->ShowStatus(u"two\r\n"_s);
    QCOMPARE(log(), "one\r\n");
    f.station->OpenTerminal();
    QCOMPARE(f.roof.turns.count(u"terminal"_s), 2);
    f.station->ShowStatus(u"three\r\n"_s);
    QCOMPARE(log(), "one\r\nthree\r\n");
}

void GroundStationTest::statusLinesAreToldOneByOne() {
    StationRig f;
    QStringList lines;
    connect(f.station.get(), &GroundStation::StatusLine, this,
            [&](const QString& line) { lines.append(line); });
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.engine.MonitoringCount(), 1);
    QTRY_VERIFY(lines.contains(u"*** AGW-Connected to - 127.0.0.1"_s));
    lines.clear();
    f.engine.DropConnections();
    QTRY_COMPARE(lines, (QStringList{u"*** AGW-Disconnected from - 127.0.0.1"_s,
                                     u"Will automatically retry in 30 seconds time."_s}));
}

void GroundStationTest::theSatelliteIsSavedWhereTheWindowsPlaceIs_data() {
    QTest::addColumn<bool>("saves");
    QTest::newRow("an ordinary end") << true;
    QTest::newRow("minimised, or no window") << false;
}

void GroundStationTest::theSatelliteIsSavedWhereTheWindowsPlaceIs() {
    QFETCH(const bool, saves);
    StationRig f;
    f.roof.savesPlace = saves;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    f.station->satellites.Toggle();
    f.station->Stop();
    QCOMPARE(f.Get("SETUP", "OBJ_INDEX"), saves ? u"1"_s : u"0"_s);
}

void GroundStationTest::replayedFramesAreNeitherShownNorLogged() {
    StationRig f;
    f.Set("TERMINAL", "LOGGING", u"True"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    f.station->terminal.log.OpenTrafficLog();
    const QByteArray before = f.folder.Read(u"LOGS/20261121.TXT"_s);
    HeardFrame frame{.utc = 1, .origin = HeardFrame::Origin::Replayed, .source = "XQ9ZZ-1"};
    frame.information = "T#1,10,20,30,40,0,0,00101111,0";
    frame.engineText = "1:Fm XQ9ZZ-1 To APRS <UI >\rT#1,10,20,30,40,0,0,00101111,0\r";
    f.station->heard.Hand(frame);
    QVERIFY(f.station->monitor.Text().isEmpty());
    QCOMPARE(f.folder.Read(u"LOGS/20261121.TXT"_s), before);
    frame.origin = HeardFrame::Origin::Live;
    f.station->heard.Hand(frame);
    QVERIFY(!f.station->monitor.Text().isEmpty());
    QVERIFY(f.folder.Read(u"LOGS/20261121.TXT"_s) != before);
}

void GroundStationTest::forwardingThatIsOffTouchesNothing() {
    StationRig f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    f.station->heard.Hand({.utc = 1, .source = "QIRAN-3", .raw = "raw"});
    QVERIFY(!f.station->forwarder.WantsRawFrames());
    QVERIFY(f.station->forwardPost.children().size() <= 1); // nothing of the network, its timer alone
    for (const QObject* part :
         {static_cast<QObject*>(&f.station->forwarder), static_cast<QObject*>(&f.station->forwardPost)})
        for (const QTimer* timer : part->findChildren<QTimer*>())
            QVERIFY2(!timer->isActive(), qPrintable(timer->objectName()));
    f.station->Stop();
    QCOMPARE(QDir(f.folder.Program().Path()).entryList({u"Forward*"_s}), QStringList());
    QVERIFY(!f.folder.Read(u"QiranDecode.INI"_s).contains("FORWARD"));
}

void GroundStationTest::heardFramesAreForwardedUnderTheStationsNameAndPosition() {
    ScriptedServer server(ScriptedServer::Answer{ScriptedServer::Http("201 Created", "")});
    StationRig f;
    f.Set("FORWARD", "USE", u"TRUE"_s);
    f.Set("FORWARD", "URL", server.Url(u"/api/"_s));
    f.Set("SETUP", "QIRAN_OBJ_NUM", u"12345"_s);
    QStringList lines;
    connect(f.station.get(), &GroundStation::StatusLine, this, [&](const QString& line) { lines += line; });
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QVERIFY(f.station->forwarder.WantsRawFrames());
    const HeardFrame frame{.utc = 1795274923120, .source = "QIRAN-3", .raw = "\x01raw"};
    f.station->heard.Hand(frame);
    QCOMPARE(lines.last(), u"*** Forwarding - missing: callsign, position"_s);
    f.station->station.setStrCallsign(u"DL1ABC"_s);
    f.station->station.setStrLat(u"4944.09N"_s);
    f.station->station.setStrLong(u"00857.31E"_s);
    f.station->heard.Hand(frame);
    HeardFrame replayed = frame;
    replayed.origin = HeardFrame::Origin::Replayed;
    replayed.raw = "another";
    f.station->heard.Hand(replayed);
    QTRY_COMPARE(f.station->forwarder.Counts(), (ForwardCounts{0, 0, 1, 0, 0}));
    const QByteArray request = server.Requests().value(0);
    QVERIFY2(
        request.endsWith("noradID=12345&source=DL1ABC&timestamp=2026-11-21T15%3A28%3A43.120Z&frame=01726177"
                         "&locator=longLat&longitude=8.96E&latitude=49.73N&version=QiranDecode-" +
                         Texts::VersionNumber().toUtf8()),
        request.constData());
    // What is heard behind the end is nobody's.
    f.station->Stop();
    f.station->heard.Hand({.utc = 2, .source = "QIRAN-3", .raw = "raw"});
    QCOMPARE(f.station->forwarder.Counts().waiting, 0);
}

void GroundStationTest::whatIsMissingIsTold() {
    StationRig f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QVERIFY(f.presenter.messages.isEmpty());
    f.station->ShowNotices();
    QCOMPARE(f.presenter.Texts(),
             (QStringList{Texts::PositionUnknown(), u"No Keps found for QIRAN and ISS."_s}));
}

QTEST_GUILESS_MAIN(GroundStationTest)
#include "GroundStationTest.moc"
