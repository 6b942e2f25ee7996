#include "orbit/history/ElementsHistory.h"

#include "orbit/geometry/SinCos.h"
#include "support/SmallDisk.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ElementsHistoryTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void aNewSetIsKeptAsItCame();
    void aKnownEpochIsKeptOnce();
    void aSetInAnotherFormatIsKeptOnce();
    void theNearestSetIsFound_data();
    void theNearestSetIsFound();
    void theStretchesAreThoseOfTheNearestSets();
    void aSetThatIsOnlyConsideredIsNotWritten();
    void whatWasKeptIsReadAtTheNextStart();
    void foreignAndTornLinesArePassedOver();
    void thePastIsComputedWithTheNearestSet();
    void whatIsNoSetIsNotKept();
    void aFullDiskIsSaidOnceAndLosesNothing();

private:
    static constexpr qint64 day = 86'400'000;

    static ElementsHistory::Set Set(quint32 number, qint64 epoch, const QByteArray& elements = "1 x\n2 y") {
        return {.firstSeen = epoch + 1000, .number = number, .epoch = epoch, .elements = elements};
    }
    QString Path() const { return m_folder->File(u"elements-history.txt"_s); }
    QByteArray Content() const { return m_folder->Read(u"elements-history.txt"_s); }
    std::unique_ptr<ElementsHistory> Make() {
        auto history = std::make_unique<ElementsHistory>(
            Path(), [this](const QString& reason) { m_reasons.append(reason); });
        history->Load();
        return history;
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    QStringList m_reasons;
};

void ElementsHistoryTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_reasons.clear();
}

void ElementsHistoryTest::aNewSetIsKeptAsItCame() {
    const auto history = Make();
    QVERIFY(!QFile::exists(Path()));
    history->Keep({.firstSeen = 1795274923120,
                   .number = 90417,
                   .epoch = 1795219200000,
                   .elements = "QIRAN\r\n1 90417U\r\n2 90417"});
    history->Keep({.firstSeen = 1795274923120, .number = 25544, .epoch = 0, .elements = "ISS \"Z\",1998,x"});
    QCOMPARE(Content(),
             "utc,number,epoch,elements\n"
             "2026-11-21T15:28:43.120Z,90417,2026-11-21T00:00:00.000Z,\"QIRAN\r\n1 90417U\r\n2 90417\"\n"
             "2026-11-21T15:28:43.120Z,25544,1970-01-01T00:00:00.000Z,\"ISS \"\"Z\"\",1998,x\"\n");
}

void ElementsHistoryTest::aKnownEpochIsKeptOnce() {
    auto history = Make();
    history->Keep(Set(1, 5 * day, "first"));
    history->Keep(Set(1, 5 * day, "again"));
    history->Keep(Set(2, 5 * day, "other"));
    history->Keep(Set(1, 6 * day, "newer"));
    history = Make();
    history->Keep(Set(1, 5 * day, "next start"));
    history->Keep(Set(1, 4 * day, "older"));
    QCOMPARE(Content().count('\n'), 5);
    QCOMPARE(history->Nearest(1, 5 * day)->elements, "first");
    QCOMPARE(history->Nearest(1, 4 * day)->elements, "older");
}

// Two-line elements round their epoch to 0.864 ms, OMM to a microsecond.
void ElementsHistoryTest::aSetInAnotherFormatIsKeptOnce() {
    for (const qint64 apart : {-1, 1}) {
        init();
        auto history = Make();
        history->Keep(Set(1, 5 * day, "as it was"));
        QVERIFY(history->Holds(1, 5 * day + apart));
        QVERIFY(!history->Holds(1, 5 * day + 2 * apart));
        QVERIFY(!history->Holds(2, 5 * day + apart));
        history->Keep(Set(1, 5 * day + apart, "in another format"));
        history->Keep(Set(2, 5 * day + apart, "another object"));
        QCOMPARE(Content().count('\n'), 3);
        QCOMPARE(history->Nearest(1, 5 * day + apart)->elements, "as it was");
        // Kept twice by an earlier version.
        m_folder->Write(u"elements-history.txt"_s, "utc,number,epoch,elements\n"
                                                   "1970-01-06T00:00:00.000Z,1,1970-01-06T00:00:00.001Z,b\n"
                                                   "1970-01-06T00:00:00.000Z,1,1970-01-06T00:00:00.000Z,a\n"
                                                   "1970-01-06T00:00:00.000Z,1,1970-01-06T00:00:00.002Z,c\n");
        history = Make();
        QCOMPARE(history->Nearest(1, 5 * day)->elements, "a");
        QCOMPARE(history->Nearest(1, 5 * day + 2)->elements, "c");
    }
}

