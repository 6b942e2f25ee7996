#include "app/MainWindowRig.h"
#include "foundation/placement/Twips.h"
#include "orbit/panel/framLocation.h"
#include "support/Screenshots.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QTest>

using namespace Qt::StringLiterals;

class frmQIRANTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFirstStartWritesEverySettingWithItsDefault();
    void aFirstStartRemovesNothingElse();
    void keysOfTheOlderLayoutAreRemoved();
    void aBadStoredPortBecomes8000_data();
    void aBadStoredPortBecomes8000();
    void theCaptionCarriesTheVersion();
    void theLabelExplainsTheCube();
    void aFirstStartCentresTheWindow();
    void aPositionThatIsUnknownWarns_data();
    void aPositionThatIsUnknownWarns();
    void aKnownPositionWarnsOfNothing();
    void missingElementsAreNamed();
    void elementsThatAreFoundAndCannotBeTrackedAreSaidOnce();
    void realElementsAreTrackedAtOnceAndByEveryTenthTick();
    void closingWhileMinimisedKeepsThePlace();
    void closingSavesThePlaceAndTheSatellite();
    void aSecondStartInTheSameFolderSaysSoAndEnds();
    void withoutFormulaeTheProgramEnds();
    void aMisspeltGridEndsTheProgramWithoutAMessage();
    void aFrameGoesAllTheWayToTheGrids();
    void everyFrameIsShownInFullAndStillDecodedWithTheOptionOff();
    void transmittedAndOtherFramesAreMarked();
    void theEngineGoingAwayAndReturningIsWrittenInTheMonitor();
    void settingsThatCannotBeSavedAreSaidOnce();
    void theTerminalIsMadeHiddenAndHearsEverything();
    void purgingTelemetryFilesDeletesTheHistoryOnly();
};

namespace {

const QByteArray telemetry = "T#001,10,20,30,40,0,0,00101111,0";

AirFrame Heard(const QByteArray& from, const QByteArray& information) {
    return {.from = from, .to = "APRS", .via = {"WIDE2-2"}, .information = information};
}

} // namespace

void frmQIRANTest::aFirstStartWritesEverySettingWithItsDefault() {
    MainWindowRig rig;
    QFile::remove(rig.folder.IniFile());
    QVERIFY(rig.Start());
    const std::pair<const char*, const char*> setup[] = {{"QIRAN_OBJ_NUM", "90417"},
                                                         {"ISS_OBJ_NUM", "25544"},
                                                         {"OBJ_INDEX", "0"},
                                                         {"USE_LOCAL_TIME", "FALSE"},
                                                         {"ONLY_SHOW_QIRAN", "TRUE"},
                                                         {"LATITUDE", ""},
                                                         {"LONGITUDE", ""},
                                                         {"LOCATOR", ""},
                                                         {"CALLSIGN", ""},
                                                         {"COMMENT", ""}};
    for (const auto& [key, value] : setup)
        QCOMPARE(rig.Get("SETUP", key), QString::fromLatin1(value));
    for (const char* key : {"LEFT", "TOP"}) {
        bool isNumber = false;
        rig.Get("SETUP", key).toDouble(&isNumber);
        QVERIFY2(isNumber, key);
    }
    QCOMPARE(rig.Get("AGWPE", "HOST_ADDRESS"), u"localhost"_s);
    QCOMPARE(rig.Get("AGWPE", "HOST_PORT"), u"8000"_s);
    QCOMPARE(rig.Get("AGWPE", "LOGIN_ID"), QString());
    QCOMPARE(rig.Get("AGWPE", "PASSWORD"), QString());
    QCOMPARE(clsIni(rig.folder.IniFile()).LoadAllKeysInSection(u"CALLSIGNS"_s)[0].size(), 34);
}

