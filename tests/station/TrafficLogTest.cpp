#include "station/log/TrafficLog.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "support/SmallDisk.h"
#include "support/TestClock.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;

class TrafficLogTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void loggingIsOffUntilAskedFor();
    void theFolderAndTheFileAreMadeOnFirstUse();
    void whenOnAtStartTheFileIsOpenedAtOnce();
    void bytesStandInTheFileAtOnceAndUnchanged();
    void twoMidnightsMakeThreeFiles();
    void theDateIsTheLocalOne();
    void theRepeatedHourStaysInItsFile();
    void aClockSetBackADayStaysInItsFile();
    void afterFiveQuietMinutesTheFileIsClosedAndReopened();
    void offAndOnAppendsToTheSameFile();
    void aFolderThatIsAFileIsPassedOver();
    void aFileThatCannotBeOpenedIsPassedOver();
    void aFullDiskTearsNoLineAndLoggingGoesOn();
    void aTextCutByAFullDiskIsFinishedInTheFileOfItsDay();
    void aTextCutBeforeAnIdleCloseIsNotFinishedInTheNextDaysFile();
    void aTextCutBeforeAnIdleCloseIsFinishedInItsFile();
    void aFloodIsWrittenWhole();

private:
    QByteArray Log(const QString& name) const {
        QFile file(m_folder->filePath(u"LOGS/"_s + name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    QString IniValue() const { return m_ini->GetIniString(u"TERMINAL"_s, u"LOGGING"_s, u"none"_s); }
    std::unique_ptr<TrafficLog> Make(bool on = true) {
        if (on)
            m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
        auto log = std::make_unique<TrafficLog>(*m_ini, *m_clock, ProgramFolder(m_folder->path(), u"x"_s));
        log->Load();
        return log;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<TestClock> m_clock;
};

void TrafficLogTest::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    m_ini = std::make_unique<clsIni>(m_folder->filePath(u"x.INI"_s));
    m_clock = std::make_unique<TestClock>(DateOf(2002, 12, 31) + 0.5);
    m_clock->SetOffsetHours(0);
}

void TrafficLogTest::loggingIsOffUntilAskedFor() {
    const auto log = Make(false);
    QCOMPARE(IniValue(), u"False"_s);
    log->WriteTrafficLog("x");
    QVERIFY(!QDir(m_folder->filePath(u"LOGS"_s)).exists());
    log->ToggleLogging();
    QCOMPARE(IniValue(), u"True"_s);
    QVERIFY(log->IsLogging());
    QVERIFY(!log->IsOpen());
    log->ToggleLogging();
    QCOMPARE(IniValue(), u"False"_s);
}

void TrafficLogTest::theFolderAndTheFileAreMadeOnFirstUse() {
    const auto log = Make(false);
    log->ToggleLogging();
    QVERIFY(!QDir(m_folder->filePath(u"LOGS"_s)).exists());
    log->WriteTrafficLog("first\r\n");
    QCOMPARE(Log(u"20021231.TXT"_s), "first\r\n");
}

void TrafficLogTest::whenOnAtStartTheFileIsOpenedAtOnce() {
    const auto log = Make();
    QVERIFY(log->IsOpen());
    QCOMPARE(Log(u"20021231.TXT"_s), "");
}

void TrafficLogTest::bytesStandInTheFileAtOnceAndUnchanged() {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const auto log = Make();
    log->WriteTrafficLog(all);
    QCOMPARE(Log(u"20021231.TXT"_s), all);
    log->WriteTrafficLog(QByteArray());
    log->WriteTrafficLog("\r\n\r\n");
    QCOMPARE(Log(u"20021231.TXT"_s), all + "\r\n\r\n");
    Make()->WriteTrafficLog("another run");
    QCOMPARE(Log(u"20021231.TXT"_s), all + "\r\n\r\nanother run");
}

void TrafficLogTest::twoMidnightsMakeThreeFiles() {
    const auto log = Make();
    m_clock->Set(DateOf(2003, 1, 1) - 1.0 / secondsPerDay);
    log->WriteTrafficLog("old year");
    m_clock->Set(DateOf(2003, 1, 1));
    log->WriteTrafficLog("new year");
    m_clock->Set(DateOf(2003, 1, 2) + 0.3);
    log->WriteTrafficLog("second day");
    log->WriteTrafficLog(", more");
    QCOMPARE(Log(u"20021231.TXT"_s), "old year");
    QCOMPARE(Log(u"20030101.TXT"_s), "new year");
    QCOMPARE(Log(u"20030102.TXT"_s), "second day, more");
}

void TrafficLogTest::theDateIsTheLocalOne() {
    m_clock->SetOffsetHours(13);
    const auto log = Make();
    log->WriteTrafficLog("tomorrow here");
    QCOMPARE(Log(u"20030101.TXT"_s), "tomorrow here");
}

void TrafficLogTest::theRepeatedHourStaysInItsFile() {
    qputenv("TZ", "Europe/Berlin");
    tzset();
    m_clock = std::make_unique<TestClock>(DateOf(2026, 10, 25) + 0.5 / 24.0); // 02:30 summer time
    const auto log = Make();
    log->WriteTrafficLog("a");
    m_clock->Advance(3600.0 - 240.0); // 02:26 winter time: the wall clock has gone back by 4 minutes
    log->WriteTrafficLog("b");
    m_clock->Advance(301.0);
    log->CloseWhenIdle();
    QVERIFY(!log->IsOpen());
    log->WriteTrafficLog("c");
    m_clock->Advance(-3600.0); // a clock that is set back
    log->CloseWhenIdle();
    QVERIFY(log->IsOpen());
    log->WriteTrafficLog("d");
    QCOMPARE(Log(u"20261025.TXT"_s), "abcd");
    QCOMPARE(QDir(m_folder->filePath(u"LOGS"_s)).entryList(QDir::Files).size(), 1);
    qunsetenv("TZ");
    tzset();
}

void TrafficLogTest::aClockSetBackADayStaysInItsFile() {
    const auto log = Make();
    log->WriteTrafficLog("a");
    m_clock->Advance(-secondsPerDay);
    log->WriteTrafficLog("b");
    m_clock->Advance(secondsPerDay); // set right again
    log->WriteTrafficLog("c");
    QCOMPARE(Log(u"20021231.TXT"_s), "abc");
    QCOMPARE(QDir(m_folder->filePath(u"LOGS"_s)).entryList(QDir::Files).size(), 1);
}

void TrafficLogTest::afterFiveQuietMinutesTheFileIsClosedAndReopened() {
    const auto log = Make();
    log->WriteTrafficLog("one");
    m_clock->Advance(300.0);
    log->CloseWhenIdle();
    QVERIFY(log->IsOpen());
    m_clock->Advance(0.001);
    log->CloseWhenIdle();
    QVERIFY(!log->IsOpen());
    log->WriteTrafficLog(" two");
    QVERIFY(log->IsOpen());
    QCOMPARE(Log(u"20021231.TXT"_s), "one two");
}

void TrafficLogTest::offAndOnAppendsToTheSameFile() {
    const auto log = Make();
    log->WriteTrafficLog("one");
    log->ToggleLogging();
    QVERIFY(!log->IsOpen());
    log->WriteTrafficLog("unheard");
    log->ToggleLogging();
    QVERIFY(!log->IsOpen());
    log->WriteTrafficLog(" two");
    QCOMPARE(Log(u"20021231.TXT"_s), "one two");
}

void TrafficLogTest::aFolderThatIsAFileIsPassedOver() {
    const QString path = m_folder->filePath(u"LOGS"_s);
    QFile inTheWay(path);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly) && inTheWay.write("mine") == 4);
    inTheWay.close();
    const auto log = Make();
    log->WriteTrafficLog("lost");
    log->CloseWhenIdle();
    QVERIFY(!log->IsOpen());
    QCOMPARE(inTheWay.size(), 4);
    QVERIFY(inTheWay.remove());
    log->WriteTrafficLog("kept");
    QCOMPARE(Log(u"20021231.TXT"_s), "kept");
}

