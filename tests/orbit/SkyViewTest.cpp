#include "orbit/skyview/SkyView.h"

#include "orbit/SkyRig.h"
#include "orbit/skyview/SkyTexts.h"

#include <QTest>

namespace {

/// A view over the rig's station, made when first asked for: the files are written before.
struct Fixture : SkyRig {
    using SkyRig::SkyRig;

    SkyView& View() {
        if (!view) {
            view.emplace(
                sats, satellites, [this] { return place; }, [this] { return simulated; }, folder.Program());
            view->Refresh();
        }
        return *view;
    }
    QString Value(const QString& name) {
        for (const SkyRow& row : View().Rows())
            if (row.name.startsWith(name))
                return row.value;
        return {};
    }
    SatPass HighPass() const {
        return Find(day, [](const SatPass& p) { return p.maxElevation > 40; });
    }
    void SetTo(DateTime utc) {
        clock.Set(utc);
        View().Refresh();
    }

    std::optional<SkyView> view;
};

double Seconds(DateTime a, DateTime b) {
    return std::abs(a - b) * secondsPerDay;
}

} // namespace

class SkyViewTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void textsHaveTheirForms();
    void followsThePresentOrNextPass();
    void countsDownToRiseAndSet();
    void valuesAreThoseOfTheMoment();
    void frequenciesAreShiftedByTheRangeRate();
    void steppingLeavesThePresentUntilItIsAskedFor();
    void aPassIsShownByItsStart();
    void bothAreShownWhenBothAreUp();
    void theSunIsShownWhileItIsUp();
    void theSimulatedClockRulesWhereThereIsOne();
    void thePassTextSaysWhatThereIs();
    void visibleNeedsAHorizon();
    void anotherSatelliteOrPlaceStartsAnew();
    void faultsOfTheFilesAreNamed();
};

void SkyViewTest::textsHaveTheirForms() {
    QCOMPARE(SkyTexts::Duration(0), QStringLiteral("00:00:00"));
    QCOMPARE(SkyTexts::Duration(-3723.4), QStringLiteral("01:02:03"));
    QCOMPARE(SkyTexts::Duration(86399.6), QStringLiteral("1 d 00:00:00"));
    QCOMPARE(SkyTexts::Duration(2 * 86400 + 61), QStringLiteral("2 d 00:01:01"));
    QCOMPARE(SkyTexts::Azimuth(359.7), QStringLiteral("0° (N)"));
    QCOMPARE(SkyTexts::Azimuth(22.6), QStringLiteral("23° (NE)"));
    QCOMPARE(SkyTexts::Azimuth(270), QStringLiteral("270° (W)"));
    QCOMPARE(SkyTexts::Shift(9120.4), QStringLiteral("+9120 Hz"));
    QCOMPARE(SkyTexts::Shift(-0.4), QStringLiteral("+0 Hz"));
    QCOMPARE(SkyTexts::Shift(-3.6), QStringLiteral("-4 Hz"));
    QCOMPARE(SkyTexts::Speed(-0.0004), QStringLiteral("0.000 km/s"));
    QCOMPARE(SkyTexts::Speed(-5.2126), QStringLiteral("-5.213 km/s"));
    QCOMPARE(SkyTexts::Megahertz(437.809120), QStringLiteral("437.80912 MHz"));
    QCOMPARE(SkyTexts::OfLight(orbitmath::Light::Penumbra), QStringLiteral("in half shadow"));
}

void SkyViewTest::followsThePresentOrNextPass() {
    Fixture f;
    const SatPass first = f.Steps().PresentOrNext(SkyRig::day).value();
    const SatPass second = f.Steps().Later(first).value();
    const auto rise = [&] { return f.View().Scene().tracks.front().path.rise->utc; };
    QVERIFY(Seconds(rise(), first.riseUtc) < 0.01);
    QVERIFY(!f.View().Scene().tracks.front().now);
    f.SetTo(first.culminationUtc);
    QVERIFY(Seconds(rise(), first.riseUtc) < 0.01);
    QVERIFY(std::abs(f.View().Scene().tracks.front().now->elevation - first.maxElevation) < 0.5);
    f.SetTo(first.setUtc + 2 / secondsPerDay);
    QVERIFY(Seconds(rise(), second.riseUtc) < 0.01);
    f.SetTo(first.culminationUtc); // the clock may go back
    QVERIFY(Seconds(rise(), first.riseUtc) < 0.01);
}

