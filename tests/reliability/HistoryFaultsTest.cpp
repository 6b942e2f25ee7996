#include "app/MainWindowRig.h"
#include "support/OrdinaryUser.h"
#include "support/SmallDisk.h"
#include "telemetry/history/TelemetryHistory.h"

#include <QTest>

#include <array>
#include <cstdio>
#include <limits>

using namespace Qt::StringLiterals;

/// What becomes of the history when its file or its disk fails under the running program.
class HistoryFaultsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void aFullDiskIsSaidOnceAndLosesNothing();
    void aFileThatMayOnlyBeReadIsSaidOnceAndLosesNothing();
    void aFolderInItsPlaceIsSaidOnceAndLosesNothing();
    void aFileThatWasReplacedIsGoneOnWith();
    void aFileThatWasCutIsGoneOnWith();
    void aFileThatWasRemovedIsMadeAnew();
    void aClockSetBackLosesNoFrame();

private:
    QByteArray File() const { return m_rig->folder.Read(u"tlm.txt"_s); }
    qsizetype Complaints() const {
        return m_rig->Monitor().count(u"What is heard cannot be kept in tlm.txt - ");
    }
    QByteArrayList Kept() const;

    std::unique_ptr<MainWindowRig> m_rig;
};

void HistoryFaultsTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
    QVERIFY(m_rig->Start());
    m_rig->Hear(1, 1);
    QCOMPARE(Kept(), QByteArrayList{"T#1"});
}

// The sequences of the frames that the history reads, in the order of their times.
QByteArrayList HistoryFaultsTest::Kept() const {
    ChannelMap map;
    map.BuildChannelMap();
    TelemetryHistory history(m_rig->folder.File(u"tlm.txt"_s), map, {}, {{"XQ9ZZ-1", 0}});
    if (history.Open() != TelemetryHistory::Opened::Done)
        return {"unreadable"};
    const HistoryChannel channel{.side = 0, .grid = 2, .row = 1};
    const std::vector<HistoryColumns> read =
        history.Readings(std::array{channel}, 0, std::numeric_limits<qint64>::max());
    const std::vector<QByteArray> sequences = history.Sequences(read[0].frame);
    return {sequences.begin(), sequences.end()};
}

void HistoryFaultsTest::aFullDiskIsSaidOnceAndLosesNothing() {
    {
        const SmallDisk full(static_cast<rlim_t>(File().size()) + 30);
        m_rig->Hear(2, 2);
        m_rig->Hear(3, 3);
        QTRY_COMPARE(Complaints(), 1);
        QTRY_COMPARE(m_rig->Cell("gTlm2", 1, 1), u"3.0"_s); // the program goes on
    }
    QCOMPARE(Kept(), QByteArrayList{"T#1"});
    m_rig->Hear(4, 4);
    QCOMPARE(Kept(), (QByteArrayList{"T#1", "T#2", "T#3", "T#4"}));
    QCOMPARE(Complaints(), 1);
    const SmallDisk full(static_cast<rlim_t>(File().size()));
    m_rig->Hear(5, 5);
    QTRY_COMPARE(Complaints(), 2); // it could write in between
}

void HistoryFaultsTest::aFileThatMayOnlyBeReadIsSaidOnceAndLosesNothing() {
    const QString path = m_rig->folder.File(u"tlm.txt"_s);
    QVERIFY(QFile::rename(path, path + u".aside"_s)); // the program opens it anew
    QVERIFY(QFile::copy(path + u".aside"_s, path));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadOther));
    {
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("rights mean nothing to this user");
        m_rig->Hear(2, 2);
        m_rig->Hear(3, 3);
    }
    QTRY_COMPARE(Complaints(), 1);
    QCOMPARE(Kept(), QByteArrayList{"T#1"});
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
    m_rig->Hear(4, 4);
    QCOMPARE(Kept(), (QByteArrayList{"T#1", "T#2", "T#3", "T#4"}));
}

void HistoryFaultsTest::aFolderInItsPlaceIsSaidOnceAndLosesNothing() {
    const QString path = m_rig->folder.File(u"tlm.txt"_s);
    QVERIFY(QFile::rename(path, path + u".aside"_s));
    QVERIFY(QDir().mkdir(path));
    m_rig->Hear(2, 2);
    m_rig->Hear(3, 3);
    QTRY_COMPARE(Complaints(), 1);
    QVERIFY(QDir().rmdir(path));
    QVERIFY(QFile::rename(path + u".aside"_s, path));
    m_rig->Hear(4, 4);
    QCOMPARE(Kept(), (QByteArrayList{"T#1", "T#2", "T#3", "T#4"}));
}

void HistoryFaultsTest::aFileThatWasReplacedIsGoneOnWith() {
    const QString path = m_rig->folder.File(u"tlm.txt"_s);
    const QByteArray before = File();
    m_rig->folder.Write(u"other.txt"_s, before + QByteArray(before).replace("T#1", "T#9").split('\n')[1]);
    QCOMPARE(std::rename(QFile::encodeName(m_rig->folder.File(u"other.txt"_s)).constData(),
                         QFile::encodeName(path).constData()),
             0);
    m_rig->Hear(2, 2);
    QCOMPARE(Kept(), (QByteArrayList{"T#1", "T#9", "T#2"})); // whose last line was not ended
    QCOMPARE(Complaints(), 0);
}

void HistoryFaultsTest::aFileThatWasCutIsGoneOnWith() {
    m_rig->Hear(2, 2);
    QFile file(m_rig->folder.File(u"tlm.txt"_s));
    QVERIFY(file.resize(file.size() - 20));
    m_rig->Hear(3, 3);
    QCOMPARE(Kept(), (QByteArrayList{"T#1", "T#3"}));
    QVERIFY(file.resize(0));
    m_rig->Hear(4, 4);
    QCOMPARE(Kept(), QByteArrayList{"T#4"});
}

void HistoryFaultsTest::aFileThatWasRemovedIsMadeAnew() {
    QVERIFY(QFile::remove(m_rig->folder.File(u"tlm.txt"_s)));
    m_rig->Hear(2, 2);
    QCOMPARE(Kept(), QByteArrayList{"T#2"});
}

void HistoryFaultsTest::aClockSetBackLosesNoFrame() {
    m_rig->clock.Advance(-86400.0);
    m_rig->Hear(2, 2);
    m_rig->clock.Advance(60.0);
    m_rig->Hear(3, 3);
    m_rig->clock.Advance(2 * 86400.0);
    m_rig->Hear(4, 4);
    QCOMPARE(Kept(), (QByteArrayList{"T#2", "T#3", "T#1", "T#4"}));
    QCOMPARE(File().count('\n'), 5);
}

QTEST_MAIN(HistoryFaultsTest)
#include "HistoryFaultsTest.moc"
