#include "orbit/map/SimulatedClock.h"

#include <QTest>

namespace {

// 2026-11-21 12:34:56 UTC, and the two whole minutes beside it.
const DateTime now =
    FromCalendar({.year = 2026, .month = 11, .day = 21, .hour = 12, .minute = 34, .second = 56});
const QString real = QStringLiteral("12:34:56");

QString Shown(const SimulatedClock& clock) {
    return FormatDateTime(clock.Shown(now), u"hh:nn:ss");
}

} // namespace

class SimulatedClockTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyChoiceDoesWhatTheMenuSays_data();
    void everyChoiceDoesWhatTheMenuSays();
    void aMillionStepsStayOnTheWholeMinute();
    void minutesCarryIntoTheNextDay();
};

// Each letter of `choices` is a choice or a tick: N, F, V the speeds, B backwards, P pause, R reset, t a
// tick. A choice that asks for a new drawing brings a tick with it, as in the window.
void SimulatedClockTest::everyChoiceDoesWhatTheMenuSays_data() {
    QTest::addColumn<QByteArray>("choices");
    QTest::addColumn<QString>("shown");      // by the next tick
    QTest::addColumn<int>("drawn");          // how often the choices asked for a new drawing
    QTest::addColumn<QByteArray>("checked"); // the entries' letters
    QTest::addColumn<bool>("ticking");
    QTest::addColumn<int>("interval");
    const auto row = [](const char* name, const char* choices, const char16_t* shown, int drawn,
                        const char* checked, bool ticking, int interval) {
        QTest::newRow(name) << QByteArray(choices) << QString::fromUtf16(shown) << drawn
                            << QByteArray(checked) << ticking << interval;
    };
    row("opened", "", u"12:34:56", 0, "N", true, 15000);
    row("ticks follow the real clock", "ttt", u"12:34:56", 0, "N", true, 15000);
    row("normal again does nothing", "N", u"12:34:56", 0, "N", true, 15000);
    row("fast starts at the next whole minute, and its drawing steps", "F", u"12:36:00", 1, "F", true, 500);
    row("fast goes on a minute a tick", "Fttt", u"12:39:00", 1, "F", true, 500);
    row("fast again does nothing", "FF", u"12:36:00", 1, "F", true, 500);
    row("very fast goes on two minutes a tick", "Vtt", u"12:41:00", 1, "V", true, 250);
    row("very fast again does nothing", "VV", u"12:37:00", 1, "V", true, 250);
    row("very fast after fast keeps the time", "FtV", u"12:39:00", 2, "V", true, 250);
    row("fast after very fast keeps the time", "VF", u"12:38:00", 2, "F", true, 500);
    row("normal after fast keeps the simulated clock", "FN", u"12:37:00", 2, "N", true, 15000);
    row("and steps a minute a tick", "FNtt", u"12:39:00", 2, "N", true, 15000);
    row("backwards starts at this whole minute, without a drawing", "B", u"12:34:00", 0, "NB", true, 15000);
    row("and goes back a minute a tick", "Btt", u"12:32:00", 0, "NB", true, 15000);
    row("fast while backwards is checked goes on back", "BF", u"12:33:00", 1, "FB", true, 500);
    row("very fast while backwards is checked goes back two", "BVt", u"12:30:00", 1, "VB", true, 250);
    row("backwards after fast keeps the time", "FtB", u"12:37:00", 1, "FB", true, 500);
    row("and turns back", "FtBtt", u"12:35:00", 1, "FB", true, 500);
    row("backwards off goes forward again", "BtBt", u"12:34:00", 0, "N", true, 15000);
    row("pause stops the ticker", "P", u"12:34:56", 0, "NP", false, 15000);
    row("pause keeps the simulated time", "FtP", u"12:37:00", 1, "FP", false, 500);
    row("the second pause goes on from it", "FtPPt", u"12:38:00", 1, "F", true, 500);
    row("a speed restarts the paused ticker, the mark stays", "FPN", u"12:37:00", 2, "NP", true, 15000);
    row("so does fast", "PF", u"12:36:00", 1, "FP", true, 500);
    row("so does very fast", "PV", u"12:37:00", 1, "VP", true, 250);
    row("the checked speed does not", "FPF", u"12:36:00", 1, "FP", false, 500);
    row("the second pause after it clears the mark", "PFP", u"12:36:00", 1, "F", true, 500);
    row("reset goes back to the real clock", "VBPR", u"12:34:56", 1, "N", true, 15000);
    row("reset of a fresh map", "R", u"12:34:56", 0, "N", true, 15000);
    row("fast after reset starts anew", "VtttRF", u"12:36:00", 2, "F", true, 500);
    row("backwards in pause starts the time", "PB", u"12:34:00", 0, "NBP", false, 15000);
}

void SimulatedClockTest::everyChoiceDoesWhatTheMenuSays() {
    QFETCH(QByteArray, choices);
    SimulatedClock clock;
    int drawn = 0;
    const auto choose = [&](SimulatedClock::Speed speed) {
        if (clock.ChooseSpeed(speed, now)) {
            ++drawn;
            clock.Step();
        }
    };
    for (const char choice : choices) {
        switch (choice) {
        case 'N':
            choose(SimulatedClock::Speed::Normal);
            break;
        case 'F':
            choose(SimulatedClock::Speed::Fast);
            break;
        case 'V':
            choose(SimulatedClock::Speed::VeryFast);
            break;
        case 'B':
            clock.ToggleBackwards(now);
            break;
        case 'P':
            clock.TogglePause();
            break;
        case 'R':
            clock.Reset();
            clock.Step();
            break;
        default:
            clock.Step();
        }
    }
    QByteArray checked(1, "NFV"[static_cast<int>(clock.CheckedSpeed())]);
    if (clock.IsBackwardsChecked())
        checked += 'B';
    if (clock.IsPauseChecked())
        checked += 'P';
    QTEST(Shown(clock), "shown");
    QTEST(drawn, "drawn");
    QTEST(checked, "checked");
    QTEST(clock.IsTicking(), "ticking");
    QTEST(clock.Interval(), "interval");
    QCOMPARE(clock.IsSimulated(), Shown(clock) != real);
}

void SimulatedClockTest::aMillionStepsStayOnTheWholeMinute() {
    SimulatedClock clock;
    clock.ChooseSpeed(SimulatedClock::Speed::Fast, now);
    for (int i = 0; i < 1'000'000; ++i)
        clock.Step();
    const DateTime expected = std::floor(now) + (12 * 60 + 35 + 1'000'000) / minutesPerDay;
    QVERIFY(std::abs(clock.Shown(now) - expected) * secondsPerDay < 1e-4);
}

void SimulatedClockTest::minutesCarryIntoTheNextDay() {
    SimulatedClock clock;
    clock.ChooseSpeed(SimulatedClock::Speed::Fast, DateOf(2026, 12, 31) + 86399.0 / 86400.0);
    QCOMPARE(clock.Shown(now), DateOf(2027, 1, 1));
}

QTEST_GUILESS_MAIN(SimulatedClockTest)
#include "SimulatedClockTest.moc"
