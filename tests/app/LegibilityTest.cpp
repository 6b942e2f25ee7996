#include "app/MainWindowRig.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/looks/Contrast.h"
#include "foundation/messages/HelpKey.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "foundation/placement/BesideWindow.h"
#include "orbit/map/frmMap.h"
#include "support/Screenshots.h"
#include "telemetry/grids/LimitDelegate.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyleFactory>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QWheelEvent>

#include <memory>

using namespace Qt::StringLiterals;

/// What can be read and seen in the true windows: contrast, fonts, sizes, places.
class LegibilityTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void everyTextKeepsItsContrast_data();
    void everyTextKeepsItsContrast();
    void theDisconnectedMonitorCanBeRead_data();
    void theDisconnectedMonitorCanBeRead();
    void aDimmedShadeIsWeakerAndLegible_data();
    void aDimmedShadeIsWeakerAndLegible();
    void aFontWhoseLettersDifferIsReplaced();
    void theTerminalFollowsTheDesktopsTextSize();
    void anOpenTerminalFollowsTheDesktopsTextSize();
    void theTerminalsTextIsChangedByKeysAndWheel();
    void nothingStandsBelowTheNewestMonitorLine();
    void theWindowsRememberTheirSize();
    void aSizeThatNobodyChoseIsNotKept();
    void theHelpStandsBesideTheWindow();
    void theHelpsContentsMarkWhereOneIs();
    void f1WithNothingInFocusOpensTheMainWindowsPage();
    void theMapSaysWhenItSimulates();
    void theMapSaysWhereThePointerIs();
    void aDoubleClickOnTheMapAsksForThePosition_data();
    void aDoubleClickOnTheMapAsksForThePosition();
    void shiftF10OpensTheMapsMenu();
    void aPassLaterThanTodayShowsItsDay();
    void withoutElementsPassesAndMapSayWhatToDo();
    void pageDownScrollsThePassesAtOnce();

private:
    void StartWithElements();

    std::unique_ptr<MainWindowRig> m_rig;
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n";

const QByteArray issElements = "ISS (ZARYA)\r\n"
                               "1 25544U 98067A   26325.50000000  .00010000  00000+0  18000-3 0  9995\r\n"
                               "2 25544  51.6400 100.0000 0005000  90.0000 270.0000 15.50000000 50008\r\n";

void AddPalettes() {
    QTest::addColumn<QPalette>("palette");
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(u"Fusion"_s));
    QTest::newRow("light") << fusion->standardPalette();
    QTest::newRow("dark") << Screenshots::DarkPalette();
    QTest::newRow("white on black") << Screenshots::HighContrast(Qt::black, Qt::white);
    QTest::newRow("black on white") << Screenshots::HighContrast(Qt::white, Qt::black);
    QTest::newRow("yellow on black") << Screenshots::HighContrast(Qt::black, Qt::yellow);
}

// The strongest contrast of a pixel of `area` with the ground that most of it has: what its text is drawn in.
double DrawnContrast(const QImage& area) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < area.height(); ++y)
        for (int x = 0; x < area.width(); ++x)
            ++counts[area.pixel(x, y)];
    QRgb ground = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        if (it.value() > counts.value(ground))
            ground = it.key();
    double best = 1.0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        best = std::max(best, Contrast::Between(QColor(it.key()), QColor(ground)));
    return best;
}

template <class Type>
Type* InWindow(const char* window, const char* name) {
    QWidget* shown = WindowNamed(QLatin1StringView(window));
    return shown == nullptr ? nullptr : shown->findChild<Type*>(QLatin1StringView(name));
}

void Wheel(QWidget* target, int delta, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QWheelEvent event(QPointF(5, 5), target->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, delta), Qt::NoButton,
                      modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

} // namespace

void LegibilityTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
}

void LegibilityTest::cleanup() {
    m_rig.reset();
    QApplication::setPalette(QPalette());
}

