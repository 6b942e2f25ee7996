#include "app/MainWindowRig.h"
#include "foundation/looks/Contrast.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "support/Screenshots.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyleFactory>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

/// What holds in every window of the program: it can be read, columns are columns, and nothing is nameless.
class EveryWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void everyTextCanBeRead_data();
    void everyTextCanBeRead();
    void columnsAreOfOneWidth();
    void everyControlHasAName();
    void everyAccessKeyOfTheMainWindowIsOneThings();

private:
    int InEveryWindow(const std::function<void(QWidget&)>& look);

    std::unique_ptr<MainWindowRig> m_rig;
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n";

QPalette HighContrast(const QColor& ground, const QColor& text) {
    QPalette palette(text, ground, ground, ground, ground, text, ground);
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Button, ground);
    return palette;
}

using Role = QPalette::ColorRole;

// With which colours a widget draws its text, and on which; nothing for what has no text.
std::optional<std::pair<Role, Role>> RolesOf(const QWidget& widget) {
    if (qobject_cast<const QLineEdit*>(&widget) != nullptr || widget.inherits("QPlainTextEdit") ||
        widget.inherits("QTextEdit") || qobject_cast<const QAbstractItemView*>(&widget) != nullptr)
        return std::pair(QPalette::Text, QPalette::Base);
    if (widget.inherits("QPushButton") || widget.inherits("QComboBox") || widget.inherits("QHeaderView"))
        return std::pair(QPalette::ButtonText, QPalette::Button);
    if (widget.inherits("QLabel") || widget.inherits("QAbstractButton") || widget.inherits("QGroupBox") ||
        widget.inherits("QMenu") || widget.inherits("QMenuBar") || widget.inherits("QTabBar"))
        return std::pair(widget.foregroundRole(), widget.backgroundRole());
    return std::nullopt;
}

QString NameOf(const QWidget& widget) {
    return widget.window()->objectName() + u'.' + widget.objectName() + u' ' +
           QLatin1StringView(widget.metaObject()->className());
}

bool IsFixed(const QFont& font) {
    const QFontMetrics metrics(font);
    return metrics.horizontalAdvance(u'i') == metrics.horizontalAdvance(u'W');
}

} // namespace

void EveryWindowTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
    m_rig->Set("SETUP", "LATITUDE", u"5130.00N"_s);
    m_rig->Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    m_rig->folder.Write(u"Keps/amateur.txt"_s, elements);
    m_rig->clock.Set(DateOf(2027, 3, 1)); // so that the elements' age is amber
    QVERIFY(m_rig->Start());
}

void EveryWindowTest::cleanup() {
    m_rig.reset();
    QApplication::setPalette(QPalette());
}

// Opens the windows one by one; answers how many there were.
int EveryWindowTest::InEveryWindow(const std::function<void(QWidget&)>& look) {
    QStringList seen;
    const auto lookOnce = [&](QWidget& window) {
        if (seen.contains(window.objectName()))
            return;
        seen += window.objectName();
        QApplication::processEvents();
        look(window);
    };
    lookOnce(*m_rig->window);
    const auto open = [&](const std::function<void()>& opener) {
        QTimer::singleShot(0, this, [&] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                lookOnce(*modal);
                modal->close();
            }
        });
        opener();
        QApplication::processEvents();
    };
    for (const char* entry :
         {"mnuTerminal", "mnuMap", "mnuSky", "mnuLocation", "mnuAGWPESetup", "mnuLinkKissSetup",
          "mnuLinkForwarding", "mnuCallsigns", "mnuDownloadKeps", "mnuAbout"})
        open([&] { m_rig->Find<QAction>(entry)->trigger(); });
    for (const char* button : {"cmdPassInfo", "cmdHistory"})
        open([&] { m_rig->Find<QAbstractButton>(button)->click(); });
    open([&] { m_rig->window->ImportHistory(m_rig->window.get()); });
    MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"));
    presenter.OpenHelp({});
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && !window->objectName().isEmpty())
            lookOnce(*window);
    for (const QString& name : {u"frmMap"_s, u"frmSky"_s, u"frmHistory"_s, u"frmTerm"_s})
        if (QWidget* window = WindowNamed(name))
            window->close();
    return static_cast<int>(seen.size());
}

