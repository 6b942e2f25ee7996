#include "station/terminal/TerminalText.h"

#include <QRandomGenerator>
#include <QTest>

using Colour = TerminalText::Colour;

namespace {

// The pane as a widget would hold it: characters with their colours, a line end being one.
struct Pane {
    QByteArray text;
    QByteArray colours;

    void Follow(TerminalText& terminal) {
        const TerminalText::Change change = terminal.Take();
        if (change.isReset)
            text.clear(), colours.clear();
        text.remove(0, change.cut);
        colours.remove(0, change.cut);
        qsizetype at = 0;
        for (const TerminalText::Run& run : change.runs) {
            const QByteArray shown = change.text.sliced(at, run.length).replace("\r", "");
            text += shown;
            colours += QByteArray(shown.size(), run.colour == Colour::Cyan ? 'c' : 'g');
            at += run.length;
        }
        QCOMPARE(at, change.text.size());
    }
};

QByteArray Shown(const TerminalText& terminal) {
    return QByteArray(terminal.Bytes()).replace("\r", "");
}

QByteArray ShownColours(const TerminalText& terminal) {
    QByteArray colours;
    qsizetype at = 0;
    for (const TerminalText::Run& run : terminal.Runs()) {
        const QByteArray shown = terminal.Bytes().sliced(at, run.length).replace("\r", "");
        colours += QByteArray(shown.size(), run.colour == Colour::Cyan ? 'c' : 'g');
        at += run.length;
    }
    return colours;
}

} // namespace

class TerminalTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void onlyKindFourIsCyan();
    void aPaneOf10000IsNotTrimmedButOneMoreIs();
    void theCutFallsAfterTheFirstLineFeedInReach_data();
    void theCutFallsAfterTheFirstLineFeedInReach();
    void coloursSurviveTheTrim();
    void anyTextLeavesTheBoundAndItselfAtTheEnd();
    void aPaneThatLooksNowAndThenShowsTheSame();
    void clearingEmptiesIt();
    void aFloodLeavesTheNewestTenThousandBytes();
};

void TerminalTextTest::onlyKindFourIsCyan() {
    for (qint16 kind = -3; kind < 100; ++kind)
        QCOMPARE(TerminalText::ColourOf(kind), kind == 4 ? Colour::Cyan : Colour::Green);
}

void TerminalTextTest::aPaneOf10000IsNotTrimmedButOneMoreIs() {
    TerminalText terminal;
    terminal.Append(QByteArray(10000, 'a'), 2);
    terminal.Append("b", 2);
    QCOMPARE(terminal.Bytes().size(), 10001);
    terminal.Append("c", 2);
    QCOMPARE(terminal.Bytes(), QByteArray(4499, 'a') + "bc");
}

void TerminalTextTest::theCutFallsAfterTheFirstLineFeedInReach_data() {
    QTest::addColumn<int>("lineFeed"); // its position among 10,001 characters, from 1
    QTest::addColumn<int>("kept");
    QTest::newRow("one before the search") << 5000 << 4500;
    QTest::newRow("at its first position") << 5001 << 5000;
    QTest::newRow("within") << 5300 << 4701;
    QTest::newRow("at its last position") << 5501 << 4500;
    QTest::newRow("one behind it") << 5502 << 4500;
    QTest::newRow("none") << 1 << 4500;
}

void TerminalTextTest::theCutFallsAfterTheFirstLineFeedInReach() {
    QFETCH(const int, lineFeed);
    QByteArray text(10001, 'a');
    text[lineFeed - 1] = '\n';
    TerminalText terminal;
    terminal.Append(text, 0);
    terminal.Append(QByteArray(), 0);
    QTEST(static_cast<int>(terminal.Bytes().size()), "kept");
    QVERIFY(text.endsWith(terminal.Bytes()));
}

void TerminalTextTest::coloursSurviveTheTrim() {
    TerminalText terminal;
    for (int i = 0; i < 200; ++i)
        terminal.Append(QByteArray(98, i % 2 == 0 ? 'g' : 'c') + "\r\n", i % 2 == 0 ? 2 : 4);
    QVERIFY(terminal.Bytes().size() <= 10100);
    QVERIFY(terminal.Bytes().size() >= 5000);
    const QByteArray colours = ShownColours(terminal);
    const QByteArray shown = Shown(terminal);
    QCOMPARE(colours.size(), shown.size());
    for (qsizetype i = 0; i < shown.size(); ++i)
        if (shown[i] != '\n')
            QCOMPARE(colours[i], shown[i]);
}

void TerminalTextTest::anyTextLeavesTheBoundAndItselfAtTheEnd() {
    QRandomGenerator random(10);
    TerminalText terminal;
    for (int run = 0; run < 4000; ++run) {
        QByteArray text;
        for (int i = random.bounded(random.bounded(20) == 0 ? 12000 : 300); i > 0; --i)
            text += static_cast<char>(random.bounded(256));
        terminal.Append(text, static_cast<qint16>(random.bounded(6)));
        QVERIFY(terminal.Bytes().size() <= 10000 + text.size());
        QVERIFY(terminal.Bytes().endsWith(text));
    }
}

void TerminalTextTest::aPaneThatLooksNowAndThenShowsTheSame() {
    QRandomGenerator random(11);
    TerminalText terminal;
    Pane pane;
    for (int run = 0; run < 5000; ++run) {
        QByteArray text;
        for (int i = random.bounded(random.bounded(20) == 0 ? 12000 : 300); i > 0; --i)
            text += random.bounded(30) == 0 ? QByteArray("\r\n")
                                            : QByteArray(1, static_cast<char>(' ' + random.bounded(220)));
        terminal.Append(text, static_cast<qint16>(random.bounded(6)));
        if (random.bounded(100) == 0)
            terminal.Clear();
        if (random.bounded(3) == 0) {
            pane.Follow(terminal);
            QCOMPARE(pane.text, Shown(terminal));
            QCOMPARE(pane.colours, ShownColours(terminal));
            QVERIFY(!terminal.HasChanged());
        }
    }
}

void TerminalTextTest::clearingEmptiesIt() {
    TerminalText terminal;
    Pane pane;
    terminal.Append("abc\r\n", 0);
    pane.Follow(terminal);
    terminal.Clear();
    QVERIFY(terminal.HasChanged());
    pane.Follow(terminal);
    QCOMPARE(pane.text, QByteArray());
    terminal.Append("d", 4);
    pane.Follow(terminal);
    QCOMPARE(pane.text, "d");
    QCOMPARE(pane.colours, "c");
}

void TerminalTextTest::aFloodLeavesTheNewestTenThousandBytes() {
    TerminalText terminal;
    const QByteArray text = QByteArray(98, 'x') + "\r\n";
    for (int i = 0; i < 1'000'000; ++i)
        terminal.Append(text, static_cast<qint16>(i % 6));
    QVERIFY(terminal.Bytes().size() <= 10100);
}

QTEST_GUILESS_MAIN(TerminalTextTest)
#include "TerminalTextTest.moc"