void ElementsHistoryTest::theNearestSetIsFound_data() {
    QTest::addColumn<qint64>("utc");
    QTest::addColumn<QByteArray>("elements");
    QTest::newRow("at an epoch") << 100 * day << QByteArray("a");
    QTest::newRow("nearer to the earlier") << 103 * day << QByteArray("a");
    QTest::newRow("nearer to the later") << 108 * day << QByteArray("b");
    QTest::newRow("fourteen days before") << 86 * day << QByteArray("a");
    QTest::newRow("a moment more") << 86 * day - 1 << QByteArray();
    QTest::newRow("fourteen days after") << 124 * day << QByteArray("b");
    QTest::newRow("and more") << 124 * day + 1 << QByteArray();
    QTest::newRow("in another age") << qint64{0} << QByteArray();
}

void ElementsHistoryTest::theNearestSetIsFound() {
    QFETCH(const qint64, utc);
    QFETCH(const QByteArray, elements);
    const auto history = Make();
    history->Keep(Set(7, 110 * day, "b"));
    history->Keep(Set(7, 100 * day, "a"));
    history->Keep(Set(6, 104 * day, "another object"));
    history->Keep(Set(8, 103 * day, "another object"));
    const ElementsHistory::Set* set = history->Nearest(7, utc);
    QCOMPARE(set == nullptr ? QByteArray() : set->elements, elements);
}

void ElementsHistoryTest::theStretchesAreThoseOfTheNearestSets() {
    const auto history = Make();
    for (const qint64 epoch : {100 * day, 101 * day + 1, 120 * day, 200 * day})
        history->Keep(Set(7, epoch));
    history->Keep(Set(6, 105 * day));
    history->Keep(Set(8, 105 * day));
    const qint64 from = 90 * day;
    const qint64 to = 210 * day;
    const auto stretches = history->Stretches(7, from, to);
    QCOMPARE(stretches.size(), std::size_t{4});
    QCOMPARE(stretches.front().from, from);
    QCOMPARE(stretches.back().to, to);
    qint64 last = from;
    for (const auto& stretch : stretches) {
        if (stretch.from > last) {
            QVERIFY(history->Nearest(7, last) == nullptr);
            QVERIFY(history->Nearest(7, stretch.from - 1) == nullptr);
        }
        for (const qint64 utc : {stretch.from, (stretch.from + stretch.to) / 2, stretch.to - 1})
            QCOMPARE(history->Nearest(7, utc), stretch.set);
        last = stretch.to;
    }
    QCOMPARE(history->Stretches(7, 186 * day - 5, 186 * day).size(), std::size_t{0});
    QCOMPARE(history->Stretches(7, 186 * day - 5, 186 * day + 1).size(), std::size_t{1});
    QCOMPARE(history->Stretches(9, from, to).size(), std::size_t{0});
}

void ElementsHistoryTest::aSetThatIsOnlyConsideredIsNotWritten() {
    const auto history = Make();
    history->Keep(Set(1, 5 * day, "kept"));
    history->Consider(Set(1, 5 * day, "considered"));
    history->Consider(Set(1, 7 * day, "considered"));
    QCOMPARE(history->Nearest(1, 5 * day)->elements, "kept");
    QCOMPARE(history->Nearest(1, 7 * day)->elements, "considered");
    QVERIFY(!Content().contains("considered"));
}

