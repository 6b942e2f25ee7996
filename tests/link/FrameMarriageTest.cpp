#include "link/agwpe/FrameMarriage.h"

#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/Ax25Heard.h"

#include <QTest>

#include <vector>

namespace {

/// A frame as it was on the air, with the two forms that Dire Wolf 1.6 tells of it.
class Told {
public:
    Told(const std::string& source, std::string_view information, std::vector<Ax25Address> path = {},
         std::uint8_t control = Ax25Frame::ui, qint16 port = 1)
        : m_raw(QByteArray::fromStdString(Ax25Frame{.destination = {"APRS", true},
                                                    .source = {source},
                                                    .digipeaters = std::move(path),
                                                    .control = control,
                                                    .information = information}
                                              .ToBytes()
                                              .value()))
        , m_raws(m_reader.Read(m_raw, {.utc = 1000, .port = port, .time = "12:00:00"}))
        , m_path(m_raws.path.toByteArray().replace('*', ""))
        , m_shown(m_raws.information.toByteArray()) {
        if (m_shown.contains('\0'))
            m_shown.truncate(m_shown.indexOf('\0'));
        m_text = " 1:Fm ... >[12:00:00]\r" + m_shown + '\r';
    }
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;

    HeardFrame Raw() const { return m_raws; }

    HeardFrame Monitored() const {
        HeardFrame frame = m_raws;
        frame.utc = 1005;
        frame.path = m_path;
        frame.information = m_shown;
        frame.isComplete = false;
        frame.pid.reset();
        frame.engineText = m_text;
        frame.raw = {};
        return frame;
    }

private:
    QByteArray m_raw;
    Ax25Heard m_reader;
    HeardFrame m_raws;
    QByteArray m_path;
    QByteArray m_shown;
    QByteArray m_text;
};

} // namespace

class FrameMarriageTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();

    void bothFormsMakeOneFrame();
    void aMonitoredFrameNeverWaits();
    void aRawFrameWaitsASecondAndGoesAloneWithoutText();
    void theNextFrameLetsTheTimePassToo();
    void whatTheTextLosesStillMarries_data();
    void whatTheTextLosesStillMarries();
    void framesThatDifferDoNotMarry_data();
    void framesThatDifferDoNotMarry();
    void equalFramesMarryInOrder();
    void framesMayOvertakeEachOther();
    void theMemoryIsBounded();
    void theEndHandsOnWhatWaits();
    void aSinkMayBringTheNextFrame();
    void aFrameIsKeptBeforeASinkTakesItsPlace();

private:
    std::vector<OwnedFrame> m_handed;
    FrameMarriage m_marriage{[this](const HeardFrame& frame) { m_handed.emplace_back(frame); }};
};

void FrameMarriageTest::init() {
    m_marriage.End();
    m_handed.clear();
}

void FrameMarriageTest::bothFormsMakeOneFrame() {
    const Told told("XQ9ZZ-1", "T#001,1", {{"QIRAN-1", true}, {"WIDE2-2"}});
    m_marriage.AddRaw(told.Raw(), 0);
    QVERIFY(m_handed.empty());
    QCOMPARE(m_marriage.Due().value(), 1000);
    m_marriage.AddMonitored(told.Monitored(), 10);
    QCOMPARE(m_handed.size(), 1U);
    const HeardFrame frame = m_handed[0].View();
    QCOMPARE(frame.utc, 1005); // as without raw frames
    QCOMPARE(frame.engineText, told.Monitored().engineText);
    QCOMPARE(frame.raw, told.Raw().raw);
    QCOMPARE(frame.information, "T#001,1");
    QCOMPARE(frame.path, "QIRAN-1*,WIDE2-2");
    QCOMPARE(frame.pid.value(), 0xF0);
    QVERIFY(frame.isComplete);
    QVERIFY(!m_marriage.Due());
    m_marriage.PassTime(5000);
    QCOMPARE(m_handed.size(), 1U);
}

void FrameMarriageTest::aMonitoredFrameNeverWaits() {
    const Told told("XQ9ZZ-1", "T#001,1");
    m_marriage.AddMonitored(told.Monitored(), 0);
    QCOMPARE(m_handed.size(), 1U);
    QVERIFY(m_handed[0].View().raw.isEmpty());
    QVERIFY(!m_handed[0].View().isComplete);
}