void SkyViewTest::countsDownToRiseAndSet() {
    Fixture f;
    const SatPass pass = f.Steps().PresentOrNext(SkyRig::day).value();
    f.SetTo(std::floor(pass.riseUtc * secondsPerDay) / secondsPerDay - 100 / secondsPerDay);
    QVERIFY(f.Value(QStringLiteral("Rises in")).startsWith(QStringLiteral("00:01:4")));
    QVERIFY(f.View().Rows().front().isLarge);
    f.SetTo(std::floor(pass.setUtc * secondsPerDay) / secondsPerDay - 60 / secondsPerDay);
    QVERIFY(f.Value(QStringLiteral("Sets in")).startsWith(QStringLiteral("00:01:0")));
    QVERIFY(f.View().StepEarlier());
    QVERIFY(!f.Value(QStringLiteral("Set before")).isEmpty());
}

void SkyViewTest::valuesAreThoseOfTheMoment() {
    Fixture f;
    f.SetTo(f.HighPass().culminationUtc);
    const SatPosition position = f.sats.PositionAt(QStringLiteral("90417"), f.sats.datGmtTime()).value();
    QCOMPARE(f.Value(QStringLiteral("Azimuth")), QString::number(position.dblAz, 'f', 1) + u'°');
    QCOMPARE(f.Value(QStringLiteral("Elevation")), QString::number(position.dblEl, 'f', 1) + u'°');
    QCOMPARE(f.Value(QStringLiteral("Range")),
             QString::number(position.dblRange, 'f', 0) + QStringLiteral(" km"));
    QCOMPARE(f.Value(QStringLiteral("Range rate")),
             QString::number(position.dblRangeRate, 'f', 3) + QStringLiteral(" km/s"));
    QCOMPARE(f.Value(QStringLiteral("Altitude")),
             QString::number(position.dblAltitude, 'f', 0) + QStringLiteral(" km"));
    // Both are met somewhere on an orbit at this time of the year.
    QSet<QString> lights;
    for (int minute = 0; minute < 100; ++minute) {
        f.SetTo(SkyRig::day + minute / minutesPerDay);
        lights += f.Value(QStringLiteral("Light"));
    }
    QVERIFY(lights.contains(QStringLiteral("sunlit")));
    QVERIFY(lights.contains(QStringLiteral("in the earth's shadow")));
}

void SkyViewTest::frequenciesAreShiftedByTheRangeRate() {
    Fixture f;
    f.folder.Write(QStringLiteral("frequencies.txt"), "QIRAN,Telemetry,437.8\nISS,Packet,145.825\n");
    const SatPass pass = f.HighPass();
    f.SetTo(pass.riseUtc + 5 / secondsPerDay);
    const SkyRow row = f.View().Rows().back();
    const double rate = f.sats.PositionAt(QStringLiteral("90417"), f.sats.datGmtTime())->dblRangeRate;
    const double shift = -rate / 299792.458 * 437.8e6;
    QVERIFY(shift > 5000);
    QCOMPARE(row.name, QStringLiteral("Telemetry +%1 Hz").arg(std::lround(shift)));
    QCOMPARE(row.value, QString::number(437.8 + shift / 1e6, 'f', 5) + QStringLiteral(" MHz"));
    QVERIFY(row.isLarge);
    f.satellites.Toggle();
    f.View().Refresh();
    QVERIFY(f.View().Rows().back().name.startsWith(QStringLiteral("Packet ")));
}

