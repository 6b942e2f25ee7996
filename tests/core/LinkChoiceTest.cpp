#include "core/StationRig.h"
#include "support/Tnc.h"
#include "telemetry/replay/KissRecording.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using RawTaker = GroundStation::RawTaker;

constexpr auto agwConnected = "*** AGW-Connected to - 127.0.0.1"_L1;
constexpr auto agwDisconnected = "*** AGW-Disconnected from - 127.0.0.1"_L1;
constexpr auto kissConnected = "*** KISS-Connected to - 127.0.0.1"_L1;
constexpr auto kissDisconnected = "*** KISS-Disconnected from - 127.0.0.1"_L1;

const AirFrame withNul{.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = QByteArray("a\0b", 3)};

/// A station that may use either of two engines, and what it says.
struct TwoEngines : StationRig {
    Tnc tnc;
    QStringList lines;
    QByteArray asked; // kinds of what came to the AGWPE engine

    TwoEngines() {
        if (!tnc.listen(QHostAddress::LocalHost))
            qFatal("no port");
        Set("KISS", "HOST_ADDRESS", u"127.0.0.1"_s);
        Set("KISS", "HOST_PORT", QString::number(tnc.serverPort()));
        QObject::connect(station.get(), &GroundStation::StatusLine, station.get(),
                         [this](const QString& line) { lines.append(line); });
        QObject::connect(&engine, &EngineSimulator::FrameReceived, station.get(),
                         [this](int, const QByteArray& frame) { asked += frame[4]; });
    }

    ~TwoEngines() { station.reset(); }

    QList<QByteArray> Recorded(const QString& path) const {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const std::string bytes = file.readAll().toStdString();
        std::string_view rest = bytes;
        KissRecordingReader reader;
        RecordedFrame frame;
        QList<QByteArray> frames;
        while (reader.Next(rest, frame))
            frames.append(QByteArray::number(qint64{frame.utc.value_or(0)}) + ' ' +
                          QByteArray(frame.bytes.data(), static_cast<qsizetype>(frame.bytes.size())));
        return frames;
    }
};

} // namespace

/// Which engine the station uses, and what it asks of it.
class LinkChoiceTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theSettingsChooseTheLink();
    void anAddressForThisRunIsUsedAndNotSaved();
    void theLinkIsChangedWhileTheStationRuns();
    void aLinkThatIsNotInUseIsNotReconnected();
    void whatIsSentGoesByTheLinkInUse();
    void withoutANeedNothingMoreIsAskedThanBefore();
    void rawFramesAreAskedForAsLongAsAnybodyNeedsThem();
    void rawFramesAreAskedForAgainAtTheNextConnection();
    void framesAreRecordedWholeAndShownAndDecodedAsWithoutRawFrames();
    void framesOfATncAreRecordedAndSentOnesAreNot();
    void aFileThatIsNoRecordingStaysAsItIs();
};

void LinkChoiceTest::theSettingsChooseTheLink() {
    TwoEngines f;
    f.Set("KISS", "USE", u"TRUE"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines, QStringList{kissConnected});
    QVERIFY(f.station->link.blnConectedToAgw());
    QCOMPARE(f.station->link.HostName(), u"127.0.0.1"_s);
    QCOMPARE(f.engine.ConnectionCount(), 0);
    f.tnc.Send(Kiss(Raw("1,2,3"))); // a frame, as any link's
    QSignalSpy heard(&f.station->link, &ChosenLink::Heard);
    QTRY_COMPARE(heard.size(), 1);
}

void LinkChoiceTest::anAddressForThisRunIsUsedAndNotSaved() {
    TwoEngines f;
    f.Set("KISS", "HOST_PORT", u"1"_s);
    f.station->kiss.UseForThisRun({u"127.0.0.1"_s, f.tnc.serverPort()});
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines, QStringList{kissConnected});
    QCOMPARE(f.Get("KISS", "USE"), u"absent"_s);
    QCOMPARE(f.Get("KISS", "HOST_PORT"), u"1"_s);
}

