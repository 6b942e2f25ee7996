#include "telemetry/monitor/FrameIntake.h"

#include "telemetry/TelemetryRoom.h"
#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/SecondTime.h"

#include <QTest>

class FrameIntakeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void linesAreTrimmedAndEmptyOnesDropped();
    void kindsGoWhereTheyBelong_data();
    void kindsGoWhereTheyBelong();
    void textOfBlanksStillReachesTheTerminal();
    void withoutATerminalOnlyTheMonitorShows();
    void satelliteFrameIsShownOnceInShortForm();
    void otherStationsDoNotAppearWhileOnlyQiranIsShown();
    void everyFrameAppearsInFullAndIsStillDecoded();
    void sourcesMatchExactly_data();
    void sourcesMatchExactly();
    void theOptionAppliesFromTheNextFrame();
    void onlyTheFirstInformationLineIsShownInShortForm();
    void lineEndsOfTheInformation_data();
    void lineEndsOfTheInformation();
    void satelliteFrameWithoutInformationLineIsNotDecoded();
    void aLineFeedEndsTheHeaderOfASatelliteFrameToo();
    void emptyFrameIsHarmless();
    void aFrameOfBytesAloneIsNotShown();
    void frameWithoutCrIsShownAsItIs();
    void unparsableHeaderIsShownUnchanged();
    void allBytesPass();
    void aGreaterSignInTheInformationStays();
    void kindOfTheFrameReachesTheHeader();
    void timeFollowsTheClock();
    void stringsBecomeWindows1252();
    void timeIsAskedForOnceASecond();
};

namespace {

const QByteArray telemetryLine = "T#001,10,20,30,40,0,0,00101111,0";

} // namespace

void FrameIntakeTest::linesAreTrimmedAndEmptyOnesDropped() {
    TelemetryRoom room;
    room.intake.AddToMonitor(QByteArrayView("a\r\n\r\n  b  \n"), DisplayKind::Status);
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("a\r\nb\r\n"));
    room.intake.AddToMonitor(QByteArrayView("\n\r \r\n\tc d \r\r\n"), DisplayKind::Status);
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("a\r\nb\r\n\tc d\r\n"));
}

void FrameIntakeTest::kindsGoWhereTheyBelong_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("only");
    QTest::addColumn<QByteArray>("inMonitor");
    QTest::addColumn<QByteArrayList>("inTerminal");
    const QByteArray line = "x\r\n";
    for (const bool only : {false, true}) {
        const char* name = only ? "only QIRAN, kind %d" : "all, kind %d";
        QTest::addRow(name, 0) << 0 << only << line << QByteArrayList{line};
        QTest::addRow(name, 1) << 1 << only << (only ? line : QByteArray()) << QByteArrayList{};
        for (int kind = 2; kind <= 5; ++kind)
            QTest::addRow(name, kind)
                << kind << only << (only ? QByteArray() : line) << QByteArrayList{line + "\r\n"};
    }
}

void FrameIntakeTest::kindsGoWhereTheyBelong() {
    QFETCH(const int, kind);
    QFETCH(const bool, only);
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(only);
    room.intake.AddToMonitor(QByteArrayView("x"), static_cast<qint16>(kind));
    QTEST(room.monitor.Text().toByteArray(), "inMonitor");
    QByteArrayList shown;
    for (const auto& [text, terminalKind] : room.terminal) {
        shown.append(text);
        QCOMPARE(terminalKind, kind);
    }
    QTEST(shown, "inTerminal");
}

void FrameIntakeTest::textOfBlanksStillReachesTheTerminal() {
    TelemetryRoom room;
    room.intake.AddToMonitor(QByteArrayView(" \r\n "), DisplayKind::Frame);
    QCOMPARE(room.terminal.size(), 1U);
    QCOMPARE(room.terminal[0].first, QByteArray("\r\n"));
}

void FrameIntakeTest::withoutATerminalOnlyTheMonitorShows() {
    TelemetryRoom room;
    room.intake.SetTerminal({});
    room.intake.AddToMonitor(QByteArrayView("x"), DisplayKind::Status);
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("x\r\n"));
    QVERIFY(room.terminal.empty());
}

void FrameIntakeTest::satelliteFrameIsShownOnceInShortForm() {
    TelemetryRoom room;
    QVERIFY(room.intake.OnlyShowQiran());
    room.Receive("XQ9ZZ-1", telemetryLine + "\n\r");
    QCOMPARE(room.monitor.Text().toByteArray(),
             "14:07:09 XQ9ZZ-1>APRS,WIDE2-2:\r\n" + telemetryLine + "\r\n");
    QCOMPARE(room.terminal.size(), 1U);
    QCOMPARE(room.terminal[0].first,
             "14:07:09R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42 PF=0>:\r\n" + telemetryLine + "\r\n\r\n");
    QCOMPARE(room.terminal[0].second, DisplayKind::Frame);
    QCOMPARE(room.FilledCells(), 8);
}

