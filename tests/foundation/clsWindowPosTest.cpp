#include "foundation/placement/clsWindowPos.h"

#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/Twips.h"
#include "support/TemporaryProgramFolder.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

namespace {

// A window that behaves as the terminal does: made, shown, moved, closed.
class Window : public QWidget {
public:
    explicit Window(clsIni* ini, bool fixed = false)
        : m_place(std::make_unique<clsWindowPos>()) {
        setObjectName(u"frmTerm"_s);
        if (fixed)
            setFixedSize(300, 200);
        else
            resize(300, 200);
        m_place->Init(this, u"TERMINAL"_s, ini);
    }

    clsWindowPos& Place() { return *m_place; }
    void Release() { m_place.reset(); }

protected:
    void moveEvent(QMoveEvent*) override { Record(); }
    void resizeEvent(QResizeEvent*) override { Record(); }

private:
    void Record() {
        if (m_place)
            m_place->RecordPosition();
    }

    std::unique_ptr<clsWindowPos> m_place;
};

// A placement on a window system that places windows itself.
class UnplaceablePos : public clsWindowPos {
protected:
    bool CanPlace() const override { return false; }
};

} // namespace

class clsWindowPosTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    }

    void firstOpeningCentresAndWritesTheKeys();
    void movedAndResizedWindowReopensWhereItWas();
    void offScreenPlaceIsAppliedAsItIs();
    void closedMaximizedReopensMaximizedWithTheEarlierRectangle();
    void maximizedSizeThatComesBeforeTheStateIsNotKept();
    void closedMinimizedSavesTheLastNormalRectangle();
    void restoredWindowStaysMaximizedInTheKeysUntilTheUserResizes();
    void fixedWindowGetsNoSizeKeys();
    void nonsenseInTheKeysDoesNoHarm();
    void unplaceableWindowKeepsTheKeysOfItsPlace();
    void withoutSettingsTheProgramsOwnFileIsUsed();
    void releasingAfterTheWindowIsGoneDoesNoHarm();
    void twipsAndPixelsConvertBothWays();
    void centreOnScreen();

private:
    QString Value(const char* key) const {
        return m_ini->GetIniString(u"SETUP"_s, u"TERMINAL_"_s + QString::fromLatin1(key), u"absent"_s);
    }
    void Set(const char* key, const QString& value) {
        m_ini->SaveIniString(u"SETUP"_s, u"TERMINAL_"_s + QString::fromLatin1(key), value);
    }
    void Show(Window& window) {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
};

void clsWindowPosTest::firstOpeningCentresAndWritesTheKeys() {
    Window window(m_ini.get());
    const QRect screen = window.screen()->geometry();
    const QPoint centred((screen.width() - 300) / 2, (screen.height() - 200) / 2);
    QCOMPARE(window.pos(), centred);
    QCOMPARE(Value("LEFT"), QString::number(centred.x() * 15));
    QCOMPARE(Value("TOP"), QString::number(centred.y() * 15));
    QCOMPARE(Value("WIDTH"), u"4500"_s);
    QCOMPARE(Value("HEIGHT"), u"3000"_s);
    QCOMPARE(Value("MAXIMIZED"), u"FALSE"_s);
}

void clsWindowPosTest::movedAndResizedWindowReopensWhereItWas() {
    {
        Window window(m_ini.get());
        Show(window);
        window.move(41, 53);
        window.resize(420, 310);
        window.close();
    }
    QCOMPARE(Value("LEFT"), u"615"_s);
    QCOMPARE(Value("TOP"), u"795"_s);
    QCOMPARE(Value("WIDTH"), u"6300"_s);
    QCOMPARE(Value("HEIGHT"), u"4650"_s);
    const Window again(m_ini.get());
    QCOMPARE(again.pos(), QPoint(41, 53));
    QCOMPARE(again.size(), QSize(420, 310));
}

void clsWindowPosTest::offScreenPlaceIsAppliedAsItIs() {
    Set("LEFT", u"-30000"_s);
    Set("TOP", u"75000"_s);
    const Window window(m_ini.get());
    QCOMPARE(window.pos(), QPoint(-2000, 5000));
}

void clsWindowPosTest::closedMaximizedReopensMaximizedWithTheEarlierRectangle() {
    {
        Window window(m_ini.get());
        Show(window);
        window.move(41, 53);
        window.resize(420, 310);
        QTRY_VERIFY(window.Place().IsSettled());
        window.showMaximized();
        QTRY_VERIFY(window.isMaximized() && window.width() > 420);
        window.close();
    }
    QCOMPARE(Value("MAXIMIZED"), u"TRUE"_s);
    QCOMPARE(Value("WIDTH"), u"6300"_s);
    Window again(m_ini.get());
    Show(again);
    QTRY_VERIFY(again.isMaximized() && again.width() > 420);
    again.showNormal();
    QTRY_COMPARE(again.size(), QSize(420, 310));
    QTRY_COMPARE(again.pos(), QPoint(41, 53));
}

void clsWindowPosTest::maximizedSizeThatComesBeforeTheStateIsNotKept() {
    {
        Window window(m_ini.get());
        Show(window);
        window.resize(420, 310);
        QTRY_VERIFY(window.Place().IsSettled());
        window.resize(800, 800); // the window system's new size, and only then the new state
        window.setWindowState(Qt::WindowMaximized);
        window.Place().RecordPosition();
        window.close();
    }
    QCOMPARE(Value("MAXIMIZED"), u"TRUE"_s);
    QCOMPARE(Value("WIDTH"), u"6300"_s);
    QCOMPARE(Value("HEIGHT"), u"4650"_s);
}