void LinkChoiceTest::theLinkIsChangedWhileTheStationRuns() {
    TwoEngines f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines.size(), 3); // connected, version, port
    f.lines.clear();
    f.station->UseKiss(true);
    QCOMPARE(f.lines, QStringList{agwDisconnected}); // and of no retry
    QVERIFY(!f.station->link.blnConectedToAgw());
    QTRY_COMPARE(f.lines, (QStringList{agwDisconnected, kissConnected}));
    QTRY_COMPARE(f.engine.ConnectionCount(), 0);
    QCOMPARE(f.station->link.PortCount(), 16);
    QCOMPARE(f.Get("KISS", "USE"), u"TRUE"_s);
    f.station->UseKiss(true); // already
    QCOMPARE(f.lines.size(), 2);
    f.station->UseKiss(false);
    QTRY_COMPARE(f.lines.mid(2, 2), (QStringList{kissDisconnected, agwConnected}));
    QTRY_COMPARE(f.tnc.connections.size(), 0);
    QCOMPARE(f.Get("KISS", "USE"), u"FALSE"_s);
}

void LinkChoiceTest::aLinkThatIsNotInUseIsNotReconnected() {
    TwoEngines f;
    f.Set("KISS", "USE", u"TRUE"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines, QStringList{kissConnected});
    f.station->link.Agw().AgwReconnect();
    f.station->link.Reconnect();
    QTRY_COMPARE(f.lines, (QStringList{kissConnected, kissDisconnected, kissConnected}));
    QCOMPARE(f.engine.ConnectionCount(), 0);
    QVERIFY(f.asked.isEmpty());
    f.station->Stop();
    f.station->link.Reconnect(); // a dialog may have stood open
    QTRY_COMPARE(f.tnc.connections.size(), 0);
}

void LinkChoiceTest::whatIsSentGoesByTheLinkInUse() {
    QByteArray kinds;
    TwoEngines f;
    f.Set("KISS", "USE", u"TRUE"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines, QStringList{kissConnected});
    f.station->heard.Add([&kinds](const HeardFrame& frame) { kinds += static_cast<char>(frame.kind); });
    f.station->link.SendUnproto(1, u"N0CALL"_s, u"CQ "_s, u"hello\r"_s);
    QTRY_VERIFY(f.tnc.received.contains("hello\r"));
    QCOMPARE(kinds, QByteArray("T"));
    QVERIFY(f.asked.isEmpty());
}

void LinkChoiceTest::withoutANeedNothingMoreIsAskedThanBefore() {
    TwoEngines f;
    QByteArray asked;
    connect(&f.engine, &EngineSimulator::FrameReceived, this,
            [&asked](int, const QByteArray& frame) { asked += frame; });
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines.size(), 3);
    f.engine.SendHeard(withNul);
    QSignalSpy heard(&f.station->link, &ChosenLink::Heard);
    QTRY_COMPARE(heard.size(), 1);
    QByteArray before;
    for (const char kind : {'R', 'G', 'm'})
        before += QByteArray(4, '\0') + kind + QByteArray(31, '\0');
    QCOMPARE(asked, before);
}

void LinkChoiceTest::rawFramesAreAskedForAsLongAsAnybodyNeedsThem() {
    TwoEngines f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.asked, QByteArray("RGm"));
    f.station->SetWantsRawFrames(RawTaker::Forwarding, true);
    f.station->SetWantsRawFrames(RawTaker::Recording, true);
    f.station->SetWantsRawFrames(RawTaker::Recording, true);
    QTRY_COMPARE(f.asked, QByteArray("RGmk"));
    f.station->SetWantsRawFrames(RawTaker::Recording, false);
    f.station->SetWantsRawFrames(RawTaker::Forwarding, false);
    QTRY_COMPARE(f.asked, QByteArray("RGmkk"));
}

