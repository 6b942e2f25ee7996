#include "telemetry/imports/HistoryImport.h"

#include "HistoryRoom.h"
#include "foundation/text/IsoTime.h"
#include "support/OrdinaryUser.h"
#include "support/SmallDisk.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/history/HistoryWriter.h"
#include "telemetry/replay/KissRecording.h"

#include <QTest>

#include <sys/stat.h>

using namespace HistoryRoom;
using namespace Qt::StringLiterals;
using Result = HistoryImport::Result;

namespace {

constexpr qint64 midnight = 1795219200000; // 2026-11-21 00:00 UTC
constexpr qint64 hour = 3'600'000;

QByteArray Line(qint64 utc, int raw, const char* source = "XQ9ZZ-1") {
    return IsoTime::Milliseconds(utc) + ',' + source + ",A,T#001," + QByteArray::number(raw) +
           ",2,3,4,0,0,00111111,0\n";
}

QByteArray Information(int raw) {
    return "T#001," + QByteArray::number(raw) + ",2,3,4,0,0,00111111,0";
}

QByteArray Logged(const char* time, int raw) {
    const QByteArray information = Information(raw);
    return QByteArray(time) +
           "R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=" + QByteArray::number(information.size()) + ">:\r\n" +
           information + "\r\n\r\n";
}

} // namespace

class HistoryImportTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<TemporaryProgramFolder>();
        qputenv("TZ", "Europe/Berlin");
    }
    void cleanup() { qunsetenv("TZ"); }

    void whatComesInIsCountedAndNothingIsChanged();
    void framesComeInInTheOrderOfTheirTimes();
    void theSameLineWithinFiveMinutesIsKnown_data();
    void theSameLineWithinFiveMinutesIsKnown();
    void aLineThatComesInTwiceComesInOnce();
    void timesOfALogAreOfTheZoneThatIsNamed_data();
    void timesOfALogAreOfTheZoneThatIsNamed();
    void inAnHourThatOccursTwiceTheOrderOfLinesDecides();
    void aRenamedLogTellsNoTime();
    void monitorLinesBringTheirTime();
    void inputsOfTheReservedNamesComeIn();
    void recordingsBringTheirTimeOrAreGivenOne();
    void framesOfOthersDoNotComeIn();
    void linesOfTheHistoryThatAreNotUnderstoodStay();
    void linesOfAnotherLayoutStayReadable();
    void aTornLastLineIsEnded();
    void whatIsHeardMeanwhileGoesAlong();
    void aLineThatWasTornWhenItWasReadHoldsTheImportOff();
    void anUndoThatWasEndedBeforeTheOldFileWasGoneMayBeRepeated();
    void theOldHistoryStaysBeside();
    void undoPutsItBackWithWhatWasHeardSince();
    void whatIsHeardWhileAnUndoIsPreparedStays();
    void undoOfAFirstImportLeavesNoFrames();
    void cancellingChangesNothing();
    void aFullDiskChangesNothing();
    void anUnwritableFolderChangesNothing();
    void aFileThatCannotBeReadStopsTheImport();
    void aSecondImportOfTheSameBringsNothing();

private:
    QString History() const { return m_folder->File(u"tlm.txt"_s); }
    QString Input(const char* name, const QByteArray& bytes) const {
        m_folder->Write(QLatin1String(name), bytes);
        return m_folder->File(QLatin1String(name));
    }
    ImportCount Count(const QString& file, const char* zone = "utc",
                      std::optional<qint64> utc = std::nullopt) const {
        HistoryImport import(History(), Sides());
        if (import.Count({file}, {*ImportZone::Named(QLatin1String(zone)), utc}) != Result::Done)
            qFatal("%s", qPrintable(import.Reason()));
        return import.Counted();
    }
    void Import(const QString& file, const char* zone = "utc") const {
        HistoryImport import(History(), Sides());
        if (import.Count({file}, {*ImportZone::Named(QLatin1String(zone)), {}}) != Result::Done ||
            import.Prepare() != Result::Done || import.Commit() != Result::Done)
            qFatal("%s", qPrintable(import.Reason()));
    }
    // The raw values of the first channel, in the order in which the file has them.
    QList<int> Raws() const {
        QList<int> raws;
        for (const QByteArray& line : m_folder->Read(u"tlm.txt"_s).split('\n'))
            if (line.count(',') == 11 && line != header.trimmed())
                raws.append(line.split(',').at(4).toInt());
        return raws;
    }
    QByteArray BeforeImport() const { return m_folder->Read(u"tlm.before-import.txt"_s); }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
};