void EveryWindowTest::everyTextCanBeRead_data() {
    QTest::addColumn<QPalette>("palette");
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(u"Fusion"_s));
    QTest::newRow("light") << fusion->standardPalette();
    QTest::newRow("dark") << Screenshots::DarkPalette();
    QTest::newRow("white on black") << HighContrast(Qt::black, Qt::white);
    QTest::newRow("black on white") << HighContrast(Qt::white, Qt::black);
}

void EveryWindowTest::everyTextCanBeRead() {
    QFETCH(const QPalette, palette);
    QApplication::setPalette(palette);
    QStringList faults;
    int texts = 0;
    const int windows = InEveryWindow([&](QWidget& window) {
        for (const QWidget* widget : window.findChildren<QWidget*>()) {
            const auto roles = RolesOf(*widget);
            if (!roles)
                continue;
            for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
                const auto contrastOf = [&](Role text) {
                    return Contrast::Between(widget->palette().color(group, text),
                                             widget->palette().color(group, roles->second));
                };
                ++texts;
                if (contrastOf(roles->first) < Contrast::least)
                    faults +=
                        u"%1, group %2: %3"_s.arg(NameOf(*widget)).arg(group).arg(contrastOf(roles->first));
                if (roles->second == QPalette::Base && !widget->inherits("TerminalPane") && // it has no hint
                    contrastOf(QPalette::PlaceholderText) < Contrast::least)
                    faults += u"hint of "_s + NameOf(*widget);
            }
        }
    });
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    QCOMPARE(windows, 15);
    QVERIFY(texts > 500);
}

void EveryWindowTest::columnsAreOfOneWidth() {
    QStringList wanted{u"frmQIRAN.txtMon"_s,        u"frmTerm.rtbMon"_s,       u"frmTerm.txtTx"_s,
                       u"frmPass.txtInfo"_s,        u"frmCalls.lstCalls"_s,    u"frmCalls.txtCall"_s,
                       u"frmDownload.txtTerm"_s,    u"frmMap.picTime"_s,       u"frmLocation.txtLat"_s,
                       u"frmLocation.labLocator"_s, u"frmAgwpeSetup.txtPort"_s};
    QVERIFY(!IsFixed(QApplication::font()));
    QStringList faults;
    InEveryWindow([&](QWidget& window) {
        for (const QWidget* widget : window.findChildren<QWidget*>())
            if (wanted.removeOne(window.objectName() + u'.' + widget->objectName()) &&
                !IsFixed(widget->font()))
                faults += NameOf(*widget);
    });
    QCOMPARE(faults, QStringList());
    QCOMPARE(wanted, QStringList()); // all were there
}

// What a screen reader says of a control that it comes to.
void EveryWindowTest::everyControlHasAName() {
    QStringList nameless;
    int controls = 0;
    InEveryWindow([&](QWidget& window) {
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(&window) ||
                widget->objectName().startsWith(u"qt_"_s) || widget->focusProxy() != nullptr)
                continue;
            QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(widget);
            ++controls;
            if (seen == nullptr || seen->text(QAccessible::Name).isEmpty())
                nameless += NameOf(*widget);
        }
    });
    QVERIFY(controls > 100);
    QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(u'\n')));
}

// A key that two things answer only moves the focus between them.
void EveryWindowTest::everyAccessKeyOfTheMainWindowIsOneThings() {
    QMap<QString, QStringList> keys;
    const auto note = [&](const QString& caption, const QString& owner) {
        if (const QString key = QKeySequence::mnemonic(caption).toString(); !key.isEmpty())
            keys[key] += owner;
    };
    for (const QAction* entry : m_rig->window->menuBar()->actions())
        note(entry->text(), entry->text());
    for (const auto* button : m_rig->window->findChildren<QAbstractButton*>())
        note(button->text(), button->objectName());
    for (const auto* group : m_rig->window->findChildren<QGroupBox*>())
        note(group->title(), group->objectName());
    QVERIFY(m_rig->Find<QGroupBox>("framGuide") != nullptr);
    QVERIFY2(keys.size() >= 13, qPrintable(QStringList(keys.keys()).join(u' ')));
    for (auto key = keys.cbegin(); key != keys.cend(); ++key)
        QVERIFY2(key->size() == 1, qPrintable(key.key() + u": "_s + key->join(u", "_s)));
}

QTEST_MAIN(EveryWindowTest)
#include "EveryWindowTest.moc"
