#include "foundation/system/FolderLock.h"

#include "support/OrdinaryUser.h"
#include "support/TemporaryProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <array>
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

class FolderLockTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aSecondOfAFolderIsRefused();
    void twoFoldersAreHeldSideBySide();
    void theLocksOfAFolderAreIndependent();
    void theLockOfACrashedRunDoesNotBlock();
    void theLockIsGoneWhenItsHolderIs();
    void aLockGivenBackIsFree();
    void aLinkInTheLocksPlaceDoesNotBlockAndLeadsNowhere();
    void aFolderThatTakesNoLockDoesNotBlock();
    void aFolderInTheLocksPlaceDoesNotBlock();
    void aSecondOfAFolderThatMayOnlyBeReadIsRefused();
    void theLockOfACrashedRunDoesNotBlockWhoMayOnlyRead();
    void whoMayOnlyReadHoldsOffWhoMayWrite();
    void whoMayWriteHoldsOffWhoMayOnlyRead();
    void theHolderIsNamedWithItsCommand();
    void theHolderOfAFolderThatMayOnlyBeReadIsNamed();
    void nobodyIsNamedWhereNobodyHoldsIt();

private:
    static FolderLock Lock(const TemporaryProgramFolder& folder) {
        return FolderLock::OfProgram(folder.Program());
    }
    static void SetMode(const TemporaryProgramFolder& folder, mode_t mode) {
        QCOMPARE(chmod(qPrintable(folder.Program().Path()), mode), 0);
    }
};

void FolderLockTest::aSecondOfAFolderIsRefused() {
    const TemporaryProgramFolder folder;
    {
        FolderLock first = Lock(folder);
        FolderLock second = Lock(folder);
        QVERIFY(first.TryLock());
        QVERIFY(!second.TryLock());
        QVERIFY(first.IsOurs());
        QVERIFY(!second.IsOurs());
    }
    FolderLock third = Lock(folder);
    QVERIFY(third.TryLock());
}

void FolderLockTest::twoFoldersAreHeldSideBySide() {
    const TemporaryProgramFolder one;
    const TemporaryProgramFolder other;
    FolderLock first = Lock(one);
    FolderLock second = Lock(other);
    QVERIFY(first.TryLock());
    QVERIFY(second.TryLock());
}

void FolderLockTest::theLocksOfAFolderAreIndependent() {
    const TemporaryProgramFolder folder;
    QVERIFY(QDir().mkdir(folder.Program().KepsFolder()));
    SetMode(folder, 0755);
    for (const mode_t mode : {0755u, 0555u}) {
        SetMode(folder, mode);
        const OrdinaryUser user;
        FolderLock program = Lock(folder);
        FolderLock keps = FolderLock::OfKeps(folder.Program());
        FolderLock second = FolderLock::OfKeps(folder.Program());
        QVERIFY(program.TryLock());
        QVERIFY(keps.TryLock());
        QVERIFY(!second.TryLock());
    }
    SetMode(folder, 0755);
    FolderLock keps = FolderLock::OfKeps(folder.Program());
    QVERIFY(keps.TryLock());
    QVERIFY(QFile::exists(folder.File(QStringLiteral("Keps.lock"))));
}

void FolderLockTest::theLockOfACrashedRunDoesNotBlock() {
    for (const char* left : {"", "1\nQiranDecode\n"}) {
        const TemporaryProgramFolder folder;
        folder.Write(QStringLiteral("QiranDecode.lock"), left);
        FolderLock first = Lock(folder);
        FolderLock second = Lock(folder);
        QVERIFY(first.TryLock());
        QVERIFY(!second.TryLock());
    }
}

void FolderLockTest::theLockIsGoneWhenItsHolderIs() {
    const TemporaryProgramFolder folder;
    const QString lock = folder.File(QStringLiteral("QiranDecode.lock"));
    {
        FolderLock first = Lock(folder);
        QVERIFY(first.TryLock());
        QVERIFY(QFile::exists(lock));
        QVERIFY(!Lock(folder).TryLock());
        QVERIFY(QFile::exists(lock)); // one that did not get it leaves it
        QVERIFY(first.TryLock());
    }
    QVERIFY(!QFile::exists(lock));
}

void FolderLockTest::aLockGivenBackIsFree() {
    const TemporaryProgramFolder folder;
    FolderLock first = Lock(folder);
    FolderLock second = Lock(folder);
    QVERIFY(first.TryLock());
    first.Unlock();
    QVERIFY(!first.IsOurs());
    QVERIFY(!QFile::exists(folder.File(QStringLiteral("QiranDecode.lock"))));
    QVERIFY(second.TryLock());
    first.Unlock(); // it is not ours to give back
    QVERIFY(QFile::exists(folder.File(QStringLiteral("QiranDecode.lock"))));
    QVERIFY(!first.TryLock());
}

void FolderLockTest::aLinkInTheLocksPlaceDoesNotBlockAndLeadsNowhere() {
    const TemporaryProgramFolder folder;
    QVERIFY(QFile::link(folder.File(QStringLiteral("elsewhere")),
                        folder.File(QStringLiteral("QiranDecode.lock"))));
    FolderLock first = Lock(folder);
    QVERIFY(first.TryLock());
    QVERIFY(!QFile::exists(folder.File(QStringLiteral("elsewhere"))));
    QVERIFY(!Lock(folder).TryLock());
}