void SkyViewTest::steppingLeavesThePresentUntilItIsAskedFor() {
    Fixture f;
    const SatPass first = f.Steps().PresentOrNext(SkyRig::day).value();
    const auto rise = [&] { return f.View().Scene().tracks.front().path.rise->utc; };
    QVERIFY(f.View().IsFollowing());
    QVERIFY(f.View().StepLater());
    QVERIFY(!f.View().IsFollowing());
    const DateTime later = rise();
    QVERIFY(later > first.setUtc);
    f.SetTo(first.culminationUtc); // goes on in the values, not in the picture
    QCOMPARE(rise(), later);
    QVERIFY(f.View().Scene().tracks.front().now);
    QVERIFY(f.View().StepEarlier());
    QVERIFY(f.View().StepEarlier());
    QVERIFY(rise() < first.riseUtc);
    f.View().ShowPresent();
    QVERIFY(Seconds(rise(), first.riseUtc) < 0.01);
    QVERIFY(f.View().IsFollowing());
}

void SkyViewTest::aPassIsShownByItsStart() {
    Fixture f;
    const SatPass pass = f.HighPass();
    QVERIFY(f.View().ShowPassAt(std::floor(pass.riseUtc * secondsPerDay) / secondsPerDay));
    QVERIFY(Seconds(f.View().Scene().tracks.front().path.rise->utc, pass.riseUtc) < 0.01);
    QVERIFY(!f.View().ShowPassAt(pass.culminationUtc));
    QVERIFY(Seconds(f.View().Scene().tracks.front().path.rise->utc, pass.riseUtc) < 0.01);
}

void SkyViewTest::bothAreShownWhenBothAreUp() {
    Fixture f;
    int both = 0;
    for (int minute = 0; minute < 2 * 1440; ++minute) {
        const DateTime utc = SkyRig::day + minute / minutesPerDay;
        const bool isOtherUp = f.sats.PositionAt(QStringLiteral("25544"), utc)->blnvisible;
        if (!isOtherUp && minute % 60 != 0)
            continue;
        f.SetTo(utc);
        const auto& tracks = f.View().Scene().tracks;
        QCOMPARE(tracks.size(), isOtherUp ? 2U : 1U);
        if (isOtherUp) {
            QCOMPARE(tracks[1].name, QStringLiteral("ISS"));
            QVERIFY(tracks[1].path.rise->utc <= utc && utc <= tracks[1].path.set->utc);
            QVERIFY(tracks[1].now);
            both += tracks[0].now ? 1 : 0;
        }
    }
    QVERIFY(both > 0);
}

void SkyViewTest::theSunIsShownWhileItIsUp() {
    Fixture f;
    f.SetTo(SkyRig::day);
    QVERIFY(!f.View().Scene().sun); // midnight
    f.SetTo(SkyRig::day + 0.5 - 11.0 / 360 - 15 / minutesPerDay);
    QVERIFY(f.View().Scene().sun); // noon at 11 degrees east, and the equation of time
    QVERIFY(std::abs(f.View().Scene().sun->azimuth - 180) < 0.5);
    QVERIFY(std::abs(f.View().Scene().sun->elevation - (90 - 52 - 18.95)) < 0.2);
}

void SkyViewTest::theSimulatedClockRulesWhereThereIsOne() {
    Fixture f;
    QCOMPARE(f.View().TimeText(), QStringLiteral("2026-Nov-17 00:00:00 UTC"));
    f.simulated = SkyRig::day + 0.5;
    f.View().Refresh();
    QCOMPARE(f.View().TimeText(), QStringLiteral("2026-Nov-17 12:00:00 UTC, simulated by the map"));
    QVERIFY(f.View().Scene().tracks.front().path.set->utc > *f.simulated);
    QVERIFY(f.View().Scene().sun);
    f.clock.SetOffsetHours(2);
    f.sats.setBlnLocalTime(true);
    QCOMPARE(f.View().TimeText(), QStringLiteral("2026-Nov-17 14:00:00 local time, simulated by the map"));
}

