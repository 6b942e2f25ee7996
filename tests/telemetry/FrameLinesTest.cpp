#include "telemetry/replay/FrameLines.h"

#include <QTest>

class FrameLinesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void findsAFrameInOneLine_data();
    void findsAFrameInOneLine();
    void findsTheFramesOfATrafficLog();
    void tellsTheTimeWhereItsZoneIsNamed_data();
    void tellsTheTimeWhereItsZoneIsNamed();
    void countsWhatIsNoneOfThese();
};

namespace {

struct Lines {
    QList<OwnedFrame> frames;
    FrameLines reader{[this](const HeardFrame& frame) { frames.append(OwnedFrame(frame)); }};

    explicit Lines(const QByteArray& text) {
        for (const QByteArray& line : text.split('\n'))
            reader.Take(line);
    }
    QByteArray Texts() const {
        QByteArrayList texts;
        for (const OwnedFrame& frame : frames) {
            const HeardFrame view = frame.View();
            texts.append(static_cast<char>(view.kind) + QByteArray::number(view.port) + ' ' +
                         view.source.toByteArray() + '>' + view.destination.toByteArray() + ',' +
                         view.path.toByteArray() + ':' + view.information.toByteArray());
        }
        return texts.join('\n');
    }
};

} // namespace

void FrameLinesTest::findsAFrameInOneLine_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("frame");
    const auto add = [](const char* name, const char* line, const char* frame) {
        QTest::newRow(name) << QByteArray(line) << QByteArray(frame);
    };
    add("telemetry", "QIRAN-3,T#024,1,2,3,4,0,0,00111111,0", "U1 QIRAN-3>,:T#024,1,2,3,4,0,0,00111111,0");
    add("TNC2", "QIRAN-3>APRS:T#024,1", "U1 QIRAN-3>APRS,:T#024,1");
    add("digipeaters", "QIRAN-3>APRS,A1A*,WIDE2-1:T#024", "U1 QIRAN-3>APRS,A1A*,WIDE2-1:T#024");
    add("a channel", "[0.3] QIRAN-3>APRS:T#024", "U1 QIRAN-3>APRS,:T#024");
    add("a time", "2026-11-21 15:28:43 UTC: x QIRAN>APRS:T", "");
    add("a time and a channel", "[0] 15:28:43 QIRAN-3>APRS:T#024", "U1 QIRAN-3>APRS,:T#024");
    add("a callsign that begins with a digit", "2026-11-21T15:28Z 9A1AB>APRS:T#024", "U1 9A1AB>APRS,:T#024");
    add("colons in the information", "QIRAN>APRS::BLN1     :5>3", "U1 QIRAN>APRS,::BLN1     :5>3");
    add("written bytes", "QIRAN>APRS:a<0x0d><0xfc>b<0xzz>",
        "U1 QIRAN>APRS,:a\r\xFC"
        "b<0xzz>");
    add("nothing in it", "QIRAN>APRS:", "U1 QIRAN>APRS,:");
}

void FrameLinesTest::findsAFrameInOneLine() {
    QFETCH(const QByteArray, line);
    const Lines found(line);
    QTEST(found.Texts(), "frame");
    QCOMPARE(found.reader.Unknown(), found.frames.isEmpty() ? 1 : 0);
    for (const OwnedFrame& frame : found.frames)
        QCOMPARE(frame.View().origin, HeardFrame::Origin::Replayed);
}

void FrameLinesTest::findsTheFramesOfATrafficLog() {
    const Lines found("*** AGW-Connected to - localhost\n"
                      "12:00:01R QIRAN-3>APRS,WIDE2-2 Port=2 <UI Len=42>:\n"
                      "T#024,1,2,3,4,0,0,00111111,0\n"
                      "more of it\n"
                      "\n"
                      "12:00:02T N0CALL>APZ242 Port=1 <UI Len=3>:\n"
                      "own\n"
                      "\n"
                      "12:00:03R A1A>B1B Port=1 <RR R3>:\n"
                      "12:00:04R A1A>B1B Port=1 <I S1 R2 Len=5>:\n"
                      "hello\n"
                      "\n"
                      "12:00:05 QIRAN>APRS:\n"
                      "T#025\n");
    QCOMPARE(found.Texts(), QByteArray("U2 QIRAN-3>APRS,WIDE2-2:T#024,1,2,3,4,0,0,00111111,0\n"
                                       "T1 N0CALL>APZ242,:own\n"
                                       "I1 A1A>B1B,:hello\n"
                                       "U1 QIRAN>APRS,:T#025"));
    QCOMPARE(found.reader.Unknown(), 1);
}

void FrameLinesTest::tellsTheTimeWhereItsZoneIsNamed_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<qint64>("utc");
    constexpr qint64 moment = 1795274923000; // 2026-11-21 15:28:43
    QTest::newRow("ISO") << QByteArray("2026-11-21T15:28:43Z ") << moment;
    QTest::newRow("a fraction") << QByteArray("2026-11-21T15:28:43.120Z ") << moment + 120;
    QTest::newRow("UTC") << QByteArray("2026-11-21 15:28:43 UTC ") << moment;
    QTest::newRow("an offset") << QByteArray("2026-11-21 17:28:43+02:00 ") << moment;
    QTest::newRow("in brackets") << QByteArray("[2026-11-21 15:28:43 UTC] ") << moment;
    QTest::newRow("no zone") << QByteArray("2026-11-21 15:28:43 ") << qint64{0};
    QTest::newRow("no date") << QByteArray("15:28:43Z ") << qint64{0};
    QTest::newRow("no such day") << QByteArray("2026-11-31T15:28:43Z ") << qint64{0};
}

void FrameLinesTest::tellsTheTimeWhereItsZoneIsNamed() {
    QFETCH(const QByteArray, before);
    const Lines found(before + "QIRAN>APRS:T#024");
    QCOMPARE(found.frames.size(), 1);
    QTEST(found.frames.first().View().utc, "utc");
}

void FrameLinesTest::countsWhatIsNoneOfThese() {
    const Lines found("hello\n"
                      "\n"
                      "   \n"
                      "QIRAN,T#024,1,2,3\n"
                      "lower>APRS:T#024\n"
                      "QIRAN-16,T#024,1,2,3,4,0,0,00111111,0\n"
                      "what > is: this\n");
    QCOMPARE(found.Texts(), QByteArray());
    QCOMPARE(found.reader.Unknown(), 5);
}

QTEST_GUILESS_MAIN(FrameLinesTest)
#include "FrameLinesTest.moc"
