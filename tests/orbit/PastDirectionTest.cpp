#include "orbit/history/PastDirection.h"

#include "foundation/text/UtcTime.h"
#include "orbit/SkyRig.h"

#include <QTest>

using namespace Qt::StringLiterals;

class PastDirectionTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theNearestElementsCount();
    void nothingIsNearEnough();
    void ofAnotherSatelliteThereIsNothing();
};

namespace {

constexpr quint32 qiran = 90417;

// Elements of 30 days before the rig's, on another plane.
QByteArray Older() {
    return SkyRig::Elements("QIRAN", "90417", QByteArray(SkyRig::polar).replace("  30.0000", " 200.0000"))
        .replace("26320.00000000", "26290.00000000");
}

QByteArray WithChecksums(const QByteArray& set) {
    QByteArrayList lines = set.split('\n');
    return lines[0] + '\n' + SkyRig::WithChecksum(lines[1]) + SkyRig::WithChecksum(lines[2]);
}

struct Rig : SkyRig {
    Rig() {
        history.Keep({.firstSeen = UtcTime::FromDateTime(epoch),
                      .number = qiran,
                      .epoch = UtcTime::FromDateTime(epoch),
                      .elements = WithChecksums(Older())});
    }
    std::optional<SkyPoint> At(DateTime utc) { return past.At(u"90417"_s, 52, 11, utc); }

    const DateTime epoch = DateOf(2026, 10, 17);
    ElementsHistory history{folder.File(u"elements-history.txt"_s), [](const QString&) {}};
    PastElements elements{history, sats};
    PastDirection past{elements};
};

} // namespace

void PastDirectionTest::theNearestElementsCount() {
    Rig rig;
    SkyRig older;
    older.folder.Write(u"Keps/keps.txt"_s, WithChecksums(Older()));
    older.sats.setStrKeplerPath(older.folder.Program().KepsFolder());
    const auto expect = [&](const clsSats& sats, DateTime utc) {
        const auto position = sats.PositionAt(u"90417"_s, utc);
        const auto found = rig.At(utc);
        return found && std::abs(found->azimuth - position->dblAz) < 1e-5 &&
               std::abs(found->elevation - position->dblEl) < 1e-5 && found->utc == utc;
    };
    for (const double days : {-13.0, 0.3, 7.7, 13.9})
        QVERIFY(expect(older.sats, rig.epoch + days));
    for (const double days : {-13.9, -2.0, 0.1, 5.0, 13.0})
        QVERIFY(expect(rig.sats, DateOf(2026, 11, 16) + days));
    QVERIFY(expect(older.sats, rig.epoch)); // and back again
    // Between two sets that are both near, the nearer one.
    rig.history.Keep({.firstSeen = 0,
                      .number = qiran,
                      .epoch = UtcTime::FromDateTime(DateOf(2026, 11, 6)),
                      .elements = WithChecksums(Older().replace("26290.0", "26310.0"))});
    const auto byKept = rig.At(DateOf(2026, 11, 10));
    QVERIFY(!expect(rig.sats, DateOf(2026, 11, 10)));
    QVERIFY(expect(rig.sats, DateOf(2026, 11, 12)));
    QVERIFY(byKept.has_value());
}

void PastDirectionTest::nothingIsNearEnough() {
    Rig rig;
    QVERIFY(!rig.At(rig.epoch - 14.1));
    QVERIFY(rig.At(rig.epoch - 13.9));
    QVERIFY(!rig.At(DateOf(2026, 11, 16) + 14.1));
    QVERIFY(rig.At(DateOf(2026, 11, 16) + 13.9));
}

void PastDirectionTest::ofAnotherSatelliteThereIsNothing() {
    Rig rig;
    QVERIFY(!rig.past.At(u"12345"_s, 52, 11, rig.epoch));
    QVERIFY(rig.past.At(u"25544"_s, 52, 11, DateOf(2026, 11, 16)));
}

QTEST_GUILESS_MAIN(PastDirectionTest)
#include "PastDirectionTest.moc"
