#include "orbit/service/clsSats.h"

#include "orbit/FakeLibrary.h"
#include "orbit/service/LatLongText.h"
#include "support/TestClock.h"

#include <QTest>

#include <limits>

namespace {

const QString iss = QStringLiteral("25544");

LibraryPosition At(double longitude, double latitude) {
    return {.longitude = longitude * radian, .latitude = latitude * radian};
}

/// The service over a fake library, at 2026-11-21 12:00:00 UTC.
struct Fixture {
    TestClock clock{DateOf(2026, 11, 21) + 0.5};
    FakeLibrary* library = new FakeLibrary;
    clsSats sats{std::unique_ptr<OrbitLibrary>(library), clock};

    void Answer(const LibraryPosition& position) {
        library->position = [position](const std::string&, double) { return position; };
    }
};

// The local time of a UTC time in a time zone, as text.
QString LocalIn(const char* zone, DateTime utc) {
    qputenv("TZ", zone);
    const TestClock clock;
    const clsSats sats(std::make_unique<FakeLibrary>(), clock);
    return FormatDateTime(sats.GmtToLocal(utc), u"yyyy-mm-dd hh:nn:ss");
}

DateTime At(int year, int month, int day, int hour, int minute, int second = 0) {
    return FromCalendar(
        {.year = year, .month = month, .day = day, .hour = hour, .minute = minute, .second = second});
}

} // namespace

class clsSatsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { qputenv("TZ", "UTC"); }

    void latitudeAndLongitudeTexts_data();
    void latitudeAndLongitudeTexts();
    void degreesBeyondSixteenBitsAreAnError();
    void withoutSeparatorTheDecimalMarkCoversADigit();
    void longitudeFolds_data();
    void longitudeFolds();
    void everyOutputIsFilledAndAnglesAreDegrees();
    void theLibraryIsAskedInItsOwnTime();
    void aFailingLibraryLeavesTheOutputsAlone_data();
    void aFailingLibraryLeavesTheOutputsAlone();
    void millisecondsRoundUpFrom501();
    void julianDates();
    void observerIsHandedOverEastOfGreenwich();
    void theFolderIsHandedOverUnchanged();
    void failuresOfTheSettersAreAnswered();
    void inViewIsDueNowWhateverPassesFollow();
    void notInViewIsDueAtTheNextPass();
    void withoutPassesDueIsMidnight();
    void dueTimeIsLocalWhenAskedFor();
    void theNextPassIsTheFirstThatHasNotBegun_data();
    void theNextPassIsTheFirstThatHasNotBegun();
    void theNextPassIsSoughtFromTheStartOfTheDay();
    void displayTimeIsLocalOrUtc();
    void localTimeFollowsTheRulesOfItsDate_data();
    void localTimeFollowsTheRulesOfItsDate();
    void whatIsNoDateHasNoLocalTime();
};

void clsSatsTest::latitudeAndLongitudeTexts_data() {
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("strLat");
    QTest::addColumn<QString>("strLong");
    const auto row = [](double latitude, double longitude, const char16_t* strLat, const char16_t* strLong) {
        QTest::addRow("%g %g", latitude, longitude)
            << latitude << longitude << QString::fromUtf16(strLat) << QString::fromUtf16(strLong);
    };
    row(51.0 + 30.25 / 60, -7.5 / 60, u"51.30.25N", u"000.07.50W");
    row(-0.5, 0, u"00.30.00S", u"000.00.00E");
    row(0, 180, u"00.00.00N", u"180.00.00E");
    row(90, -179.5, u"90.00.00N", u"179.30.00W");
    row(-90, 7.125, u"90.00.00S", u"007.07.50E");
    row(29.99999, -99.99999, u"29.60.00N", u"099.60.00W");
    row(-0.0, -0.0, u"00.00.00N", u"000.00.00E");
}

void clsSatsTest::latitudeAndLongitudeTexts() {
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QTEST(LatLongText::Latitude(latitude).value(), "strLat");
    QTEST(LatLongText::Longitude(longitude).value(), "strLong");
}

void clsSatsTest::degreesBeyondSixteenBitsAreAnError() {
    QVERIFY(LatLongText::Longitude(546.13)); // 32767.8 minutes
    QVERIFY(!LatLongText::Longitude(546.14));
    QVERIFY(!LatLongText::Latitude(-1e300));
    QVERIFY(!LatLongText::Latitude(std::numeric_limits<double>::quiet_NaN()));
    Fixture f;
    f.Answer(At(0, 1000));
    QVERIFY(!f.sats.SatInfoAt(iss, 0));
}