void LinkChoiceTest::rawFramesAreAskedForAgainAtTheNextConnection() {
    TwoEngines f;
    f.station->SetWantsRawFrames(RawTaker::Forwarding, true);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.asked, QByteArray("RGmk"));
    f.station->link.Reconnect();
    QTRY_COMPARE(f.asked, QByteArray("RGmkRGmk"));
}

void LinkChoiceTest::framesAreRecordedWholeAndShownAndDecodedAsWithoutRawFrames() {
    QStringList shown;
    int decoded = 0;
    TwoEngines f;
    const QString path = f.folder.File(u"pass.kiss"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines.size(), 3);
    f.station->decoder.Decoded().Add([&decoded](const TelemetryFrame&) { ++decoded; });
    f.station->heard.Add([&shown](const HeardFrame& frame) {
        shown.append(QString::fromLatin1(frame.information.toByteArray()));
    });
    const AirFrame telemetry{.from = "XQ9ZZ-1",
                             .to = "APRS",
                             .via = {"QIRAN-1"},
                             .information = "T#001,10,20,30,40,0,0,00101111,0\n"};
    f.engine.SendHeard(telemetry);
    QTRY_COMPARE(shown.size(), 1);
    QVERIFY(f.station->StartRecording(path));
    QCOMPARE(f.station->RecordingPath(), path);
    QTRY_VERIFY(f.asked.endsWith('k'));
    f.engine.SendHeard(telemetry);
    f.engine.SendHeard(withNul);
    QTRY_COMPARE(shown.size(), 3);
    QCOMPARE(shown[1], shown[0]);
    QCOMPARE(decoded, 2);
    f.station->StopRecording();
    QVERIFY(f.station->RecordingPath().isEmpty());
    QTRY_VERIFY(f.asked.endsWith("kk"));
    f.engine.SendHeard(telemetry);
    QTRY_COMPARE(shown.size(), 4);
    const QList<QByteArray> recorded = f.Recorded(path);
    QCOMPARE(recorded.size(), 2);
    QVERIFY(recorded[0].endsWith(telemetry.information));
    QVERIFY(recorded[0].startsWith(QByteArray::number(f.clock.Milliseconds()) + ' '));
    QVERIFY(recorded[1].endsWith(withNul.information));
}

void LinkChoiceTest::framesOfATncAreRecordedAndSentOnesAreNot() {
    TwoEngines f;
    f.Set("KISS", "USE", u"TRUE"_s);
    const QString path = f.folder.File(u"pass.kiss"_s);
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.lines, QStringList{kissConnected});
    QVERIFY(f.station->StartRecording(path));
    QSignalSpy heard(&f.station->link, &ChosenLink::Heard);
    f.station->link.SendUnproto(1, u"N0CALL"_s, u"CQ "_s, u"hello\r"_s);
    f.tnc.Send(Kiss(Raw("whole")));
    QTRY_COMPARE(heard.size(), 2);
    f.station->Stop();
    const QList<QByteArray> recorded = f.Recorded(path);
    QCOMPARE(recorded.size(), 1);
    QVERIFY(recorded[0].endsWith(Raw("whole")));
}

void LinkChoiceTest::aFileThatIsNoRecordingStaysAsItIs() {
    TwoEngines f;
    QCOMPARE(f.station->Start(), GroundStation::Outcome::Started);
    QTRY_COMPARE(f.asked, QByteArray("RGm"));
    f.folder.Write(u"notes.txt"_s, "mine");
    QVERIFY(!f.station->StartRecording(f.folder.File(u"notes.txt"_s)));
    QVERIFY(f.station->RecordingPath().isEmpty());
    QVERIFY(f.lines.contains(u"*** What is heard cannot be kept in notes.txt - it is no recording"_s));
    QFile file(f.folder.File(u"notes.txt"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("mine"));
    QCOMPARE(f.asked, QByteArray("RGm"));
}

QTEST_GUILESS_MAIN(LinkChoiceTest)
#include "LinkChoiceTest.moc"
