#include "telemetry/monitor/MonitorHeader.h"

#include "telemetry/monitor/DisplayKind.h"

#include <QTest>

class MonitorHeaderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fullForm_data();
    void fullForm();
    void shortForm_data();
    void shortForm();
    void unparsableHeaderIsUnchanged_data();
    void unparsableHeaderIsUnchanged();
    void appendsBehindWhatIsThere();
};

namespace {

QByteArray Format(const QByteArray& header, qint16 kind, HeaderForm form) {
    std::string text;
    FormatMonitorHeader(header.toStdString(), kind, form, "12:00:01", text);
    return QByteArray::fromStdString(text);
}

} // namespace

void MonitorHeaderTest::fullForm_data() {
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const char* header, int kind, const char* text) {
        QTest::newRow(name) << QByteArray(header) << kind << QByteArray(text);
    };
    row("a plain UI frame", " 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=42 >[12:00:01]", 2,
        "12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:");
    row("captured: items behind the length",
        " 1:Fm QIRAN-3 To APRS Via QIRAN-1 <UI pid=F0 Len=33 PF=0 >[00:16:57]", 2,
        "12:00:01R QIRAN-3>APRS,QIRAN-1 Port=1 <UI Len=33 PF=0>:");
    row("captured: transmitted", " 1:Fm N0CALL-7 To CQ <UI pid=F0 Len=8 PF=0 >[00:16:56]", 4,
        "12:00:01T N0CALL-7>CQ Port=1 <UI Len=8 PF=0>:");
    row("captured: transmitted through a digipeater",
        " 1:Fm N0CALL-7 To CQ Via QIRAN-1 <UI pid=F0 Len=12 PF=0 >[00:16:56]", 4,
        "12:00:01T N0CALL-7>CQ,QIRAN-1 Port=1 <UI Len=12 PF=0>:");
    row("several digipeaters", "2:Fm A To APRS Via WIDE2-2,RELAY <UI >", 2,
        "12:00:01R A>APRS,WIDE2-2,RELAY Port=2 <UI>:");
    row("every Via becomes a comma", "2:Fm A To B Via C Via D <UI>", 2, "12:00:01R A>B,C,D Port=2 <UI>:");
    row("no pid keeps the control part", " 1:Fm A To B <RR R3 F >x", 2, "12:00:01R A>B Port=1 <RR R3 F>:");
    row("pid is the last item", "1:Fm A To B <UI pid=F0 >", 2, "12:00:01R A>B Port=1 <UI>:");
    row("nothing behind the pid", "1:Fm A To B <UI pid=F0>", 2, "12:00:01R A>B Port=1 <UI pid=F0>:");
    row("blank of the pid mark itself does not count", "1:Fm A To B <UI pid=>", 2,
        "12:00:01R A>B Port=1 <UI pid=>:");
    row("empty pid", "1:Fm A To B <UI pid= Len=3 >", 2, "12:00:01R A>B Port=1 <UI Len=3>:");
    row("supervisory", " 1:Fm A To B <RR>", 5, "12:00:01R A>B Port=1 <RR>:");
    row("port without a number", ":Fm A To B <UI>", 2, "12:00:01R A>B Port=0 <UI>:");
    row("large port", "70000:Fm A To B <UI>", 2, "12:00:01R A>B Port=70000 <UI>:");
    row("Fm inside the callsign", "1:Fm XFm1 To B <UI>", 2, "12:00:01R XFm1>B Port=1 <UI>:");
    row("To inside the callsign: the first one counts", "1:Fm QTo1 To B <UI>", 2,
        "12:00:01R > To B Port=1 <UI>:");
    row("> before the control part", "1:Fm A>B To C <UI >[12:00:01]", 2, "12:00:01R A>B>C Port=1 <UI>:");
    row("< before To", "1:Fm A<B To C <UI >", 2, "12:00:01R A<B>C Port=1 <UI>:");
    row("empty source", "1:Fm To B <UI>", 2, "1:Fm To B <UI>"); // one too short for a source
    row("the colon may stand anywhere", "Fm A To B <UI>[12:00:01]", 2, "12:00:01R A>B Port=0 <UI>:");
}

void MonitorHeaderTest::fullForm() {
    QFETCH(const QByteArray, header);
    QFETCH(const int, kind);
    QTEST(Format(header, static_cast<qint16>(kind), HeaderForm::Full), "text");
}

void MonitorHeaderTest::shortForm_data() {
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a plain UI frame")
        << QByteArray(" 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=42 >[12:00:01]")
        << QByteArray("12:00:01 XQ9ZZ-1>APRS,WIDE2-2:");
    QTest::newRow("needs no end of the control part")
        << QByteArray("1:Fm A To B <UI") << QByteArray("12:00:01 A>B:");
}

void MonitorHeaderTest::shortForm() {
    QFETCH(const QByteArray, header);
    QTEST(Format(header, DisplayKind::Frame, HeaderForm::Short), "text");
}

void MonitorHeaderTest::unparsableHeaderIsUnchanged_data() {
    QTest::addColumn<QByteArray>("header");
    for (const char* header : {"", ":", "1:", "1 Fm A To B <UI>", "1:fm A To B <UI>", "1:Fm A to B <UI>",
                               "1:Fm A To B UI>", "1:Fm A To B <UI", "1:To B Fm A <UI>", "1:FmTo B <UI>",
                               "1:Fm A To<UI>", "1:Fm A To <UI>", "<1:Fm A To B UI>"})
        QTest::newRow(header) << QByteArray(header);
}

void MonitorHeaderTest::unparsableHeaderIsUnchanged() {
    QFETCH(const QByteArray, header);
    QCOMPARE(Format(header, DisplayKind::Frame, HeaderForm::Full), header);
}

void MonitorHeaderTest::appendsBehindWhatIsThere() {
    std::string text = "before ";
    FormatMonitorHeader("1:Fm A To B <UI>", DisplayKind::Frame, HeaderForm::Short, "12:00:01", text);
    QCOMPARE(text, std::string("before 12:00:01 A>B:"));
}

QTEST_GUILESS_MAIN(MonitorHeaderTest)
#include "MonitorHeaderTest.moc"
