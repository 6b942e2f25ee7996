#include "telemetry/frames/Ax25Heard.h"

#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/MonitorHeader.h"

#include <QTest>

#include <array>

namespace {

const Ax25Heard::Arrival arrival{.utc = 1795274923120, .port = 1, .time = "17:45:28"};

QByteArray Raw(const Ax25Frame& frame) {
    return QByteArray::fromStdString(frame.ToBytes().value());
}

QByteArray Raw(const std::string& source, const std::string& destination, std::uint8_t control,
               std::string_view information, std::vector<Ax25Address> path = {}) {
    return Raw({.destination = {destination, true},
                .source = {source},
                .digipeaters = std::move(path),
                .control = control,
                .information = information});
}

} // namespace

class Ax25HeardTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFrameIsAHeardFrame();
    void theTextIsAnEngines_data();
    void theTextIsAnEngines();
    void theTextIsShownAsAnEnginesIs();
    void whatWasTransmittedIsOfThatKind();
    void theKindFollowsTheControlByte();
    void aNulEndsNothing();
    void bytesThatAreNoFrameAreShownAndNotDecoded();
    void aLongBadFrameIsShownShortened();
    void nothingOfAFrameIsLeftForTheNext();
    void aTextIsMadeWhereItIsNeededOnly();
};

void Ax25HeardTest::aFrameIsAHeardFrame() {
    const QByteArray raw =
        Raw("XQ9ZZ-1", "APRS", Ax25Frame::ui, "T#001", {{"QIRAN-1", true}, {"WIDE2-2", false}});
    Ax25Heard heard;
    const HeardFrame frame =
        heard.Read(raw, {.utc = 7, .port = 3, .origin = HeardFrame::Origin::Replayed, .time = "00:00:00"});
    QCOMPARE(frame.utc, 7);
    QCOMPARE(frame.kind, HeardFrame::Kind::U);
    QCOMPARE(frame.origin, HeardFrame::Origin::Replayed);
    QCOMPARE(frame.port, 3);
    QCOMPARE(frame.source, "XQ9ZZ-1");
    QCOMPARE(frame.destination, "APRS");
    QCOMPARE(frame.path, "QIRAN-1*,WIDE2-2");
    QCOMPARE(frame.pid.value(), 0xF0);
    QCOMPARE(frame.information, "T#001");
    QVERIFY(frame.isComplete);
    QCOMPARE(frame.raw, raw);
    QVERIFY(frame.engineText.startsWith(" 3:Fm XQ9ZZ-1 To APRS Via QIRAN-1,WIDE2-2 <"));
}

// Left the frames as they were on the air, right what Dire Wolf 1.6 sent of them to its AGW clients.
void Ax25HeardTest::theTextIsAnEngines_data() {
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<bool>("isCommand");
    QTest::addColumn<QByteArray>("text");
    const QByteArray start(" 1:Fm XQ9ZZ-1 To N0CALL-2 ");
    const auto row = [&start](const char* name, const QByteArray& rest, bool isCommand,
                              const QByteArray& text) {
        QTest::newRow(name) << rest << isCommand << start + text;
    };
    row("UI", "\x03\xF0T#001,10,20,30,40,0,0,00101111,0", true,
        "<UI pid=F0 Len=32 P=0 >[17:45:28]\rT#001,10,20,30,40,0,0,00101111,0\r");
    row("UI with poll", "\x13\xF0pf one", true, "<UI pid=F0 Len=6 P=1 >[17:45:28]\rpf one\r");
    row("UI of another layer", "\x03\xCFnetrom pid", true, "<UI pid=CF Len=10 P=0 >[17:45:28]\rnetrom pid\r");
    row("UI without information", "\x03\xF0", true, "<UI pid=F0 Len=0 P=0 >[17:45:28]\r\r");
    row("I", "\x76\xF0I frame s3 r3 p", true, "<I S3 R3 pid=0xF0 Len=15 P=1 >[17:45:28]\rI frame s3 r3 p\r");
    row("RR", "\x21", false, "<RR R1 F=0 >[17:45:28]\r\r");
    row("RNR", "\x35", true, "<RNR R1 P=1 >[17:45:28]\r\r");
    row("REJ", "\x49", false, "<REJ R2 F=0 >[17:45:28]\r\r");
    row("SABM", "\x3F", true, "<SABM P=1 >[17:45:28]\r\r");
    row("SABME", "\x7F", true, "<SABME P=1 >[17:45:28]\r\r");
    row("DISC", "\x53", true, "<DISC P=1 >[17:45:28]\r\r");
    row("DM", "\x1F", false, "<DM F=1 >[17:45:28]\r\r");
    row("UA", "\x73", false, "<UA F=1 >[17:45:28]\r\r");
    row("TEST", "\xF3test", true, "<TEST P=1 Len=4 >[17:45:28]\rtest\r");
    row("of another kind", "\x07", true, "<U P=0 >[17:45:28]\r\r");
}