void FrameIntakeTest::otherStationsDoNotAppearWhileOnlyQiranIsShown() {
    TelemetryRoom room;
    room.Receive("N0CALL-7", "hello\r");
    QVERIFY(room.monitor.Text().isEmpty());
    QCOMPARE(room.terminal.size(), 1U);
}

void FrameIntakeTest::everyFrameAppearsInFullAndIsStillDecoded() {
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(false);
    room.Receive("N0CALL-7", "hello\r");
    room.Receive("XQ9ZZ-1", telemetryLine + "\r");
    QCOMPARE(room.monitor.Text().toByteArray(),
             "14:07:09R N0CALL-7>APRS,WIDE2-2 Port=1 <UI Len=42 PF=0>:\r\nhello\r\n"
             "14:07:09R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42 PF=0>:\r\n" +
                 telemetryLine + "\r\n");
    QCOMPARE(room.Cell(2, "X+", TelemetryGrid::ValueA), QStringLiteral("3010"));
}

void FrameIntakeTest::sourcesMatchExactly_data() {
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<bool>("isSatellite");
    QTest::newRow("listed") << QByteArray("XQ9ZZ-1") << true;
    QTest::newRow("lower case") << QByteArray("xq9zz-1") << false;
    QTest::newRow("other SSID") << QByteArray("XQ9ZZ") << false;
    QTest::newRow("blank behind") << QByteArray("XQ9ZZ-1 ") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void FrameIntakeTest::sourcesMatchExactly() {
    QFETCH(const QByteArray, source);
    QFETCH(const bool, isSatellite);
    TelemetryRoom room;
    room.callsigns.setCCallsigns({{QStringLiteral("XQ9ZZ-1"), QStringLiteral("A")}});
    room.Receive(source, telemetryLine + "\r");
    QCOMPARE(room.FilledCells() > 0, isSatellite);
    QCOMPARE(!room.monitor.Text().isEmpty(), isSatellite);
}

void FrameIntakeTest::theOptionAppliesFromTheNextFrame() {
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(false);
    room.Receive("N0CALL-7", "one\r");
    const QByteArray before = room.monitor.Text().toByteArray();
    room.intake.SetOnlyShowQiran(true);
    QCOMPARE(room.monitor.Text().toByteArray(), before);
    room.Receive("N0CALL-7", "two\r");
    QCOMPARE(room.monitor.Text().toByteArray(), before);
}

void FrameIntakeTest::onlyTheFirstInformationLineIsShownInShortForm() {
    TelemetryRoom room;
    room.Receive("QIRAN-1", "first\rsecond\r");
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("14:07:09 QIRAN-1>APRS,WIDE2-2:\r\nfirst\r\n"));
}

void FrameIntakeTest::lineEndsOfTheInformation_data() {
    QTest::addColumn<QByteArray>("ending");
    QTest::newRow("LF") << QByteArray("\n");
    QTest::newRow("CR") << QByteArray("\r");
    QTest::newRow("CR LF") << QByteArray("\r\n");
    QTest::newRow("LF CR") << QByteArray("\n\r");
    QTest::newRow("nothing") << QByteArray();
}

void FrameIntakeTest::lineEndsOfTheInformation() {
    QFETCH(const QByteArray, ending);
    for (const QByteArray& further : {QByteArray(), QByteArray("further,line")}) {
        if (ending.isEmpty() && !further.isEmpty())
            continue;
        TelemetryRoom room;
        room.Receive("XQ9ZZ", telemetryLine + ending + further);
        QCOMPARE(room.Cell(1, "Batt", TelemetryGrid::ValueA), QStringLiteral("3040"));
        QVERIFY(room.monitor.Text().endsWith(QByteArrayView(telemetryLine + "\r\n")));
    }
}

void FrameIntakeTest::satelliteFrameWithoutInformationLineIsNotDecoded() {
    TelemetryRoom room;
    room.Hear("XQ9ZZ", " 1:Fm XQ9ZZ To APRS <UI pid=F0 Len=0 >");
    QVERIFY(room.monitor.Text().isEmpty());
    QCOMPARE(room.FilledCells(), 0);
    QCOMPARE(room.terminal.size(), 1U);
    QCOMPARE(room.terminal[0].first, QByteArray("1:Fm XQ9ZZ To APRS <UI pid=F0 Len=0 >\r\n\r\n"));
}

void FrameIntakeTest::aLineFeedEndsTheHeaderOfASatelliteFrameToo() {
    for (const QByteArray& end : {QByteArray("\n"), QByteArray("\r\n")}) {
        TelemetryRoom room;
        room.Hear("XQ9ZZ",
                  " 1:Fm XQ9ZZ To APRS <UI pid=F0 Len=31 >" + end + "T#001,10,20,30,40,0,0,00101111,0\r");
        QCOMPARE(room.monitor.Text().toByteArray(),
                 QByteArray("14:07:09 XQ9ZZ>APRS:\r\nT#001,10,20,30,40,0,0,00101111,0\r\n"));
        QCOMPARE(room.FilledCells(), 8);
    }
}