void HistoryImportTest::whatComesInIsCountedAndNothingIsChanged() {
    const QByteArray old = header + Line(midnight, 1);
    m_folder->Write(u"tlm.txt"_s, old);
    const ImportCount count =
        Count(Input("other.txt", header + Line(midnight + hour, 2) + "what is this\n" +
                                     Line(midnight + 1000, 1) + Line(midnight - hour, 3)));
    QCOMPARE(count.frames, 2);
    QCOMPARE(count.known, 1);
    QCOMPARE(count.notUnderstood, 1);
    QCOMPARE(count.examples, QByteArrayList{"what is this"});
    QCOMPARE(count.span->first, midnight - hour);
    QCOMPARE(count.span->second, midnight + hour);
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old);
    QVERIFY(BeforeImport().isNull());
}

void HistoryImportTest::framesComeInInTheOrderOfTheirTimes() {
    m_folder->Write(u"tlm.txt"_s, header + Line(midnight, 10) + Line(midnight + 2 * hour, 30));
    Import(Input("other.txt", header + Line(midnight + 3 * hour, 40) + Line(midnight + hour, 20) +
                                  Line(midnight - hour, 1)));
    QCOMPARE(Raws(), (QList<int>{1, 10, 20, 30, 40}));
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), header + Line(midnight - hour, 1) + Line(midnight, 10) +
                                               Line(midnight + hour, 20) + Line(midnight + 2 * hour, 30) +
                                               Line(midnight + 3 * hour, 40) + header);
}

void HistoryImportTest::theSameLineWithinFiveMinutesIsKnown_data() {
    QTest::addColumn<int>("after");
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("at once") << 0 << true;
    QTest::newRow("five minutes later") << 300'000 << true;
    QTest::newRow("five minutes earlier") << -300'000 << true;
    QTest::newRow("later than that") << 300'001 << false;
    QTest::newRow("earlier than that") << -300'001 << false;
}

void HistoryImportTest::theSameLineWithinFiveMinutesIsKnown() {
    QFETCH(int, after);
    QFETCH(bool, isKnown);
    m_folder->Write(u"tlm.txt"_s, header + Line(midnight, 1));
    QCOMPARE(Count(Input("a.txt", header + Line(midnight + after, 1))).known, isKnown ? 1 : 0);
    QCOMPARE(Count(Input("b.txt", header + Line(midnight + after, 1, "QIRAN-3"))).known, 0);
    QCOMPARE(Count(Input("c.txt", header + Line(midnight + after, 2))).known, 0);
}

void HistoryImportTest::aLineThatComesInTwiceComesInOnce() {
    const ImportCount count = Count(Input("a.txt", header + Line(midnight, 1) + Line(midnight + 1000, 1)));
    QCOMPARE(count.frames, 1);
    QCOMPARE(count.known, 1);
    QCOMPARE(count.span->second, midnight);
}

