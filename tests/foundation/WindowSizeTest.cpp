#include "foundation/placement/WindowSize.h"

#include "foundation/placement/PlaceWindow.h"
#include "foundation/settings/clsIni.h"
#include "support/TemporaryProgramFolder.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

// A window as those are that remember their size and nothing else.
class Window : public QWidget {
public:
    explicit Window(clsIni& ini)
        : m_size(*this, ini, u"MAP"_s) {
        if (!m_size.Restore())
            resize(300, 200);
        show();
        m_size.Opened();
    }
    void Save() { m_size.Save(); }

private:
    WindowSize m_size;
};

} // namespace

/// The memory of a window's size, and a window's coming forward.
class WindowSizeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void theUsersSizeComesBack();
    void theSizeThatItOpenedWithIsNotWritten();
    void closedMaximisedTheSizeBeforeItIsKept();
    void closedMinimisedNothingIsWritten();
    void minimisedAndRestoredTheSizeIsTheUsers();
    void aSizeLargerThanTheScreenIsCutToIt();
    void aSizeThatIsNoneIsNotTaken_data();
    void aSizeThatIsNoneIsNotTaken();
    void aWindowComesForwardHiddenOrMinimised();

private:
    QString Stored(const char* key) const;

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
};

void WindowSizeTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
}

QString WindowSizeTest::Stored(const char* key) const {
    return m_ini->GetIniString(u"SETUP"_s, QString::fromLatin1(key), u"absent"_s);
}

void WindowSizeTest::theUsersSizeComesBack() {
    {
        Window window(*m_ini);
        window.resize(350, 260);
        window.Save();
    }
    QCOMPARE(Window(*m_ini).size(), QSize(350, 260));
}

void WindowSizeTest::theSizeThatItOpenedWithIsNotWritten() {
    Window window(*m_ini);
    window.Save();
    QCOMPARE(Stored("MAP_WIDTH"), u"absent"_s);
}

void WindowSizeTest::closedMaximisedTheSizeBeforeItIsKept() {
    {
        Window window(*m_ini);
        window.resize(350, 260);
        QApplication::processEvents();
        window.showMaximized();
        QTRY_VERIFY(window.isMaximized() && window.width() > 350);
        window.Save();
    }
    QCOMPARE(Window(*m_ini).size(), QSize(350, 260));
}

void WindowSizeTest::closedMinimisedNothingIsWritten() {
    Window window(*m_ini);
    window.resize(350, 260);
    window.showMinimized();
    QTRY_VERIFY(window.isMinimized());
    window.Save();
    QCOMPARE(Stored("MAP_WIDTH"), u"absent"_s);
}

void WindowSizeTest::minimisedAndRestoredTheSizeIsTheUsers() {
    {
        Window window(*m_ini);
        window.resize(350, 260);
        window.showMinimized();
        QTRY_VERIFY(window.isMinimized());
        BringForward(&window);
        QTRY_VERIFY(!window.isMinimized());
        window.Save();
    }
    QCOMPARE(Window(*m_ini).size(), QSize(350, 260));
}

void WindowSizeTest::aSizeLargerThanTheScreenIsCutToIt() {
    m_ini->SaveIniString(u"SETUP"_s, u"MAP_WIDTH"_s, u"9000000"_s);
    m_ini->SaveIniString(u"SETUP"_s, u"MAP_HEIGHT"_s, u"3000"_s);
    const Window window(*m_ini);
    QCOMPARE(window.width(), window.screen()->availableSize().width());
    QVERIFY(window.height() < window.screen()->availableSize().height());
}

void WindowSizeTest::aSizeThatIsNoneIsNotTaken_data() {
    QTest::addColumn<QString>("width");
    QTest::newRow("a word") << u"wide"_s;
    QTest::newRow("zero") << u"0"_s;
    QTest::newRow("negative") << u"-3000"_s;
    QTest::newRow("empty") << QString();
}

void WindowSizeTest::aSizeThatIsNoneIsNotTaken() {
    QFETCH(const QString, width);
    m_ini->SaveIniString(u"SETUP"_s, u"MAP_WIDTH"_s, width);
    m_ini->SaveIniString(u"SETUP"_s, u"MAP_HEIGHT"_s, u"3000"_s);
    QCOMPARE(Window(*m_ini).size(), QSize(300, 200));
}

void WindowSizeTest::aWindowComesForwardHiddenOrMinimised() {
    QWidget window;
    QWidget other;
    BringForward(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    window.showMaximized();
    window.showMinimized();
    QTRY_VERIFY(window.isMinimized());
    BringForward(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QVERIFY(!window.isMinimized() && window.isVisible());
    QVERIFY(window.isMaximized()); // as it was before
}

QTEST_MAIN(WindowSizeTest)
#include "WindowSizeTest.moc"
