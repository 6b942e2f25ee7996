#include "app/SingleInstance.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

class SingleInstanceTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aSecondInstanceOfAFolderKnowsOfTheFirst();
    void twoFoldersRunSideBySide();
    void theLockOfACrashedRunDoesNotBlock();
    void aFolderThatTakesNoLockDoesNotBlock();
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

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