void frmQIRANTest::aFirstStartRemovesNothingElse() {
    MainWindowRig rig;
    rig.folder.Write(u"QiranDecode.INI"_s, "; mine\r\n[OTHER]\r\nkey=value\r\n[SETUP]\r\nMINE=1\r\n");
    QVERIFY(rig.Start());
    QCOMPARE(rig.Get("OTHER", "key"), u"value"_s);
    QCOMPARE(rig.Get("SETUP", "MINE"), u"1"_s);
    QVERIFY(rig.folder.Read(u"QiranDecode.INI"_s).startsWith("; mine\r\n"));
}

void frmQIRANTest::keysOfTheOlderLayoutAreRemoved() {
    MainWindowRig rig;
    for (const char* key : {"OBJECT_NAME", "CALL_A", "CALL_B"})
        rig.Set("SETUP", key, u"x"_s);
    rig.Set("SIDES", "A", u"x"_s);
    QVERIFY(rig.Start());
    for (const char* key : {"OBJECT_NAME", "CALL_A", "CALL_B"})
        QCOMPARE(rig.Get("SETUP", key), u"absent"_s);
    QVERIFY(!rig.folder.Read(u"QiranDecode.INI"_s).contains("[SIDES]"));
}

void frmQIRANTest::aBadStoredPortBecomes8000_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("0") << u"0"_s << u"8000"_s;
    QTest::newRow("40000") << u"40000"_s << u"8000"_s;
    QTest::newRow("not a number") << u"eight"_s << u"8000"_s;
    QTest::newRow("8001") << u"8001"_s << u"8001"_s;
}

void frmQIRANTest::aBadStoredPortBecomes8000() {
    QFETCH(const QString, stored);
    QFETCH(const QString, shown);
    MainWindowRig rig;
    rig.Set("AGWPE", "HOST_PORT", stored);
    QVERIFY(rig.Start());
    QString port;
    QTimer::singleShot(0, rig.window.get(), [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        port = dialog->findChild<QLineEdit*>(u"txtPort"_s)->text();
        dialog->close();
    });
    rig.Find<QAction>("mnuAGWPESetup")->trigger();
    QCOMPARE(port, shown);
}

void frmQIRANTest::theCaptionCarriesTheVersion() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QCOMPARE(rig.window->windowTitle(), u"QIRAN Telemetry Decoder    V2.42"_s);
}

void frmQIRANTest::theLabelExplainsTheCube() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QCOMPARE(rig.Find<QLabel>("Label2")->text(),
             u"The satellite is a cube.\r\nX+, X-, Y+, Y-, Z+ and Z- refer to the six sides of the cube."_s);
}

void frmQIRANTest::aFirstStartCentresTheWindow() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    const QRect screen = rig.window->screen()->availableGeometry();
    // The tracking panel's caption, which comes later, may widen the window a little.
    QVERIFY2(qAbs(rig.window->frameGeometry().center().x() - screen.center().x()) <= 8,
             qPrintable(QString::number(rig.window->frameGeometry().center().x())));
    QCOMPARE(Twips::PixelsOf(rig.Get("SETUP", "LEFT"), *rig.window), rig.window->x());
    QCOMPARE(Twips::PixelsOf(rig.Get("SETUP", "TOP"), *rig.window), rig.window->y());
}

void frmQIRANTest::aPositionThatIsUnknownWarns_data() {
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::newRow("latitude 0") << u"0000.00N"_s << u"00030.00W"_s;
    QTest::newRow("latitude 95") << u"9500.00N"_s << u"00030.00W"_s;
    QTest::newRow("longitude 181") << u"5130.00N"_s << u"18100.00W"_s;
}

