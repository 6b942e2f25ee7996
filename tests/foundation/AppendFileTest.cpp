#include "foundation/files/AppendFile.h"

#include "support/OrdinaryUser.h"
#include "support/SmallDisk.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class AppendFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void textsStandInTheFileAtOnce();
    void aFolderAPipeAndAMissingFolderAreRefusedWithTheirReason();
    void aTornTextIsFinishedBeforeTheNextOne();
    void aTornTextIsFinishedWhenTheFileIsClosed();
    void aTornTextIsFinishedAfterTheFileWasClosedAndOpened();
    void aTornTextGoesIntoNoOtherFile();
    void whatWaitsGoesIntoNoOtherFile();
    void aTornTextGoesIntoNoFileThatWasPutInItsPlace();
    void aTornTextWhoseFileIsGoneMakesNoFile();
    void failureIsSaidOnceUntilItWorkedInBetween();
    void textsWaitWhileTheDiskIsFull();
    void noMoreWaitsThanAllowed();
    void textsWaitWhileThereIsNoRight();
    void whatWaitsIsWrittenWhenTheFileIsClosed();
    void linesBeginWithTheHeader();
    void theHeaderIsNotRepeated_data();
    void theHeaderIsNotRepeated();
    void linesUnderAnotherHeaderGetTheirOwn();
    void aTornLineOfAnEarlierRunIsEnded();
    void aTornHeaderIsFinished();
    void aReplacedFileIsOpenedAnew();
    void aRemovedFileIsMadeAnew();
    void aCutFileIsAppendedTo();
    void syncingEndsAndLosesNothing();

private:
    static constexpr const char* header = "a,b\n";

    QString Path() const { return m_folder->File(u"f.txt"_s); }
    QByteArray Content() const { return m_folder->Read(u"f.txt"_s); }
    std::unique_ptr<AppendFile> Make(AppendFile::Rules rules = {}) {
        return std::make_unique<AppendFile>(Path(), std::move(rules),
                                            [this](const QString& reason) { m_reasons.append(reason); });
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    QStringList m_reasons;
};

void AppendFileTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_reasons.clear();
}

void AppendFileTest::textsStandInTheFileAtOnce() {
    const auto file = Make();
    QVERIFY(!file->IsOpen());
    QVERIFY(!QFile::exists(Path()));
    QVERIFY(file->Append("one"));
    QVERIFY(file->Append(QByteArrayView()));
    QVERIFY(file->Append(" two\r\n"));
    QCOMPARE(Content(), "one two\r\n");
    QVERIFY(Make()->Append("another run"));
    QCOMPARE(Content(), "one two\r\nanother run");
    QVERIFY(m_reasons.isEmpty());
}

void AppendFileTest::aFolderAPipeAndAMissingFolderAreRefusedWithTheirReason() {
    QVERIFY(QDir().mkpath(Path()));
    QVERIFY(!Make()->Append("x"));
    QCOMPARE(m_reasons, QStringList{Path() + u" is not a file"_s});
    QVERIFY(QDir().rmdir(Path()));
    QCOMPARE(mkfifo(QFile::encodeName(Path()).constData(), 0600), 0);
    QVERIFY(!Make()->Append("x")); // and does not wait for a reader
    QCOMPARE(m_reasons.size(), 2);
    AppendFile file(m_folder->File(u"none/f.txt"_s), {},
                    [this](const QString& reason) { m_reasons.append(reason); });
    QVERIFY(!file.Append("x"));
    QCOMPARE(m_reasons.size(), 3);
    QVERIFY(m_reasons.last().contains(u"No such file"_s));
}

void AppendFileTest::aTornTextIsFinishedBeforeTheNextOne() {
    const auto file = Make();
    QVERIFY(file->Append("first line\n"));
    {
        const SmallDisk disk(20);
        QVERIFY(!file->Append("second line\n"));
        QVERIFY(!file->Append("third line, lost\n"));
    }
    QCOMPARE(Content(), "first line\nsecond li");
    QVERIFY(file->Append("fourth line\n"));
    QCOMPARE(Content(), "first line\nsecond line\nfourth line\n");
}

void AppendFileTest::aTornTextIsFinishedWhenTheFileIsClosed() {
    const auto file = Make();
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
    }
    file->Close();
    QCOMPARE(Content(), "torn line\n");
}

