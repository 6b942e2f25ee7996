#include "telemetry/history/TelemetryHistory.h"

#include "HistoryRoom.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/IsoTime.h"
#include "telemetry/callsigns/CallsignList.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <sys/stat.h>
#include <thread>

using namespace HistoryRoom;
using namespace Qt::StringLiterals;
using Followed = TelemetryHistory::Followed;
using Opened = TelemetryHistory::Opened;

namespace {

constexpr qint64 ever = std::numeric_limits<qint64>::max();
constexpr qint64 never = std::numeric_limits<qint64>::min();

// 2026-11-21 00:00 UTC, and so many seconds.
qint64 At(int seconds) {
    return 1795219200000 + seconds * 1000;
}

QByteArray Line(int seconds, int raw, const char* source = "XQ9ZZ-1", const char* type = "00111111") {
    return IsoTime::Milliseconds(At(seconds)) + ',' + source + ",A,T#" + QByteArray::number(seconds) + ',' +
           QByteArray::number(raw) + ",2,3,4,0,0," + type + ",0\n";
}

} // namespace

class TelemetryHistoryTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void noFileIsAnEmptyHistory();
    void readingsComeInColumnsByChannelAndTime();
    void eachChannelStandsWhereTheMapHasIt();
    void rawValuesAreReadAsTheDecoderReadsThem_data();
    void rawValuesAreReadAsTheDecoderReadsThem();
    void aChannelWithoutAFormulaHasRawValuesOnly();
    void betterFormulaeMendThePast();
    void theCallsignListDecidesTheSideAndTheColumnForOthers();
    void theFirstOfTwoEqualCallsignsCounts();
    void whatTheGridsShowedIsEachChannelsLastValue();
    void sequencesAreReadFromTheFile();
    void sequencesOfAChangedFileAreEmpty();
    void framesTellWhoSentThem();
    void columnsAreFoundByName();
    void aNewHeaderHoldsForTheLinesBelowIt();
    void linesUnderAHeaderThatLacksColumnsArePassedOver();
    void aFileThatLostItsHeaderIsRead();
    void foreignLinesAreCountedAndPassedOver_data();
    void foreignLinesAreCountedAndPassedOver();
    void aLineOfAMebibyteIsPassedOver();
    void quotedFieldsAreRead();
    void aMarkAndCarriageReturnsAreRead();
    void theYear9999IsRead();
    void aClockSetBackIsSortedOut();
    void framesOfOneTimeKeepTheirOrder();
    void linesAcrossPiecesAreRead();
    void moreThanOneBlockOfRowsIsKept();
    void whatIsAppendedIsFollowed();
    void aLineThatIsBeingWrittenWaitsForItsEnd();
    void aLastLineWithoutEndIsReadWhenItIsWhole();
    void anEarlierTimeIsFollowedInItsPlace();
    void aFileThatAppearsIsTold();
    void aReplacedFileIsTold();
    void aCutFileIsTold();
    void aRewrittenFileIsTold();
    void aRemovedFileIsTold();
    void whatIsNoFileIsUnreadable();
    void openingTellsItsProgressAndCanBeCancelled();
    void manyCallsignsStayBounded();
    void twoThreadsMayAsk();

private:
    void Write(const QByteArray& bytes) const { m_folder->Write(u"tlm.txt"_s, bytes); }
    void Append(const QByteArray& bytes) const {
        QFile file(m_folder->File(u"tlm.txt"_s));
        if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size())
            qFatal("cannot append");
    }
    TelemetryHistory Make() const { return {m_folder->File(u"tlm.txt"_s), Map(), PowerTimes("2"), Sides()}; }
    TelemetryHistory Open(const QByteArray& bytes) const {
        Write(bytes);
        TelemetryHistory history = Make();
        if (history.Open() != Opened::Done)
            qFatal("%s", qPrintable(history.Reason()));
        return history;
    }
    static HistoryColumns Readings(const TelemetryHistory& history, const HistoryChannel& channel = battA,
                                   qint64 from = never, qint64 to = ever) {
        return history.Readings(std::array{channel}, from, to).front();
    }
    static QList<double> Raw(const TelemetryHistory& history, const HistoryChannel& channel = battA) {
        const std::vector<double> raw = Readings(history, channel).raw;
        return {raw.begin(), raw.end()};
    }
    static QByteArray Sequence(const TelemetryHistory& history, quint32 frame) {
        return history.Sequences(std::array{frame}).front();
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
};

void TelemetryHistoryTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
}

void TelemetryHistoryTest::noFileIsAnEmptyHistory() {
    TelemetryHistory history = Make();
    QCOMPARE(history.Open(), Opened::Done);
    QCOMPARE(history.Frames(), 0U);
    QVERIFY(!history.Span());
    QVERIFY(Raw(history).isEmpty());
    QVERIFY(!history.Shown(std::array{battA}, ever).front());
    QCOMPARE(history.Follow(), Followed::Nothing);
}

void TelemetryHistoryTest::readingsComeInColumnsByChannelAndTime() {
    const TelemetryHistory history =
        Open(header + Line(0, 10) + Line(60, 11) + Line(120, 12) + Line(180, 13) + Line(240, 14, "QIRAN-3"));
    QCOMPARE(history.Frames(), 5U);
    QCOMPARE(history.Span(), std::pair(At(0), At(240)));
    const std::array wanted{battA, battAOfB, regulator};
    const auto columns = history.Readings(wanted, At(60), At(240));
    QCOMPARE(columns.size(), 3U);
    QCOMPARE(columns[0].utc, (std::vector{At(60), At(120), At(180)}));
    QCOMPARE(columns[0].raw, (std::vector{11.0, 12.0, 13.0}));
    QCOMPARE(columns[0].value, (std::vector{22.0, 24.0, 26.0}));
    QCOMPARE(columns[0].frame, (std::vector<quint32>{1, 2, 3}));
    QCOMPARE(columns[1].value, (std::vector{28.0}));
    QCOMPARE(columns[2].raw, (std::vector{4.0, 4.0, 4.0}));
    QVERIFY(history.Readings(wanted, At(61), At(119))[0].utc.empty());
    QCOMPARE(history.Readings(std::array{battA, battA}, At(0), At(0))[1].raw, std::vector{10.0});
}

void TelemetryHistoryTest::eachChannelStandsWhereTheMapHasIt() {
    const ChannelMap map = Map();
    for (int side = 0; side < ChannelMap::sides; ++side)
        for (int type = 0; type < ChannelMap::frameTypes; ++type) {
            const QByteArray bits = "00" + QByteArray::number(type / 2) + QByteArray::number(type % 2);
            const TelemetryHistory history =
                Open(header + "2026-11-21T00:00:00.000Z," + (side == 0 ? "XQ9ZZ-1" : "QIRAN-3") +
                     ",A,T#1,1,2,3,4,0,0," + bits + ",0\n");
            for (int channel = 0; channel < ChannelMap::channels; ++channel) {
                const ChannelCell* cell = map.At(side, type, channel);
                QCOMPARE(Raw(history, {side, cell->grid, cell->row}), QList<double>{channel + 1.0});
            }
            QVERIFY(Raw(history, {1 - side, 0, 1}).isEmpty());
            QCOMPARE(Raw(history, {side, 0, 1}).size(), type == 3 ? 1 : 0);
        }
}

void TelemetryHistoryTest::rawValuesAreReadAsTheDecoderReadsThem_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<double>("raw");
    const auto row = [](const char* field, double raw) { QTest::newRow(field) << QByteArray(field) << raw; };
    row("0", 0.0);
    row("168", 168.0);
    row("007", 7.0);
    row("108.3", 108.3);
    row("-5", -5.0);
    row("+5", 5.0);
    row(" 12", 12.0);
    row("12abc", 12.0);
    row("abc", 0.0);
    row("", 0.0);
    row("1e3", 1.0);
    row("999999999", 999999999.0);
    row("4294967296", 4294967296.0);
    row("12345678901234567890", 12345678901234567890.0);
}

void TelemetryHistoryTest::rawValuesAreReadAsTheDecoderReadsThem() {
    QFETCH(const QByteArray, field);
    const TelemetryHistory history =
        Open(header + "2026-11-21T00:00:00.000Z,XQ9ZZ-1,A,T#1," + field + ",2,3,4,0,0,00110000,0\n");
    QCOMPARE(Raw(history).size(), 1);
    QTEST(Raw(history).front(), "raw");
}

