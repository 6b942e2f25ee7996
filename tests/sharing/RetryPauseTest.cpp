#include "sharing/RetryPause.h"

#include <QTest>

class RetryPauseTest : public QObject {
    Q_OBJECT

private:
    static constexpr qint64 utc = 1795274923120; // 2026-11-21T15:28:43.120Z

private Q_SLOTS:
    void PausesGrowWhateverTheDiceSayAndAreBounded() {
        double random = 0.99;
        RetryPause pause([&] { return random; });
        qint64 last = 0;
        for (int failure = 0; failure < 10; ++failure) {
            const qint64 next = pause.Next();
            QVERIFY2(next > last, qPrintable(QString::number(failure)));
            last = next;
            random = 0.99 - random;
        }
        for (int failure = 0; failure < 1000; ++failure)
            last = pause.Next();
        QVERIFY(last >= RetryPause::longest && last <= RetryPause::longest * 3 / 2);
        pause.Reset();
        random = 0.0;
        QCOMPARE(pause.Next(), RetryPause::first);
    }

    void NoTwoStationsWaitAlike() {
        RetryPause one([] { return 0.25; });
        RetryPause other([] { return 0.75; });
        QCOMPARE(one.Next(), RetryPause::first * 9 / 8);
        QCOMPARE(other.Next(), RetryPause::first * 11 / 8);
    }

    void ServerIsNotAskedBeforeItSaid() {
        RetryPause pause([] { return 0.5; });
        QCOMPARE(pause.Next(60'000), 75'000);
        QCOMPARE(pause.Next(1), 5000); // less than the second pause
        QCOMPARE(pause.Next(RetryPause::longestAsked), RetryPause::longestAsked);
    }

    void RetryAfterIsSecondsOrADate_data() {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<qint64>("milliseconds");
        QTest::newRow("none") << QByteArray() << qint64{0};
        QTest::newRow("seconds") << QByteArray("120") << qint64{120'000};
        QTest::newRow("blanks") << QByteArray(" 7 ") << qint64{7000};
        QTest::newRow("date") << QByteArray("Sat, 21 Nov 2026 15:29:43 GMT") << qint64{59'880};
        QTest::newRow("past") << QByteArray("Sat, 21 Nov 2026 15:27:43 GMT") << qint64{0};
        QTest::newRow("negative") << QByteArray("-3") << qint64{0};
        QTest::newRow("too long") << QByteArray("9223372036854775807") << RetryPause::longestAsked;
        QTest::newRow("far") << QByteArray("Sat, 21 Nov 2099 15:29:43 GMT") << RetryPause::longestAsked;
        QTest::newRow("nonsense") << QByteArray("soon") << qint64{0};
    }
    void RetryAfterIsSecondsOrADate() {
        QFETCH(const QByteArray, header);
        QFETCH(const qint64, milliseconds);
        QCOMPARE(RetryPause::Asked(header, utc), milliseconds);
    }
};

QTEST_GUILESS_MAIN(RetryPauseTest)
#include "RetryPauseTest.moc"