void ElementsHistoryTest::whatWasKeptIsReadAtTheNextStart() {
    Make()->Keep(Set(90417, 5 * day, "QIRAN\r\n1 \"90417\"\n2,90417"));
    const auto history = Make();
    const ElementsHistory::Set* set = history->Nearest(90417, 5 * day);
    QVERIFY(set != nullptr);
    QCOMPARE(set->elements, "QIRAN\r\n1 \"90417\"\n2,90417");
    QCOMPARE(set->firstSeen, 5 * day + 1000);
    QCOMPARE(history->ForeignLines(), 0);
}

void ElementsHistoryTest::foreignAndTornLinesArePassedOver() {
    m_folder->Write(u"elements-history.txt"_s,
                    "\xEF\xBB\xBFutc,number,epoch,elements\r\n"
                    "Hello\n"
                    "1970-01-01T00:00:00.000Z,-1,1970-01-01T00:00:00.000Z,x\n"
                    "1970-01-01T00:00:00.000Z,1,someday,x\n"
                    "1970-01-01T00:00:00.000Z,1,1970-01-01T00:00:00.000Z,\n"
                    "1970-01-01T00:00:00.000Z,1,1970-01-02T00:00:00.000Z,\"1 torn");
    const auto history = Make();
    QCOMPARE(history->ForeignLines(), 5);
    history->Keep(Set(1, day, "1 a\n2 b"));
    history->Keep(Set(1, 2 * day, "1 c\n2 d"));
    const auto again = Make();
    QCOMPARE(again->Nearest(1, day)->elements, "1 a\n2 b");
    QCOMPARE(again->Nearest(1, 2 * day)->elements, "1 c\n2 d");
}

void ElementsHistoryTest::thePastIsComputedWithTheNearestSet() {
    const auto history = Make();
    const QByteArray lines =
        "ISS (ZARYA)\n1 25544U 98067A   26325.50000000  .00016717  00000-0  10270-3 0  9000\n"
        "2 25544  51.6400 208.9163 0006317  69.9862  25.2906 15.49560532 14777\n";
    const QByteArray message =
        "NORAD_CAT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,ARG_OF_PERICENTER,"
        "MEAN_ANOMALY,BSTAR\n25544,2026-12-01T00:00:00.5,15.5,0,51.64,1,2,3,0\n";
    const qint64 epoch = 1795262400000; // 2026-11-21 12:00
    history->Keep(Set(25544, epoch, lines));
    history->Keep(Set(25544, epoch + 10 * day, message));
    history->Keep(Set(90417, epoch, lines)); // another's, by mistake
    history->Keep(Set(5, epoch, "1 x\n2 y"));
    const auto again = Make();
    QCOMPARE(again->ElementsAt(25544, epoch + 4 * day)->epochUtc, 46347.5);
    QCOMPARE(again->ElementsAt(25544, epoch + 6 * day)->meanMotion * 1440 / orbitmath::twoPi, 15.5);
    QVERIFY(!again->ElementsAt(25544, epoch - 15 * day));
    QVERIFY(!again->ElementsAt(90417, epoch));
    QVERIFY(!again->ElementsAt(5, epoch));
    QVERIFY(again->Holds(25544, epoch));
    QVERIFY(!again->Holds(25544, epoch + 2));
    QVERIFY(!again->Holds(25543, epoch));
}

void ElementsHistoryTest::whatIsNoSetIsNotKept() {
    const auto history = Make();
    history->Keep(Set(1, day, ""));
    history->Keep(Set(1, day, QByteArray(ElementsHistory::longestElements + 1, 'x')));
    QVERIFY(!QFile::exists(Path()));
    QVERIFY(history->Nearest(1, day) == nullptr);
}

void ElementsHistoryTest::aFullDiskIsSaidOnceAndLosesNothing() {
    auto history = Make();
    {
        const SmallDisk disk(60);
        history->Keep(Set(1, day));
        history->Keep(Set(1, 2 * day));
    }
    QCOMPARE(m_reasons.size(), 1);
    history->Keep(Set(1, 3 * day));
    history = Make();
    for (int i = 1; i <= 3; ++i)
        QCOMPARE(history->Nearest(1, i * day)->epoch, i * day);
}

QTEST_GUILESS_MAIN(ElementsHistoryTest)
#include "ElementsHistoryTest.moc"
