#include "app/MainWindowRig.h"
#include "core/Texts.h"
#include "foundation/messages/HelpKey.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "keps/ScriptedServer.h"
#include "support/KeyboardUser.h"
#include "telemetry/plots/ChannelTable.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

using namespace Qt::StringLiterals;

/// From an empty folder to everything that the program shows, with nothing but keys.
class KeyboardWalkTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void withoutFormulaeTheBoxAndItsHelpAreLeftByKeys();
    void aNewcomerComesFromFirstStepsToEverything();

private:
    bool Start();
    bool IsConnected() const { return m_rig->engine.MonitoringCount() == 1; }
    template <class Type>
    static Type* In(const QString& window, const char* name) {
        QWidget* shown = WindowNamed(window);
        return shown == nullptr ? nullptr : shown->findChild<Type*>(QLatin1StringView(name));
    }

    void FirstSteps(const KeyboardUser& user, const QString& elementsAddress);
    void Grids(const KeyboardUser& user);
    void Sky(const KeyboardUser& user);
    void Map(const KeyboardUser& user);
    void Terminal(const KeyboardUser& user);
    void Monitor(const KeyboardUser& user);
    void Dialogs(const KeyboardUser& user);

    std::unique_ptr<MainWindowRig> m_rig;
    std::unique_ptr<MessageBoxPresenter> m_boxes;
    std::unique_ptr<HelpKey> m_key;
    std::unique_ptr<mb> m_messages;
    std::unique_ptr<frmQIRAN> m_window;
    QList<QByteArray> m_sent; // frames that came to the engine
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n"
                            "ISS (ZARYA)\r\n"
                            "1 25544U 98067A   26325.50000000  .00010000  00000+0  18000-3 0  9995\r\n"
                            "2 25544  51.6400 100.0000 0005000  90.0000 270.0000 15.50000000 50008\r\n";

// Reads a message and presses its only button.
void AnswerBox(const KeyboardUser& user, const QString& text) {
    const auto isShown = [&text] {
        const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        return box != nullptr && box->isActiveWindow() && box->text() == text;
    };
    user.WaitUntil(text, isShown);
    user.Press(Qt::Key_Return);
    user.WaitUntil(text + u" has gone"_s, [&] { return !isShown(); });
}

} // namespace

void KeyboardWalkTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
    QFile::remove(m_rig->folder.File(u"formula.txt"_s));
    QFile::remove(m_rig->folder.IniFile());
    m_rig->clock.Set(DateOf(2026, 11, 21) + 0.5);
    m_boxes = std::make_unique<MessageBoxPresenter>(QFINDTESTDATA("../../data/qirandecode.HLP"));
    QVERIFY(
        QFile::copy(QFINDTESTDATA("../../data/qirandecode.HLP"), m_rig->folder.File(u"qirandecode.HLP"_s)));
    QVERIFY(QFile::copy(QFINDTESTDATA("../../data/world.gif"), m_rig->folder.File(u"world.gif"_s)));
    m_key = std::make_unique<HelpKey>(qApp, *m_boxes);
    m_messages = std::make_unique<mb>(*m_boxes);
    m_window = std::make_unique<frmQIRAN>(m_rig->folder.Program(), m_rig->clock, *m_messages, m_rig->notices);
    m_sent.clear();
    connect(&m_rig->engine, &EngineSimulator::FrameReceived, this,
            [this](int, const QByteArray& frame) { m_sent += frame; });
}

void KeyboardWalkTest::cleanup() {
    m_window.reset();
    m_key.reset();
    m_boxes.reset();
    m_rig.reset();
}

// As main() does: from inside the loop.
bool KeyboardWalkTest::Start() {
    return m_window->Load();
}