void TelemetryHistoryTest::aChannelWithoutAFormulaHasRawValuesOnly() {
    const TelemetryHistory history = Open(header + Line(0, 10, "XQ9ZZ-1", "00000000"));
    const HistoryColumns column = Readings(history, {0, 1, 1});
    QCOMPARE(column.raw, std::vector{10.0});
    QVERIFY(std::isnan(column.value.front()));
    const TelemetryHistory large = Open(header + "2026-11-21T00:00:00.000Z,XQ9ZZ-1,A,T#1," +
                                        QByteArray(400, '9') + ",2,3,4,0,0,0011,0\n");
    QVERIFY(std::isinf(Raw(large).front()));
    QVERIFY(std::isnan(Readings(large).value.front()));
}

void TelemetryHistoryTest::betterFormulaeMendThePast() {
    TelemetryHistory history = Open(header + Line(0, 10) + Line(60, 300));
    QCOMPARE(Readings(history).value, (std::vector{20.0, 600.0}));
    history.Decode(PowerTimes("3"), Sides());
    QCOMPARE(Readings(history).value, (std::vector{30.0, 900.0}));
}

void TelemetryHistoryTest::theCallsignListDecidesTheSideAndTheColumnForOthers() {
    TelemetryHistory history = Open(header + "2026-11-21T00:00:00.000Z,XQ9ZZ-1,B,T#1,1,2,3,4,0,0,0011,0\n"
                                             "2026-11-21T00:00:01.000Z,OLD-1,B,T#1,5,2,3,4,0,0,0011,0\n"
                                             "2026-11-21T00:00:02.000Z,OLD-1,A,T#1,6,2,3,4,0,0,0011,0\n"
                                             "2026-11-21T00:00:03.000Z,OLD-1,b,T#1,7,2,3,4,0,0,0011,0\n");
    QCOMPARE(Raw(history, battA), (QList{1.0, 6.0, 7.0}));
    QCOMPARE(Raw(history, battAOfB), QList{5.0});
    history.Decode(PowerTimes("2"), {{"OLD-1", 1}});
    QCOMPARE(Raw(history, battA), QList<double>{});
    QCOMPARE(Raw(history, battAOfB), (QList{1.0, 5.0, 6.0, 7.0}));
}

void TelemetryHistoryTest::theFirstOfTwoEqualCallsignsCounts() {
    clsIni ini(m_folder->IniFile());
    CallsignList callsigns(ini);
    callsigns.setCCallsigns({{u"X-1"_s, u"B"_s}, {u"X-1"_s, u"A"_s}, {u"X-2"_s, u"b"_s}});
    QCOMPARE(SidesOf(callsigns), (HistorySides{{"X-1", 1}, {"X-2", 0}}));
}

void TelemetryHistoryTest::whatTheGridsShowedIsEachChannelsLastValue() {
    const TelemetryHistory history =
        Open(header + Line(0, 10) + Line(60, 11, "QIRAN-3") + Line(120, 12) +
             "2026-11-21T00:03:00.000Z,XQ9ZZ-1,A,T#1," + QByteArray(400, '9') + ",2,3,4,0,0,0011,0\n");
    const std::array wanted{battA, battAOfB, HistoryChannel{0, 1, 1}};
    const auto before = history.Shown(wanted, At(60) - 1);
    QCOMPARE(before[0]->value, 20.0);
    QVERIFY(!before[1] && !before[2]);
    QCOMPARE(history.Shown(wanted, At(60))[1]->value, 22.0);
    const auto last = history.Shown(wanted, ever);
    QCOMPARE(last[0]->value, 24.0); // what cannot be converted changes no cell
    QCOMPARE(last[0]->raw, 12.0);
    QCOMPARE(last[0]->utc, At(120));
    QCOMPARE(last[0]->frame, 2U);
}

void TelemetryHistoryTest::sequencesAreReadFromTheFile() {
    const TelemetryHistory history =
        Open("\xEF\xBB\xBF" + header + Line(0, 10) + "\r\n" + Line(60, 11) +
             "source,utc,raw1,raw2,raw3,raw4,field7,sequence\n" +
             "XQ9ZZ-1,2026-11-21T00:02:00.000Z,1,2,3,4,0011,\"a,\"\"\xC3\xA4\"\r\n");
    QCOMPARE(history.Sequences(std::array<quint32, 3>{2, 0, 1}),
             (std::vector<QByteArray>{"a,\"\xC3\xA4", "T#0", "T#60"}));
}

