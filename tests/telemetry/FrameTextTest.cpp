#include "telemetry/replay/FrameText.h"

#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/MonitorHeader.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

struct Kept {
    char kind;
    int port;
    QByteArray source, destination, path, information;
    qint64 line;
    bool operator==(const Kept&) const = default;
};

/// Reads texts and keeps what they told.
class Reader {
public:
    QList<Kept> frames;
    QList<std::optional<LineTime>> times;
    QList<qint64> utcs;
    FrameText text{[this](const FrameText::Told& told) {
        const HeardFrame& frame = told.frame;
        QCOMPARE(frame.origin, HeardFrame::Origin::Replayed);
        QVERIFY(!frame.isComplete);
        frames.append({static_cast<char>(frame.kind), frame.port, frame.source.toByteArray(),
                       frame.destination.toByteArray(), frame.path.toByteArray(),
                       frame.information.toByteArray(), told.line});
        times.append(told.time);
        utcs.append(frame.utc);
    }};
};

QList<Kept> ReadAll(const QByteArray& bytes) {
    Reader reader;
    reader.text.Add(bytes);
    reader.text.End();
    return reader.frames;
}

const QByteArray trafficLog("*** AGW-Connected to - localhost\r\n"
                            "*** AGWPE V2005.127\r\n"
                            "12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=33>:\r\n"
                            "T#001,10,20,30,40,0,0,00101111,0\r\n\r\n"
                            "12:00:02R N0CALL-2>XQ9ZZ-1 Port=2 <RR R1 F=0>:\r\n\r\n"
                            "12:00:03T N0CALL-7>CQ Port=1 <UI Len=8 PF=0>:\r\ntest tx\r\n\r\n"
                            "*** AGW-Disconnected from - localhost\r\n"
                            "Will automatically retry in 30 seconds time.\r\n"
                            "12:00:04R XQ9ZZ-1>APRS Port=1 <UI Len=20>:\r\nfirst\r\nsecond\r\nthird\r\n\r\n"
                            "12:00:05R XQ9ZZ-1>APRS Port=1 <UI Len=3>:\r\nend\r\n\r\n");

const QList<Kept> logged{{'U', 1, "XQ9ZZ-1", "APRS", "WIDE2-2", "T#001,10,20,30,40,0,0,00101111,0", 3},
                         {'S', 2, "N0CALL-2", "XQ9ZZ-1", "", "", 6},
                         {'T', 1, "N0CALL-7", "CQ", "", "test tx", 8},
                         {'U', 1, "XQ9ZZ-1", "APRS", "", "first", 13},
                         {'U', 1, "XQ9ZZ-1", "APRS", "", "end", 18}};

} // namespace

class FrameTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTrafficLogIsRead();
    void aTrafficLogTellsTimesOfDay();
    void everySplitTellsTheSame();
    void theThreeFormsMayBeMixed();
    void timesOfUtcAreSet();
    void whatTheMonitorWritesIsRead();
    void informationThatLooksLikeAFrameForgesNone();
    void aTornLogLosesOneFrame();
    void aLogWithoutEmptyLinesIsRead();
    void lineEndsAreCrLfOrBoth();
    void aByteOrderMarkIsPassedOver();
    void theLastLineNeedsNoEnd();
    void whatIsNotUnderstoodIsCountedWithExamples();
    void aLineWithoutEndTakesNoMemory();
    void oneLargePieceIsReadInTimeThatGrowsWithItsLength();
    void anotherTextMayFollow();
};

void FrameTextTest::aTrafficLogIsRead() {
    Reader reader;
    reader.text.Add(trafficLog);
    reader.text.End();
    QCOMPARE(reader.frames, logged);
    QCOMPARE(reader.text.Frames(), 5);
    QCOMPARE(reader.text.NotUnderstood(), 0);
}

void FrameTextTest::aTrafficLogTellsTimesOfDay() {
    Reader reader;
    reader.text.Add(trafficLog);
    QCOMPARE(reader.times.size(), 5);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(reader.times[i], (LineTime{LineTime::Clock::TimeOfDay, 43201000 + i * 1000}));
        QCOMPARE(reader.utcs[i], 0);
    }
}

void FrameTextTest::everySplitTellsTheSame() {
    for (qsizetype at = 0; at <= trafficLog.size(); ++at) {
        Reader reader;
        reader.text.Add(trafficLog.first(at));
        reader.text.Add(trafficLog.sliced(at));
        reader.text.End();
        QCOMPARE(reader.frames, logged);
    }
    Reader reader;
    for (const char& byte : trafficLog)
        reader.text.Add({&byte, 1});
    reader.text.End();
    QCOMPARE(reader.frames, logged);
}