void KeyboardWalkTest::withoutFormulaeTheBoxAndItsHelpAreLeftByKeys() {
    bool isStarted = true;
    QTimer::singleShot(0, this, [&] { isStarted = Start(); });
    const QString trouble = KeyboardUser::Run([](const KeyboardUser& user) {
        user.See(u"mbMessage"_s);
        user.Press(Qt::Key_F1);
        user.See(u"frmHelp"_s);
        user.Press(Qt::Key_Escape);
        user.SwitchTo(u"mbMessage"_s);
        user.Press(Qt::Key_Escape);
        user.WaitUntil(u"the box has gone"_s, [] { return QApplication::activeModalWidget() == nullptr; });
    });
    QCOMPARE(trouble, QString());
    QVERIFY(!isStarted);
}

// The formula file is the newcomer's to put there; all the rest is told by the panel of first steps.
void KeyboardWalkTest::FirstSteps(const KeyboardUser& user, const QString& elementsAddress) {
    AnswerBox(user, Texts::PositionUnknown());
    AnswerBox(user, u"No Keps found for QIRAN and ISS."_s);
    user.See(u"frmQIRAN"_s);
    user.WaitUntil(u"first steps"_s, [this] {
        return m_window->findChild<QGroupBox*>(u"framGuide"_s)->isVisible() &&
               m_window->findChild<QPushButton*>(u"cmdGuideEngine"_s)->isVisible();
    });
    user.GoRound();

    user.TabTo(u"cmdGuideEngine"_s);
    user.Press(Qt::Key_Space);
    user.See(u"frmAgwpeSetup"_s);
    user.GoRound();
    user.TabTo(u"txtHostAddr"_s);
    user.Replace(u"127.0.0.1"_s);
    user.Press(Qt::Key_Tab);
    user.SeeFocus(u"txtPort"_s);
    user.Type(QString::number(m_rig->engine.Port())); // over what is marked
    user.Press(Qt::Key_Return);
    user.See(u"frmQIRAN"_s);
    user.WaitUntil(u"connected"_s, [this] { return IsConnected(); });

    user.TabTo(u"cmdGuidePosition"_s);
    user.Press(Qt::Key_Space);
    user.See(u"frmLocation"_s);
    user.GoRound();
    user.TabTo(u"txtCallsign"_s);
    user.Type(u"N0CALL-7"_s);
    user.Press(Qt::Key_Tab);
    user.Type(u"51.30N"_s);
    user.Press(Qt::Key_Tab);
    user.Type(u"0.30W"_s);
    user.Press(Qt::Key_Return);
    user.See(u"frmQIRAN"_s);

    user.TabTo(u"cmdGuideElements"_s);
    user.Press(Qt::Key_Space);
    user.See(u"frmDownload"_s);
    user.GoRound();
    user.TabTo(u"txtFile0"_s);
    user.Replace(elementsAddress);
    user.Press(Qt::Key_Return);
    AnswerBox(user, u"The Keps have been downloaded."_s);
    user.See(u"frmQIRAN"_s);
    user.WaitUntil(u"the panel of first steps has gone"_s,
                   [this] { return m_window->findChild<QGroupBox*>(u"framGuide"_s) == nullptr; });
}

void KeyboardWalkTest::Grids(const KeyboardUser& user) {
    user.Ask([this] {
        m_rig->engine.SendHeard(
            {.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = "T#1,10,20,30,40,0,0,00101111,0"});
        return true;
    });
    user.WaitUntil(u"the value in the grid"_s, [this] {
        return m_window->findChild<QTableView*>(u"gTlm2"_s)->model()->index(0, 1).data().toString() ==
               u"10.0"_s;
    });
    user.GoRound();
    user.TabTo(u"gTlm2"_s);
    user.Press(Qt::Key_Right);
    user.Press(Qt::Key_Left);
    user.Press(Qt::Key_Return);
    user.See(u"frmHistory"_s);
    user.WaitUntil(u"the value in the history"_s, [] {
        const auto* table = In<QTableView>(u"frmHistory"_s, "tblChannels");
        for (int row = 0; row < table->model()->rowCount(); ++row)
            if (table->model()->index(row, ChannelTable::Value).data().toString() == u"10.0"_s)
                return true;
        return false;
    });
    user.GoRound();
    user.Press(Qt::Key_D, Qt::AltModifier); // the readings
    user.WaitUntil(u"the page of readings"_s, [] {
        const auto* table = In<QTableView>(u"frmHistory"_s, "tblReadings");
        return table->isVisible() && table->model()->rowCount() == 1;
    });
    user.GoRound();
    user.Press(Qt::Key_X, Qt::AltModifier);
    user.See(u"mnuExport"_s);
    user.Press(Qt::Key_Escape);
    user.Press(Qt::Key_I, Qt::AltModifier);
    user.See(u"frmImport"_s);
    user.GoRound();
    user.Press(Qt::Key_Escape);
    user.See(u"frmHistory"_s);
    user.Press(Qt::Key_Escape);
    user.WaitUntil(u"the history has closed"_s, [] { return WindowNamed(u"frmHistory"_s) == nullptr; });
    user.SwitchTo(u"frmQIRAN"_s);
}