void clsSatsTest::withoutSeparatorTheDecimalMarkCoversADigit() {
    QCOMPARE(LatLongText::Latitude(51.5, LatLongText::Separator::Off).value(), QStringLiteral("5130..0N"));
}

void clsSatsTest::longitudeFolds_data() {
    QTest::addColumn<double>("fromLibrary");
    QTest::addColumn<double>("dblLong");
    QTest::addColumn<QString>("strLong");
    QTest::newRow("181") << 181.0 << -179.0 << QStringLiteral("179.00.00W");
    QTest::newRow("180") << 180.0 << 180.0 << QStringLiteral("180.00.00E");
    QTest::newRow("359.5") << 359.5 << -0.5 << QStringLiteral("000.30.00W");
    QTest::newRow("-75") << -75.0 << -75.0 << QStringLiteral("075.00.00W");
}

void clsSatsTest::longitudeFolds() {
    QFETCH(double, fromLibrary);
    QFETCH(double, dblLong);
    Fixture f;
    f.Answer(At(fromLibrary, 0));
    const std::optional<SatInfo> info = f.sats.SatInfoAt(iss, 0);
    QVERIFY(info);
    QVERIFY(std::abs(info->dblLong - dblLong) < 1e-12);
    QTEST(info->strLong, "strLong");
}

void clsSatsTest::everyOutputIsFilledAndAnglesAreDegrees() {
    Fixture f;
    f.Answer({.visible = true,
              .south = true,
              .azimuth = 270 * radian,
              .elevation = 45 * radian,
              .longitude = 200 * radian,
              .latitude = -30.5 * radian,
              .range = 1234.5,
              .rangeRate = -6.5,
              .altitude = 705,
              .phase = 128});
    bool blnvisible = false;
    bool blnSouth = false;
    double az = 0;
    double el = 0;
    double longitude = 0;
    double latitude = 0;
    double range = 0;
    double rangeRate = 0;
    double altitude = 0;
    double phase = 0;
    QString strLong;
    QString strLat;
    QVERIFY(f.sats.GetSatInfo(blnvisible, iss, 46000.25, 7.5, blnSouth, az, el, longitude, latitude, strLong,
                              strLat, range, rangeRate, altitude, phase));
    QVERIFY(blnvisible && blnSouth);
    QCOMPARE(az, 270.0);
    QCOMPARE(el, 45.0);
    QCOMPARE(longitude, -160.0);
    QCOMPARE(latitude, -30.5);
    QCOMPARE(strLong, QStringLiteral("160.00.00W"));
    QCOMPARE(strLat, QStringLiteral("30.30.00S"));
    QCOMPARE(range, 1234.5);
    QCOMPARE(rangeRate, -6.5);
    QCOMPARE(altitude, 705.0);
    QCOMPARE(phase, 128.0);
    QCOMPARE(f.library->threshold, 7.5);
    QVERIFY(f.library->listCalls.empty()); // no due time, no pass search
}

void clsSatsTest::theLibraryIsAskedInItsOwnTime() {
    Fixture f;
    std::string object;
    double asked = 0;
    f.library->position = [&](const std::string& name, double utc) {
        object = name;
        asked = utc;
        return LibraryPosition{};
    };
    QVERIFY(f.sats.SatInfoAt(iss, 46000.25));
    QCOMPARE(asked, 46000.25);
    QCOMPARE(object, std::string("25544"));
    QCOMPARE(f.library->threshold, 0.0);
}

void clsSatsTest::aFailingLibraryLeavesTheOutputsAlone_data() {
    QTest::addColumn<QString>("operation");
    QTest::newRow("position") << QStringLiteral("position");
    QTest::newRow("time") << QStringLiteral("time");
    QTest::newRow("passes") << QStringLiteral("passes");
    QTest::newRow("damaged passes") << QStringLiteral("damaged passes");
}

void clsSatsTest::aFailingLibraryLeavesTheOutputsAlone() {
    QFETCH(QString, operation);
    Fixture f;
    if (operation == u"position")
        f.library->position = [](const std::string&, double) { return std::nullopt; };
    else if (operation == u"time")
        f.library->convertsTime = false;
    else if (operation == u"passes")
        f.library->passes.reset();
    else
        f.library->passes = "(rubbish)";
    bool blnvisible = true;
    bool blnSouth = true;
    double number = 77;
    QString text = QStringLiteral("before");
    QVERIFY(!f.sats.GetSatInfo(blnvisible, iss, 46000, 0, blnSouth, number, number, number, number, text,
                               text, number, number, number, number, &text));
    QVERIFY(blnvisible && blnSouth);
    QCOMPARE(number, 77.0);
    QCOMPARE(text, QStringLiteral("before"));
}