void TrafficLogTest::aFileThatCannotBeOpenedIsPassedOver() {
    const QDir folder(m_folder->path());
    QVERIFY(folder.mkpath(u"LOGS/20021231.TXT"_s)); // a folder where the file should be
    const auto log = Make();
    log->WriteTrafficLog("lost");
    QVERIFY(!log->IsOpen());
    QVERIFY(log->IsLogging());
    QVERIFY(folder.rmdir(u"LOGS/20021231.TXT"_s));
    log->WriteTrafficLog("kept");
    QCOMPARE(Log(u"20021231.TXT"_s), "kept");
}

void TrafficLogTest::aFullDiskTearsNoLineAndLoggingGoesOn() {
    const auto log = Make();
    log->WriteTrafficLog("first line\r\n");
    {
        const SmallDisk disk(20);
        log->WriteTrafficLog("second line\r\n"); // only its first 8 bytes fit
        log->WriteTrafficLog("third line, lost\r\n");
        log->WriteTrafficLog("fourth line, lost\r\n");
    }
    QCOMPARE(Log(u"20021231.TXT"_s), "first line\r\nsecond l");
    log->WriteTrafficLog("fifth line\r\n");
    log->WriteTrafficLog("sixth line\r\n");
    QCOMPARE(Log(u"20021231.TXT"_s), "first line\r\nsecond line\r\nfifth line\r\nsixth line\r\n");
}