void Ax25HeardTest::theTextIsAnEngines() {
    QFETCH(QByteArray, rest);
    QFETCH(bool, isCommand);
    QFETCH(QByteArray, text);
    const QByteArray addresses =
        Raw({.destination = {"N0CALL-2", isCommand}, .source = {"XQ9ZZ-1", !isCommand}}).chopped(2);
    const QByteArray raw = addresses + rest;
    Ax25Heard heard;
    QCOMPARE(heard.Read(raw, arrival).engineText, text);
}

void Ax25HeardTest::theTextIsShownAsAnEnginesIs() {
    Ax25Heard heard;
    const QByteArray raw = Raw(
        {.destination = {"APRS"}, .source = {"XQ9ZZ-1"}, .digipeaters = {{"WIDE2-2"}}, .information = "x"});
    const QByteArrayView text = heard.Read(raw, arrival).engineText;
    QCOMPARE(text, " 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=1 PF=0 >[17:45:28]\rx\r");
    std::string shown;
    FormatMonitorHeader({text.data(), static_cast<std::size_t>(text.indexOf('\r'))}, DisplayKind::Frame,
                        HeaderForm::Full, "12:00:01", shown);
    QCOMPARE(shown, std::string("12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=1 PF=0>:"));
}

void Ax25HeardTest::whatWasTransmittedIsOfThatKind() {
    Ax25Heard heard;
    QCOMPARE(
        heard.Read(Raw("A1", "CQ", Ax25Frame::ui, "x"), {.isTransmitted = true, .time = "00:00:00"}).kind,
        HeardFrame::Kind::T);
}

void Ax25HeardTest::theKindFollowsTheControlByte() {
    Ax25Heard heard;
    QCOMPARE(heard.Read(Raw("A1", "CQ", 0x76, "x"), arrival).kind, HeardFrame::Kind::I);
    QCOMPARE(heard.Read(Raw("A1", "CQ", 0x76, "x"), arrival).pid.value(), 0xF0);
    for (const std::uint8_t control : std::array<std::uint8_t, 3>{0x35, 0x3F, 0x97}) {
        QCOMPARE(heard.Read(Raw("A1", "CQ", control, {}), arrival).kind, HeardFrame::Kind::S);
        QVERIFY(!heard.Read(Raw("A1", "CQ", control, {}), arrival).pid);
    }
}

void Ax25HeardTest::aNulEndsNothing() {
    Ax25Heard heard;
    const QByteArray raw = Raw("A1", "CQ", Ax25Frame::ui, {"a\0b", 3});
    const HeardFrame frame = heard.Read(raw, arrival);
    QCOMPARE(frame.information, QByteArrayView("a\0b", 3));
    QVERIFY(frame.engineText.endsWith(QByteArrayView("Len=3 P=0 >[17:45:28]\ra\0b\r", 26)));
}

void Ax25HeardTest::bytesThatAreNoFrameAreShownAndNotDecoded() {
    Ax25Heard heard;
    const QByteArray raw("\x82\xA0\xFF\x00", 4);
    const HeardFrame frame = heard.Read(raw, arrival);
    QCOMPARE(frame.engineText, " 1:Not an AX.25 frame, 4 bytes\r82 A0 FF 00 \r");
    QVERIFY(frame.source.isEmpty());
    QVERIFY(frame.destination.isEmpty());
    QVERIFY(frame.information.isEmpty());
    QVERIFY(!frame.isComplete);
    QCOMPARE(frame.raw, raw);
    std::string shown;
    FormatMonitorHeader(" 1:Not an AX.25 frame, 4 bytes", DisplayKind::Frame, HeaderForm::Full, "12:00:01",
                        shown);
    QCOMPARE(shown, std::string(" 1:Not an AX.25 frame, 4 bytes")); // it is nobody's header
    QVERIFY(heard.Read({}, arrival).source.isEmpty());
}

void Ax25HeardTest::aLongBadFrameIsShownShortened() {
    Ax25Heard heard;
    const QByteArrayView text = heard.Read(QByteArray(65536, '\x01'), arrival).engineText;
    QVERIFY(text.size() < 300);
    QVERIFY(text.endsWith(" 01 ...\r"));
}

void Ax25HeardTest::nothingOfAFrameIsLeftForTheNext() {
    Ax25Heard heard;
    heard.Read(Raw("A1", "CQ", Ax25Frame::ui, "x", {{"D1", true}}), arrival);
    QCOMPARE(heard.Read(Raw("A2", "CQ", Ax25Frame::ui, "y"), arrival).path, "");
    QCOMPARE(heard.Read("nothing", arrival).source, "");
}

void Ax25HeardTest::aTextIsMadeWhereItIsNeededOnly() {
    Ax25Heard heard;
    heard.Read(Raw("A1", "CQ", Ax25Frame::ui, "x"), arrival);
    Ax25Heard::Arrival unshown = arrival;
    unshown.needsText = false;
    const QByteArray raw = Raw("A2", "CQ", Ax25Frame::ui, "y");
    QCOMPARE(heard.Read(raw, unshown).source, "A2");
    QCOMPARE(heard.Read(raw, unshown).information, "y");
    QVERIFY(heard.Read(raw, unshown).engineText.isEmpty());
    QVERIFY(heard.Read("nothing", unshown).engineText.isEmpty());
}

QTEST_GUILESS_MAIN(Ax25HeardTest)
#include "Ax25HeardTest.moc"