void clsSatsTest::millisecondsRoundUpFrom501() {
    Fixture f;
    f.clock.SetMilliseconds(1'000'000'000'500);
    const DateTime before = f.sats.datGmtTime();
    f.clock.SetMilliseconds(1'000'000'000'501);
    const DateTime after = f.sats.datGmtTime();
    QCOMPARE(FormatDateTime(before, u"hh:nn:ss"), QStringLiteral("01:46:40"));
    QCOMPARE(FormatDateTime(after, u"hh:nn:ss"), QStringLiteral("01:46:41"));
}

void clsSatsTest::julianDates() {
    QCOMPARE(clsSats::DateToJulianDate(DateOf(1995, 10, 9) + 0.5), 2450000.0);
    QCOMPARE(clsSats::DateToJulianDate(DateOf(2000, 1, 1) + 0.5), 2451545.0);
}

void clsSatsTest::observerIsHandedOverEastOfGreenwich() {
    Fixture f;
    QVERIFY(f.sats.setDblObsLong(-75));
    QCOMPARE(f.library->longitude, 285.0);
    QVERIFY(f.sats.setDblObsLong(13.5));
    QCOMPARE(f.library->longitude, 13.5);
    QVERIFY(f.sats.setDblObsLong(0));
    QCOMPARE(f.library->longitude, 0.0);
    QVERIFY(f.sats.setDblObsLat(-33.25));
    QCOMPARE(f.library->latitude, -33.25);
}

void clsSatsTest::theFolderIsHandedOverUnchanged() {
    Fixture f;
    QVERIFY(f.sats.setStrKeplerPath(QStringLiteral("/home/a b/Keps")));
    QCOMPARE(f.library->folder, std::string("/home/a b/Keps"));
}

void clsSatsTest::failuresOfTheSettersAreAnswered() {
    Fixture f;
    f.library->succeeds = false;
    QVERIFY(!f.sats.setStrKeplerPath(QStringLiteral("nowhere")));
    QVERIFY(!f.sats.setDblObsLat(1));
    QVERIFY(!f.sats.setDblObsLong(1));
}

void clsSatsTest::inViewIsDueNowWhateverPassesFollow() {
    Fixture f;
    f.library->passes = "(20261121150000 10 20 30 600)";
    f.Answer({.visible = true});
    QCOMPARE(f.sats.SatInfoAt(iss, f.sats.datGmtTime(), clsSats::Due::Yes)->strDue, QStringLiteral("Now!"));
    QCOMPARE(f.library->listCalls.size(), std::size_t{0}); // nothing is sought, so nothing can fail
}

void clsSatsTest::notInViewIsDueAtTheNextPass() {
    Fixture f;
    f.library->passes = "(20261121113000 10 20 30 600),(20261122150102 10 20 30 600)";
    QCOMPARE(f.sats.SatInfoAt(iss, 0, clsSats::Due::Yes)->strDue, QStringLiteral("15:01:02"));
    QCOMPARE(f.sats.SatInfoAt(iss, 0)->strDue, QString());
}

void clsSatsTest::withoutPassesDueIsMidnight() {
    Fixture f;
    QCOMPARE(f.sats.SatInfoAt(iss, 0, clsSats::Due::Yes)->strDue, QStringLiteral("00:00:00"));
    f.clock.SetOffsetHours(5.5);
    f.sats.setBlnLocalTime(true);
    QCOMPARE(f.sats.SatInfoAt(iss, 0, clsSats::Due::Yes)->strDue, QStringLiteral("05:30:00"));
}

void clsSatsTest::dueTimeIsLocalWhenAskedFor() {
    Fixture f;
    f.clock.SetOffsetHours(-3);
    f.sats.setBlnLocalTime(true);
    f.library->passes = "(20261121150000 10 20 30 600)";
    QCOMPARE(f.sats.SatInfoAt(iss, 0, clsSats::Due::Yes)->strDue, QStringLiteral("12:00:00"));
}

void clsSatsTest::theNextPassIsTheFirstThatHasNotBegun_data() {
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<double>("next");
    const DateTime day = DateOf(2026, 11, 21);
    QTest::newRow("begun already") << QByteArray("(20261121115900 1 2 3 600),(20261121133000 1 2 3 600)")
                                   << At(2026, 11, 21, 13, 30);
    QTest::newRow("begins this very second")
        << QByteArray("(20261121120000 1 2 3 600),(20261121120001 1 2 3 600)") << At(2026, 11, 21, 12, 0, 1);
    QTest::newRow("all begun: the last")
        << QByteArray("(20261121010000 1 2 3 4),(20261121020000 1 2 3 4)") << At(2026, 11, 21, 2, 0);
    QTest::newRow("none") << QByteArray() << 0.0;
    QTest::newRow("what follows is not read")
        << QByteArray("(20261121133000 1 2 3 600),rubbish") << At(2026, 11, 21, 13, 30);
    QTest::newRow("start alone") << QByteArray("(20261122000000") << day + 1.0;
}