void TrafficLogTest::aTextCutByAFullDiskIsFinishedInTheFileOfItsDay() {
    const auto log = Make();
    {
        const SmallDisk disk(3);
        log->WriteTrafficLog("torn line\r\n");
    }
    m_clock->Advance(secondsPerDay);
    log->WriteTrafficLog("new day\r\n");
    QCOMPARE(Log(u"20021231.TXT"_s), "torn line\r\n");
    QCOMPARE(Log(u"20030101.TXT"_s), "new day\r\n");
}

void TrafficLogTest::aTextCutBeforeAnIdleCloseIsNotFinishedInTheNextDaysFile() {
    const auto log = Make();
    {
        const SmallDisk disk(3);
        log->WriteTrafficLog("torn line\r\n");
        m_clock->Advance(301.0);
        log->CloseWhenIdle();
        QVERIFY(!log->IsOpen());
        m_clock->Advance(secondsPerDay);
    }
    QFile::rename(m_folder->filePath(u"LOGS/20021231.TXT"_s), m_folder->filePath(u"LOGS/kept.TXT"_s));
    log->WriteTrafficLog("new day\r\n");
    QCOMPARE(Log(u"kept.TXT"_s), "tor");
    QCOMPARE(Log(u"20021231.TXT"_s), "no file");
    QCOMPARE(Log(u"20030101.TXT"_s), "new day\r\n");
}

void TrafficLogTest::aTextCutBeforeAnIdleCloseIsFinishedInItsFile() {
    const auto log = Make();
    {
        const SmallDisk disk(3);
        log->WriteTrafficLog("torn line\r\n");
        m_clock->Advance(301.0);
        log->CloseWhenIdle();
    }
    log->WriteTrafficLog("next line\r\n");
    QCOMPARE(Log(u"20021231.TXT"_s), "torn line\r\nnext line\r\n");
}

void TrafficLogTest::aFloodIsWrittenWhole() {
    const Clock systemClock;
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    TrafficLog log(*m_ini, systemClock, ProgramFolder(m_folder->path(), u"x"_s));
    log.Load();
    const QByteArray text(100, 'x');
    for (int i = 0; i < 50'000; ++i)
        log.WriteTrafficLog(text);
    const QDir logs(QDir(m_folder->path()).filePath(u"LOGS"_s));
    QCOMPARE(logs.entryInfoList(QDir::Files).value(0).size(), 50'000 * text.size());
}

QTEST_GUILESS_MAIN(TrafficLogTest)
#include "TrafficLogTest.moc"
