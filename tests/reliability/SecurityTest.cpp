#include "app/MainWindowRig.h"
#include "foundation/text/Text.h"
#include "keps/KepsAddress.h"
#include "support/Seed.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

/// What comes from the network stays text, and stays where it belongs.
class SecurityTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTextFromTheAirIsShownAsItIs_data();
    void aTextFromTheAirIsShownAsItIs();
    void manyAccentsCostNothing();
    void theEnginesPortTextIsShownAsItIs();
    void noAddressNamesAFileOutsideTheElementFolder();
};

namespace {

QPlainTextEdit* TerminalPaneOf() {
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (auto* pane = window->findChild<QPlainTextEdit*>(u"rtbMon"_s))
            return pane;
    return nullptr;
}

void StartShowingAll(MainWindowRig& rig) {
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
}

} // namespace

void SecurityTest::aTextFromTheAirIsShownAsItIs_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("markup") << QByteArray(
        "<html><b>bold</b><img src='http://127.0.0.1/x'><a href='file:///etc/passwd'>link</a></html>");
    QTest::newRow("entities") << QByteArray("&lt;b&gt; &amp; &#65; &nbsp;");
    QTest::newRow("formats") << QByteArray("%n%s%1%2 %n {} %x");
    QTest::newRow("escapes") << QByteArray("\x1b]0;title\x07 \x1b[31mred\x1b[0m");
    QTest::newRow("bidirectional controls") << u"\u202Eabc\u2066def\u2069\u200F"_s.toUtf8();
}

void SecurityTest::aTextFromTheAirIsShownAsItIs() {
    QFETCH(const QByteArray, text);
    MainWindowRig rig;
    StartShowingAll(rig);
    rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = text});
    rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = "and on it goes"});
    QTRY_VERIFY(rig.Monitor().contains(u"and on it goes"_s));
    const QString shown = Text::FromBytes(text);
    QVERIFY2(rig.Monitor().contains(shown), qPrintable(rig.Monitor()));
    QTRY_VERIFY(TerminalPaneOf()->toPlainText().contains(shown));
    for (const QChar c : rig.Monitor()) {
        const auto direction = c.direction();
        QVERIFY(direction != QChar::DirRLO && direction != QChar::DirRLI && direction != QChar::DirR);
    }
}

void SecurityTest::manyAccentsCostNothing() {
    MainWindowRig rig;
    StartShowingAll(rig);
    QByteArray accents("e");
    while (accents.size() < 65000)
        accents += "\xCC\x81"; // U+0301 where bytes were taken for UTF-8
    for (int time = 0; time < 10; ++time)
        rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = accents});
    rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = "and on it goes"});
    QTRY_VERIFY(rig.Monitor().contains(u"and on it goes"_s));
    QTRY_VERIFY(TerminalPaneOf()->toPlainText().contains(u"and on it goes"_s));
    QVERIFY(!rig.Monitor().contains(u'\u0301'));
    QVERIFY(!rig.window->grab().isNull());
}

void SecurityTest::theEnginesPortTextIsShownAsItIs() {
    MainWindowRig rig;
    rig.engine.SetPorts("1;<b>Port1</b> %1 &amp;;");
    StartShowingAll(rig);
    QTRY_VERIFY2(rig.Monitor().contains(u"*** <b>Port1</b> %1 &amp"_s), qPrintable(rig.Monitor()));
}

void SecurityTest::noAddressNamesAFileOutsideTheElementFolder() {
    const quint32 seed = ChanceSeed();
    QRandomGenerator random(seed);
    const QStringList pieces{u"/"_s,   u"\\"_s,     u".."_s,   u"."_s,  u"%2f"_s,     u"%2e"_s,
                             u"%5c"_s, u"%00"_s,    u"\n"_s,   u"a"_s,  u":"_s,       u"?x="_s,
                             u"#"_s,   u" "_s,      u"host"_s, u"//"_s, u"~"_s,       u"\0"_s,
                             u"*"_s,   u"\u2044"_s, u"@"_s,    u"\t"_s, u"http://"_s, u"con"_s};
    for (int trial = 0; trial < 100000; ++trial) {
        QString typed = u"host/"_s;
        for (int piece = random.bounded(12); piece >= 0; --piece)
            typed += pieces[random.bounded(static_cast<int>(pieces.size()))];
        const QString name = KepsAddress::FromTyped(typed).fileName;
        const bool isPlain = name != u"." && name != u".." && !name.contains(u'/') && !name.contains(u'\\') &&
                             !name.contains(QChar::Null);
        QVERIFY2(isPlain, qPrintable(u"seed %1: '%2' names '%3'"_s.arg(seed).arg(typed, name)));
    }
}

QTEST_MAIN(SecurityTest)
#include "SecurityTest.moc"