void HistoryImportTest::timesOfALogAreOfTheZoneThatIsNamed_data() {
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<QByteArray>("utc");
    QTest::newRow("UTC") << QByteArray("utc") << QByteArray("12:00:00")
                         << QByteArray("2026-11-21T12:00:00.000Z");
    QTest::newRow("UTC on the local day that has begun")
        << QByteArray("UTC") << QByteArray("23:30:00") << QByteArray("2026-11-20T23:30:00.000Z");
    QTest::newRow("local") << QByteArray("local") << QByteArray("00:30:00")
                           << QByteArray("2026-11-20T23:30:00.000Z");
    QTest::newRow("named") << QByteArray("Asia/Tokyo") << QByteArray("08:00:00")
                           << QByteArray("2026-11-20T23:00:00.000Z");
}

void HistoryImportTest::timesOfALogAreOfTheZoneThatIsNamed() {
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, time);
    QFETCH(QByteArray, utc);
    const ImportCount count = Count(Input("20261121.TXT", Logged(time, 7)), zone);
    QCOMPARE(count.frames, 1);
    QCOMPARE(IsoTime::Milliseconds(count.span->first), utc);
    QVERIFY(!ImportZone::Named(u"Europe/Nowhere"_s));
}

void HistoryImportTest::inAnHourThatOccursTwiceTheOrderOfLinesDecides() {
    // Berlin's clocks went back from 3 to 2 on 2026-10-25 at 01:00 UTC.
    Import(Input("20261025.TXT", Logged("02:30:00", 1) + Logged("02:50:00", 2) + Logged("02:10:00", 3) +
                                     Logged("02:40:00", 4) + Logged("03:10:00", 5)),
           "local");
    const QByteArray file = m_folder->Read(u"tlm.txt"_s);
    for (const char* line :
         {"2026-10-25T00:30:00.000Z,XQ9ZZ-1,A,T#001,1,", "2026-10-25T00:50:00.000Z,XQ9ZZ-1,A,T#001,2,",
          "2026-10-25T01:10:00.000Z,XQ9ZZ-1,A,T#001,3,", "2026-10-25T01:40:00.000Z,XQ9ZZ-1,A,T#001,4,",
          "2026-10-25T02:10:00.000Z,XQ9ZZ-1,A,T#001,5,"})
        QVERIFY2(file.contains(line), line);
}

void HistoryImportTest::aRenamedLogTellsNoTime() {
    const ImportCount count = Count(Input("pass.txt", Logged("12:00:00", 7)));
    QCOMPARE(count.frames, 0);
    QCOMPARE(count.notUnderstood, 1);
    QVERIFY(count.examples.constFirst().contains("without a time"));
}

void HistoryImportTest::inputsOfTheReservedNamesComeIn() {
    Import(Input("20010923.txt", Logged("12:00:00", 5)));
    Import(Input("2001-pass.txt", "2001-10-01 12:00:00 XQ9ZZ-1>APRS:" + Information(6) + "\n"));
    const QByteArray file = m_folder->Read(u"tlm.txt"_s);
    QVERIFY(file.contains("2001-09-23T12:00:00.000Z,XQ9ZZ-1,A,T#001,5,"));
    QVERIFY(file.contains("2001-10-01T12:00:00.000Z,XQ9ZZ-1,A,T#001,6,"));
}

void HistoryImportTest::monitorLinesBringTheirTime() {
    Import(Input("heard.log", "2026-11-21T12:00:00.5Z [0.3] XQ9ZZ-1>APRS,WIDE2-2*:" + Information(5) +
                                  "\n2026-11-21 14:00:00 XQ9ZZ-1>APRS:" + Information(6) + "\n"),
           "local");
    const QByteArray file = m_folder->Read(u"tlm.txt"_s);
    QVERIFY(file.contains("2026-11-21T12:00:00.500Z,XQ9ZZ-1,A,T#001,5,2,3,4,0,0,00111111,0\n"));
    QVERIFY(file.contains("2026-11-21T13:00:00.000Z,XQ9ZZ-1,A,T#001,6,"));
}

