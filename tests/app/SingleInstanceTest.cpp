#include "foundation/system/SingleInstance.h"

#include "support/TemporaryProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QTest>

class SingleInstanceTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aSecondInstanceOfAFolderKnowsOfTheFirst();
    void twoFoldersRunSideBySide();
    void theLockOfACrashedRunDoesNotBlock();
    void aFolderThatTakesNoLockDoesNotBlock();
    void theLockIsGoneWhenItsHolderIs();
    void aLinkInTheLocksPlaceDoesNotBlockAndLeadsNowhere();
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
    for (const char* left : {"", "1\nQiranDecode\n"}) {
        const TemporaryProgramFolder folder;
        folder.Write(QStringLiteral("QiranDecode.lock"), left);
        SingleInstance first(folder.Program());
        SingleInstance second(folder.Program());
        QVERIFY(!first.IsAnotherRunning());
        QVERIFY(second.IsAnotherRunning());
    }
}

void SingleInstanceTest::theLockIsGoneWhenItsHolderIs() {
    const TemporaryProgramFolder folder;
    const QString lock = folder.File(QStringLiteral("QiranDecode.lock"));
    {
        SingleInstance first(folder.Program());
        QVERIFY(!first.IsAnotherRunning());
        QVERIFY(QFile::exists(lock));
        QVERIFY(SingleInstance(folder.Program()).IsAnotherRunning());
        QVERIFY(QFile::exists(lock)); // one that did not get it leaves it
        QVERIFY(!first.IsAnotherRunning());
    }
    QVERIFY(!QFile::exists(lock));
}

void SingleInstanceTest::aLinkInTheLocksPlaceDoesNotBlockAndLeadsNowhere() {
    const TemporaryProgramFolder folder;
    QVERIFY(QFile::link(folder.File(QStringLiteral("elsewhere")),
                        folder.File(QStringLiteral("QiranDecode.lock"))));
    QVERIFY(!SingleInstance(folder.Program()).IsAnotherRunning());
    QVERIFY(!QFile::exists(folder.File(QStringLiteral("elsewhere"))));
}

void SingleInstanceTest::aFolderThatTakesNoLockDoesNotBlock() {
    SingleInstance instance(ProgramFolder(QStringLiteral("/proc"), QStringLiteral("QiranDecode")));
    QVERIFY(!instance.IsAnotherRunning());
}

void SingleInstanceTest::aFolderInTheLocksPlaceDoesNotBlock() {
    const TemporaryProgramFolder folder;
    QVERIFY(QDir().mkdir(folder.File(QStringLiteral("QiranDecode.lock"))));
    QVERIFY(!SingleInstance(folder.Program()).IsAnotherRunning());
}

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
