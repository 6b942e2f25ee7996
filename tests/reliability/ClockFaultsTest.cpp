#include "app/MainWindowRig.h"

#include <QSignalSpy>
#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;

/// The running program while the machine's clock and its time zone are changed under it.
class ClockFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup();
    void aClockSetBackAndForwardByAnHourLosesNoLineAndStopsNoTimer();
    void anotherTimeZoneChangesTheDayOfTheLog();
    void theRepeatedHourOfDaylightSavingStaysInOneFile();
};

namespace {

void SetZone(const QByteArray& zone) {
    qputenv("TZ", zone);
    tzset();
}

void StartLogging(MainWindowRig& rig) {
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuMap")->trigger();
    rig.Find<QAction>("mnuTerminal")->trigger();
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
}

void Hear(MainWindowRig& rig, const char* text, const char* day) {
    rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = text});
    const QString file = u"LOGS/%1.TXT"_s.arg(QLatin1StringView(day));
    QTRY_VERIFY2(rig.folder.Read(file).contains(text), text);
}

// The seconds' timer fires about once a second, whatever the clock says.
void VerifySecondsGoOn(const MainWindowRig& rig) {
    const QSignalSpy ticks(rig.Find<QTimer>("Timer1"), &QTimer::timeout);
    QTRY_VERIFY(ticks.count() >= 2);
    QVERIFY2(ticks.count() <= 5, "the timer runs wild"); // looked at every 50 ms
}

} // namespace

void ClockFaultsTest::cleanup() {
    SetZone("UTC");
}

void ClockFaultsTest::aClockSetBackAndForwardByAnHourLosesNoLineAndStopsNoTimer() {
    SetZone("UTC");
    MainWindowRig rig;
    rig.clock.Set(DateOf(2026, 11, 21) + 0.5 / 24);
    StartLogging(rig);
    Hear(rig, "first", "20261121");
    rig.clock.Advance(-3600); // before midnight: what is open stays open
    Hear(rig, "second", "20261121");
    VerifySecondsGoOn(rig);
    rig.clock.Advance(3600);
    Hear(rig, "third", "20261121");
    rig.clock.Advance(3600 * 24);
    Hear(rig, "fourth", "20261122");
    VerifySecondsGoOn(rig);
    const QByteArray log = rig.folder.Read(u"LOGS/20261121.TXT"_s);
    QVERIFY(log.indexOf("first") < log.indexOf("second") && log.indexOf("second") < log.indexOf("third"));
    QVERIFY(!log.contains("fourth"));
}

void ClockFaultsTest::anotherTimeZoneChangesTheDayOfTheLog() {
    SetZone("UTC");
    MainWindowRig rig;
    rig.clock.Set(DateOf(2026, 11, 21) + 23.5 / 24);
    StartLogging(rig);
    Hear(rig, "at home", "20261121");
    SetZone("Asia/Tokyo");
    Hear(rig, "in the east", "20261122");
    SetZone("America/New_York");
    Hear(rig, "in the west", "20261122"); // a day is not reopened because the clock went back
    VerifySecondsGoOn(rig);
}

void ClockFaultsTest::theRepeatedHourOfDaylightSavingStaysInOneFile() {
    SetZone("Europe/London");
    MainWindowRig rig;
    rig.clock.Set(DateOf(2026, 10, 25) + 0.75 / 24); // 01:45 summer time
    StartLogging(rig);
    Hear(rig, "in summer", "20261025");
    rig.clock.Advance(1800); // 01:15 winter time
    Hear(rig, "in winter", "20261025");
    rig.clock.Set(DateOf(2027, 3, 28) + 1.0 / 24); // 02:00, the hour that is left out
    Hear(rig, "in summer again", "20270328");
    VerifySecondsGoOn(rig);
}

QTEST_MAIN(ClockFaultsTest)
#include "ClockFaultsTest.moc"