void KeyboardWalkTest::Sky(const KeyboardUser& user) {
    user.TabTo(u"cmdSky"_s);
    user.Press(Qt::Key_Space);
    user.See(u"frmSky"_s);
    user.GoRound();
    user.Press(Qt::Key_Right);
    user.Press(Qt::Key_Escape);
    user.WaitUntil(u"the sky has closed"_s, [] { return WindowNamed(u"frmSky"_s) == nullptr; });
    user.SwitchTo(u"frmQIRAN"_s);

    user.Press(Qt::Key_P, Qt::AltModifier);
    user.See(u"frmPass"_s);
    user.GoRound();
    user.Press(Qt::Key_PageDown);
    user.TabTo(u"txtInfo"_s);
    user.Press(Qt::Key_Home, Qt::ControlModifier);
    for (int line = 0; line < 5; ++line)
        user.Press(Qt::Key_Down);
    user.Press(Qt::Key_Return); // this pass in the sky
    user.WaitUntil(u"the sky of a pass"_s, [] { return WindowNamed(u"frmSky"_s) != nullptr; });
    user.SwitchTo(u"frmSky"_s);
    user.Press(Qt::Key_Escape);
    user.SwitchTo(u"frmQIRAN"_s);
}

void KeyboardWalkTest::Map(const KeyboardUser& user) {
    user.Press(Qt::Key_M, Qt::AltModifier);
    user.See(u"frmMap"_s);
    user.Press(Qt::Key_F10, Qt::ShiftModifier);
    user.See(u"mnuSpeed"_s);
    user.Press(Qt::Key_F);
    user.WaitUntil(u"simulated time"_s,
                   [] { return In<QLabel>(u"frmMap"_s, "labTimeNote")->text().startsWith(u"simulated"_s); });
    user.See(u"frmMap"_s);
    user.Press(Qt::Key_F1);
    user.See(u"frmHelp"_s);
    user.Press(Qt::Key_F, Qt::ControlModifier);
    user.SeeFocus(u"txtFind"_s);
    user.Type(u"horizon"_s);
    user.Press(Qt::Key_Return);
    user.WaitUntil(u"what was looked for"_s, [] {
        return In<QTextBrowser>(u"frmHelp"_s, "txtHelp")->textCursor().selectedText().toLower() ==
               u"horizon"_s;
    });
    user.Press(Qt::Key_Escape);
    user.WaitUntil(u"the help has closed"_s, [] { return WindowNamed(u"frmHelp"_s) == nullptr; });
    user.SwitchTo(u"frmMap"_s);
    user.Press(Qt::Key_Escape);
    user.WaitUntil(u"the map has closed"_s, [] { return WindowNamed(u"frmMap"_s) == nullptr; });
    user.SwitchTo(u"frmQIRAN"_s);
}

