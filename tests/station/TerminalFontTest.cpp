#include "station/terminal/TerminalFont.h"

#include <QTest>

class TerminalFontTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theNearestSizeIsTaken_data();
    void theNearestSizeIsTaken();
};

void TerminalFontTest::theNearestSizeIsTaken_data() {
    QTest::addColumn<float>("points");
    QTest::addColumn<float>("twipsPerPixel");
    QTest::addColumn<float>("size");
    QTest::newRow("10 points, 96 pixels an inch") << 10.0F << 15.0F << 10.5F;   // 14 pixels
    QTest::newRow("10 points, 120 pixels an inch") << 10.0F << 12.0F << 9.6F;   // 16 pixels
    QTest::newRow("10 points, 192 pixels an inch") << 10.0F << 7.5F << 10.125F; // 27 pixels
    QTest::newRow("tiny") << 1.0F << 15.0F << 7.5F;
    QTest::newRow("huge") << 90.0F << 15.0F << 20.25F;
    QTest::newRow("the smaller of a tie") << 8.25F << 15.0F << 7.5F; // between 10 and 12 pixels
}

void TerminalFontTest::theNearestSizeIsTaken() {
    QFETCH(const float, points);
    QFETCH(const float, twipsPerPixel);
    QTEST(TerminalFont::SnapSize(points, twipsPerPixel), "size");
}

QTEST_GUILESS_MAIN(TerminalFontTest)
#include "TerminalFontTest.moc"