void HistoryImportTest::recordingsBringTheirTimeOrAreGivenOne() {
    Ax25Frame frame;
    frame.destination = {.callsign = "APRS"};
    frame.source = {.callsign = "QIRAN-3"};
    const QByteArray information = Information(9);
    frame.information = {information.constData(), static_cast<std::size_t>(information.size())};
    const std::string bytes = *frame.ToBytes();
    std::string timed;
    RecordedFrame{.utc = midnight + hour, .bytes = bytes}.AppendTo(timed);
    std::string plain;
    RecordedFrame{.utc = {}, .bytes = bytes}.AppendTo(plain);
    const ImportCount told = Count(Input("a.kiss", QByteArray::fromStdString(timed)));
    QCOMPARE(told.frames, 1);
    QCOMPARE(told.span->first, midnight + hour);
    const QString untimed = Input("b.kiss", QByteArray::fromStdString(plain));
    QCOMPARE(Count(untimed).frames, 0);
    QCOMPARE(Count(untimed).notUnderstood, 1);
    const ImportCount given = Count(untimed, "utc", midnight);
    QCOMPARE(given.frames, 1);
    QCOMPARE(given.span->first, midnight);
}

void HistoryImportTest::framesOfOthersDoNotComeIn() {
    const ImportCount count = Count(Input("heard.log", "2026-11-21T12:00:00Z XQ1AB>APRS:" + Information(5) +
                                                           "\n2026-11-21T12:00:00Z XQ9ZZ-1>APRS:hello\n"));
    QCOMPARE(count.frames, 0);
    QCOMPARE(count.others, 2);
    QCOMPARE(count.notUnderstood, 0);
}

void HistoryImportTest::linesOfTheHistoryThatAreNotUnderstoodStay() {
    const QByteArray huge = QByteArray(1024 * 1024, 'x') + '\n';
    const QByteArray old = header + Line(midnight, 1) + "# my note, kept\r\n" + huge + "a,b,\"\n\n" +
                           Line(midnight + 2 * hour, 3);
    m_folder->Write(u"tlm.txt"_s, old);
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), header + Line(midnight, 1) + "# my note, kept\r\n" + huge +
                                               "a,b,\"\n\n" + Line(midnight + hour, 2) +
                                               Line(midnight + 2 * hour, 3) + header);
}

void HistoryImportTest::linesOfAnotherLayoutStayReadable() {
    const QByteArray other = "source,utc,raw1,raw2,raw3,raw4,field7\n";
    const auto line = [](qint64 utc, int raw) {
        return "XQ9ZZ-1," + IsoTime::Milliseconds(utc) + ',' + QByteArray::number(raw) + ",2,3,4,00111111\n";
    };
    m_folder->Write(u"tlm.txt"_s, other + line(midnight, 1) + line(midnight + 2 * hour, 3));
    Import(Input("other.txt", header + Line(midnight + hour, 2) + Line(midnight + 3 * hour, 4)));
    TelemetryHistory history(History(), Map(), PowerTimes("1"), Sides());
    QCOMPARE(history.Open(), TelemetryHistory::Opened::Done);
    const std::vector<HistoryColumns> read =
        history.Readings(std::array{battA}, 0, std::numeric_limits<qint64>::max());
    QCOMPARE(read[0].raw, (std::vector<double>{1, 2, 3, 4}));
    QCOMPARE(history.ForeignLines().lines, 0);
}

void HistoryImportTest::aTornLastLineIsEnded() {
    m_folder->Write(u"tlm.txt"_s, header + Line(midnight, 1) + "2026-11-21T03");
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    QCOMPARE(m_folder->Read(u"tlm.txt"_s),
             header + Line(midnight, 1) + "2026-11-21T03\n" + Line(midnight + hour, 2) + header);
}

