#include "keps/DownloadStatus.h"

#include <QTest>

class DownloadStatusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TextAndLineEndAreAppended() {
        DownloadStatus status;
        QVERIFY(!status.AddDownloadStatus(QStringLiteral("Idle")));
        QVERIFY(!status.AddDownloadStatus(QStringLiteral("\r\nGetting a")));
        QCOMPARE(status.Content(), QStringLiteral("Idle\r\n\r\nGetting a\r\n"));
    }

    void TenThousandCharactersAreKept() {
        DownloadStatus status;
        status.AddDownloadStatus(QString(9998, u'x'));
        QCOMPARE(status.Content().size(), 10000);
        QVERIFY(!status.AddDownloadStatus(QStringLiteral("y")));
        QCOMPARE(status.Content().size(), 10003);
    }

    void OneMoreIsCutToTheLastTenThousand() {
        DownloadStatus status;
        status.AddDownloadStatus(u'a' + QString(9998, u'x'));
        QCOMPARE(status.Content().size(), 10001);
        QVERIFY(status.AddDownloadStatus(QStringLiteral("y")));
        QCOMPARE(status.Content(), QString(9998, u'x') + QStringLiteral("\r\ny\r\n"));
    }
};

QTEST_GUILESS_MAIN(DownloadStatusTest)
#include "DownloadStatusTest.moc"
