#include "telemetry/history/HistoryWriter.h"

#include "HistoryRoom.h"
#include "support/SmallDisk.h"

#include <QTest>

using namespace HistoryRoom;
using namespace Qt::StringLiterals;

class HistoryWriterTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void aFrameIsOneLineAsItCame();
    void fieldsAreQuotedAndWrittenInUtf8();
    void theFileIsMadeByTheFirstFrame();
    void replayedFramesAreNotKept();
    void nothingIsKeptWhileItIsTurnedOff();
    void aFullDiskIsSaidOnceAndLosesNothing();
    void whatIsWrittenReadsBack();
    void aRunThatWasKilledInALineIsReadOn();

private:
    static TelemetryFrame Frame(qint64 utc, const char* source = "QIRAN-3", const char* sequence = "T#024") {
        return {.utc = utc,
                .source = source,
                .side = 1,
                .frameType = 3,
                .line = "",
                .fields = {sequence, "168", "108.5", "", "4", " 0", "x", "00111111", "0"},
                .found = {},
                .count = 0};
    }
    QByteArray Content() const { return m_folder->Read(u"tlm.txt"_s); }
    HistoryWriter* Make() {
        m_writer = std::make_unique<HistoryWriter>(
            m_folder->File(u"tlm.txt"_s), [this](const QString& reason) { m_reasons.append(reason); });
        return m_writer.get();
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<HistoryWriter> m_writer;
    QStringList m_reasons;
};

void HistoryWriterTest::init() {
    m_writer.reset();
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_reasons.clear();
}

void HistoryWriterTest::aFrameIsOneLineAsItCame() {
    HistoryWriter* writer = Make();
    writer->Take(Frame(1795274923120));
    TelemetryFrame frame = Frame(1795274923121, "XQ9ZZ-1");
    frame.side = 0;
    writer->Take(frame);
    QCOMPARE(Content(), header + "2026-11-21T15:28:43.120Z,QIRAN-3,B,T#024,168,108.5,,4, 0,x,00111111,0\n"
                                 "2026-11-21T15:28:43.121Z,XQ9ZZ-1,A,T#024,168,108.5,,4, 0,x,00111111,0\n");
}

void HistoryWriterTest::fieldsAreQuotedAndWrittenInUtf8() {
    Make()->Take(Frame(0, "QIRAN-3", "T\"\xE4\x80#"));
    QCOMPARE(Content(), header +
                            "1970-01-01T00:00:00.000Z,QIRAN-3,B,\"T\"\"\xC3\xA4\xE2\x82\xAC#\",168,108.5,,4, "
                            "0,x,00111111,0\n");
}

void HistoryWriterTest::theFileIsMadeByTheFirstFrame() {
    HistoryWriter* writer = Make();
    QVERIFY(!QFile::exists(m_folder->File(u"tlm.txt"_s)));
    writer->Take(Frame(0));
    QVERIFY(Content().startsWith(header));
}

void HistoryWriterTest::replayedFramesAreNotKept() {
    TelemetryFrame frame = Frame(0);
    frame.origin = HeardFrame::Origin::Replayed;
    Make()->Take(frame);
    QVERIFY(!QFile::exists(m_folder->File(u"tlm.txt"_s)));
}

void HistoryWriterTest::nothingIsKeptWhileItIsTurnedOff() {
    HistoryWriter* writer = Make();
    writer->SetKept(false);
    writer->Take(Frame(0));
    QVERIFY(!QFile::exists(m_folder->File(u"tlm.txt"_s)));
    writer->SetKept(true);
    writer->Take(Frame(0));
    QCOMPARE(Content().count('\n'), 2);
}

void HistoryWriterTest::aFullDiskIsSaidOnceAndLosesNothing() {
    HistoryWriter* writer = Make();
    writer->Take(Frame(0));
    {
        const SmallDisk disk(200);
        for (int i = 1; i <= 100; ++i)
            writer->Take(Frame(i * 1000));
    }
    QCOMPARE(m_reasons.size(), 1);
    QCOMPARE(Content().size(), 200);
    writer->Take(Frame(101'000));
    QCOMPARE(Content().count('\n'), 1 + 102);
    QVERIFY(Content().endsWith("1970-01-01T00:01:41.000Z,QIRAN-3,B,T#024,168,108.5,,4, 0,x,00111111,0\n"));
}

void HistoryWriterTest::whatIsWrittenReadsBack() {
    HistoryWriter* writer = Make();
    for (const char* sequence : {"T#1", "", "\"", "a\"\"b", "\xE4\xF6", "  "})
        writer->Take(Frame(1000, "QIRAN-3", sequence));
    TelemetryHistory history(m_folder->File(u"tlm.txt"_s), Map(), PowerTimes("2"), Sides());
    QCOMPARE(history.Open(), TelemetryHistory::Opened::Done);
    QCOMPARE(history.ForeignLines().lines, 0);
    QCOMPARE(history.Sequences(std::array<quint32, 6>{0, 1, 2, 3, 4, 5}),
             (std::vector<QByteArray>{"T#1", "", "\"", "a\"\"b", "\xC3\xA4\xC3\xB6", "  "}));
    const HistoryColumns power = history.Readings(std::array{battAOfB}, 0, 2000).front();
    QCOMPARE(power.raw, std::vector(6, 168.0));
    QCOMPARE(power.value, std::vector(6, 336.0));
}

void HistoryWriterTest::aRunThatWasKilledInALineIsReadOn() {
    Make()->Take(Frame(0));
    const QByteArray whole = Content();
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        m_writer.reset();
        m_folder->Write(u"tlm.txt"_s, whole.first(size));
        Make()->Take(Frame(1000));
        TelemetryHistory history(m_folder->File(u"tlm.txt"_s), Map(), PowerTimes("2"), Sides());
        QCOMPARE(history.Open(), TelemetryHistory::Opened::Done);
        QCOMPARE(history.Span()->second, 1000);
        QCOMPARE(history.Frames() + history.ForeignLines().lines >= 1, true);
        QVERIFY(Content().startsWith(whole.first(size)));
        if (size == whole.size())
            QCOMPARE(history.Frames(), 2U);
    }
}

QTEST_GUILESS_MAIN(HistoryWriterTest)
#include "HistoryWriterTest.moc"