void HistoryImportTest::whatIsHeardMeanwhileGoesAlong() {
    HistoryWriter writer(History(), {});
    TelemetryFrame frame{.utc = midnight, .source = "XQ9ZZ-1", .line = {}};
    frame.fields.fill("0");
    writer.Take(frame);
    HistoryImport import(History(), Sides());
    QCOMPARE(import.Count({Input("other.txt", header + Line(midnight + hour, 2))}, {}), Result::Done);
    QCOMPARE(import.Prepare(), Result::Done);
    frame.fields[1] = "77";
    writer.Take(frame);
    QCOMPARE(import.Commit(), Result::Done);
    frame.fields[1] = "88";
    writer.Take(frame);
    QCOMPARE(Raws(), (QList<int>{0, 2, 77, 88}));
    QCOMPARE(HistoryImport::Undo(History()), QString());
    QCOMPARE(Raws(), (QList<int>{0, 77, 88}));
}

void HistoryImportTest::aLineThatWasTornWhenItWasReadHoldsTheImportOff() {
    m_folder->Write(u"tlm.txt"_s, header + Line(midnight, 1) + "2026-11-21T03");
    HistoryImport import(History(), Sides());
    QCOMPARE(import.Count({Input("other.txt", header + Line(midnight + hour, 2))}, {}), Result::Done);
    QCOMPARE(import.Prepare(), Result::Done);
    QFile file(History());
    QVERIFY(file.open(QIODevice::Append));
    file.write(":00:00.000Z,XQ9ZZ-1,A,T#001,5,2,3,4,0,0,00111111,0\n"); // its rest
    file.close();
    const QByteArray old = m_folder->Read(u"tlm.txt"_s);
    QCOMPARE(import.Commit(), Result::Failed);
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old);
}

void HistoryImportTest::anUndoThatWasEndedBeforeTheOldFileWasGoneMayBeRepeated() {
    m_folder->Write(u"tlm.txt"_s, header + Line(midnight, 1));
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    const QByteArray backup = BeforeImport();
    QFile file(History());
    QVERIFY(file.open(QIODevice::Append));
    file.write(Line(midnight + 5 * hour, 5));
    file.close();
    QCOMPARE(HistoryImport::Undo(History()), QString());
    const QByteArray undone = m_folder->Read(u"tlm.txt"_s);
    m_folder->Write(u"tlm.before-import.txt"_s, backup);
    QCOMPARE(HistoryImport::Undo(History()), QString());
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), undone);
}

void HistoryImportTest::theOldHistoryStaysBeside() {
    const QByteArray old = header + Line(midnight, 1) + "a note";
    m_folder->Write(u"tlm.txt"_s, old);
    QVERIFY(!HistoryImport::CanUndo(History()));
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    QCOMPARE(BeforeImport(), old);
    QVERIFY(HistoryImport::CanUndo(History()));
    QVERIFY(!QFile::exists(m_folder->File(u"tlm.importing.txt"_s)));
}

void HistoryImportTest::undoPutsItBackWithWhatWasHeardSince() {
    const QByteArray old = header + Line(midnight, 1);
    m_folder->Write(u"tlm.txt"_s, old);
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    QFile file(History());
    QVERIFY(file.open(QIODevice::Append));
    file.write(Line(midnight + 5 * hour, 5));
    file.close();
    QCOMPARE(HistoryImport::Undo(History()), QString());
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old + header + Line(midnight + 5 * hour, 5));
    QVERIFY(!HistoryImport::CanUndo(History()));
    QVERIFY(!HistoryImport::Undo(History()).isEmpty());
}

void HistoryImportTest::whatIsHeardWhileAnUndoIsPreparedStays() {
    const QByteArray old = header + Line(midnight, 1);
    const auto hear = [this](int raw) {
        QFile file(History());
        return file.open(QIODevice::Append) && file.write(Line(midnight + 5 * hour, raw)) > 0;
    };
    for (const bool isHeardBefore : {false, true}) {
        m_folder->Write(u"tlm.txt"_s, old);
        Import(Input("other.txt", header + Line(midnight + hour, 2)));
        QVERIFY(!isHeardBefore || hear(5));
        HistoryImport undo(History(), Sides());
        QCOMPARE(undo.PrepareUndo(), Result::Done);
        QVERIFY(hear(6));
        QCOMPARE(undo.CommitUndo(), Result::Done);
        QCOMPARE(Raws(), isHeardBefore ? (QList<int>{1, 5, 6}) : (QList<int>{1, 6}));
        QVERIFY(!HistoryImport::CanUndo(History()));
        QVERIFY(!QFile::exists(m_folder->File(u"tlm.importing.txt"_s)));
    }
}

