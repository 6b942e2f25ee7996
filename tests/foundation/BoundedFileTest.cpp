#include "foundation/files/BoundedFile.h"

#include "foundation/text/ByteOrderMark.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class BoundedFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFileUpToTheLimitIsRead();
    void aFileBeyondTheLimitIsRefused();
    void aLinkCountsAsWhatItLeadsTo();
    void whatIsNoFileIsRefusedWithTheReason();
    void aByteOrderMarkIsLeftOut();
};

void BoundedFileTest::aFileUpToTheLimitIsRead() {
    const TemporaryProgramFolder folder;
    folder.Write(u"f"_s, QByteArray("\0\r\n\xFF", 4));
    QString reason;
    QCOMPARE(ReadBoundedFile(folder.File(u"f"_s), 4, reason), QByteArray("\0\r\n\xFF", 4));
    QVERIFY(reason.isEmpty());
    folder.Write(u"empty"_s, "");
    QCOMPARE(ReadBoundedFile(folder.File(u"empty"_s), 4, reason), QByteArray());
}

void BoundedFileTest::aFileBeyondTheLimitIsRefused() {
    const TemporaryProgramFolder folder;
    folder.Write(u"f"_s, "12345");
    QString reason;
    QCOMPARE(ReadBoundedFile(folder.File(u"f"_s), 4, reason), std::nullopt);
    QCOMPARE(reason, folder.File(u"f"_s) + u" is larger than 4 bytes"_s);
}

void BoundedFileTest::aLinkCountsAsWhatItLeadsTo() {
    const TemporaryProgramFolder folder;
    folder.Write(u"f"_s, "x");
    QVERIFY(QFile::link(folder.File(u"f"_s), folder.File(u"link"_s)));
    QVERIFY(QFile::link(u"/dev/zero"_s, folder.File(u"endless"_s)));
    QString reason;
    QCOMPARE(ReadBoundedFile(folder.File(u"link"_s), 4, reason), QByteArray("x"));
    QCOMPARE(ReadBoundedFile(folder.File(u"endless"_s), 4, reason), std::nullopt);
    QCOMPARE(reason, folder.File(u"endless"_s) + u" is not a file"_s);
}

void BoundedFileTest::whatIsNoFileIsRefusedWithTheReason() {
    const TemporaryProgramFolder folder;
    QString reason;
    QCOMPARE(ReadBoundedFile(folder.File(u""_s), 4, reason), std::nullopt);
    QVERIFY(reason.endsWith(u" is not a file"_s));
    QCOMPARE(mkfifo(QFile::encodeName(folder.File(u"pipe"_s)).constData(), 0600), 0);
    QCOMPARE(ReadBoundedFile(folder.File(u"pipe"_s), 4, reason),
             std::nullopt); // and nobody waits for a writer
    QVERIFY(reason.endsWith(u" is not a file"_s));
    QCOMPARE(ReadBoundedFile(folder.File(u"none"_s), 4, reason), std::nullopt);
    QCOMPARE(reason, u"No such file or directory"_s);
}

void BoundedFileTest::aByteOrderMarkIsLeftOut() {
    QCOMPARE(WithoutByteOrderMark("\xEF\xBB\xBF"
                                  "a"),
             "a");
    QCOMPARE(WithoutByteOrderMark("\xEF\xBB"
                                  "a"),
             "\xEF\xBB"
             "a");
    QCOMPARE(WithoutByteOrderMark(""), "");
}

QTEST_GUILESS_MAIN(BoundedFileTest)
#include "BoundedFileTest.moc"