void LegibilityTest::StartWithElements() {
    m_rig->Set("SETUP", "LATITUDE", u"5130.00N"_s);
    m_rig->Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    m_rig->folder.Write(u"Keps/amateur.txt"_s, elements);
    m_rig->clock.Set(DateOf(2026, 11, 21) + 0.5);
    QVERIFY(m_rig->Start());
}

void LegibilityTest::everyTextKeepsItsContrast_data() {
    AddPalettes();
}

// Every pair of text and ground with which the windows draw, enabled or not.
void LegibilityTest::everyTextKeepsItsContrast() {
    QFETCH(const QPalette, palette);
    m_rig->folder.Write(u"Keps/old.txt"_s, elements);
    m_rig->clock.Set(DateOf(2027, 3, 1)); // so that the elements' age is amber
    QVERIFY(m_rig->Start());
    QApplication::setPalette(palette);
    QApplication::processEvents();
    for (const char* entry : {"mnuTerminal", "mnuMap"})
        m_rig->Find<QAction>(entry)->trigger();
    QStringList faults;
    int texts = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->inherits("QLabel") || widget->inherits("QAbstractButton") ||
            widget->inherits("QLineEdit") || widget->inherits("QPlainTextEdit") ||
            widget->inherits("QMenu") || widget->inherits("QGroupBox")) {
            const bool isField = widget->inherits("QLineEdit") || widget->inherits("QPlainTextEdit");
            const bool isButton = widget->inherits("QPushButton");
            const auto text = isField    ? QPalette::Text
                              : isButton ? QPalette::ButtonText
                                         : widget->foregroundRole();
            const auto ground = isField    ? QPalette::Base
                                : isButton ? QPalette::Button
                                           : widget->backgroundRole();
            for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
                const double contrast = Contrast::Between(widget->palette().color(group, text),
                                                          widget->palette().color(group, ground));
                ++texts;
                if (contrast < Contrast::least)
                    faults +=
                        u"%1 %2 group %3: %4"_s
                            .arg(QLatin1StringView(widget->metaObject()->className()), widget->objectName())
                            .arg(group)
                            .arg(contrast);
                if (isField) {
                    const double hint =
                        Contrast::Between(widget->palette().color(group, QPalette::PlaceholderText),
                                          widget->palette().color(group, QPalette::Base));
                    if (hint < Contrast::least && !widget->inherits("TerminalPane"))
                        faults += u"hint of %1: %2"_s.arg(widget->objectName()).arg(hint);
                }
            }
        }
    }
    for (const Level level : {Level::LowAlarm, Level::LowWarning, Level::HighWarning, Level::HighAlarm}) {
        const LimitDelegate::Colours colours = LimitDelegate::ColoursOf(level);
        if (Contrast::Between(colours.text, colours.ground) < Contrast::least)
            faults += u"limit"_s;
    }
    QVERIFY(texts > 100);
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::theDisconnectedMonitorCanBeRead_data() {
    AddPalettes();
}

void LegibilityTest::theDisconnectedMonitorCanBeRead() {
    QFETCH(const QPalette, palette);
    m_rig->Set("AGWPE", "HOST_PORT", u"1"_s);
    m_rig->Set("GUIDE", "SHOW", u"FALSE"_s);
    QVERIFY(m_rig->Start());
    QApplication::setPalette(palette);
    QTRY_VERIFY(m_rig->Monitor().contains(u"Will automatically retry"_s));
    auto* monitor = m_rig->Find<QPlainTextEdit>("txtMon");
    QVERIFY(!monitor->isEnabled());
    QApplication::processEvents();
    const QImage drawn = monitor->viewport()->grab(QRect(0, 0, 300, 30)).toImage();
    // Letters drawn smoothly are a little paler than their colour.
    QVERIFY2(DrawnContrast(drawn) >= 4.3, qPrintable(QString::number(DrawnContrast(drawn))));
    Screenshots::Take(*m_rig->window, u"frmQIRAN-disconnected"_s);
}

