#include "telemetry/limits/LimitJudge.h"

#include "support/SmallDisk.h"
#include "support/TemporaryProgramFolder.h"
#include "telemetry/limits/EventFile.h"

#include <QTest>

using namespace Qt::StringLiterals;

class LimitJudgeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void levelsAreNamedBothWays();
    void aValueOutsideItsLimitsHasALevel_data();
    void aValueOutsideItsLimitsHasALevel();
    void crossingBackTakesATwentieth_data();
    void crossingBackTakesATwentieth();
    void aCrossingIsOneEvent();
    void aLevelMayBeJumpedOver();
    void aChangeTakesAsManyReadingsInARowAsItsPersistence();
    void severalReadingsInARowReachTheNearestOfTheirLevels();
    void channelsAreJudgedEachForItself();
    void aReadingWithoutAValueIsNotJudged();
    void withoutLimitsNothingIsJudged();
    void replayedFramesRaiseNothing();
    void theSameLineWithinFiveMinutesCountsOnce();
    void theSameLineFromAnotherSourceCounts();
    void statesAreTakenUpFromTheFile();
    void newLimitsLeaveTheStates();
    void aValueOfYesterdayIsStale();
    void eventsAreWrittenAndReadBack();
    void whatIsNoEventIsPassedOver();
    void theEndOfALongFileIsRead();
    void anEventFileThatCannotBeWrittenIsSaidOnce();

private:
    // One reading of side A's Batt A, of a line of its own.
    void Hear(double value, int seconds = -1, const QByteArray& line = {}) {
        HearAt({0, 0, 1}, value, seconds, line);
    }
    void HearAt(const LimitCell& cell, std::optional<double> value, int seconds = -1,
                const QByteArray& line = {}, const char* source = "XQ9ZZ-1") {
        ++m_lines;
        const QByteArray own = line.isEmpty() ? "T#" + QByteArray::number(m_lines) : line;
        TelemetryFrame frame{.utc = (seconds < 0 ? m_lines : seconds) * 1000LL,
                             .origin = m_origin,
                             .source = source,
                             .line = own,
                             .fields = {},
                             .found = {},
                             .count = 1};
        frame.found[0] = {.utc = frame.utc,
                          .source = source,
                          .side = cell.side,
                          .grid = cell.grid,
                          .row = cell.row,
                          .value = value};
        m_judge->Take(frame);
    }
    static ChannelLimits Battery(int persistence = 1) {
        return {.unit = u"V"_s,
                .lowAlarm = 6.0,
                .lowWarning = 7.0,
                .highWarning = 9.0,
                .highAlarm = 10.0,
                .persistence = persistence};
    }
    void Make(const ChannelLimits& limits) {
        m_judge =
            std::make_unique<LimitJudge>([this](const LimitEvent& event) { m_events.push_back(event); });
        m_judge->SetLimits({{{0, 0, 1}, limits}, {{1, 0, 1}, limits}, {{0, 2, 9}, limits}});
    }
    QByteArray Told() const {
        QByteArrayList told;
        for (const LimitEvent& event : m_events)
            told.append(LevelName(event.to).toByteArray());
        return told.join(", ");
    }

    std::unique_ptr<LimitJudge> m_judge;
    std::vector<LimitEvent> m_events;
    HeardFrame::Origin m_origin = HeardFrame::Origin::Live;
    int m_lines = 0;
};

void LimitJudgeTest::init() {
    m_events.clear();
    m_origin = HeardFrame::Origin::Live;
    m_lines = 0;
    Make(Battery());
}

void LimitJudgeTest::levelsAreNamedBothWays() {
    QCOMPARE(LevelName(Level::LowAlarm), "low alarm");
    QCOMPARE(LevelName(Level::Normal), "normal");
    QCOMPARE(LevelName(Level::HighWarning), "high warning");
    for (int level = -2; level <= 2; ++level)
        QCOMPARE(LevelOf(LevelName(static_cast<Level>(level))), static_cast<Level>(level));
    QCOMPARE(LevelOf("Normal"), std::nullopt);
    QCOMPARE(LevelOf(""), std::nullopt);
}

void LimitJudgeTest::aValueOutsideItsLimitsHasALevel_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("level");
    QTest::newRow("far below") << -100.0 << -2;
    QTest::newRow("below the low alarm") << 5.999 << -2;
    QTest::newRow("at the low alarm") << 6.0 << -1;
    QTest::newRow("below the low warning") << 6.999 << -1;
    QTest::newRow("at the low warning") << 7.0 << 0;
    QTest::newRow("between") << 8.0 << 0;
    QTest::newRow("at the high warning") << 9.0 << 0;
    QTest::newRow("above the high warning") << 9.001 << 1;
    QTest::newRow("at the high alarm") << 10.0 << 1;
    QTest::newRow("above the high alarm") << 10.001 << 2;
}