void AppendFileTest::aTornTextIsFinishedAfterTheFileWasClosedAndOpened() {
    const auto file = Make();
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
        file->Close();
        QVERIFY(!file->IsOpen());
    }
    QVERIFY(file->Open(Path()));
    QVERIFY(file->Append("next\n"));
    QCOMPARE(Content(), "torn line\nnext\n");
}

void AppendFileTest::aTornTextGoesIntoNoOtherFile() {
    const auto file = Make();
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
        QVERIFY(file->Open(m_folder->File(u"other.txt"_s)));
    }
    QVERIFY(file->Append("next\n"));
    QCOMPARE(Content(), "torn");
    QCOMPARE(m_folder->Read(u"other.txt"_s), "next\n");
}

void AppendFileTest::whatWaitsGoesIntoNoOtherFile() {
    const auto file = Make({.mostKept = 100});
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
        QVERIFY(!file->Append("whole line\n"));
        QVERIFY(file->Open(m_folder->File(u"other.txt"_s)));
    }
    QVERIFY(file->Append("next\n"));
    QCOMPARE(Content(), "torn");
    QCOMPARE(m_folder->Read(u"other.txt"_s), "next\n");
}

void AppendFileTest::aTornTextGoesIntoNoFileThatWasPutInItsPlace() {
    const auto file = Make();
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
    }
    m_folder->Write(u"new.txt"_s, "1234");
    QVERIFY(QFile::remove(Path()) && QFile::rename(m_folder->File(u"new.txt"_s), Path()));
    QVERIFY(file->Append("next\n"));
    QCOMPARE(Content(), "1234next\n");
}

void AppendFileTest::aTornTextWhoseFileIsGoneMakesNoFile() {
    const auto file = Make();
    {
        const SmallDisk disk(4);
        QVERIFY(!file->Append("torn line\n"));
        file->Close();
    }
    QVERIFY(QFile::remove(Path()));
    file->Close();
    QVERIFY(!QFile::exists(Path()));
}

void AppendFileTest::failureIsSaidOnceUntilItWorkedInBetween() {
    const auto file = Make();
    QVERIFY(file->Append("ab"));
    for (int time = 1; time <= 2; ++time) {
        {
            const SmallDisk disk(2);
            QVERIFY(!file->Append("c"));
            QVERIFY(!file->Append("d"));
        }
        QCOMPARE(m_reasons.size(), time);
        QVERIFY(!m_reasons.last().isEmpty() && m_reasons.last() != u"Unknown error"_s);
        QVERIFY(file->Append("e"));
    }
    QCOMPARE(Content(), "abee");
}

void AppendFileTest::textsWaitWhileTheDiskIsFull() {
    const auto file = Make({.mostKept = 1000});
    {
        const SmallDisk disk(6);
        QVERIFY(!file->Append("first\nsecond\n"));
        QVERIFY(!file->Append("third\n"));
        QVERIFY(!file->Append("fourth\n"));
    }
    QCOMPARE(Content(), "first\n");
    QVERIFY(file->Append("fifth\n"));
    QCOMPARE(Content(), "first\nsecond\nthird\nfourth\nfifth\n");
    QCOMPARE(m_reasons.size(), 1);
}

void AppendFileTest::noMoreWaitsThanAllowed() {
    const auto file = Make({.mostKept = 10});
    QVERIFY(file->Append("0"));
    {
        const SmallDisk disk(1);
        for (const char* text : {"1234", "5678", "abcd", "9"})
            QVERIFY(!file->Append(text));
    }
    QVERIFY(file->Append("end"));
    QCOMPARE(Content(), "0123456789end");
}

void AppendFileTest::textsWaitWhileThereIsNoRight() {
    m_folder->Write(u"f.txt"_s, "");
    QCOMPARE(chmod(qPrintable(Path()), 0444), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0555), 0);
    const auto file = Make({.mostKept = 100});
    {
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("rights mean nothing to this user");
        QVERIFY(!file->Append("one\n"));
        QVERIFY(!file->Append("two\n"));
    }
    QCOMPARE(m_reasons.size(), 1);
    QCOMPARE(m_reasons.front(), u"Permission denied"_s);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0755), 0);
    QCOMPARE(chmod(qPrintable(Path()), 0644), 0);
    QVERIFY(file->Append("three\n"));
    QCOMPARE(Content(), "one\ntwo\nthree\n");
}