void clsSatsTest::theNextPassIsTheFirstThatHasNotBegun() {
    QFETCH(QByteArray, list);
    Fixture f;
    f.library->passes = list.toStdString();
    QTEST(f.sats.GetNextPassTime(iss).value(), "next");
}

void clsSatsTest::theNextPassIsSoughtFromTheStartOfTheDay() {
    Fixture f;
    QVERIFY(f.sats.GetNextPassTime(iss));
    QCOMPARE(f.library->listCalls.size(), 1U);
    const FakeLibrary::ListCall& call = f.library->listCalls.front();
    QCOMPARE(call.object, std::string("25544"));
    QCOMPARE(call.startUtc, DateOf(2026, 11, 21));
    QCOMPARE(call.passesPerDay, 10);
    QCOMPARE(call.days, 2);
    QCOMPARE(call.reserved1, 0);
    QCOMPARE(call.reserved2, 0);
}

void clsSatsTest::displayTimeIsLocalOrUtc() {
    Fixture f;
    f.clock.SetOffsetHours(2);
    QCOMPARE(f.sats.blnLocalTime(), false);
    QCOMPARE(FormatDateTime(f.sats.datTime(), u"hh:nn"), QStringLiteral("12:00"));
    f.sats.setBlnLocalTime(true);
    QCOMPARE(FormatDateTime(f.sats.datTime(), u"hh:nn"), QStringLiteral("14:00"));
    QCOMPARE(FormatDateTime(f.sats.datGmtTime(), u"hh:nn"), QStringLiteral("12:00"));
}

void clsSatsTest::localTimeFollowsTheRulesOfItsDate_data() {
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<double>("utc");
    QTest::addColumn<QString>("local");
    const auto row = [](const char* name, const char* zone, DateTime utc, const char16_t* local) {
        QTest::newRow(name) << QByteArray(zone) << utc << QString::fromUtf16(local);
    };
    // Germany: +1, in summer +2, from the last Sunday of March to that of October, 01:00 UTC.
    row("Berlin, the last second of winter", "Europe/Berlin", At(2026, 3, 29, 0, 59, 59),
        u"2026-03-29 01:59:59");
    row("Berlin, the first of summer", "Europe/Berlin", At(2026, 3, 29, 1, 0), u"2026-03-29 03:00:00");
    row("Berlin, the last second of summer", "Europe/Berlin", At(2026, 10, 25, 0, 59, 59),
        u"2026-10-25 02:59:59");
    row("Berlin, the first of winter", "Europe/Berlin", At(2026, 10, 25, 1, 0), u"2026-10-25 02:00:00");
    // Lord Howe: +10:30, in summer +11, from the first Sunday of October to that of April.
    row("Lord Howe, the last second of summer", "Australia/Lord_Howe", At(2026, 4, 4, 14, 59, 59),
        u"2026-04-05 01:59:59");
    row("Lord Howe, the first of winter", "Australia/Lord_Howe", At(2026, 4, 4, 15, 0),
        u"2026-04-05 01:30:00");
    row("Lord Howe, the last second of winter", "Australia/Lord_Howe", At(2026, 10, 3, 15, 29, 59),
        u"2026-10-04 01:59:59");
    row("Lord Howe, the first of summer", "Australia/Lord_Howe", At(2026, 10, 3, 15, 30),
        u"2026-10-04 02:30:00");
    row("Kathmandu, winter", "Asia/Kathmandu", At(2026, 1, 1, 18, 15), u"2026-01-02 00:00:00");
    row("Kathmandu, summer", "Asia/Kathmandu", At(2026, 7, 1, 18, 15), u"2026-07-02 00:00:00");
}

void clsSatsTest::localTimeFollowsTheRulesOfItsDate() {
    QFETCH(QByteArray, zone);
    QFETCH(double, utc);
    QTEST(LocalIn(zone.constData(), utc), "local");
}

void clsSatsTest::whatIsNoDateHasNoLocalTime() {
    Fixture f;
    f.clock.SetOffsetHours(2);
    QCOMPARE(f.sats.GmtToLocal(1e9), 1e9);
    QCOMPARE(f.sats.GmtToLocal(-1e300), -1e300);
}

QTEST_GUILESS_MAIN(clsSatsTest)
#include "clsSatsTest.moc"