void LimitJudgeTest::aValueOutsideItsLimitsHasALevel() {
    QFETCH(const double, value);
    QFETCH(const int, level);
    QCOMPARE(static_cast<int>(Battery().Outside(value)), level);
    QCOMPARE(static_cast<int>(Battery().Judge(value, Level::Normal)), level);
}

void LimitJudgeTest::crossingBackTakesATwentieth_data() {
    QTest::addColumn<QList<double>>("limits"); // below 0 for none
    QTest::addColumn<int>("before");
    QTest::addColumn<double>("stays");
    QTest::addColumn<double>("leaves");
    QTest::addColumn<int>("to");
    // Between the warnings lie 2, between the alarms 4.
    const QList both{6.0, 7.0, 9.0, 10.0};
    QTest::newRow("high warning") << both << 1 << 8.91 << 8.9 << 0;
    QTest::newRow("high alarm") << both << 2 << 9.81 << 9.8 << 1;
    QTest::newRow("high alarm, all the way") << both << 2 << 9.81 << 8.9 << 0;
    QTest::newRow("high alarm, half the way") << both << 2 << 9.81 << 8.95 << 1;
    QTest::newRow("low warning") << both << -1 << 7.09 << 7.1 << 0;
    QTest::newRow("low alarm") << both << -2 << 6.19 << 6.2 << -1;
    QTest::newRow("from high to low") << both << 2 << 9.81 << 6.5 << -1;
    QTest::newRow("one high limit") << QList{-1.0, -1.0, 20.0, -1.0} << 1 << 19.1 << 19.0 << 0;
    QTest::newRow("one low limit") << QList{-1.0, 20.0, -1.0, -1.0} << -1 << 20.9 << 21.0 << 0;
    QTest::newRow("one of each level") << QList{-1.0, 20.0, -1.0, 40.0} << 2 << 38.1 << 38.0 << 0;
    QTest::newRow("the limit is gone") << QList{-1.0, -1.0, 20.0, -1.0} << 2 << 20.1 << 19.0 << 0;
}

void LimitJudgeTest::crossingBackTakesATwentieth() {
    QFETCH(const QList<double>, limits);
    QFETCH(const int, before);
    QFETCH(const double, stays);
    QFETCH(const double, leaves);
    QFETCH(const int, to);
    const auto limit = [&](int index) {
        return limits[index] < 0 ? std::nullopt : std::optional(limits[index]);
    };
    const ChannelLimits channel{.unit = {},
                                .lowAlarm = limit(0),
                                .lowWarning = limit(1),
                                .highWarning = limit(2),
                                .highAlarm = limit(3)};
    const bool isLimitGone = before == 2 && !channel.highAlarm;
    QCOMPARE(static_cast<int>(channel.Judge(stays, static_cast<Level>(before))), isLimitGone ? 1 : before);
    QCOMPARE(static_cast<int>(channel.Judge(leaves, static_cast<Level>(before))), to);
}

void LimitJudgeTest::aCrossingIsOneEvent() {
    for (const double value : {8.0, 6.9, 6.8, 7.05, 7.2, 7.0, 9.1, 8.95, 8.8})
        Hear(value);
    QCOMPARE(Told(), "low warning, normal, high warning, normal");
    QCOMPARE(m_events[0].utc, 2000);
    QCOMPARE(m_events[0].cell, (LimitCell{0, 0, 1}));
    QCOMPARE(m_events[0].value, 6.9);
    QCOMPARE(m_events[0].from, Level::Normal);
    QCOMPARE(m_events[1].from, Level::LowWarning);
}

void LimitJudgeTest::aLevelMayBeJumpedOver() {
    for (const double value : {5.0, 11.0, 8.0})
        Hear(value);
    QCOMPARE(Told(), "low alarm, high alarm, normal");
}

void LimitJudgeTest::aChangeTakesAsManyReadingsInARowAsItsPersistence() {
    Make(Battery(3));
    for (const double value : {9.5, 9.5, 8.0, 9.5, 9.5})
        Hear(value);
    QVERIFY(m_events.empty());
    QCOMPARE(m_judge->LevelAt({0, 0, 1}), Level::Normal);
    Hear(9.6);
    QCOMPARE(Told(), "high warning");
    QCOMPARE(m_events[0].value, 9.6);
    for (const double value : {8.0, 8.0, 9.5, 8.0, 8.0})
        Hear(value);
    QCOMPARE(m_events.size(), 1U);
    Hear(8.0);
    QCOMPARE(Told(), "high warning, normal");
}