void AppendFileTest::whatWaitsIsWrittenWhenTheFileIsClosed() {
    auto file = Make({.mostKept = 100});
    QVERIFY(file->Append("0"));
    {
        const SmallDisk disk(1);
        QVERIFY(!file->Append("1\n"));
    }
    file.reset();
    QCOMPARE(Content(), "01\n");
}

void AppendFileTest::linesBeginWithTheHeader() {
    const auto file = Make({.header = header});
    QVERIFY(file->Append("1,2\n"));
    file->Close();
    QVERIFY(file->Open(Path()));
    QVERIFY(file->Append("3,4\n"));
    QVERIFY(Make({.header = header})->Append("5,6\n"));
    QCOMPARE(Content(), "a,b\n1,2\n3,4\n5,6\n");
}

void AppendFileTest::theHeaderIsNotRepeated_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("as written") << QByteArray("a,b\n1,2\n");
    QTest::newRow("CR LF") << QByteArray("a,b\r\n1,2\r\n");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a,b\r\n");
    QTest::newRow("nothing else") << QByteArray("a,b\n");
}

void AppendFileTest::theHeaderIsNotRepeated() {
    QFETCH(const QByteArray, before);
    m_folder->Write(u"f.txt"_s, before);
    QVERIFY(Make({.header = header})->Append("3,4\n"));
    QCOMPARE(Content(), before + "3,4\n");
}

void AppendFileTest::linesUnderAnotherHeaderGetTheirOwn() {
    m_folder->Write(u"f.txt"_s, "b,a\n2,1\n");
    QVERIFY(Make({.header = header})->Append("3,4\n"));
    QCOMPARE(Content(), "b,a\n2,1\na,b\n3,4\n");
}

void AppendFileTest::aTornLineOfAnEarlierRunIsEnded() {
    m_folder->Write(u"f.txt"_s, "a,b\n1,2\n3,");
    QVERIFY(Make({.header = header})->Append("5,6\n"));
    QCOMPARE(Content(), "a,b\n1,2\n3,\n5,6\n");
}

void AppendFileTest::aTornHeaderIsFinished() {
    const auto file = Make({.header = header});
    {
        const SmallDisk disk(2);
        QVERIFY(!file->Append("1,2\n"));
    }
    QVERIFY(file->Append("3,4\n"));
    QCOMPARE(Content(), "a,b\n3,4\n");
}

void AppendFileTest::aReplacedFileIsOpenedAnew() {
    const auto file = Make({.header = header});
    QVERIFY(file->Append("1,2\n"));
    m_folder->Write(u"new.txt"_s, "a,b\n9,9");
    QVERIFY(QFile::remove(Path()) && QFile::rename(m_folder->File(u"new.txt"_s), Path()));
    QVERIFY(file->Append("3,4\n"));
    QCOMPARE(Content(), "a,b\n9,9\n3,4\n");
}

void AppendFileTest::aRemovedFileIsMadeAnew() {
    const auto file = Make({.header = header});
    QVERIFY(file->Append("1,2\n"));
    QVERIFY(QFile::remove(Path()));
    QVERIFY(file->Append("3,4\n"));
    QCOMPARE(Content(), "a,b\n3,4\n");
}

void AppendFileTest::aCutFileIsAppendedTo() {
    const auto file = Make({.header = header});
    QVERIFY(file->Append("1,2\n"));
    QVERIFY(QFile::resize(Path(), 6)); // in the middle of a line
    QVERIFY(file->Append("3,4\n"));
    QCOMPARE(Content(), "a,b\n1,\n3,4\n");
}

void AppendFileTest::syncingEndsAndLosesNothing() {
    const auto file = Make({.header = header, .isSynced = true});
    for (int i = 0; i < 3; ++i) {
        QVERIFY(file->Append("1,2\n"));
        QVERIFY(file->IsUnsynced());
        QTRY_VERIFY(!file->IsUnsynced());
    }
    QVERIFY(file->Append("1,2\n"));
    file->Close();
    QVERIFY(!file->IsUnsynced());
    QCOMPARE(Content(), "a,b\n1,2\n1,2\n1,2\n1,2\n");
    QVERIFY(m_reasons.isEmpty());
}

QTEST_GUILESS_MAIN(AppendFileTest)
#include "AppendFileTest.moc"