void LegibilityTest::aDimmedShadeIsWeakerAndLegible_data() {
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");
    QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white);
    QTest::newRow("white on black") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("grey on dark grey") << QColor(0xee, 0xee, 0xee) << QColor(0x35, 0x35, 0x35);
}

void LegibilityTest::aDimmedShadeIsWeakerAndLegible() {
    QFETCH(const QColor, text);
    QFETCH(const QColor, ground);
    const double dimmed = Contrast::Between(Contrast::Dimmed(text, ground), ground);
    QVERIFY(dimmed >= Contrast::least);
    QVERIFY(dimmed < Contrast::Between(text, ground));
    QVERIFY(std::abs(Contrast::Between(Qt::black, Qt::white) - 21.0) < 0.01);
    QVERIFY(std::abs(Contrast::Between(QColor(0x76, 0x76, 0x76), Qt::white) - 4.54) < 0.01);
}

void LegibilityTest::aFontWhoseLettersDifferIsReplaced() {
    QFont proportional = QApplication::font();
    const QFontMetrics before(proportional);
    QVERIFY(before.horizontalAdvance(u'i') != before.horizontalAdvance(u'W'));
    const QFontMetrics fixed(FixedFontLike(proportional));
    QCOMPARE(fixed.horizontalAdvance(u'i'), fixed.horizontalAdvance(u'W'));
    QCOMPARE(QFontMetrics(FixedFont()).horizontalAdvance(u'i'),
             QFontMetrics(FixedFont()).horizontalAdvance(u'W'));
}

void LegibilityTest::theTerminalFollowsTheDesktopsTextSize() {
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(19.0);
    QApplication::setFont(large);
    const bool isStarted = m_rig->Start();
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    const auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    const double grown = pane->font().pointSizeF();
    QApplication::setFont(usual);
    QVERIFY(isStarted);
    QVERIFY2(std::abs(grown - 27 * 72.0 / pane->logicalDpiX()) < 0.01, qPrintable(QString::number(grown)));
}