void FrameTextTest::theThreeFormsMayBeMixed() {
    QCOMPARE(ReadAll("12:00:01R A>B Port=1 <UI Len=1>:\nx\n\n"
                     "QIRAN-1,T#001,1,2,3,4,0,0,0,0\n"
                     "[1.3] XQ9ZZ-1>APRS,QIRAN-1*:T#002<0x0d>\n"
                     "[0L] A>B:tx\n"),
             (QList<Kept>{{'U', 1, "A", "B", "", "x", 1},
                          {'U', 1, "QIRAN-1", "", "", "T#001,1,2,3,4,0,0,0,0", 4},
                          {'U', 2, "XQ9ZZ-1", "APRS", "QIRAN-1*", "T#002\r", 5},
                          {'T', 1, "A", "B", "", "tx", 6}}));
}

void FrameTextTest::timesOfUtcAreSet() {
    Reader reader;
    reader.text.Add("2026-11-21T15:28:43.120Z A>B:x\n2026-11-21 15:28:43 A>B:x\nA>B:x\n");
    QCOMPARE(reader.utcs, (QList<qint64>{1795274923120, 0, 0}));
    QCOMPARE(reader.times[1], (LineTime{LineTime::Clock::Unknown, 1795274923000}));
    QVERIFY(!reader.times[2]);
}

void FrameTextTest::whatTheMonitorWritesIsRead() {
    std::string text;
    FormatMonitorHeader(" 1:Fm XQ9ZZ-1 To APRS Via QIRAN-1,WIDE2-2 <UI pid=F0 Len=33 PF=0 >[00:16:57]",
                        DisplayKind::Frame, HeaderForm::Full, "23:59:59", text);
    text += "\r\nT#001\r\n\r\n";
    FormatMonitorHeader(" 2:Fm N0CALL-7 To CQ <UI pid=F0 Len=8 PF=0 >[00:16:56]", DisplayKind::Transmitted,
                        HeaderForm::Full, "00:00:00", text);
    text += "\r\ntest\r\n\r\n";
    QCOMPARE(ReadAll(QByteArray::fromStdString(text)),
             (QList<Kept>{{'U', 1, "XQ9ZZ-1", "APRS", "QIRAN-1,WIDE2-2", "T#001", 1},
                          {'T', 2, "N0CALL-7", "CQ", "", "test", 4}}));
}

void FrameTextTest::informationThatLooksLikeAFrameForgesNone() {
    const QByteArray forged("12:00:01R QIRAN-1>APRS Port=1 <UI Len=9>:");
    const QByteArray frames = forged + "\r\nT#666\r\nQIRAN-1,T#666\r\nQIRAN-1>APRS:T#666\r\n\r\n";
    for (const QByteArray& first : {QByteArray(), QByteArray("hello\r\n")}) {
        const QByteArray text = "12:00:01R N0CALL>CQ Port=1 <UI Len=200>:\r\n" + first + frames +
                                "12:00:02R XQ9ZZ-1>APRS Port=1 <UI Len=5>:\r\nT#001\r\n\r\n";
        const QList<Kept> found = ReadAll(text);
        QCOMPARE(found.size(), 2);
        QCOMPARE(found[0].source, "N0CALL");
        QCOMPARE(found[1].source, "XQ9ZZ-1");
    }
}

void FrameTextTest::aTornLogLosesOneFrame() {
    // The program ended within the first frame and started anew.
    const QByteArray next("12:00:05R XQ9ZZ-1>APRS Port=1 <UI Len=5>:\r\nT#002\r\n\r\n");
    const Kept expected{'U', 1, "XQ9ZZ-1", "APRS", "", "T#002", 2};
    const QByteArray whole("12:00:01R N0CALL>CQ Port=1 <UI Len=33>:\r\nT#001\r\n\r\n");
    for (qsizetype length = 0; length < whole.size(); ++length) {
        QList<Kept> found = ReadAll(whole.first(length) + "\r\n" + next);
        QVERIFY2(!found.isEmpty(), qPrintable(QString::number(length)));
        found.last().line = 2;
        QCOMPARE(found.last(), expected);
    }
}

void FrameTextTest::aLogWithoutEmptyLinesIsRead() {
    QByteArray text = trafficLog;
    text.replace("\r\n\r\n", "\r\n");
    const QList<Kept> found = ReadAll(text);
    QCOMPARE(found.size(), logged.size());
    for (qsizetype i = 0; i < found.size(); ++i)
        QCOMPARE(found[i].information, logged[i].information);
}