void HistoryImportTest::undoOfAFirstImportLeavesNoFrames() {
    Import(Input("other.txt", header + Line(midnight + hour, 2)));
    QCOMPARE(Raws(), QList<int>{2});
    QCOMPARE(HistoryImport::Undo(History()), QString());
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), header);
}

void HistoryImportTest::cancellingChangesNothing() {
    QByteArray old = header;
    for (int i = 0; i < 3000; ++i)
        old += Line(midnight + i * 1000, i);
    m_folder->Write(u"tlm.txt"_s, old);
    const QString input = Input("other.txt", old + Line(midnight - hour, 2));
    const HistoryImport::Progress cancel = [](qint64 done, qint64 total) { return done > total; };
    HistoryImport import(History(), Sides());
    QCOMPARE(import.Count({input}, {}, cancel), Result::Cancelled);
    QCOMPARE(import.Count({input}, {}), Result::Done);
    QCOMPARE(import.Prepare(cancel), Result::Cancelled);
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old);
    QVERIFY(BeforeImport().isNull());
}

void HistoryImportTest::aFullDiskChangesNothing() {
    QByteArray old = header;
    for (int i = 0; i < 1000; ++i)
        old += Line(midnight + i * 1000, i);
    m_folder->Write(u"tlm.txt"_s, old);
    const QString input = Input("other.txt", header + Line(midnight + hour, 2));
    {
        HistoryImport import(History(), Sides());
        QCOMPARE(import.Count({input}, {}), Result::Done);
        const SmallDisk disk(20'000);
        QCOMPARE(import.Prepare(), Result::Failed);
        QVERIFY(!import.Reason().isEmpty());
    }
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old);
    QVERIFY(!QFile::exists(m_folder->File(u"tlm.importing.txt"_s)));
}

void HistoryImportTest::anUnwritableFolderChangesNothing() {
    const QByteArray old = header + Line(midnight, 1);
    m_folder->Write(u"tlm.txt"_s, old);
    const QString input = Input("other.txt", header + Line(midnight + hour, 2));
    const QByteArray folder = QFile::encodeName(m_folder->Program().Path());
    chmod(folder.constData(), 0555);
    {
        const OrdinaryUser user;
        if (OrdinaryUser::Is()) {
            HistoryImport import(History(), Sides());
            QCOMPARE(import.Count({input}, {}), Result::Done);
            QCOMPARE(import.Prepare(), Result::Failed);
            QVERIFY(!import.Reason().isEmpty());
        }
    }
    chmod(folder.constData(), 0755);
    QCOMPARE(m_folder->Read(u"tlm.txt"_s), old);
}

void HistoryImportTest::aFileThatCannotBeReadStopsTheImport() {
    HistoryImport import(History(), Sides());
    QCOMPARE(import.Count({m_folder->File(u"missing.txt"_s)}, {}), Result::Failed);
    QVERIFY(import.Reason().contains(u"missing.txt"));
    QCOMPARE(import.Count({m_folder->Program().Path()}, {}), Result::Failed);
}

void HistoryImportTest::aSecondImportOfTheSameBringsNothing() {
    const QString input = Input("20261121.TXT", Logged("12:00:00", 7) + Logged("12:10:00", 8));
    Import(input, "local");
    const ImportCount again = Count(input, "local");
    QCOMPARE(again.frames, 0);
    QCOMPARE(again.known, 2);
}

QTEST_GUILESS_MAIN(HistoryImportTest)
#include "HistoryImportTest.moc"