void clsWindowPosTest::closedMinimizedSavesTheLastNormalRectangle() {
    {
        Window window(m_ini.get());
        Show(window);
        window.move(41, 53);
        window.resize(420, 310);
        window.showMinimized();
        QVERIFY(window.isMinimized());
        window.move(-5000, -5000); // where some window systems put what they hide
        window.close();
    }
    QCOMPARE(Value("LEFT"), u"615"_s);
    QCOMPARE(Value("WIDTH"), u"6300"_s);
    QCOMPARE(Value("MAXIMIZED"), u"FALSE"_s);
}

void clsWindowPosTest::restoredWindowStaysMaximizedInTheKeysUntilTheUserResizes() {
    for (const bool resized : {false, true}) {
        Set("MAXIMIZED", u"TRUE"_s);
        {
            Window window(m_ini.get());
            Show(window);
            QTRY_VERIFY(window.isMaximized());
            window.Place().blnBeenInResize = resized;
            window.showNormal();
            QTRY_VERIFY(!window.isMaximized());
            window.close();
        }
        QCOMPARE(Value("MAXIMIZED"), clsIni::TrueOrFalse(!resized));
    }
}

void clsWindowPosTest::fixedWindowGetsNoSizeKeys() {
    {
        Window window(m_ini.get(), true);
        Show(window);
        window.move(30, 40);
        window.close();
    }
    QCOMPARE(Value("LEFT"), u"450"_s);
    QCOMPARE(Value("WIDTH"), u"absent"_s);
    QCOMPARE(Value("HEIGHT"), u"absent"_s);
}

void clsWindowPosTest::nonsenseInTheKeysDoesNoHarm() {
    Set("LEFT", u"left"_s);
    Set("TOP", QString(400, u'9'));
    Set("WIDTH", u"-700"_s);
    Set("HEIGHT", u"nan"_s);
    Set("MAXIMIZED", u"maybe"_s);
    const Window window(m_ini.get());
    QCOMPARE(window.pos(), QPoint(0, 32767));
    QVERIFY(window.width() >= 0 && window.height() >= 0);
    QVERIFY(!window.isMaximized());
}

void clsWindowPosTest::unplaceableWindowKeepsTheKeysOfItsPlace() {
    Set("LEFT", u"615"_s);
    Set("TOP", u"795"_s);
    QWidget window;
    window.resize(300, 200);
    {
        UnplaceablePos place;
        place.Init(&window, u"TERMINAL"_s, m_ini.get());
        window.move(0, 0); // all that such a window system ever answers
        window.resize(420, 310);
        place.RecordPosition();
    }
    QCOMPARE(Value("LEFT"), u"615"_s);
    QCOMPARE(Value("TOP"), u"795"_s);
    QCOMPARE(Value("WIDTH"), u"6300"_s);
}

void clsWindowPosTest::withoutSettingsTheProgramsOwnFileIsUsed() {
    const QString file = ProgramFolder::OfExecutable().IniFile();
    QFile::remove(file);
    const Window window(nullptr);
    QCOMPARE(QFileInfo(file).fileName(),
             QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName() + QStringLiteral(".INI"));
    QVERIFY(QFile::exists(file));
    QVERIFY(QFile::remove(file));
}

void clsWindowPosTest::releasingAfterTheWindowIsGoneDoesNoHarm() {
    clsWindowPos place;
    auto window = std::make_unique<QWidget>();
    place.Init(window.get(), u"TERMINAL"_s, m_ini.get());
    place.RecordPosition();
    window.reset();
    place.RecordPosition();
}

void clsWindowPosTest::twipsAndPixelsConvertBothWays() {
    QWidget window;
    QCOMPARE(Twips::FromPixels(96, window), 1440.0F * 96.0F / static_cast<float>(window.logicalDpiX()));
    for (const int pixels : {-32767, -1, 0, 1, 7, 1919, 32767})
        QCOMPARE(Twips::PixelsOf(Twips::TextOf(pixels, window), window), pixels);
    const double twipsPerPixel = 1440.0 / window.logicalDpiX();
    QCOMPARE(Twips::ToPixels(2.9 * twipsPerPixel, window), 3);
    QCOMPARE(Twips::ToPixels(2.5 * twipsPerPixel, window), 3); // halves away from zero
    QCOMPARE(Twips::ToPixels(2.4 * twipsPerPixel, window), 2);
    QCOMPARE(Twips::ToPixels(1e300, window), 32767);
    QCOMPARE(Twips::PixelsOf(u" 1440 twips"_s, window), window.logicalDpiX());
    QCOMPARE(Twips::ToText(0.5F), u"0.5"_s);
    QCOMPARE(Twips::ToText(-0.0F), u"0"_s);
}

void clsWindowPosTest::centreOnScreen() {
    QWidget window;
    window.resize(200, 100);
    CentreOnScreen(&window);
    const QRect screen = window.screen()->geometry();
    QCOMPARE(window.pos(), QPoint((screen.width() - 200) / 2, (screen.height() - 100) / 2));
}

QTEST_MAIN(clsWindowPosTest)
#include "clsWindowPosTest.moc"