void SkyViewTest::thePassTextSaysWhatThereIs() {
    Fixture f;
    const QString text = f.View().PassText();
    const SkyPath& path = f.View().Scene().tracks.front().path;
    QCOMPARE(text, QStringLiteral("QIRAN: 2026-Nov-17, rises %1 at %2, highest %3 at %4, sets %5 at %6")
                       .arg(f.View().TimeOfDay(path.rise->utc), SkyTexts::Azimuth(path.rise->azimuth),
                            SkyTexts::Degrees(path.culmination->elevation),
                            f.View().TimeOfDay(path.culmination->utc), f.View().TimeOfDay(path.set->utc),
                            SkyTexts::Azimuth(path.set->azimuth)));
    f.place.reset();
    f.View().Refresh();
    QVERIFY(f.View().PassText().startsWith(QStringLiteral("Your position is not known.")));
    QVERIFY(f.View().Rows().empty() && f.View().Scene().tracks.empty());
    QVERIFY(!f.View().StepLater() && !f.View().StepEarlier() && !f.View().ShowPassAt(SkyRig::day));

    Fixture never(SkyRig::equatorial);
    never.MoveTo({70, 11});
    QCOMPARE(never.View().PassText(), QStringLiteral("QIRAN: no pass in the next 128 days."));
    QCOMPARE(never.Value(QStringLiteral("Pass")), QStringLiteral("none"));

    Fixture always(SkyRig::hovering);
    always.MoveTo({10, always.sats.PositionAt(QStringLiteral("90417"), SkyRig::day)->dblLong + 5});
    QVERIFY(always.View().PassText().contains(QStringLiteral("always above the horizon")));
    QCOMPARE(always.Value(QStringLiteral("Pass")), QStringLiteral("always up"));
    QVERIFY(always.View().Scene().tracks.front().now);

    Fixture none;
    none.folder.Write(QStringLiteral("Keps/keps.txt"), "");
    none.sats.setStrKeplerPath(none.folder.Program().KepsFolder());
    QVERIFY(none.View().PassText().contains(QStringLiteral("no elements")));
}

void SkyViewTest::visibleNeedsAHorizon() {
    Fixture flat;
    QVERIFY(flat.Value(QStringLiteral("Visible")).isEmpty());
    Fixture hills;
    hills.folder.Write(QStringLiteral("horizon.txt"), "0,10\n");
    hills.View().ShowPassAt(hills.HighPass().riseUtc);
    const QString text = hills.Value(QStringLiteral("Visible"));
    QVERIFY(text.startsWith(QStringLiteral("from ")) && text.contains(QStringLiteral(" to ")));
    Fixture walls;
    walls.folder.Write(QStringLiteral("horizon.txt"), "0,89.9\n");
    QCOMPARE(walls.Value(QStringLiteral("Visible")), QStringLiteral("not over your horizon"));
}

void SkyViewTest::anotherSatelliteOrPlaceStartsAnew() {
    Fixture f;
    f.View().StepLater();
    const DateTime before = f.View().Scene().tracks.front().path.rise->utc;
    f.MoveTo({-33, 151});
    f.View().Refresh();
    QVERIFY(f.View().IsFollowing());
    QVERIFY(Seconds(f.View().Scene().tracks.front().path.rise->utc, before) > 60);
    f.View().StepLater();
    f.satellites.Toggle();
    f.View().Refresh();
    QVERIFY(f.View().IsFollowing());
    QCOMPARE(f.View().Scene().tracks.front().name, QStringLiteral("ISS"));
}

void SkyViewTest::faultsOfTheFilesAreNamed() {
    Fixture good;
    QVERIFY(good.View().FileFaults().isEmpty());
    Fixture bad;
    bad.folder.Write(QStringLiteral("horizon.txt"), "0,10\neast,1\nwest,2\n");
    bad.folder.Write(QStringLiteral("frequencies.txt"), "ISS,a\n");
    QCOMPARE(
        bad.View().FileFaults(),
        QStringList({QStringLiteral(
                         "horizon.txt, line 2: the azimuth is 0 to 360 degrees, not \"east\" (and 1 more)"),
                     QStringLiteral("frequencies.txt, line 1: 2 fields in place of 3")}));
}

QTEST_MAIN(SkyViewTest)
#include "SkyViewTest.moc"
