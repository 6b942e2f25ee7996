#include "station/terminal/LineWrap.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

class LineWrapTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void a71CharacterLineStays();
    void the72ndCharacterBreaksAtTheLastBlank_data();
    void the72ndCharacterBreaksAtTheLastBlank();
    void ofSeveralBlanksTheLastWithinReachBreaks();
    void a200CharacterWordIsCut();
    void aPasteOf5000CharactersLosesNothing();
    void anyTextComesOutWholeAndInOrder();
    void aHugePasteIsWrapped();
};

void LineWrapTest::a71CharacterLineStays() {
    const QString text(71, u'x');
    QCOMPARE(WrapLines(text).lines, QStringList());
    QCOMPARE(WrapLines(text).rest, text);
    QCOMPARE(WrapLines(u"").rest, QString());
}

void LineWrapTest::the72ndCharacterBreaksAtTheLastBlank_data() {
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("blank"); // its position, from 1; 0: none
    QTest::addColumn<int>("line");  // length of what is sent
    QTest::addColumn<int>("rest");
    QTest::newRow("blank at 60") << 72 << 60 << 59 << 12;
    QTest::newRow("no blank") << 72 << 0 << 72 << 0;
    QTest::newRow("blank at 53") << 72 << 53 << 52 << 19;
    QTest::newRow("blank at 52 is too early") << 72 << 52 << 72 << 0;
    QTest::newRow("blank at 72") << 72 << 72 << 71 << 0;
    QTest::newRow("blank at 73") << 73 << 73 << 72 << 0;
    QTest::newRow("73 without blank") << 73 << 0 << 72 << 1;
    QTest::newRow("blank at 74 is too late") << 80 << 74 << 72 << 8;
}

void LineWrapTest::the72ndCharacterBreaksAtTheLastBlank() {
    QFETCH(const int, length);
    QFETCH(const int, blank);
    QString text;
    for (int i = 0; i < length; ++i)
        text += QChar(static_cast<char16_t>(u'a' + i % 26));
    if (blank > 0)
        text[blank - 1] = u' ';
    const LineWrap wrap = WrapLines(text);
    QCOMPARE(wrap.lines.size(), 1);
    QTEST(static_cast<int>(wrap.lines[0].size()), "line");
    QTEST(static_cast<int>(wrap.rest.size()), "rest");
    QVERIFY(text.startsWith(wrap.lines[0]));
    QVERIFY(text.endsWith(wrap.rest));
}

void LineWrapTest::ofSeveralBlanksTheLastWithinReachBreaks() {
    QString text(80, u'x');
    for (const int position : {60, 73, 74})
        text[position - 1] = u' ';
    QCOMPARE(WrapLines(text).lines, QStringList{text.first(72)});
    QCOMPARE(WrapLines(text).rest, text.sliced(73));
}

void LineWrapTest::a200CharacterWordIsCut() {
    const LineWrap wrap = WrapLines(QString(200, u'w'));
    QCOMPARE(wrap.lines, QStringList({QString(72, u'w'), QString(72, u'w')}));
    QCOMPARE(wrap.rest, QString(56, u'w'));
}

void LineWrapTest::aPasteOf5000CharactersLosesNothing() {
    QString text;
    for (int i = 0; text.size() < 5000; ++i)
        text += QStringLiteral("word%1 ").arg(i);
    const LineWrap wrap = WrapLines(text);
    for (const QString& line : wrap.lines)
        QVERIFY(line.size() >= 52 && line.size() <= 72);
    QCOMPARE(wrap.lines.join(u' ') + u' ' + wrap.rest, text);
}

void LineWrapTest::anyTextComesOutWholeAndInOrder() {
    QRandomGenerator random(72);
    for (int run = 0; run < 3000; ++run) {
        QString text;
        for (int i = random.bounded(400); i > 0; --i) {
            const int dice = random.bounded(run % 2 == 0 ? 12 : 60);
            text += dice < 3 ? u' ' : u'x';
        }
        const LineWrap wrap = WrapLines(text);
        qsizetype letters = wrap.rest.count(u'x');
        for (const QString& line : wrap.lines) {
            QVERIFY(line.size() <= 72);
            letters += line.count(u'x');
        }
        QCOMPARE(letters, text.count(u'x'));
        QVERIFY(wrap.rest.size() < 72);
        QVERIFY(text.endsWith(wrap.rest));
        QVERIFY(WrapLines(wrap.rest).lines.isEmpty());
    }
}

void LineWrapTest::aHugePasteIsWrapped() {
    QCOMPARE(WrapLines(QString(7'200'000, u'x')).lines.size(), 100'000);
}

QTEST_GUILESS_MAIN(LineWrapTest)
#include "LineWrapTest.moc"