void FrameMarriageTest::aRawFrameWaitsASecondAndGoesAloneWithoutText() {
    const Told told("XQ9ZZ-1", "T#001,1");
    m_marriage.AddRaw(told.Raw(), 500);
    m_marriage.PassTime(1499);
    QVERIFY(m_handed.empty());
    m_marriage.PassTime(1500);
    QCOMPARE(m_handed.size(), 1U);
    QCOMPARE(m_handed[0].View().raw, told.Raw().raw);
    QVERIFY(m_handed[0].View().engineText.isEmpty());
    QVERIFY(m_handed[0].View().information.isEmpty());
    m_marriage.AddMonitored(told.Monitored(), 1501); // too late: not decoded twice, not lost
    QCOMPARE(m_handed.size(), 2U);
    QVERIFY(m_handed[1].View().raw.isEmpty());
}

void FrameMarriageTest::theNextFrameLetsTheTimePassToo() {
    const Told first("XQ9ZZ-1", "one");
    const Told second("XQ9ZZ-1", "two");
    m_marriage.AddRaw(first.Raw(), 0);
    m_marriage.AddRaw(second.Raw(), 1000);
    QCOMPARE(m_handed.size(), 1U);
    QCOMPARE(m_handed[0].View().raw, first.Raw().raw);
    m_marriage.AddMonitored(first.Monitored(), 2000);
    QCOMPARE(m_handed.size(), 3U);
    QCOMPARE(m_handed[1].View().raw, second.Raw().raw);
}

void FrameMarriageTest::whatTheTextLosesStillMarries_data() {
    QTest::addColumn<QByteArray>("information");
    QTest::addColumn<int>("control");
    QTest::newRow("NUL inside") << QByteArray("nul \0 after", 11) << 0x03;
    QTest::newRow("NUL first") << QByteArray("\0x", 2) << 0x03;
    QTest::newRow("none") << QByteArray() << 0x03;
    QTest::newRow("CR at its end") << QByteArray("text\r") << 0x03;
    QTest::newRow("two CRs") << QByteArray("text\r\r") << 0x03;
    QTest::newRow("information frame") << QByteArray("text") << 0x76;
    QTest::newRow("supervisory") << QByteArray() << 0x35;
    QTest::newRow("identification") << QByteArray("\x82\x80\x00\x00", 4) << 0xBF;
}

void FrameMarriageTest::whatTheTextLosesStillMarries() {
    QFETCH(QByteArray, information);
    QFETCH(int, control);
    const Told told("XQ9ZZ-1", {information.data(), static_cast<std::size_t>(information.size())}, {},
                    static_cast<std::uint8_t>(control));
    m_marriage.AddRaw(told.Raw(), 0);
    m_marriage.AddMonitored(told.Monitored(), 0);
    QCOMPARE(m_handed.size(), 1U);
    const bool isCut = information.contains('\0');
    QCOMPARE(m_handed[0].View().information, isCut ? told.Monitored().information : information);
    QCOMPARE(m_handed[0].View().isComplete, !isCut);
    // An engine that adds no CR of its own: the one taken off was the frame's.
    m_handed.clear();
    HeardFrame bare = told.Monitored();
    if (bare.information.endsWith('\r'))
        bare.information.chop(1);
    m_marriage.AddRaw(told.Raw(), 0);
    m_marriage.AddMonitored(bare, 0);
    QCOMPARE(m_handed.size(), 1U);
}

void FrameMarriageTest::framesThatDifferDoNotMarry_data() {
    QTest::addColumn<QByteArray>("field");
    for (const char* name :
         {"port", "kind", "source", "destination", "path", "information", "longer information"})
        QTest::newRow(name) << QByteArray(name);
}

void FrameMarriageTest::framesThatDifferDoNotMarry() {
    QFETCH(QByteArray, field);
    const Told told("XQ9ZZ-1", "T#001", {{"QIRAN-1", true}});
    HeardFrame other = told.Monitored();
    if (field == "port")
        other.port = 2;
    else if (field == "kind")
        other.kind = HeardFrame::Kind::T;
    else if (field == "source")
        other.source = "XQ9ZZ-2";
    else if (field == "destination")
        other.destination = "CQ";
    else if (field == "path")
        other.path = "QIRAN-1,WIDE1-1";
    else
        other.information = field == "information" ? "T#002\r" : "T#001,\r";
    m_marriage.AddRaw(told.Raw(), 0);
    m_marriage.AddMonitored(other, 0);
    QCOMPARE(m_handed.size(), 1U);
    QVERIFY(m_handed[0].View().raw.isEmpty());
    QVERIFY(m_marriage.Due());
}