// The user changes the desktop's text while the terminal stands open; a size of the user's own stays.
void LegibilityTest::anOpenTerminalFollowsTheDesktopsTextSize() {
    QVERIFY(m_rig->Start());
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    QWidget* terminal = WindowNamed(u"frmTerm"_s);
    QVERIFY(QTest::qWaitForWindowActive(terminal));
    auto* line = InWindow<QLineEdit>("frmTerm", "txtTx");
    const auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    const auto pixels = [pane] { return qRound(pane->font().pointSizeF() * pane->logicalDpiX() / 72.0); };
    const QFont usual = QApplication::font();
    const int before = pixels();
    QFont large = usual;
    large.setPointSizeF(19.0);
    QApplication::setFont(large);
    QApplication::processEvents();
    const int grown = pixels();
    const bool isLineLikeIt = line->font() == pane->font();
    QTest::keyClick(line, Qt::Key_Minus, Qt::ControlModifier);
    const int chosen = pixels();
    QApplication::setFont(usual);
    QApplication::processEvents();
    QCOMPARE(grown, 27);
    QVERIFY(before < grown);
    QVERIFY(isLineLikeIt);
    QCOMPARE(chosen, 22);
    QCOMPARE(pixels(), 22);
    QTest::keyClick(line, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(pixels(), before);
}

void LegibilityTest::theTerminalsTextIsChangedByKeysAndWheel() {
    QVERIFY(m_rig->Start());
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    QWidget* terminal = WindowNamed(u"frmTerm"_s);
    QVERIFY(QTest::qWaitForWindowActive(terminal));
    const auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    auto* line = InWindow<QLineEdit>("frmTerm", "txtTx");
    const auto pixels = [pane] { return qRound(pane->font().pointSizeF() * pane->logicalDpiX() / 72.0); };
    const int usual = pixels();
    QTest::keyClick(line, Qt::Key_Plus, Qt::ControlModifier);
    const int larger = pixels();
    QVERIFY(larger > usual);
    QCOMPARE(m_rig->Get("TERMINAL", "FONT_SIZE"), QString::number(larger));
    QCOMPARE(line->font(), pane->font());
    QTest::keyClick(line, Qt::Key_Minus, Qt::ControlModifier);
    QCOMPARE(pixels(), usual);
    QTest::keyClick(line, Qt::Key_Minus, Qt::ControlModifier);
    QVERIFY(pixels() < usual);
    for (const auto modifiers : {Qt::NoModifier, Qt::MetaModifier})
        Wheel(pane->viewport(), 120, modifiers); // that scrolls
    QVERIFY(pixels() < usual);
    Wheel(pane->viewport(), 120);
    Wheel(pane->viewport(), 60);
    QCOMPARE(pixels(), usual);
    Wheel(pane->viewport(), 60);
    QCOMPARE(pixels(), larger);
    for (int i = 0; i < 9; ++i)
        Wheel(pane->viewport(), 120);
    QCOMPARE(pixels(), 27); // there is none larger
    QTest::keyClick(line, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(pixels(), usual);
    QCOMPARE(m_rig->Get("TERMINAL", "FONT_SIZE"), u"0"_s);
}

void LegibilityTest::nothingStandsBelowTheNewestMonitorLine() {
    m_rig->Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(m_rig->Start());
    QTRY_COMPARE(m_rig->engine.MonitoringCount(), 1);
    for (int i = 0; i < 60; ++i)
        m_rig->engine.SendHeard(
            {.from = "G0ABC", .to = "APRS", .via = {}, .information = "line " + QByteArray::number(i)});
    QTRY_VERIFY(m_rig->Monitor().contains(u"line 59"_s));
    auto* monitor = m_rig->Find<QPlainTextEdit>("txtMon");
    QApplication::processEvents();
    QVERIFY(monitor->verticalScrollBar()->maximum() > 0);
    QTextCursor newest(monitor->document());
    newest.movePosition(QTextCursor::End);
    newest.movePosition(QTextCursor::PreviousCharacter); // before the last line end
    const int below = monitor->viewport()->height() - monitor->cursorRect(newest).bottom();
    QVERIFY2(below >= 0 && below <= monitor->fontMetrics().lineSpacing(), qPrintable(QString::number(below)));
    QVERIFY(monitor->toPlainText().endsWith(u"line 59\n"_s));
    Screenshots::Take(*m_rig->window, u"frmQIRAN-monitor"_s);
}

void LegibilityTest::theWindowsRememberTheirSize() {
    m_rig->Set("GUIDE", "SHOW", u"FALSE"_s);
    StartWithElements();
    clsIni places(m_rig->folder.IniFile());
    MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"), &places);
    const auto pass = [this](const std::function<void(QWidget*)>& act) {
        QTimer::singleShot(0, this, [act] {
            act(QApplication::activeModalWidget());
            QApplication::activeModalWidget()->close();
        });
        m_rig->Find<QPushButton>("cmdPassInfo")->click();
    };
    const QSize mainSize = m_rig->window->size() + QSize(0, 17);
    m_rig->window->resize(mainSize);
    m_rig->Find<QAction>("mnuMap")->trigger();
    WindowNamed(u"frmMap"_s)->resize(500, 260);
    WindowNamed(u"frmMap"_s)->close();
    presenter.OpenHelp({});
    const QSize helpSize = WindowNamed(u"frmHelp"_s)->size() - QSize(40, 30);
    WindowNamed(u"frmHelp"_s)->resize(helpSize);
    WindowNamed(u"frmHelp"_s)->close();
    QSize passSize;
    pass([&](QWidget* window) {
        passSize = window->size() + QSize(10, -20);
        window->resize(passSize);
    });
    m_rig->window->close();
    m_rig->window.reset();

    QVERIFY(m_rig->Start());
    QCOMPARE(m_rig->window->size().height(), mainSize.height());
    m_rig->Find<QAction>("mnuMap")->trigger();
    QCOMPARE(WindowNamed(u"frmMap"_s)->size(), QSize(500, 260));
    WindowNamed(u"frmMap"_s)->close();
    MessageBoxPresenter later(QFINDTESTDATA("../../data/qirandecode.HLP"), &places);
    later.OpenHelp({});
    QCOMPARE(WindowNamed(u"frmHelp"_s)->size(), helpSize);
    pass([&](QWidget* window) { QCOMPARE(window->size(), passSize); });
}

void LegibilityTest::aSizeThatNobodyChoseIsNotKept() {
    StartWithElements();
    m_rig->window->close();
    QCOMPARE(m_rig->Get("SETUP", "MAIN_WIDTH"), u"absent"_s);
}

void LegibilityTest::theHelpStandsBesideTheWindow() {
    const QRect screen(0, 0, 1366, 768);
    QCOMPARE(BesideWindow({400, 300}, {100, 100, 500, 400}, screen),
             QRect(600, 100, 400, 300)); // to the right
    QCOMPARE(BesideWindow({400, 300}, {800, 100, 500, 400}, screen),
             QRect(400, 100, 400, 300)); // to the left
    QCOMPARE(BesideWindow({1300, 300}, {10, 10, 1300, 400}, screen), QRect(10, 410, 1300, 300));  // below
    QCOMPARE(BesideWindow({1300, 300}, {10, 400, 1300, 360}, screen), QRect(10, 100, 1300, 300)); // above
    const QRect squeezed = BesideWindow({2000, 2000}, {10, 10, 300, 300}, screen);
    QVERIFY(screen.contains(squeezed));

    QVERIFY(m_rig->Start());
    m_rig->window->resize(200, 100);
    m_rig->window->move(0, 0);
    QVERIFY(QTest::qWaitForWindowActive(m_rig->window.get()));
    MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"));
    presenter.OpenHelp({});
    const QWidget* help = WindowNamed(u"frmHelp"_s);
    QVERIFY(help->screen()->availableGeometry().contains(help->frameGeometry()));
    QVERIFY(help->pos() != m_rig->window->pos());
}

void LegibilityTest::theHelpsContentsMarkWhereOneIs() {
    MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"));
    presenter.OpenHelp({u"frmMap"_s});
    auto* contents = InWindow<QTreeWidget>("frmHelp", "lstContents");
    QTRY_COMPARE(contents->currentItem()->text(0), u"The map"_s);
    InWindow<QTextBrowser>("frmHelp", "txtHelp")->verticalScrollBar()->setValue(0);
    QCOMPARE(contents->currentItem()->text(0), u"Welcome to QiranDecode"_s);
    QApplication::processEvents();
    for (QTreeWidgetItemIterator item(contents); *item != nullptr; ++item) {
        QCOMPARE((*item)->toolTip(0), (*item)->text(0));
        const QRect place = contents->visualItemRect(*item);
        if (place.isEmpty()) // folded in
            continue;
        const int width = QFontMetrics(contents->font()).horizontalAdvance((*item)->text(0));
        QVERIFY2(place.left() + width <= contents->viewport()->width(), qPrintable((*item)->text(0)));
    }
    Screenshots::Take(*WindowNamed(u"frmHelp"_s), u"frmHelp"_s);
}

void LegibilityTest::f1WithNothingInFocusOpensTheMainWindowsPage() {
    QVERIFY(m_rig->Start());
    MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"));
    const HelpKey key(qApp, presenter);
    if (QWidget* focused = QApplication::focusWidget())
        focused->clearFocus();
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_F1);
    QTRY_VERIFY(WindowNamed(u"frmHelp"_s) != nullptr);
    QCOMPARE(InWindow<QTextBrowser>("frmHelp", "txtHelp")->textCursor().block().text(),
             u"The main window at a glance"_s);
}

void LegibilityTest::theMapSaysWhenItSimulates() {
    StartWithElements();
    m_rig->Find<QAction>("mnuMap")->trigger();
    const auto* note = InWindow<QLabel>("frmMap", "labTimeNote");
    auto* box = InWindow<QWidget>("frmMap", "picTime");
    QCOMPARE(note->text(), u"UTC"_s);
    const QColor ground = box->palette().color(QPalette::Base);
    InWindow<QAction>("frmMap", "mnuSpeedFast")->trigger();
    QCOMPARE(note->text(), u"simulated, UTC"_s);
    QVERIFY(note->isVisible());
    QVERIFY(box->palette().color(QPalette::Base) != ground);
    QCOMPARE(note->palette().color(QPalette::Base), box->palette().color(QPalette::Base));
    QVERIFY(Contrast::Between(box->palette().color(QPalette::Text), box->palette().color(QPalette::Base)) >=
            4.5);
    Screenshots::Take(*WindowNamed(u"frmMap"_s), u"frmMap-simulated"_s);
    InWindow<QAction>("frmMap", "mnuSpeedReset")->trigger();
    QCOMPARE(note->text(), u"UTC"_s);
    QCOMPARE(box->palette().color(QPalette::Base), ground);
    m_rig->Find<QAction>("mnuUseLocalTime")->trigger();
    InWindow<QAction>("frmMap", "mnuSpeedReset")->trigger();
    QCOMPARE(note->text(), u"local"_s);
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::theMapSaysWhereThePointerIs() {
    StartWithElements();
    m_rig->Find<QAction>("mnuMap")->trigger();
    auto* map = InWindow<QWidget>("frmMap", "picMap");
    map->resize(720, 360);
    QTest::mouseMove(map, QPoint(180, 90)); // a quarter from the left and from the top
    const auto* pointer = InWindow<QLabel>("frmMap", "labPointer");
    QTRY_VERIFY(pointer->isVisible());
    const MapGeometry::GeoPoint point =
        MapGeometry::ToPoint({.x = 180, .y = 90}, {.width = 720, .height = 360});
    QCOMPARE(point.longitude, -90.0);
    QCOMPARE(point.latitude, 45.0);
    QVERIFY2(pointer->text().contains(u'N') && pointer->text().contains(u'W'), qPrintable(pointer->text()));
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::aDoubleClickOnTheMapAsksForThePosition_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("yes") << 6 << true;
    QTest::newRow("no") << 7 << false;
}

void LegibilityTest::aDoubleClickOnTheMapAsksForThePosition() {
    QFETCH(const int, answer);
    QFETCH(const bool, isTaken);
    StartWithElements();
    m_rig->presenter.messages.clear();
    m_rig->presenter.answer = answer;
    m_rig->Find<QAction>("mnuMap")->trigger();
    auto* map = InWindow<QWidget>("frmMap", "picMap");
    QTest::mouseDClick(map, Qt::LeftButton, {}, QPoint(map->width() / 4, map->height() / 4));
    const QString question = m_rig->presenter.Texts().last();
    QVERIFY2(question.startsWith(u"Use "_s) && question.endsWith(u" as your station's position?"_s),
             qPrintable(question));
    QCOMPARE(m_rig->presenter.messages.last().style & 0x3F, 32 | 4);
    const QString latitude = m_rig->Get("SETUP", "LATITUDE");
    const QString longitude = m_rig->Get("SETUP", "LONGITUDE");
    QCOMPARE(latitude != u"5130.00N"_s, isTaken);
    if (isTaken) {
        const QString shown =
            latitude.left(2) + u'.' + latitude.mid(2) + u' ' + longitude.left(3) + u'.' + longitude.mid(3);
        QVERIFY2(question.contains(shown), qPrintable(question + shown));
        QCOMPARE(m_rig->Get("SETUP", "LOCATOR").size(), 6);
    }
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::shiftF10OpensTheMapsMenu() {
    StartWithElements();
    m_rig->Find<QAction>("mnuMap")->trigger();
    QTest::keyClick(WindowNamed(u"frmMap"_s), Qt::Key_F10, Qt::ShiftModifier);
    QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
    QCOMPARE(QApplication::activePopupWidget()->objectName(), u"mnuSpeed"_s);
    QApplication::activePopupWidget()->close();
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::aPassLaterThanTodayShowsItsDay() {
    m_rig->folder.Write(u"Keps/iss.txt"_s, issElements);
    m_rig->Set("SETUP", "OBJ_INDEX", u"1"_s); // which passes only at some hours of the day
    StartWithElements();
    const auto* due = m_rig->Find<QLabel>("labDue");
    QStringList tips;
    for (int hour = 0; hour < 24; ++hour) {
        m_rig->clock.Set(DateOf(2026, 11, 22) + (hour + 0.9) / 24.0);
        m_rig->Find<QPushButton>("cmdChangeSat")->click(); // there and back: refreshed at once
        m_rig->Find<QPushButton>("cmdChangeSat")->click();
        if (due->text() == u"Now!" || due->text() == u"-")
            QCOMPARE(due->toolTip(), QString());
        else {
            const bool isToday = due->text() > u"%1:54:00"_s.arg(hour, 2, 10, QChar(u'0'));
            QCOMPARE(due->toolTip(), isToday ? QString() : u"2026-Nov-23 "_s + due->text());
            if (!isToday)
                tips += due->toolTip();
        }
    }
    QVERIFY(!tips.isEmpty());
}

void LegibilityTest::withoutElementsPassesAndMapSayWhatToDo() {
    StartWithElements();
    m_rig->Find<QPushButton>("cmdChangeSat")->click(); // to the ISS, of which there are none
    QTimer::singleShot(0, this, [] {
        auto* table = QApplication::activeModalWidget()->findChild<QPlainTextEdit*>(u"txtInfo"_s);
        QCOMPARE(table->toPlainText(), QString());
        QVERIFY2(table->placeholderText().contains(u"ISS"_s) &&
                     table->placeholderText().contains(u"Download Keps"_s),
                 qPrintable(table->placeholderText()));
        QApplication::activeModalWidget()->close();
    });
    m_rig->Find<QPushButton>("cmdPassInfo")->click();
    m_rig->Find<QAction>("mnuMap")->trigger();
    const auto* note = InWindow<QLabel>("frmMap", "labMapNote");
    QVERIFY(note->isVisible());
    QVERIFY2(note->text().contains(u"ISS"_s) && note->text().contains(u"Download Keps"_s),
             qPrintable(note->text()));
    m_rig->Find<QPushButton>("cmdChangeSat")->click();
    QVERIFY(!note->isVisible());
    WindowNamed(u"frmMap"_s)->close();
}

void LegibilityTest::pageDownScrollsThePassesAtOnce() {
    StartWithElements();
    int from = -1;
    int to = -1;
    QTimer::singleShot(0, this, [&] {
        QWidget* window = QApplication::activeModalWidget();
        window->resize(window->width(), 10);
        QApplication::processEvents();
        auto* table = window->findChild<QPlainTextEdit*>(u"txtInfo"_s);
        from = table->verticalScrollBar()->value();
        QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : window,
                        Qt::Key_PageDown);
        to = table->verticalScrollBar()->value();
        window->close();
    });
    m_rig->Find<QPushButton>("cmdPassInfo")->click();
    QVERIFY2(to > from, qPrintable(u"%1 %2"_s.arg(from).arg(to)));
}

QTEST_MAIN(LegibilityTest)
#include "LegibilityTest.moc"