void frmQIRANTest::aPositionThatIsUnknownWarns() {
    QFETCH(QString, latitude);
    QFETCH(QString, longitude);
    MainWindowRig rig;
    rig.Set("SETUP", "LATITUDE", latitude);
    rig.Set("SETUP", "LONGITUDE", longitude);
    QVERIFY(rig.Start());
    QCOMPARE(rig.presenter.messages.value(0).text, u"Pass predictions will not be not available until you "
                                                   u"input your latitude and longitude in  'Station "
                                                   u"Information'."_s);
    QCOMPARE(rig.presenter.messages.value(0).style, MessageStyle::Information);
    QCOMPARE(rig.presenter.messages.value(0).caption, u"QIRAN Telemetry Decoder"_s);
    QVERIFY(!rig.Find<QPushButton>("cmdPassInfo")->isEnabled());
}

void frmQIRANTest::aKnownPositionWarnsOfNothing() {
    MainWindowRig rig;
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    QVERIFY(rig.Start());
    QCOMPARE(rig.presenter.Texts(), QStringList{u"No Keps found for QIRAN and ISS."_s});
}

void frmQIRANTest::missingElementsAreNamed() {
    MainWindowRig rig;
    rig.folder.Write(u"Keps/one.txt"_s,
                     "CUBE\r\n"
                     "1 90417U 26001A   26325.50000000  .00000000  00000-0  00000-0 0  9990\r\n"
                     "2 90417  97.5000 100.0000 0010000 100.0000 260.0000 15.00000000    10\r\n");
    QVERIFY(rig.Start());
    QCOMPARE(rig.presenter.messages.last().text, u"No Keps found for ISS."_s);
    QCOMPARE(rig.presenter.messages.last().style, MessageStyle::Information);
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN (CUBE) Current Location"_s);
}

void frmQIRANTest::elementsThatAreFoundAndCannotBeTrackedAreSaidOnce() {
    MainWindowRig rig;
    rig.folder.Write(u"Keps/one.txt"_s,
                     "CUBE\r\n"
                     "1 90417U 26001A   26325.50000000  .00000000  00000-0  00000-0 0  9991\r\n"
                     "2 90417  97.5000 100.0000 0010000 100.0000 260.0000 15.00000000    10\r\n");
    QVERIFY(rig.Start());
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN (CUBE) Current Location"_s);
    const QString line = u"*** QIRAN cannot be tracked - one.txt, line 2, column 69: the checksum is wrong"_s;
    QTRY_COMPARE(rig.Monitor().count(line), 1);
}

void frmQIRANTest::realElementsAreTrackedAtOnceAndByEveryTenthTick() {
    MainWindowRig rig;
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    rig.folder.Write(u"Keps/amateur.txt"_s,
                     "QIRAN\r\n"
                     "1 90417U 06001A   26325.00000000  .00000200  00000+0  10000-3 0  9991\r\n"
                     "2 90417  98.1800 215.4000 0011500  92.3000 268.0000 14.57400000  4126\r\n"
                     "ISS (ZARYA)\r\n"
                     "1 25544U 98067A   26325.00000000  .00011000  00000+0  20000-3 0  9994\r\n"
                     "2 25544  51.6400 120.5000 0004200  61.0000 299.2000 15.49600000 50001\r\n");
    QVERIFY(rig.Start());
    QCOMPARE(rig.presenter.Texts(), QStringList());
    const QString first = rig.Find<QLabel>("labLat")->text();
    QVERIFY2(first.endsWith(u'N') || first.endsWith(u'S'), qPrintable(first));
    QVERIFY(rig.Find<QLabel>("labDue")->text() != u"-"_s);

    auto* timer = rig.Find<QTimer>("Timer1");
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 1000);
    timer->setInterval(1); // the tenth tick, not ten seconds, is the rule
    rig.clock.Advance(60.0);
    QTRY_VERIFY(rig.Find<QLabel>("labLat")->text() != first);

    rig.Find<QPushButton>("cmdChangeSat")->click();
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"ISS Current Location"_s);
}