void LimitJudgeTest::severalReadingsInARowReachTheNearestOfTheirLevels() {
    Make(Battery(3));
    for (const double value : {9.5, 11.0, 11.0})
        Hear(value);
    QCOMPARE(Told(), "high warning");
    Hear(11.0);
    QCOMPARE(Told(), "high warning, high alarm");
    for (const double value : {8.0, 9.5, 8.0})
        Hear(value);
    QCOMPARE(Told(), "high warning, high alarm, high warning");
    Hear(5.0);
    QCOMPARE(m_events.size(), 3U);
    Hear(5.0); // the third in a row below the warning
    QCOMPARE(Told(), "high warning, high alarm, high warning, normal");
    Hear(6.5);
    QCOMPARE(Told(), "high warning, high alarm, high warning, normal, low warning");
}

void LimitJudgeTest::channelsAreJudgedEachForItself() {
    Make(Battery(2));
    HearAt({0, 0, 1}, 11.0);
    HearAt({1, 0, 1}, 11.0);
    HearAt({0, 2, 9}, 11.0);
    HearAt({0, 0, 2}, 11.0);
    QVERIFY(m_events.empty());
    HearAt({1, 0, 1}, 11.0);
    QCOMPARE(m_events.size(), 1U);
    QCOMPARE(m_events[0].cell, (LimitCell{1, 0, 1}));
    QCOMPARE(m_judge->LevelAt({1, 0, 1}), Level::HighAlarm);
    QCOMPARE(m_judge->LevelAt({0, 0, 1}), Level::Normal);
    QCOMPARE(m_judge->LevelAt({0, 0, 2}), Level::Normal);
    QVERIFY(m_judge->LimitsOf({0, 0, 1}) != nullptr && m_judge->LimitsOf({0, 0, 2}) == nullptr);
}

void LimitJudgeTest::aReadingWithoutAValueIsNotJudged() {
    Make(Battery(2));
    Hear(11.0);
    HearAt({0, 0, 1}, std::nullopt);
    Hear(11.0);
    QCOMPARE(Told(), "high alarm");
}

void LimitJudgeTest::withoutLimitsNothingIsJudged() {
    m_judge->SetLimits({});
    Hear(1e9);
    QVERIFY(m_events.empty());
}

void LimitJudgeTest::replayedFramesRaiseNothing() {
    m_origin = HeardFrame::Origin::Replayed;
    Hear(11.0);
    QVERIFY(m_events.empty());
    QCOMPARE(m_judge->LevelAt({0, 0, 1}), Level::Normal);
}

void LimitJudgeTest::theSameLineWithinFiveMinutesCountsOnce() {
    Make(Battery(2));
    Hear(11.0, 1000, "T#1");
    Hear(11.0, 1000, "T#1");
    Hear(11.0, 1299, "T#1");
    Hear(11.0, 990, "T#1"); // the clock was set back a little
    QVERIFY(m_events.empty());
    Hear(11.0, 1300, "T#1");
    QCOMPARE(Told(), "high alarm");
}

void LimitJudgeTest::theSameLineFromAnotherSourceCounts() {
    Make(Battery(2));
    HearAt({0, 0, 1}, 11.0, 1000, "T#1", "XQ9ZZ-1");
    HearAt({0, 0, 1}, 11.0, 1001, "T#1", "XQ9ZZ-2");
    QCOMPARE(Told(), "high alarm");
}

void LimitJudgeTest::statesAreTakenUpFromTheFile() {
    const TemporaryProgramFolder folder;
    {
        EventFile file(folder.File(u"events.txt"_s), {});
        file.Append({1000, {0, 0, 1}, 9.5, Level::Normal, Level::HighWarning});
        file.Append({2000, {1, 0, 1}, 11.0, Level::Normal, Level::HighAlarm});
        file.Append({3000, {0, 0, 1}, 11.0, Level::HighWarning, Level::HighAlarm});
        file.Append({4000, {0, 2, 9}, 6.5, Level::Normal, Level::LowWarning});
        file.Append({5000, {0, 2, 9}, 8.0, Level::LowWarning, Level::Normal});
    }
    m_judge->TakeUp(EventFile::StatesAfter(EventFile::Read(folder.File(u"events.txt"_s))));
    QCOMPARE(m_judge->LevelAt({0, 0, 1}), Level::HighAlarm);
    QCOMPARE(m_judge->LevelAt({1, 0, 1}), Level::HighAlarm);
    QCOMPARE(m_judge->LevelAt({0, 2, 9}), Level::Normal);
    Hear(11.0); // known already
    QVERIFY(m_events.empty());
    Hear(8.0);
    QCOMPARE(Told(), "normal");
}

