#include "keps/FetchTimes.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

#include <sys/stat.h>

class FetchTimesTest : public QObject {
    Q_OBJECT

private:
    static constexpr auto file = "KepsFetched.txt";
    static constexpr qint64 noon = 1795262400000; // 2026-11-21T12:00:00Z

    static QString Url(int number) { return QStringLiteral("http://host/%1.txt").arg(number); }

private Q_SLOTS:
    void WhatWasNotedIsRemembered() {
        const TemporaryProgramFolder folder;
        const FetchTimes times(folder.Program());
        QVERIFY(!times.Last(Url(1)));
        QCOMPARE(times.Note(Url(1), noon), QString());
        QCOMPARE(times.Note(Url(2), noon + 60000), QString());
        QCOMPARE(times.Note(Url(1), noon + 120000), QString());
        QCOMPARE(FetchTimes(folder.Program()).Last(Url(1)), std::optional(noon + 120000));
        QCOMPARE(times.Last(Url(2)), std::optional(noon + 60000));
        QVERIFY(!times.Last(Url(3)));
        QCOMPARE(folder.Read(QString::fromLatin1(file)),
                 QByteArray("2026-11-21T12:01:00Z http://host/2.txt\n"
                            "2026-11-21T12:02:00Z http://host/1.txt\n"));
    }

    void AddressesWithBlanksAndStrangeLettersAreTold() {
        const TemporaryProgramFolder folder;
        const FetchTimes times(folder.Program());
        const QString url = QStringLiteral("http://h\u00FCst/a b.txt?x=\u4E2D");
        QCOMPARE(times.Note(url, noon), QString());
        QCOMPARE(times.Last(url), std::optional(noon));
        QCOMPARE(times.Note(QStringLiteral("a\n2026-11-21T12:00:00Z b"), noon), QString());
        QVERIFY(!times.Last(QStringLiteral("b")));
    }

    void TheNewestTwentyAreKept() {
        const TemporaryProgramFolder folder;
        const FetchTimes times(folder.Program());
        for (int i = 0; i < 30; ++i)
            QCOMPARE(times.Note(Url(i), noon + i * 1000), QString());
        QVERIFY(!times.Last(Url(9)));
        QCOMPARE(times.Last(Url(10)), std::optional(noon + 10000));
        QCOMPARE(folder.Read(QString::fromLatin1(file)).count('\n'), 20);
    }

    void WhatIsNoLineOfItIsPassedOver() {
        const TemporaryProgramFolder folder;
        const QByteArray good = "2026-11-21T12:00:00Z http://host/1.txt\n";
        folder.Write(QString::fromLatin1(file),
                     QByteArrayLiteral("\n \nyesterday http://host/2.txt\n2026-11-21T12:00:00Z\n"
                                       "2026-11-21T12:00:00Z \n\0\xFF\n") +
                         good + QByteArray(200000, 'x') + "\n2026-11-21T12:00:00Z http://host/3.txt\n");
        const FetchTimes times(folder.Program());
        QCOMPARE(times.Last(Url(1)), std::optional(noon));
        QVERIFY(!times.Last(Url(2)));
        QVERIFY(!times.Last({}));
        QVERIFY(!times.Last(Url(3))); // a file as large as that is not ours
    }

    void AFileThatCannotBeWrittenIsSaid() {
        const TemporaryProgramFolder folder;
        QVERIFY(QDir().mkdir(folder.File(QString::fromLatin1(file))));
        QVERIFY(!FetchTimes(folder.Program()).Note(Url(1), noon).isEmpty());
    }

    void ItIsForItsOwnerAlone() { // an address may hold a password
        const TemporaryProgramFolder folder;
        QCOMPARE(FetchTimes(folder.Program()).Note(Url(1), noon), QString());
        struct stat status {};
        QCOMPARE(stat(qPrintable(folder.File(QString::fromLatin1(file))), &status), 0);
        QCOMPARE(status.st_mode & 0777U, 0600U);
    }
};

QTEST_GUILESS_MAIN(FetchTimesTest)
#include "FetchTimesTest.moc"
