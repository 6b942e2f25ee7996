#include "telemetry/replay/FrameRecorder.h"

#include "support/TemporaryProgramFolder.h"
#include "telemetry/frames/HeardFrame.h"
#include "telemetry/replay/FrameRecording.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class FrameRecorderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();

    void framesAreKeptWithTimeAndPort();
    void framesWithoutRawBytesAreNotInvented();
    void itGoesOnInARecordingBehindWhatIsThere();
    void aTornEndIsClosedOff_data();
    void aTornEndIsClosedOff();
    void whatIsNoRecordingIsLeftAlone();
    void nothingIsRecordedUnlessToldAndAfterTheEnd();
    void whatCannotBeWrittenIsSaidOnceAndWrittenLater();

private:
    struct Read {
        qint64 utc;
        int port;
        QByteArray raw;

        bool operator==(const Read&) const = default;
    };
    QList<Read> Recorded() const;
    qint64 Refused() const;
    void Take(qint64 utc, const QByteArray& raw, HeardFrame::Kind kind = HeardFrame::Kind::U) {
        m_recorder->Take({.utc = utc, .kind = kind, .port = 2, .raw = raw});
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    QString m_path;
    QStringList m_said;
    std::unique_ptr<FrameRecorder> m_recorder;
};

void FrameRecorderTest::init() {
    m_recorder.reset();
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_path = m_folder->File(u"pass.kiss"_s);
    m_said.clear();
    m_recorder = std::make_unique<FrameRecorder>([this](const QString& reason) { m_said.append(reason); });
}

QList<FrameRecorderTest::Read> FrameRecorderTest::Recorded() const {
    QList<Read> read;
    FrameRecording recording([&read](const HeardFrame& frame, std::optional<qint64> utc) {
        read.append({utc.value_or(-1), frame.port, frame.raw.toByteArray()});
    });
    recording.Add(m_folder->Read(u"pass.kiss"_s));
    return read;
}

void FrameRecorderTest::framesAreKeptWithTimeAndPort() {
    QVERIFY(m_recorder->Start(m_path));
    Take(1795274923120, "first");
    Take(1795274923121, QByteArray("\xC0\xDB\0", 3));
    QCOMPARE(m_folder->Read(u"pass.kiss"_s), // the bytes themselves, for other programs read them
             QByteArray("\xC0\x09\x00\x00\x01\xA1\xFE\xB9\x5C\x70\xC0\xC0\x10\x66\x69\x72\x73\x74\xC0"
                        "\xC0\x09\x00\x00\x01\xA1\xFE\xB9\x5C\x71\xC0\xC0\x10\xDB\xDC\xDB\xDD\x00\xC0",
                        38));

    QCOMPARE(Recorded(),
             (QList<Read>{{1795274923120, 2, "first"}, {1795274923121, 2, QByteArray("\xC0\xDB\0", 3)}}));
}

void FrameRecorderTest::framesWithoutRawBytesAreNotInvented() {
    QVERIFY(m_recorder->Start(m_path));
    m_recorder->Take({.utc = 1, .source = "XQ9ZZ-1", .information = "T#1", .isComplete = true});
    Take(2, "our own", HeardFrame::Kind::T);
    QVERIFY(Recorded().isEmpty());
}

void FrameRecorderTest::itGoesOnInARecordingBehindWhatIsThere() {
    QVERIFY(m_recorder->Start(m_path));
    Take(1, "first");
    m_recorder->Stop();
    QVERIFY(m_recorder->Start(m_path));
    Take(2, "second");
    QCOMPARE(Recorded(), (QList<Read>{{1, 2, "first"}, {2, 2, "second"}}));
}

void FrameRecorderTest::aTornEndIsClosedOff_data() {
    QTest::addColumn<qsizetype>("kept");
    QTest::newRow("within the time") << qsizetype{5};
    QTest::newRow("within an escape of the time") << qsizetype{10};
    QTest::newRow("before the frame") << qsizetype{12};
    QTest::newRow("within the frame") << qsizetype{16};
    QTest::newRow("within an escape of the frame") << qsizetype{19};
    QTest::newRow("before the last mark") << qsizetype{22};
}

void FrameRecorderTest::aTornEndIsClosedOff() {
    QFETCH(qsizetype, kept);
    QVERIFY(m_recorder->Start(m_path));
    Take(0xDB, "torn\xC0.x");
    m_recorder->Stop();
    const QByteArray whole = m_folder->Read(u"pass.kiss"_s);
    QCOMPARE(whole.size(), 23);
    QVERIFY(whole[9] == '\xDB' && whole[18] == '\xDB');
    m_folder->Write(u"pass.kiss"_s, whole.first(kept));
    QVERIFY(m_recorder->Start(m_path));
    Take(7, "next");
    QCOMPARE(Recorded(), (QList<Read>{{7, 2, "next"}}));
}

void FrameRecorderTest::whatIsNoRecordingIsLeftAlone() {
    m_folder->Write(u"pass.kiss"_s, "a letter");
    QVERIFY(!m_recorder->Start(m_path));
    QVERIFY(!m_recorder->IsRecording());
    Take(1, "x");
    QCOMPARE(m_folder->Read(u"pass.kiss"_s), QByteArray("a letter"));
    QVERIFY(!m_recorder->Start(m_folder->File(u""_s))); // a folder
    m_folder->Write(u"pass.kiss"_s, "");
    QVERIFY(m_recorder->Start(m_path)); // an empty file is the beginning of one
}

void FrameRecorderTest::nothingIsRecordedUnlessToldAndAfterTheEnd() {
    Take(1, "before");
    QVERIFY(m_recorder->Start(m_path));
    Take(2, "during");
    m_recorder->Stop();
    Take(3, "after");
    QCOMPARE(Recorded(), (QList<Read>{{2, 2, "during"}}));
    QVERIFY(m_said.isEmpty());
}

void FrameRecorderTest::whatCannotBeWrittenIsSaidOnceAndWrittenLater() {
    const QString folder = m_folder->File(u"later"_s);
    m_path = folder + u"/pass.kiss"_s;
    QVERIFY(m_recorder->Start(m_path)); // there is no such folder yet
    Take(1, "first");
    Take(2, "second");
    QCOMPARE(m_said.size(), 1);
    QVERIFY(QDir().mkdir(folder));
    Take(3, "third");
    QFile::rename(m_path, m_folder->File(u"pass.kiss"_s));
    QCOMPARE(Recorded(), (QList<Read>{{1, 2, "first"}, {2, 2, "second"}, {3, 2, "third"}}));
    QCOMPARE(m_said.size(), 1);
}

QTEST_GUILESS_MAIN(FrameRecorderTest)
#include "FrameRecorderTest.moc"