void frmQIRANTest::closingWhileMinimisedKeepsThePlace() {
    MainWindowRig rig;
    rig.Set("SETUP", "LEFT", u"1500"_s);
    rig.Set("SETUP", "TOP", u"750"_s);
    QVERIFY(rig.Start());
    rig.window->move(300, 300);
    rig.window->showMinimized();
    rig.window->close();
    QCOMPARE(rig.Get("SETUP", "LEFT"), u"1500"_s);
    QCOMPARE(rig.Get("SETUP", "TOP"), u"750"_s);
}

void frmQIRANTest::closingSavesThePlaceAndTheSatellite() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.window->move(100, 50);
    rig.Find<QPushButton>("cmdChangeSat")->click();
    rig.Find<QAction>("mnuExit")->trigger();
    const int dpi = rig.window->logicalDpiX();
    QCOMPARE(rig.Get("SETUP", "LEFT"), QString::number(100 * 1440 / dpi));
    QCOMPARE(rig.Get("SETUP", "TOP"), QString::number(50 * 1440 / dpi));
    QCOMPARE(rig.Get("SETUP", "OBJ_INDEX"), u"1"_s);
    QVERIFY(!rig.window->isVisible());
}

void frmQIRANTest::aSecondStartInTheSameFolderSaysSoAndEnds() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    RecordingPresenter presenter;
    mb messages(presenter);
    frmQIRAN second(rig.folder.Program(), rig.clock, messages, rig.notices);
    QVERIFY(!second.Load());
    QVERIFY(!second.isVisible());
    QCOMPARE(presenter.Texts(), QStringList{u"QiranDecode is already running. "_s});
    QCOMPARE(presenter.messages[0].style, MessageStyle::Information);
}

void frmQIRANTest::withoutFormulaeTheProgramEnds() {
    MainWindowRig rig;
    QFile::remove(rig.folder.File(u"formula.txt"_s));
    QVERIFY(!rig.Start());
    QVERIFY(!rig.window->isVisible());
    QCOMPARE(rig.presenter.messages.size(), 1);
    QVERIFY(rig.presenter.messages[0].text.startsWith(
        u"An error occurred loading the formulae. The error message is '"_s));
    QCOMPARE(rig.presenter.messages[0].style, MessageStyle::Critical | MessageStyle::HelpButton);
}

void frmQIRANTest::aMisspeltGridEndsTheProgramWithoutAMessage() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "A,0,CURENT,X+,0,0,1,0\r\n");
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.messages.size(), 0);
}

void frmQIRANTest::aFrameGoesAllTheWayToTheGrids() {
    MainWindowRig rig;
    rig.clock.Set(DateOf(2026, 11, 21) + 0.5);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard(Heard("XQ9ZZ-1", telemetry));
    rig.engine.SendHeard(Heard("G0ABC", "nobody shows this"));
    rig.engine.SendHeard(Heard("QIRAN-3", telemetry));
    QTRY_COMPARE(rig.Cell("gTlm2", 2, TelemetryGrid::ValueB), u"20.5"_s);
    QCOMPARE(rig.Cell("gTlm2", 1, TelemetryGrid::ValueA), u"10.0"_s);
    QCOMPARE(rig.Cell("gTlm2", 1, TelemetryGrid::LabelA), u"T#001  2026-Nov-21 12:00"_s);
    QTRY_VERIFY(
        rig.Monitor().contains(u"12:00:00 XQ9ZZ-1>APRS,WIDE2-2:\nT#001,10,20,30,40,0,0,00101111,0"_s));
    QVERIFY(!rig.Monitor().contains(u"nobody"_s));
    QCOMPARE(rig.Monitor().count(u"XQ9ZZ-1"_s), 1);
    Screenshots::Take(*rig.window, u"frmQIRAN"_s);
}