void KeyboardWalkTest::Terminal(const KeyboardUser& user) {
    user.Press(Qt::Key_T, Qt::AltModifier);
    user.See(u"frmTerm"_s);
    user.SeeFocus(u"txtTx"_s);
    user.GoRound();
    user.Press(Qt::Key_T, Qt::AltModifier);
    user.SeeFocus(u"txtTo"_s);
    user.Replace(u"CQ"_s);
    user.Press(Qt::Key_R, Qt::AltModifier);
    user.SeeFocus(u"txtTx"_s);
    user.Type(u"hello"_s);
    user.Press(Qt::Key_Return);
    user.WaitUntil(u"the line at the engine"_s, [this] {
        return std::ranges::any_of(m_sent, [](const QByteArray& frame) { return frame.contains("hello"); });
    });
    user.Press(Qt::Key_Up);
    user.WaitUntil(u"the line once more"_s,
                   [] { return In<QLineEdit>(u"frmTerm"_s, "txtTx")->text() == u"hello"_s; });
    user.Press(Qt::Key_F, Qt::AltModifier);
    user.See(u"mnuFile"_s);
    user.Press(Qt::Key_O);
    user.WaitUntil(u"the terminal has closed"_s, [] { return WindowNamed(u"frmTerm"_s) == nullptr; });
    user.SwitchTo(u"frmQIRAN"_s);
}

void KeyboardWalkTest::Monitor(const KeyboardUser& user) {
    user.TabTo(u"txtMon"_s);
    user.Press(Qt::Key_F, Qt::ControlModifier);
    user.SeeFocus(u"txtFindText"_s);
    user.Type(u"T#1"_s);
    user.Press(Qt::Key_Return);
    user.WaitUntil(u"what was looked for"_s, [this] {
        return m_window->findChild<QPlainTextEdit*>(u"txtMon"_s)->textCursor().selectedText() == u"T#1"_s;
    });
    user.Press(Qt::Key_Escape);
    user.SeeFocus(u"txtMon"_s);
}

void KeyboardWalkTest::Dialogs(const KeyboardUser& user) {
    const auto look = [&user](const QString& dialog) {
        user.See(dialog);
        user.GoRound();
        user.Press(Qt::Key_Escape);
        user.See(u"frmQIRAN"_s);
    };
    const auto fromMenu = [&](Qt::Key menu, const QString& name, Qt::Key entry, const QString& dialog) {
        user.Press(menu, Qt::AltModifier);
        user.See(name);
        user.Press(entry);
        look(dialog);
    };
    fromMenu(Qt::Key_O, u"mnuOptions"_s, Qt::Key_C, u"frmCalls"_s);
    fromMenu(Qt::Key_H, u"mnuHelp"_s, Qt::Key_A, u"frmAbout"_s);
    for (const auto& [key, dialog] : {std::pair(Qt::Key_K, u"frmKissSetup"_s),
                                      {Qt::Key_F, u"frmForward"_s},
                                      {Qt::Key_A, u"frmAgwpeSetup"_s}}) {
        user.TabTo(u"labLink"_s);
        user.Press(Qt::Key_Space);
        user.See(u"mnuLink"_s);
        user.Press(key);
        look(dialog);
    }
}

void KeyboardWalkTest::aNewcomerComesFromFirstStepsToEverything() {
    m_rig->folder.Write(u"formula.txt"_s, "A,2,TEMP,X+,0,0,1,0\r\n");
    ScriptedServer server({ScriptedServer::Http("200 OK", elements)});
    const QString address = server.Address() + u"/amateur.txt"_s;
    bool isStarted = false;
    QTimer::singleShot(0, this, [&] { isStarted = Start(); });
    const QString trouble = KeyboardUser::Run([&](const KeyboardUser& user) {
        FirstSteps(user, address);
        Grids(user);
        Sky(user);
        Map(user);
        Terminal(user);
        Monitor(user);
        Dialogs(user);
        user.Press(Qt::Key_X, Qt::AltModifier);
        user.WaitUntil(u"the program has ended"_s, [] {
            return std::ranges::none_of(QApplication::topLevelWidgets(),
                                        [](const QWidget* window) { return window->isVisible(); });
        });
    });
    QCOMPARE(trouble, QString());
    QVERIFY(isStarted);
    QTRY_COMPARE(m_rig->engine.ConnectionCount(), 0);
}

QTEST_MAIN(KeyboardWalkTest)
#include "KeyboardWalkTest.moc"