void TelemetryHistoryTest::sequencesOfAChangedFileAreEmpty() {
    const TelemetryHistory history = Open(header + Line(0, 10) + Line(60, 11));
    Write(header + Line(0, 10) + Line(61, 11));
    QCOMPARE(Sequence(history, 0), "T#0");
    QCOMPARE(Sequence(history, 1), "");
    QVERIFY(QFile::remove(m_folder->File(u"tlm.txt"_s)));
    QCOMPARE(Sequence(history, 0), "");
}

void TelemetryHistoryTest::framesTellWhoSentThem() {
    const TelemetryHistory history = Open(header + Line(0, 10, "QIRAN-3") + Line(1, 10, "XQ9ZZ-1", "0099"));
    QCOMPARE(history.Frame(0).source, "QIRAN-3");
    QCOMPARE(history.Frame(0).utc, At(0));
    QCOMPARE(history.Frame(0).side, 1);
    QCOMPARE(history.Frame(0).frameType, 3);
    QCOMPARE(history.Frame(1).side, 0);
    QCOMPARE(history.Frame(1).frameType, 4); // names no channels
}

void TelemetryHistoryTest::columnsAreFoundByName() {
    const TelemetryHistory history = Open("field7,new,raw4,raw3,raw2,raw1,source,utc\n"
                                          "0011,x,4,3,2,1,XQ9ZZ-1,2026-11-21T00:00:00.000Z\n");
    QCOMPARE(Raw(history, battA), QList{1.0});
    QCOMPARE(Raw(history, regulator), QList{4.0});
    QCOMPARE(Sequence(history, 0), "");
    QCOMPARE(history.ForeignLines().lines, 0);
}

void TelemetryHistoryTest::aNewHeaderHoldsForTheLinesBelowIt() {
    const TelemetryHistory history = Open("field7,raw4,raw3,raw2,raw1,source,utc\n"
                                          "0011,4,3,2,1,XQ9ZZ-1,2026-11-21T00:00:00.000Z\n" +
                                          header + Line(60, 2) + header + Line(120, 3));
    QCOMPARE(Raw(history), (QList{1.0, 2.0, 3.0}));
    QCOMPARE(history.ForeignLines().lines, 0);
}

void TelemetryHistoryTest::linesUnderAHeaderThatLacksColumnsArePassedOver() {
    const TelemetryHistory history =
        Open("utc,source,raw1\n2026-11-21T00:00:00.000Z,XQ9ZZ-1,1\n" + Line(30, 9) + header + Line(60, 2));
    QCOMPARE(Raw(history), QList{2.0});
    QCOMPARE(history.ForeignLines().lines, 2);
}

void TelemetryHistoryTest::aFileThatLostItsHeaderIsRead() {
    QCOMPARE(Raw(Open(Line(0, 1) + Line(60, 2))), (QList{1.0, 2.0}));
}