void FrameTextTest::lineEndsAreCrLfOrBoth() {
    for (const QByteArray& end : {QByteArray("\r"), QByteArray("\n")}) {
        QByteArray text = trafficLog;
        QCOMPARE(ReadAll(text.replace("\r\n", end)), logged);
    }
}

void FrameTextTest::aByteOrderMarkIsPassedOver() {
    QCOMPARE(ReadAll("\xEF\xBB\xBF" + trafficLog), logged);
    QCOMPARE(ReadAll("\xEF\xBB\xBFQIRAN-1,T#1").size(), 1);
    QCOMPARE(ReadAll("\n\xEF\xBB\xBFQIRAN-1,T#1").size(), 0);
}

void FrameTextTest::theLastLineNeedsNoEnd() {
    QCOMPARE(ReadAll("A>B:x").size(), 1);
    QCOMPARE(ReadAll("12:00:01R A>B Port=1 <UI Len=1>:\nx"), (QList<Kept>{{'U', 1, "A", "B", "", "x", 1}}));
    QCOMPARE(ReadAll("12:00:01R A>B Port=1 <UI Len=1>:"), (QList<Kept>{{'U', 1, "A", "B", "", "", 1}}));
    QCOMPARE(ReadAll("12:00:01R A>B Port=1 <UI Len=1>:\n"), (QList<Kept>{{'U', 1, "A", "B", "", "", 1}}));
}

void FrameTextTest::whatIsNotUnderstoodIsCountedWithExamples() {
    Reader reader;
    reader.text.Add("one\ntwo\n\n   \nA>B:x\nthree\nfour\n" + QByteArray(500, 'x') + "\n");
    reader.text.End();
    QCOMPARE(reader.text.Frames(), 1);
    QCOMPARE(reader.text.NotUnderstood(), 5);
    QCOMPARE(reader.text.Examples(), (QByteArrayList{"one", "two", "three"}));
    Reader second;
    second.text.Add(QByteArray(500, 'x') + "\n");
    QCOMPARE(second.text.Examples(), QByteArrayList{QByteArray(80, 'x')});
}

void FrameTextTest::aLineWithoutEndTakesNoMemory() {
    Reader reader;
    const QByteArray piece(1 << 20, 'x');
    for (int i = 0; i < 20; ++i)
        reader.text.Add("A>B:" + piece);
    QCOMPARE(reader.frames.size(), 0);
    reader.text.Add("\nA>B:next\n");
    QCOMPARE(reader.frames.size(), 1);
    QCOMPARE(reader.text.NotUnderstood(), 1);
    // The longest line that is read, and one longer.
    const QByteArray longest = "A>B:" + QByteArray(FrameText::longestLine - 4, 'x');
    QCOMPARE(ReadAll(longest).size(), 1);
    QCOMPARE(ReadAll(longest + 'x').size(), 0);
    // Behind a header it is nobody's information, and the frame is given all the same.
    QCOMPARE(ReadAll("12:00:01R A>B Port=1 <UI Len=99999>:\n" + longest + "x\nA>B:y"),
             (QList<Kept>{{'U', 1, "A", "B", "", "", 1}, {'U', 1, "A", "B", "", "y", 3}}));
}

void FrameTextTest::oneLargePieceIsReadInTimeThatGrowsWithItsLength() {
    const QByteArray lines(1 << 19, '\n');
    const auto milliseconds = [&lines](qsizetype piece) {
        Reader reader;
        QElapsedTimer elapsed;
        elapsed.start();
        for (qsizetype at = 0; at < lines.size(); at += piece)
            reader.text.Add(QByteArrayView(lines).sliced(at, piece));
        return elapsed.elapsed();
    };
    const qint64 inPieces = milliseconds(1024);
    QVERIFY(milliseconds(lines.size()) < 4 * inPieces + 1000);
}

void FrameTextTest::anotherTextMayFollow() {
    Reader reader;
    reader.text.Add("12:00:01R A>B Port=1 <UI Len=100>:\nx\r");
    reader.text.End();
    reader.text.Add("\xEF\xBB\xBF"
                    "A>B:y\n");
    reader.text.End();
    QCOMPARE(reader.frames.size(), 2);
    QCOMPARE(reader.frames[1].line, 1);
}

QTEST_GUILESS_MAIN(FrameTextTest)
#include "FrameTextTest.moc"
