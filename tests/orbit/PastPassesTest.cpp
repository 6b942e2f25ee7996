#include "orbit/history/PastPasses.h"

#include "foundation/text/UtcTime.h"
#include "orbit/SkyRig.h"

#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

class PastPassesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachPassIsOfTheElementsOfItsTime();
    void whereNoElementsAreNearThereAreNone();
    void aPassUnderWayAtEitherEndIsThere();
    void noPassIsLostOrDoubledWhereElementsChange();
    void noMoreThanAskedFor();
};

namespace {

constexpr qint64 day = 86'400'000;
constexpr std::size_t all = 10'000;
const DateTime present = DateOf(2026, 11, 16);

// As the present elements, but 30 days older and, where asked for, on another plane.
QByteArray Older(const QByteArray& dayOfYear, const QByteArray& plane) {
    const QByteArray set =
        SkyRig::Elements("QIRAN", "90417", QByteArray(SkyRig::polar).replace("  30.0000", plane))
            .replace("26320.00000000", dayOfYear);
    const QByteArrayList lines = set.split('\n');
    return lines[0] + '\n' + SkyRig::WithChecksum(lines[1]) + SkyRig::WithChecksum(lines[2]);
}

struct Rig : SkyRig {
    void Keep(const QByteArray& dayOfYear, DateTime epoch, const QByteArray& plane = " 200.0000") {
        history.Keep({.firstSeen = 0,
                      .number = 90417,
                      .epoch = UtcTime::FromDateTime(epoch),
                      .elements = Older(dayOfYear, plane)});
    }
    std::vector<PastPasses::Span> Between(DateTime from, DateTime to, std::size_t most = all) {
        return passes.Between(u"90417"_s, place->latitude, place->longitude, UtcTime::FromDateTime(from),
                              UtcTime::FromDateTime(to), most);
    }
    // What the orbit service finds by its own elements.
    std::vector<SatPass> Expected(DateTime from, double days) const {
        return sats
            .PassesOf({.object = "90417",
                       .latitude = place->latitude,
                       .longitude = place->longitude,
                       .startUtc = from,
                       .days = days,
                       .most = all})
            .passes;
    }

    ElementsHistory history{folder.File(u"elements-history.txt"_s), {}};
    PastElements elements{history, sats};
    PastPasses passes{elements};
};

bool AreSame(const std::vector<PastPasses::Span>& found, const std::vector<SatPass>& expected) {
    return std::ranges::equal(found, expected, [](const PastPasses::Span& span, const SatPass& pass) {
        return std::abs(span.first - UtcTime::FromDateTime(pass.riseUtc)) < 100 &&
               std::abs(span.second - UtcTime::FromDateTime(pass.setUtc)) < 100;
    });
}

} // namespace

void PastPassesTest::eachPassIsOfTheElementsOfItsTime() {
    Rig rig;
    rig.Keep("26290.00000000", DateOf(2026, 10, 17));
    Rig older;
    older.folder.Write(u"Keps/keps.txt"_s, Older("26290.00000000", " 200.0000"));
    older.sats.setStrKeplerPath(older.folder.Program().KepsFolder());
    const auto expectedOld = older.Expected(DateOf(2026, 10, 20), 3.0);
    const auto expectedNew = rig.Expected(present + 1.0, 3.0);
    QVERIFY(expectedOld.size() > 10 && expectedNew.size() > 10);
    QVERIFY(
        AreSame(rig.Between(expectedOld.front().riseUtc, expectedOld.back().riseUtc + 1e-3), expectedOld));
    QVERIFY(
        AreSame(rig.Between(expectedNew.front().riseUtc, expectedNew.back().riseUtc + 1e-3), expectedNew));
    QVERIFY(!AreSame(rig.Between(expectedOld.front().riseUtc, expectedOld.back().riseUtc + 1e-3),
                     rig.Expected(DateOf(2026, 10, 20), 3.0)));
}

void PastPassesTest::whereNoElementsAreNearThereAreNone() {
    Rig rig;
    rig.Keep("26290.00000000", DateOf(2026, 10, 17));
    QVERIFY(rig.Between(DateOf(2026, 10, 1), DateOf(2026, 10, 2)).empty());
    QVERIFY(!rig.Between(DateOf(2026, 10, 3), DateOf(2026, 10, 4)).empty());
    QVERIFY(rig.Between(DateOf(2026, 12, 1), DateOf(2027, 12, 1)).empty());
    QVERIFY(rig.passes.Between(u"12345"_s, 52, 11, 0, day, all).empty());
    // Two days between the sets have none: 14 days on either side are not enough.
    const auto found = rig.Between(DateOf(2026, 10, 30), DateOf(2026, 11, 3));
    QVERIFY(!found.empty());
    for (const auto& [rise, set] : found)
        QVERIFY(rise < UtcTime::FromDateTime(DateOf(2026, 10, 31)) ||
                set > UtcTime::FromDateTime(DateOf(2026, 11, 2)));
}

void PastPassesTest::aPassUnderWayAtEitherEndIsThere() {
    Rig rig;
    const std::vector<SatPass> passes = rig.Expected(present, 1.0);
    const SatPass& first = passes[1];
    const SatPass& last = passes[3];
    const auto found = rig.Between((first.culminationUtc + first.setUtc) / 2, // behind its top
                                   (last.riseUtc + last.culminationUtc) / 2);
    QVERIFY(AreSame(found, {passes.begin() + 1, passes.begin() + 4}));
    QVERIFY(rig.Between(first.setUtc + 1e-3, passes[2].riseUtc - 1e-3).empty());
}

void PastPassesTest::noPassIsLostOrDoubledWhereElementsChange() {
    Rig rig;
    const std::vector<SatPass> passes = rig.Expected(present + 4.0, 2.0);
    // A set of nearly the same orbit takes over from the present one a little before and behind the top of a
    // pass: an epoch two days later by its mean anomaly, 29.84 turns on.
    const auto spansOf = [&](double takeOver) {
        Rig other;
        const QByteArray lines = SkyRig::Elements("QIRAN", "90417", SkyRig::polar);
        other.history.Keep({.firstSeen = 0,
                            .number = 90417,
                            // Its place among the epochs decides when it takes over, its lines the orbit.
                            .epoch = UtcTime::FromDateTime(2 * takeOver - present),
                            .elements = lines});
        return other.Between(present + 4.0, passes.back().setUtc);
    };
    for (const std::size_t i : {3U, 5U, 6U})
        for (const double seconds : {-400.0, -1.0, 0.0, 1.0, 400.0})
            QVERIFY(AreSame(spansOf(passes[i].culminationUtc + seconds / secondsPerDay), passes));
}

void PastPassesTest::noMoreThanAskedFor() {
    Rig rig;
    const auto found = rig.Between(present, present + 3.0);
    QVERIFY(found.size() > 5);
    QCOMPARE(rig.Between(present, present + 3.0, 5),
             std::vector<PastPasses::Span>(found.begin(), found.begin() + 5));
}

QTEST_GUILESS_MAIN(PastPassesTest)
#include "PastPassesTest.moc"
