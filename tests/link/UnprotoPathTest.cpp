#include "link/UnprotoPath.h"

#include <QTest>

class UnprotoPathTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTextIsTakenApart_data();
    void aTextIsTakenApart();
};

void UnprotoPathTest::aTextIsTakenApart_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("destination");
    QTest::addColumn<QByteArrayList>("digipeaters");
    QTest::newRow("none") << QString() << QByteArray() << QByteArrayList();
    QTest::newRow("destination") << QStringLiteral("CQ") << QByteArray("CQ") << QByteArrayList();
    QTest::newRow("blank behind it") << QStringLiteral(" CQ ") << QByteArray("CQ") << QByteArrayList();
    QTest::newRow("digipeaters") << QStringLiteral("CQ A,B-2") << QByteArray("CQ")
                                 << QByteArrayList{"A", "B-2"};
    QTest::newRow("blanks") << QStringLiteral("  CQ  A , B  C,,") << QByteArray("CQ")
                            << QByteArrayList{"A", "B", "C"};
    QTest::newRow("beyond ASCII") << QStringLiteral("\u00C4 \u00D6") << QByteArray("\xC4")
                                  << QByteArrayList{"\xD6"};
}

void UnprotoPathTest::aTextIsTakenApart() {
    QFETCH(QString, text);
    QFETCH(QByteArray, destination);
    QFETCH(QByteArrayList, digipeaters);
    const UnprotoPath path = UnprotoPath::FromText(text);
    QCOMPARE(path.destination, destination);
    QCOMPARE(path.digipeaters, digipeaters);
}

QTEST_GUILESS_MAIN(UnprotoPathTest)
#include "UnprotoPathTest.moc"