void FrameIntakeTest::emptyFrameIsHarmless() {
    TelemetryRoom room;
    room.Hear("XQ9ZZ", QByteArrayView());
    QVERIFY(room.monitor.Text().isEmpty());
    room.Hear("XQ9ZZ", "\r");
    QVERIFY(room.monitor.Text().isEmpty());
}

void FrameIntakeTest::aFrameOfBytesAloneIsNotShown() {
    TelemetryRoom room;
    for (const bool only : {false, true}) {
        room.intake.SetOnlyShowQiran(only);
        room.intake.Take({.source = "XQ9ZZ", .raw = "bytes"});
    }
    QVERIFY(room.monitor.Text().isEmpty());
    QVERIFY(room.terminal.empty());
}

void FrameIntakeTest::frameWithoutCrIsShownAsItIs() {
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(false);
    room.intake.ShowMonitoredFrame("1:Fm A To B <UI >\nx", DisplayKind::Frame, room.clock.Milliseconds());
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("1:Fm A To B <UI >\r\nx\r\n"));
}

void FrameIntakeTest::unparsableHeaderIsShownUnchanged() {
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(false);
    room.intake.ShowMonitoredFrame("1:To B Fm A <UI >\rx\r", DisplayKind::Frame, room.clock.Milliseconds());
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("1:To B Fm A <UI >\r\nx\r\n"));
}

void FrameIntakeTest::allBytesPass() {
    TelemetryRoom room;
    QByteArray information;
    for (int byte = 0; byte < 256; ++byte)
        information.append(static_cast<char>(byte));
    QByteArray expected = information; // LF and CR each end a line
    expected.replace('\r', '\n').replace('\n', "\r\n");
    room.intake.SetOnlyShowQiran(false);
    room.Receive("QIRAN", information);
    QCOMPARE(room.monitor.Text().toByteArray(),
             "14:07:09R QIRAN>APRS,WIDE2-2 Port=1 <UI Len=42 PF=0>:\r\n" + expected + "\r\n");
}

void FrameIntakeTest::aGreaterSignInTheInformationStays() {
    TelemetryRoom room;
    room.intake.SetOnlyShowQiran(false);
    room.Receive("N0CALL", "IO91 > test <x >\r");
    QVERIFY(room.monitor.Text().endsWith("\r\nIO91 > test <x >\r\n"));
}

void FrameIntakeTest::kindOfTheFrameReachesTheHeader() {
    TelemetryRoom room;
    room.intake.ShowMonitoredFrame("1:Fm A To B <UI >\rx\r", DisplayKind::Transmitted,
                                   room.clock.Milliseconds());
    QCOMPARE(room.terminal.size(), 1U);
    QCOMPARE(room.terminal[0].second, DisplayKind::Transmitted);
    QCOMPARE(room.terminal[0].first, QByteArray("14:07:09T A>B Port=1 <UI>:\r\nx\r\n\r\n"));
}

void FrameIntakeTest::timeFollowsTheClock() {
    TelemetryRoom room;
    room.Receive("QIRAN", "x\r");
    room.clock.Advance(1.0);
    room.Receive("QIRAN", "x\r");
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("14:07:09 QIRAN>APRS,WIDE2-2:\r\nx\r\n"
                                                           "14:07:10 QIRAN>APRS,WIDE2-2:\r\nx\r\n"));
}

void FrameIntakeTest::stringsBecomeWindows1252() {
    TelemetryRoom room;
    room.intake.AddToMonitor(QStringLiteral("*** Zürich € \u4e2d"), DisplayKind::Status);
    QCOMPARE(room.monitor.Text().toByteArray(), QByteArray("*** Z\xFCrich \x80 ?\r\n"));
}

void FrameIntakeTest::timeIsAskedForOnceASecond() {
    int asked = 0;
    const auto displayTime = [](qint64 utc) { return FromCalendar(Clock::UtcAt(utc)); };
    SecondTime time([&](qint64 utc) {
        ++asked;
        return displayTime(utc);
    });
    const qint64 start = TestClock().Milliseconds();
    for (const int milliseconds : {0, 1, 500})
        QCOMPARE(time.At(start + milliseconds), displayTime(start + milliseconds));
    QCOMPARE(asked, 1);
    for (const int milliseconds : {501, 999, 1500, 1501, 1000, 0}) // to and fro
        QCOMPARE(time.At(start + milliseconds), displayTime(start + milliseconds));
    QCOMPARE(asked, 5);
    time.Forget();
    time.At(start);
    QCOMPARE(asked, 6);
}

QTEST_GUILESS_MAIN(FrameIntakeTest)
#include "FrameIntakeTest.moc"
