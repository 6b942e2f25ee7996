#include "app/SingleInstance.h"

#include "support/TemporaryProgramFolder.h"

#include <QDateTime>
#include <QTest>

class SingleInstanceTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aSecondInstanceOfAFolderKnowsOfTheFirst();
    void twoFoldersRunSideBySide();
    void theLockOfACrashedRunDoesNotBlock();
    void aFolderThatTakesNoLockDoesNotBlock();
    void anOldLockThatNamesNobodyDoesNotBlock();
    void aFolderInTheLocksPlaceDoesNotBlock();
};

void SingleInstanceTest::aSecondInstanceOfAFolderKnowsOfTheFirst() {
    const TemporaryProgramFolder folder;
    {
        SingleInstance first(folder.Program());
        SingleInstance second(folder.Program());
        QVERIFY(!first.IsAnotherRunning());
        QVERIFY(second.IsAnotherRunning());
    }
    SingleInstance third(folder.Program());
    QVERIFY(!third.IsAnotherRunning());
}

void SingleInstanceTest::twoFoldersRunSideBySide() {
    const TemporaryProgramFolder one;
    const TemporaryProgramFolder other;
    SingleInstance first(one.Program());
    SingleInstance second(other.Program());
    QVERIFY(!first.IsAnotherRunning());
    QVERIFY(!second.IsAnotherRunning());
}

void SingleInstanceTest::theLockOfACrashedRunDoesNotBlock() {
    const TemporaryProgramFolder folder;
    // A process number beyond any that Linux gives out: whoever wrote this is gone.
    folder.Write(QStringLiteral("QiranDecode.lock"),
                 "2000000000\nSingleInstanceTest\n" + QSysInfo::machineHostName().toLocal8Bit() + '\n');
    SingleInstance instance(folder.Program());
    QVERIFY(!instance.IsAnotherRunning());
}

void SingleInstanceTest::aFolderThatTakesNoLockDoesNotBlock() {
    SingleInstance instance(ProgramFolder(QStringLiteral("/proc"), QStringLiteral("QiranDecode")));
    QVERIFY(!instance.IsAnotherRunning());
}

void SingleInstanceTest::anOldLockThatNamesNobodyDoesNotBlock() {
    const TemporaryProgramFolder folder;
    const QString name = QStringLiteral("QiranDecode.lock");
    folder.Write(name, "");
    QVERIFY(SingleInstance(folder.Program()).IsAnotherRunning()); // may be in the making
    {
        QFile lock(folder.File(name));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(
            lock.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    }
    SingleInstance first(folder.Program());
    SingleInstance second(folder.Program());
    QVERIFY(!first.IsAnotherRunning());
    QVERIFY(second.IsAnotherRunning());
}

void SingleInstanceTest::aFolderInTheLocksPlaceDoesNotBlock() {
    const TemporaryProgramFolder folder;
    QVERIFY(QDir().mkdir(folder.File(QStringLiteral("QiranDecode.lock"))));
    QVERIFY(!SingleInstance(folder.Program()).IsAnotherRunning());
}

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