void LimitJudgeTest::newLimitsLeaveTheStates() {
    Hear(11.0);
    ChannelLimits wider = Battery();
    wider.highAlarm = 12.0;
    m_judge->SetLimits({{{0, 0, 1}, wider}});
    QCOMPARE(m_judge->LevelAt({0, 0, 1}), Level::HighAlarm);
    Hear(11.0);
    QCOMPARE(Told(), "high alarm, high warning");
}

void LimitJudgeTest::aValueOfYesterdayIsStale() {
    constexpr qint64 day = 86'400'000;
    QVERIFY(!IsStale(1000, 1000 + day));
    QVERIFY(IsStale(1000, 1001 + day));
    QVERIFY(!IsStale(1000, 0));
}

void LimitJudgeTest::eventsAreWrittenAndReadBack() {
    const TemporaryProgramFolder folder;
    EventFile file(folder.File(u"events.txt"_s), {});
    file.Append({1795274923120, {1, 0, 1}, 6.4, Level::Normal, Level::LowWarning});
    file.Append({1795274923121, {0, 2, 9}, -1.25e-7, Level::HighAlarm, Level::HighWarning});
    QCOMPARE(folder.Read(u"events.txt"_s),
             "utc,side,grid,row,value,from,to\n"
             "2026-11-21T15:28:43.120Z,B,POWER,Batt A,6.4,normal,low warning\n"
             "2026-11-21T15:28:43.121Z,A,TEMP,Xmtr,-1.25E-07,high alarm,high warning\n");
    const std::vector<LimitEvent> events = EventFile::Read(folder.File(u"events.txt"_s));
    QCOMPARE(events.size(), 2U);
    QCOMPARE(events[0].utc, 1795274923120);
    QCOMPARE(events[0].cell, (LimitCell{1, 0, 1}));
    QCOMPARE(events[1].value, -1.25e-7);
    QCOMPARE(events[1].from, Level::HighAlarm);
    QCOMPARE(events[1].to, Level::HighWarning);
}

void LimitJudgeTest::whatIsNoEventIsPassedOver() {
    const TemporaryProgramFolder folder;
    const QByteArray good = "2026-11-21T15:28:43.120Z,B,POWER,Batt A,6.4,normal,low warning";
    QByteArray bytes = "\xEF\xBB\xBF" + good + "\r\n" + good.chopped(3) + "\n" + good + ",new\n\"torn\n";
    for (const char* wrong : {"side,B", ",C,", "TEMPS", "Batt C", "6,4", "6.4V", "Normal", "low"}) {
        QByteArray line = good;
        const char* const right[] = {
            "2026-11-21T15:28:43.120Z,B", ",B,", "POWER", "Batt A", "6.4", "6.4", "normal", "low warning"};
        static int index = 0;
        bytes += line.replace(right[index++ % 8], wrong) + '\n';
    }
    folder.Write(u"events.txt"_s, bytes);
    QCOMPARE(EventFile::Read(folder.File(u"events.txt"_s)).size(), 2U);
    QVERIFY(EventFile::Read(folder.File(u"none"_s)).empty());
}

void LimitJudgeTest::theEndOfALongFileIsRead() {
    const TemporaryProgramFolder folder;
    const QByteArray line = "2026-11-21T15:28:43.120Z,B,POWER,Batt A,6.4,normal,low warning\n";
    QByteArray bytes = "2026-11-21T15:28:43.120Z,A,POWER,Batt A,6.4,normal,low warning\n";
    while (bytes.size() <= EventFile::mostRead)
        bytes += line;
    folder.Write(u"events.txt"_s, bytes);
    const std::vector<LimitEvent> events = EventFile::Read(folder.File(u"events.txt"_s));
    QCOMPARE(static_cast<qsizetype>(events.size()), EventFile::mostRead / line.size());
    QCOMPARE(EventFile::StatesAfter(events).size(), 1U);
}

void LimitJudgeTest::anEventFileThatCannotBeWrittenIsSaidOnce() {
    const TemporaryProgramFolder folder;
    int said = 0;
    EventFile file(folder.File(u"events.txt"_s), [&](const QString&) { ++said; });
    const LimitEvent event{1000, {0, 0, 1}, 9.5, Level::Normal, Level::HighWarning};
    {
        const SmallDisk disk(50);
        file.Append(event);
        file.Append(event);
    }
    QCOMPARE(said, 1);
    file.Append(event);
    QCOMPARE(EventFile::Read(folder.File(u"events.txt"_s)).size(), 3U);
}

QTEST_GUILESS_MAIN(LimitJudgeTest)
#include "LimitJudgeTest.moc"