void TelemetryHistoryTest::foreignLinesAreCountedAndPassedOver_data() {
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char* name, const QByteArray& line) { QTest::newRow(name) << line; };
    row("text", "Hello");
    row("commas", ",,,,,,,,,,,");
    row("torn", Line(30, 7).left(30));
    row("torn in a quote", "2026-11-21T00:00:30.000Z,XQ9ZZ-1,A,\"T#");
    row("two glued", Line(30, 7).trimmed() + Line(31, 7).trimmed());
    row("no time", "yesterday,XQ9ZZ-1,A,T#1,7,2,3,4,0,0,0011,0");
    row("no source", "2026-11-21T00:00:30.000Z,,A,T#1,7,2,3,4,0,0,0011,0");
    row("endless source", "2026-11-21T00:00:30.000Z," + QByteArray(33, 'X') + ",A,T#1,7,2,3,4,0,0,0011,0");
    row("a field more", "2026-11-21T00:00:30.000Z,XQ9ZZ-1,A,T#1,7,2,3,4,0,0,0011,0,");
    row("binary", QByteArray(1000, '\0'));
    row("long", QByteArray(300'000, 'x'));
}

void TelemetryHistoryTest::foreignLinesAreCountedAndPassedOver() {
    QFETCH(const QByteArray, line);
    const TelemetryHistory history = Open(header + Line(0, 1) + line + '\n' + line + "\r\n\n" + Line(60, 2));
    QCOMPARE(Raw(history), (QList{1.0, 2.0}));
    QCOMPARE(history.ForeignLines().lines, 2);
    QCOMPARE(history.ForeignLines().firstLine, 3);
}

void TelemetryHistoryTest::aLineOfAMebibyteIsPassedOver() {
    for (const int length : {1024 * 1024 - 1, 1024 * 1024, 1024 * 1024 + 1, 5'000'000}) {
        const TelemetryHistory history =
            Open(header + Line(0, 1) + QByteArray(length, ',') + '\n' + Line(60, 2) + Line(61, 3));
        QCOMPARE(Raw(history), (QList{1.0, 2.0, 3.0}));
        QCOMPARE(history.ForeignLines().lines, 1);
        QCOMPARE(Sequence(history, 2), "T#61");
    }
}

void TelemetryHistoryTest::quotedFieldsAreRead() {
    const TelemetryHistory history =
        Open(header + "\"2026-11-21T00:00:00.000Z\",\"XQ9ZZ-1\",A,\"T#\"\"1\",\"1\",2,3,4,0,0,\"0011\",0\n");
    QCOMPARE(Raw(history), QList{1.0});
    QCOMPARE(Sequence(history, 0), "T#\"1");
}

void TelemetryHistoryTest::aMarkAndCarriageReturnsAreRead() {
    QByteArray bytes = header + Line(0, 1) + Line(60, 2);
    bytes.replace("\n", "\r\n");
    const TelemetryHistory history = Open("\xEF\xBB\xBF" + bytes);
    QCOMPARE(Raw(history), (QList{1.0, 2.0}));
    QCOMPARE(history.ForeignLines().lines, 0);
    QCOMPARE(Raw(Open("\xEF\xBB\xBF" + Line(0, 1))), QList{1.0});
}

void TelemetryHistoryTest::theYear9999IsRead() {
    const TelemetryHistory history =
        Open(header + "9999-12-31T23:59:59.999Z,XQ9ZZ-1,A,T#1,7,2,3,4,0,0,0011,0\n" + Line(0, 1));
    QCOMPARE(Raw(history), (QList{1.0, 7.0}));
    QCOMPARE(history.Span()->second, 253402300799999);
}

void TelemetryHistoryTest::aClockSetBackIsSortedOut() {
    const TelemetryHistory history =
        Open(header + Line(100, 1) + Line(200, 2) + Line(50, 3) + Line(150, 4) + Line(300, 5));
    QCOMPARE(Raw(history), (QList{3.0, 1.0, 4.0, 2.0, 5.0}));
    QCOMPARE(history.Span(), std::pair(At(50), At(300)));
    QCOMPARE(Readings(history, battA, At(100), At(150)).frame, (std::vector<quint32>{0, 3}));
    QCOMPARE(Sequence(history, 3), "T#150");
    QCOMPARE(history.Shown(std::array{battA}, At(160)).front()->raw, 4.0);
}

void TelemetryHistoryTest::framesOfOneTimeKeepTheirOrder() {
    QCOMPARE(Raw(Open(header + Line(9, 1) + Line(5, 2) + Line(9, 3) + Line(5, 4) + Line(9, 5))),
             (QList{2.0, 4.0, 1.0, 3.0, 5.0}));
}

void TelemetryHistoryTest::linesAcrossPiecesAreRead() {
    QByteArray bytes = header;
    int count = 0;
    while (bytes.size() < 3'000'000)
        bytes += Line(count, count % 1000), ++count;
    const TelemetryHistory history = Open(bytes);
    const QList<double> raw = Raw(history);
    QCOMPARE(raw.size(), count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(raw[i], i % 1000);
    QCOMPARE(history.ForeignLines().lines, 0);
    QCOMPARE(Sequence(history, static_cast<quint32>(count - 1)), "T#" + QByteArray::number(count - 1));
}

void TelemetryHistoryTest::moreThanOneBlockOfRowsIsKept() {
    HistoryRows rows;
    constexpr quint32 count = 40'000;
    for (quint32 i = 0; i < count; ++i)
        QVERIFY(rows.Add({.utc = i % 2 == 0 ? i : i - 2, .offset = i * 100LL, .source = 1, .frameType = 2}));
    rows.Sort();
    QCOMPARE(rows.Count(), count);
    for (quint32 i = 1; i < count; ++i)
        QVERIFY(rows.Utc(rows.RowAt(i - 1)) <= rows.Utc(rows.RowAt(i)));
    QCOMPARE(rows.At(39'999).offset, 3'999'900);
    QCOMPARE(rows.PositionOf(never), 0U);
    QCOMPARE(rows.PositionOf(ever), count);
    rows.Clear();
    QVERIFY(rows.Add({.utc = 1, .offset = 5'000'000'000}));
    QCOMPARE(rows.At(0).offset, 5'000'000'000);
}

void TelemetryHistoryTest::whatIsAppendedIsFollowed() {
    TelemetryHistory history = Open(header + Line(0, 1));
    QCOMPARE(history.Follow(), Followed::Nothing);
    Append(Line(60, 2) + "foreign\n" + Line(120, 3));
    QCOMPARE(history.Follow(), Followed::Appended);
    QCOMPARE(history.Follow(), Followed::Nothing);
    QCOMPARE(Raw(history), (QList{1.0, 2.0, 3.0}));
    QCOMPARE(history.ForeignLines().lines, 1);
    QCOMPARE(history.ForeignLines().firstLine, 4);
    QCOMPARE(Sequence(history, 2), "T#120");
}

void TelemetryHistoryTest::aLineThatIsBeingWrittenWaitsForItsEnd() {
    TelemetryHistory history = Open(header + Line(0, 1) + Line(60, 2).first(40));
    QCOMPARE(Raw(history), QList{1.0});
    QCOMPARE(history.ForeignLines().lines, 0);
    Append(Line(60, 2).sliced(40, 10));
    QCOMPARE(history.Follow(), Followed::Nothing);
    Append(Line(60, 2).sliced(50));
    QCOMPARE(history.Follow(), Followed::Appended);
    QCOMPARE(Raw(history), (QList{1.0, 2.0}));
    Append(Line(120, 3).chopped(1));
    QCOMPARE(history.Follow(), Followed::Nothing);
}

void TelemetryHistoryTest::aLastLineWithoutEndIsReadWhenItIsWhole() {
    TelemetryHistory history = Open(header + Line(0, 1) + Line(60, 2).chopped(1));
    QCOMPARE(Raw(history), (QList{1.0, 2.0}));
    QCOMPARE(Sequence(history, 1), "T#60");
    Append('\n' + Line(120, 3));
    QCOMPARE(history.Follow(), Followed::Appended);
    QCOMPARE(Raw(history), (QList{1.0, 2.0, 3.0}));
    QCOMPARE(history.ForeignLines().lines, 0);
}

void TelemetryHistoryTest::anEarlierTimeIsFollowedInItsPlace() {
    TelemetryHistory history = Open(header + Line(0, 1) + Line(100, 2));
    for (const int seconds : {50, 200, 25, 300}) {
        Append(Line(seconds, seconds));
        QCOMPARE(history.Follow(), Followed::Appended);
    }
    QCOMPARE(Raw(history), (QList{1.0, 25.0, 50.0, 2.0, 200.0, 300.0}));
}

void TelemetryHistoryTest::aFileThatAppearsIsTold() {
    TelemetryHistory history = Make();
    QCOMPARE(history.Open(), Opened::Done);
    Write(header + Line(0, 1));
    QCOMPARE(history.Follow(), Followed::Replaced);
    QCOMPARE(history.Open(), Opened::Done);
    QCOMPARE(Raw(history), QList{1.0});
}

void TelemetryHistoryTest::aReplacedFileIsTold() {
    TelemetryHistory history = Open(header + Line(0, 1));
    m_folder->Write(u"new.txt"_s, header + Line(0, 1) + Line(60, 2));
    QVERIFY(QFile::remove(m_folder->File(u"tlm.txt"_s)));
    QVERIFY(QFile::rename(m_folder->File(u"new.txt"_s), m_folder->File(u"tlm.txt"_s)));
    QCOMPARE(history.Follow(), Followed::Replaced);
    QCOMPARE(Raw(history), QList{1.0}); // until it is opened anew
    QCOMPARE(history.Open(), Opened::Done);
    QCOMPARE(Raw(history), (QList{1.0, 2.0}));
}

void TelemetryHistoryTest::aCutFileIsTold() {
    TelemetryHistory history = Open(header + Line(0, 1) + Line(60, 2));
    QVERIFY(QFile::resize(m_folder->File(u"tlm.txt"_s), (header + Line(0, 1)).size()));
    QCOMPARE(history.Follow(), Followed::Replaced);
    QCOMPARE(history.Open(), Opened::Done);
    QCOMPARE(Raw(history), QList{1.0});
}

void TelemetryHistoryTest::aRewrittenFileIsTold() {
    TelemetryHistory history = Open(header + Line(0, 1) + Line(60, 2));
    QFile file(m_folder->File(u"tlm.txt"_s));
    QVERIFY(file.open(QIODevice::ReadWrite)); // in place
    file.write(header + Line(0, 1) + Line(61, 2) + Line(62, 3));
    file.close();
    QCOMPARE(history.Follow(), Followed::Replaced);
}

void TelemetryHistoryTest::aRemovedFileIsTold() {
    TelemetryHistory history = Open(header + Line(0, 1));
    QVERIFY(QFile::remove(m_folder->File(u"tlm.txt"_s)));
    QCOMPARE(history.Follow(), Followed::Replaced);
    QCOMPARE(history.Open(), Opened::Done);
    QCOMPARE(history.Frames(), 0U);
}

void TelemetryHistoryTest::whatIsNoFileIsUnreadable() {
    TelemetryHistory history = Open(header + Line(0, 1));
    QVERIFY(QFile::remove(m_folder->File(u"tlm.txt"_s)));
    QCOMPARE(mkfifo(QFile::encodeName(m_folder->File(u"tlm.txt"_s)).constData(), 0600), 0);
    QCOMPARE(history.Open(), Opened::Unreadable); // and nobody waits for a writer
    QVERIFY(history.Reason().endsWith(u" is not a file"_s));
    QCOMPARE(history.Frames(), 0U);
}

void TelemetryHistoryTest::openingTellsItsProgressAndCanBeCancelled() {
    QByteArray bytes = header;
    for (int i = 0; bytes.size() < 4'000'000; ++i)
        bytes += Line(i, 1);
    Write(bytes);
    TelemetryHistory history = Make();
    qint64 last = 0;
    int calls = 0;
    QCOMPARE(history.Open([&](qint64 done, qint64 total) {
        const bool isRising = done >= last && done <= total && total == bytes.size();
        last = done;
        ++calls;
        return isRising;
    }),
             Opened::Done);
    QVERIFY(calls >= 4);
    QCOMPARE(last, bytes.size());
    QCOMPARE(history.Open([](qint64 done, qint64) { return done < 2'000'000; }), Opened::Cancelled);
    QCOMPARE(history.Frames(), 0U);
    QCOMPARE(history.Open(), Opened::Done);
    QVERIFY(history.Frames() > 0);
}

void TelemetryHistoryTest::manyCallsignsStayBounded() {
    QByteArray bytes = header;
    for (int i = 0; i < 5000; ++i)
        bytes += Line(i, 1, ("N0CALL" + QByteArray::number(i)).constData());
    const TelemetryHistory history = Open(bytes + Line(6000, 2, "N0CALL17"));
    QCOMPARE(history.Frames(), 4097U);
    QCOMPARE(history.ForeignLines().lines, 904);
    QCOMPARE(history.Frame(4096).source, "N0CALL17");
}

void TelemetryHistoryTest::twoThreadsMayAsk() {
    QByteArray bytes = header;
    for (int i = 0; i < 20'000; ++i)
        bytes += Line(i, i % 300);
    const TelemetryHistory history = Open(bytes);
    const auto ask = [&](std::size_t* found) {
        for (int i = 0; i < 20; ++i) {
            *found += Readings(history).value.size();
            *found += history.Shown(std::array{battA, battAOfB}, At(100)).size();
            *found += history.Sequences(std::array<quint32, 2>{5, 19'999}).size();
        }
    };
    std::size_t one = 0;
    std::size_t other = 0;
    std::thread thread(ask, &one);
    ask(&other);
    thread.join();
    QCOMPARE(one, std::size_t{20 * (20'000 + 4)});
    QCOMPARE(other, one);
}

QTEST_GUILESS_MAIN(TelemetryHistoryTest)
#include "TelemetryHistoryTest.moc"
