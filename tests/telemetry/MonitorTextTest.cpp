#include "telemetry/monitor/MonitorText.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

class MonitorTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void exactlyTenThousandIsNotCut();
    void oneMoreIsCutToItsLastFiveThousandFirst();
    void anEmptyTextCutsToo();
    void positionsFollowTheText();
    void anyTextLeavesAtMostTheBoundAndTheNewest();
    void changesAreToldOnceATurn();
};

void MonitorTextTest::exactlyTenThousandIsNotCut() {
    MonitorText text;
    text.Append(QByteArray(10000, 'a'));
    text.Append(QByteArray("b\r\n"));
    QCOMPARE(text.Text().toByteArray(), QByteArray(10000, 'a') + "b\r\n");
}

void MonitorTextTest::oneMoreIsCutToItsLastFiveThousandFirst() {
    MonitorText text;
    text.Append(QByteArray("x") + QByteArray(5000, 'a') + QByteArray(4998, 'b') + "\r\n"); // CR LF counts two
    QCOMPARE(text.Text().size(), 10001);
    text.Append(QByteArray("c\r\n"));
    QCOMPARE(text.Text().toByteArray(), QByteArray(4998, 'b') + "\r\n" + "c\r\n");
}

void MonitorTextTest::anEmptyTextCutsToo() {
    MonitorText text;
    text.Append(QByteArray(10001, 'a'));
    text.Append(QByteArrayView());
    QCOMPARE(text.Text().size(), 5000);
}

void MonitorTextTest::positionsFollowTheText() {
    MonitorText text;
    text.Append(QByteArray(10001, 'a'));
    QCOMPARE(text.Begin(), 0);
    QCOMPARE(text.End(), 10001);
    text.Append(QByteArray("b"));
    QCOMPARE(text.Begin(), 5001);
    QCOMPARE(text.End(), 10002);
}

void MonitorTextTest::anyTextLeavesAtMostTheBoundAndTheNewest() {
    QRandomGenerator random(20261121);
    MonitorText text;
    QByteArray tail; // what was held before, and the newest
    qint64 end = 0;
    for (int i = 0; i < 3000; ++i) {
        QByteArray newest(random.bounded(8) == 0 ? random.bounded(70000) : random.bounded(300),
                          Qt::Uninitialized);
        for (char& byte : newest)
            byte = static_cast<char>(random.bounded(256));
        const qsizetype before = text.Text().size();
        tail = text.Text().toByteArray() + newest;
        end += newest.size();
        text.Append(newest);
        QVERIFY(text.Text().size() <= 10000 + newest.size());
        QCOMPARE(text.Text().size(), (before > 10000 ? 5000 : before) + newest.size());
        QVERIFY(QByteArrayView(tail).endsWith(text.Text()));
        QCOMPARE(text.End(), end);
        QCOMPARE(text.Begin(), end - text.Text().size());
    }
}

void MonitorTextTest::changesAreToldOnceATurn() {
    MonitorText text;
    QSignalSpy changed(&text, &MonitorText::Changed);
    for (int i = 0; i < 1000; ++i)
        text.Append(QByteArray("line\r\n"));
    QCOMPARE(changed.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 1);
    text.Append(QByteArray("line\r\n"));
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 2);
}

QTEST_GUILESS_MAIN(MonitorTextTest)
#include "MonitorTextTest.moc"