void FrameMarriageTest::equalFramesMarryInOrder() {
    // Heard directly, and again from the satellite: only the mark tells them apart.
    const Told direct("XQ9ZZ-1", "x", {{"QIRAN-1", false}});
    const Told repeated("XQ9ZZ-1", "x", {{"QIRAN-1", true}});
    m_marriage.AddRaw(direct.Raw(), 0);
    m_marriage.AddRaw(repeated.Raw(), 1);
    m_marriage.AddMonitored(direct.Monitored(), 2);
    m_marriage.AddMonitored(repeated.Monitored(), 3);
    QCOMPARE(m_handed.size(), 2U);
    QCOMPARE(m_handed[0].View().path, "QIRAN-1");
    QCOMPARE(m_handed[1].View().path, "QIRAN-1*");
}

void FrameMarriageTest::framesMayOvertakeEachOther() {
    const Told first("XQ9ZZ-1", "one");
    const Told second("XQ9ZZ-1", "two");
    m_marriage.AddRaw(first.Raw(), 0);
    m_marriage.AddRaw(second.Raw(), 1);
    m_marriage.AddMonitored(second.Monitored(), 2);
    m_marriage.AddMonitored(first.Monitored(), 3);
    QCOMPARE(m_handed.size(), 2U);
    QCOMPARE(m_handed[0].View().raw, second.Raw().raw);
    QCOMPARE(m_handed[1].View().raw, first.Raw().raw);
}

void FrameMarriageTest::theMemoryIsBounded() {
    const Told told("XQ9ZZ-1", "x");
    for (std::size_t i = 0; i < FrameMarriage::mostWaiting + 10; ++i)
        m_marriage.AddRaw(told.Raw(), 0);
    QCOMPARE(m_handed.size(), 10U);
}

void FrameMarriageTest::theEndHandsOnWhatWaits() {
    const Told told("XQ9ZZ-1", "x");
    m_marriage.AddRaw(told.Raw(), 0);
    m_marriage.AddRaw(told.Raw(), 0);
    m_marriage.End();
    QCOMPARE(m_handed.size(), 2U);
    QVERIFY(!m_marriage.Due());
}

void FrameMarriageTest::aSinkMayBringTheNextFrame() {
    const Told first("XQ9ZZ-1", "one");
    const Told second("XQ9ZZ-1", "two");
    QByteArrayList heard;
    FrameMarriage marriage([&](const HeardFrame& frame) {
        if (heard.isEmpty()) {
            heard.append("");
            marriage.AddRaw(second.Raw(), 1);
            marriage.AddMonitored(second.Monitored(), 1);
        }
        heard.append(frame.raw.toByteArray());
    });
    marriage.AddRaw(first.Raw(), 0);
    marriage.AddMonitored(first.Monitored(), 0);
    QCOMPARE(heard, (QByteArrayList{"", second.Raw().raw.toByteArray(), first.Raw().raw.toByteArray()}));
}

void FrameMarriageTest::aFrameIsKeptBeforeASinkTakesItsPlace() {
    // The reader's frames hold until its next one, which may come while one that waited long enough is handed
    // on.
    const Told first("XQ9ZZ-1", "one");
    const Told second("XQ9ZZ-1", "two");
    QByteArray place = second.Raw().raw.toByteArray();
    QByteArrayList heard;
    FrameMarriage marriage([&](const HeardFrame& frame) {
        heard.append(frame.raw.toByteArray());
        place.fill('x');
    });
    marriage.AddRaw(first.Raw(), 0);
    HeardFrame frame = second.Raw();
    frame.raw = place;
    marriage.AddRaw(frame, FrameMarriage::patience);
    marriage.AddMonitored(second.Monitored(), FrameMarriage::patience);
    QCOMPARE(heard, (QByteArrayList{first.Raw().raw.toByteArray(), second.Raw().raw.toByteArray()}));
}

QTEST_GUILESS_MAIN(FrameMarriageTest)
#include "FrameMarriageTest.moc"