void frmQIRANTest::everyFrameIsShownInFullAndStillDecodedWithTheOptionOff() {
    MainWindowRig rig;
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    rig.clock.Set(DateOf(2026, 11, 21) + 0.5);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard(Heard("XQ9ZZ-1", telemetry));
    rig.engine.SendHeard(Heard("G0ABC", "everybody sees this"));
    QTRY_VERIFY(rig.Monitor().contains(u"everybody"_s));
    QVERIFY2(rig.Monitor().contains(u"12:00:00R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len="_s),
             qPrintable(rig.Monitor()));
    QTRY_COMPARE(rig.Cell("gTlm2", 1, TelemetryGrid::ValueA), u"10.0"_s);
}

void frmQIRANTest::transmittedAndOtherFramesAreMarked() {
    MainWindowRig rig;
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    for (const char kind : {'I', 'S', 'T'}) {
        AirFrame heard = Heard(QByteArray("N0CALL-") + kind, "from here");
        heard.kind = kind;
        rig.engine.SendHeard(heard);
    }
    QTRY_VERIFY2(rig.Monitor().contains(u"00:00:00T N0CALL-T>APRS,WIDE2-2 Port=1"_s),
                 qPrintable(rig.Monitor()));
    QVERIFY(rig.Monitor().contains(u"00:00:00R N0CALL-I>APRS,WIDE2-2 Port=1"_s));
    QVERIFY(rig.Monitor().contains(u"00:00:00R N0CALL-S>APRS,WIDE2-2 Port=1"_s));
}

void frmQIRANTest::theEngineGoingAwayAndReturningIsWrittenInTheMonitor() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(u"*** AGW-Connected to - 127.0.0.1"_s));
    QTRY_VERIFY(rig.Monitor().contains(u"*** AGWPE V"_s));
    QVERIFY(rig.Find<QWidget>("txtMon")->isEnabled());
    rig.engine.DropConnections();
    QTRY_VERIFY(rig.Monitor().contains(
        u"*** AGW-Disconnected from - 127.0.0.1\nWill automatically retry in 30 seconds time."_s));
    QVERIFY(!rig.Find<QWidget>("txtMon")->isEnabled());
    rig.Find<QTimer>("timRetry")->setInterval(1);
    QTRY_COMPARE(rig.Monitor().count(u"*** AGW-Connected to - "_s), 2);
    QVERIFY(rig.Find<QWidget>("txtMon")->isEnabled());
}

void frmQIRANTest::settingsThatCannotBeSavedAreSaidOnce() {
    MainWindowRig rig;
    QFile::remove(rig.folder.IniFile());
    QDir().mkpath(rig.folder.IniFile()); // a folder where the file should be
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.Monitor().count(u"*** The settings cannot be saved in "_s), 1);
    QVERIFY(rig.window->isVisible());
}

void frmQIRANTest::theTerminalIsMadeHiddenAndHearsEverything() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard(Heard("G0ABC", "for the terminal"));
    QTRY_VERIFY(rig.Monitor().contains(u"AGW-Connected"_s));
    QWidget* terminal = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == u"frmTerm")
            terminal = window;
    QVERIFY(terminal != nullptr);
    QVERIFY(!terminal->isVisible());
    rig.Find<QAction>("mnuTerminal")->trigger();
    QVERIFY(terminal->isVisible());
    auto* pane = terminal->findChild<QPlainTextEdit*>(u"rtbMon"_s);
    QTRY_VERIFY(pane->toPlainText().contains(u"for the terminal"_s));
}

void frmQIRANTest::purgingTelemetryFilesDeletesTheHistoryOnly() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    for (const QString& name : {u"tlm.txt"_s, u"2001a.txt"_s, u"2002a.txt"_s})
        rig.folder.Write(name, "x");
    rig.window->PurgeTelemetryFiles();
    QVERIFY(rig.folder.Read(u"tlm.txt"_s).isNull());
    QCOMPARE(rig.folder.Read(u"2001a.txt"_s), "x");
    QCOMPARE(rig.folder.Read(u"2002a.txt"_s), "x");
}

QTEST_MAIN(frmQIRANTest)
#include "frmQIRANTest.moc"