void FolderLockTest::aFolderThatTakesNoLockDoesNotBlock() {
    QVERIFY(FolderLock::OfProgram(ProgramFolder(QStringLiteral("/proc"), QStringLiteral("QiranDecode")))
                .TryLock());
    QVERIFY(FolderLock::OfProgram(ProgramFolder(QStringLiteral("/none"), QStringLiteral("QiranDecode")))
                .TryLock());
}

void FolderLockTest::aFolderInTheLocksPlaceDoesNotBlock() {
    const TemporaryProgramFolder folder;
    QVERIFY(QDir().mkdir(folder.File(QStringLiteral("QiranDecode.lock"))));
    FolderLock first = Lock(folder);
    QVERIFY(first.TryLock());
    QVERIFY(!Lock(folder).TryLock());
}

void FolderLockTest::aSecondOfAFolderThatMayOnlyBeReadIsRefused() {
    const TemporaryProgramFolder folder;
    SetMode(folder, 0555);
    const OrdinaryUser user;
    if (!OrdinaryUser::Is())
        QSKIP("this machine lets us be nobody else than root");
    {
        FolderLock first = Lock(folder);
        QVERIFY(first.TryLock());
        QVERIFY(!QFile::exists(folder.File(QStringLiteral("QiranDecode.lock"))));
        QVERIFY(!Lock(folder).TryLock());
    }
    QVERIFY(Lock(folder).TryLock());
}

void FolderLockTest::theLockOfACrashedRunDoesNotBlockWhoMayOnlyRead() {
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("QiranDecode.lock"), "");
    QCOMPARE(chmod(qPrintable(folder.File(QStringLiteral("QiranDecode.lock"))), 0444), 0);
    SetMode(folder, 0555);
    const OrdinaryUser user;
    FolderLock first = Lock(folder);
    QVERIFY(first.TryLock());
    QVERIFY(!Lock(folder).TryLock());
}

void FolderLockTest::whoMayOnlyReadHoldsOffWhoMayWrite() {
    const TemporaryProgramFolder folder;
    FolderLock reader = Lock(folder);
    SetMode(folder, 0555);
    {
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("this machine lets us be nobody else than root");
        QVERIFY(reader.TryLock());
    }
    SetMode(folder, 0755);
    QVERIFY(!Lock(folder).TryLock());
    // A file that stayed would be another user's, and the reader's next start refused for good.
    QVERIFY(!QFile::exists(folder.File(QStringLiteral("QiranDecode.lock"))));
    reader.Unlock();
    QVERIFY(Lock(folder).TryLock());
}

void FolderLockTest::whoMayWriteHoldsOffWhoMayOnlyRead() {
    const TemporaryProgramFolder folder;
    FolderLock writer = Lock(folder);
    QVERIFY(writer.TryLock());
    for (const mode_t ofFile : {0600u, 0644u}) {
        QCOMPARE(chmod(qPrintable(folder.File(QStringLiteral("QiranDecode.lock"))), ofFile), 0);
        SetMode(folder, 0555);
        const OrdinaryUser user;
        FolderLock reader = Lock(folder);
        QVERIFY(!reader.TryLock());
        QVERIFY2(reader.Holder().startsWith(QStringLiteral("process %1 (").arg(getpid())),
                 qPrintable(reader.Holder()));
    }
    SetMode(folder, 0755);
}

void FolderLockTest::theHolderIsNamedWithItsCommand() {
    const TemporaryProgramFolder folder;
    std::array<int, 2> ready{};
    QCOMPARE(pipe(ready.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
        FolderLock held = Lock(folder);
        const char answer = held.TryLock() ? 'y' : 'n';
        if (write(ready[1], &answer, 1) == 1)
            pause();
        _exit(1);
    }
    char answer = 0;
    QCOMPARE(read(ready[0], &answer, 1), ssize_t(1));
    FolderLock second = Lock(folder);
    const bool isFree = second.TryLock();
    const QString holder = second.Holder();
    ::kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    QCOMPARE(answer, 'y');
    QVERIFY(!isFree);
    QVERIFY2(holder.startsWith(QStringLiteral("process %1 (").arg(child)), qPrintable(holder));
    QVERIFY2(holder.contains(u"FolderLockTest") && holder.endsWith(u')'), qPrintable(holder));
    QVERIFY(second.TryLock()); // what the killed one left does not block
}

void FolderLockTest::theHolderOfAFolderThatMayOnlyBeReadIsNamed() {
    const TemporaryProgramFolder folder;
    SetMode(folder, 0555);
    const OrdinaryUser user;
    FolderLock first = Lock(folder);
    FolderLock second = Lock(folder);
    QVERIFY(first.TryLock());
    QVERIFY(!second.TryLock());
    QVERIFY2(second.Holder().startsWith(QStringLiteral("process %1 (").arg(getpid())),
             qPrintable(second.Holder()));
}

void FolderLockTest::nobodyIsNamedWhereNobodyHoldsIt() {
    const TemporaryProgramFolder folder;
    QCOMPARE(Lock(folder).Holder(), QStringLiteral("an unknown process"));
    QCOMPARE(FolderLock::OfProgram(ProgramFolder(QStringLiteral("/none"), QStringLiteral("Q"))).Holder(),
             QStringLiteral("an unknown process"));
}

QTEST_GUILESS_MAIN(FolderLockTest)
#include "FolderLockTest.moc"
