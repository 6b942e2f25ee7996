#include "app/MainWindowRig.h"
#include "foundation/looks/Contrast.h"
#include "station/terminal/TerminalPane.h"
#include "support/Screenshots.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTextBlock>
#include <QUrl>

using namespace Qt::StringLiterals;

/// What people take out of the windows, and what they type into them, in the true windows by true keys.
class TakenAlongTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void aGridIsCopiedWithItsNamesAndHeadings();
    void thePanesMenuCopies_data();
    void thePanesMenuCopies();
    void controlFLooksForAText();
    void theCallsignUnderThePointerGoesIntoTo();
    void theCallsignGoesIntoTheEditorAndNowhereElse();
    void theLogFolderOpensOnceThereIsOne();
    void aPastedAddressLosesItsScheme_data();
    void aPastedAddressLosesItsScheme();
    void theUsualAddressesAreOneClickAway();
    void whatWasUnderstoodStandsUnderTheField_data();
    void whatWasUnderstoodStandsUnderTheField();
    void pastedDecimalDegreesAreOffered_data();
    void pastedDecimalDegreesAreOffered();
    void enterWithoutASideSaysWhatIsMissing();
    void lettersThatTheAirCannotCarryAreNamed();
    void theCounterRunsToTheSending();
    void upAndDownWalkTheLinesSent();
    void sendingShowsTheNewestLine();
    void oldValuesAreDimmedWhenAskedFor();
    void everyControlHasAnAccessibleName();

public Q_SLOTS:
    void TakeUrl(const QUrl& url) { m_opened = url; } // in the file manager's place

private:
    void InDialog(const char* entry, const std::function<void(QWidget*)>& act);
    QMenu* MenuOver(QPlainTextEdit* pane, int line);
    void Hear(const QByteArray& from, const QByteArray& information);

    std::unique_ptr<MainWindowRig> m_rig;
    QUrl m_opened;
};

namespace {

const QByteArray telemetry = "T#001,10,20,30,40,0,0,00101111,0";

template <class Type>
Type* InWindow(const char* window, const char* name) {
    QWidget* shown = WindowNamed(QLatin1StringView(window));
    return shown == nullptr ? nullptr : shown->findChild<Type*>(QLatin1StringView(name));
}

template <class Type>
Type* In(QWidget* window, const char* name) {
    return window->findChild<Type*>(QLatin1StringView(name));
}

QAction* Entry(const QMenu* menu, const char* name) {
    for (QAction* entry : menu->actions())
        if (entry->objectName() == QLatin1StringView(name))
            return entry;
    return nullptr;
}

} // namespace

void TakenAlongTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
    m_rig->Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    m_rig->Set("SETUP", "CALLSIGN", u"N0CALL"_s);
    QVERIFY(m_rig->Start());
    QTRY_COMPARE(m_rig->engine.MonitoringCount(), 1);
}

void TakenAlongTest::cleanup() {
    m_rig.reset();
}

void TakenAlongTest::InDialog(const char* entry, const std::function<void(QWidget*)>& act) {
    bool isSeen = false;
    QTimer::singleShot(0, this, [&] {
        isSeen = true;
        QWidget* dialog = QApplication::activeModalWidget();
        act(dialog);
        if (QWidget* open = QApplication::activeModalWidget())
            qobject_cast<QDialog*>(open)->reject();
    });
    m_rig->Find<QAction>(entry)->trigger();
    QVERIFY(isSeen);
}

// The menu as the right mouse button opens it over a line of a pane.
QMenu* TakenAlongTest::MenuOver(QPlainTextEdit* pane, int line) {
    const QTextCursor cursor(pane->document()->findBlockByNumber(line));
    pane->setTextCursor(cursor);
    const QPoint place = pane->cursorRect(cursor).center() + QPoint(2, 0);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, pane->viewport()->mapToGlobal(place));
    QApplication::sendEvent(pane->viewport(), &event);
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

void TakenAlongTest::Hear(const QByteArray& from, const QByteArray& information) {
    m_rig->engine.SendHeard({.from = from, .to = "APRS", .via = {}, .information = information});
}

void TakenAlongTest::aGridIsCopiedWithItsNamesAndHeadings() {
    m_rig->folder.Write(u"formula.txt"_s, "");
    Hear("XQ9ZZ-1", "T#001,1.23456,2,3,4,0,0,00101111,0");
    auto* grid = m_rig->Find<QTableView>("gTlm2");
    QTRY_COMPARE(m_rig->Cell("gTlm2", 1, TelemetryGrid::ValueA), u"1.2"_s);
    grid->setFocus();
    grid->selectionModel()->select(QItemSelection(grid->model()->index(0, TelemetryGrid::ValueA),
                                                  grid->model()->index(1, TelemetryGrid::ValueB)),
                                   QItemSelectionModel::ClearAndSelect);
    QTest::keySequence(grid, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"TEMPS\tA\tB\nX+\t1.2\t\nX-\t\t"_s);
    m_rig->Find<QAction>("mnuCopyFull2")->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), u"TEMPS\tA\tB\nX+\t1.23456\t\nX-\t\t"_s);
    QCOMPARE(m_rig->Find<QAction>("mnuCopyFull2")->text(), u"Copy with &full precision"_s);
    grid->selectAll(); // hidden columns stay behind
    QTest::keySequence(grid, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text().section(u'\n', 0, 0), u"TEMPS\tA\tB"_s);
}

void TakenAlongTest::thePanesMenuCopies_data() {
    QTest::addColumn<bool>("isTerminal");
    QTest::newRow("monitor") << false;
    QTest::newRow("terminal") << true;
}

void TakenAlongTest::thePanesMenuCopies() {
    QFETCH(const bool, isTerminal);
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* pane =
        isTerminal ? InWindow<QPlainTextEdit>("frmTerm", "rtbMon") : m_rig->Find<QPlainTextEdit>("txtMon");
    QTRY_VERIFY(pane->toPlainText().contains(u"Connected"_s));
    QMenu* menu = MenuOver(pane, 0);
    QVERIFY(menu != nullptr);
    QVERIFY(!Entry(menu, "mnuCopy")->isEnabled()); // nothing is marked
    Entry(menu, "mnuCopyLine")->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), pane->document()->firstBlock().text());
    Entry(menu, "mnuSelectAll")->trigger();
    QVERIFY(pane->textCursor().hasSelection());
    menu->close();
    QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
    pane->selectAll();
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(1, 1), pane->mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(pane, &byKey);
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu != nullptr && Entry(menu, "mnuCopy")->isEnabled());
    Entry(menu, "mnuCopy")->trigger();
    QVERIFY(QGuiApplication::clipboard()->text().contains(u"Connected"_s));
    menu->close();
}

void TakenAlongTest::controlFLooksForAText() {
    for (const char* text : {"zeroth needle", "first needle", "second needle"})
        Hear("G0ABC", text);
    QTRY_VERIFY(m_rig->Monitor().contains(u"second"_s));
    auto* pane = m_rig->Find<QPlainTextEdit>("txtMon");
    pane->setFocus();
    pane->moveCursor(QTextCursor::End);
    QTest::keyClick(pane, Qt::Key_F, Qt::ControlModifier);
    auto* field = pane->findChild<QLineEdit*>(u"txtFindText"_s);
    QVERIFY(field != nullptr && field->isVisible());
    QTRY_VERIFY(field->hasFocus());
    QTest::keyClicks(field, u"needle"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(pane->textCursor().selectedText(), u"needle"_s);
    QCOMPARE(pane->textCursor().block().text(), u"second needle"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(pane->textCursor().block().text(), u"first needle"_s);
    QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(pane->textCursor().block().text(), u"second needle"_s);
    field->setText(u"haystack"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(pane->findChild<QLabel*>(u"labFindResult"_s)->text(), u"not found"_s);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!field->isVisible());
    QVERIFY(m_rig->window->isVisible());
}

void TakenAlongTest::theCallsignUnderThePointerGoesIntoTo() {
    Hear("G0ABC-7", "hello\rworld");
    QTRY_VERIFY(m_rig->Monitor().contains(u"world"_s));
    auto* pane = m_rig->Find<QPlainTextEdit>("txtMon");
    const int line = pane->document()->find(u"world"_s).block().blockNumber();
    QMenu* menu = MenuOver(pane, line);
    QCOMPARE(Entry(menu, "mnuPutInTo")->text().remove(u'&'), u"Put callsign in To"_s);
    Entry(menu, "mnuPutInTo")->trigger();
    menu->close();
    QVERIFY(WindowNamed(u"frmTerm"_s) != nullptr);
    QCOMPARE(InWindow<QLineEdit>("frmTerm", "txtTo")->text(), u"G0ABC-7"_s);
    // The first lines are the link's.
    menu = MenuOver(pane, 0);
    QVERIFY(!Entry(menu, "mnuPutInTo")->isEnabled());
    QVERIFY(!Entry(menu, "mnuAddCallsign")->isEnabled());
    menu->close();
    // From the terminal's own pane as well.
    auto* traffic = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    InWindow<QLineEdit>("frmTerm", "txtTo")->clear();
    QTRY_VERIFY(traffic->toPlainText().contains(u"world"_s));
    menu = MenuOver(traffic, traffic->document()->find(u"world"_s).block().blockNumber());
    Entry(menu, "mnuPutInTo")->trigger();
    menu->close();
    QCOMPARE(InWindow<QLineEdit>("frmTerm", "txtTo")->text(), u"G0ABC-7"_s);
}

void TakenAlongTest::theCallsignGoesIntoTheEditorAndNowhereElse() {
    Hear("G0ABC-7", "hello");
    QTRY_VERIFY(m_rig->Monitor().contains(u"hello"_s));
    auto* pane = m_rig->Find<QPlainTextEdit>("txtMon");
    QMenu* menu = MenuOver(pane, pane->document()->find(u"hello"_s).block().blockNumber());
    QString shown;
    QTimer::singleShot(0, this, [&] {
        QWidget* editor = QApplication::activeModalWidget();
        shown = In<QLineEdit>(editor, "txtCall")->text();
        editor->close();
        if (QWidget* open = QApplication::activeModalWidget())
            qobject_cast<QDialog*>(open)->reject();
    });
    Entry(menu, "mnuAddCallsign")->trigger();
    QCOMPARE(shown, u"G0ABC-7"_s);
    QCOMPARE(m_rig->Get("CALLSIGNS", "G0ABC-7"), u"absent"_s);
    menu->close();
}

void TakenAlongTest::theLogFolderOpensOnceThereIsOne() {
    QDesktopServices::setUrlHandler(u"file"_s, this, "TakeUrl");
    m_opened.clear();
    m_rig->presenter.messages.clear();
    auto* logs = m_rig->Find<QPlainTextEdit>("txtMon")->findChild<QAction*>(u"mnuOpenLogs"_s);
    logs->trigger();
    QVERIFY(m_opened.isEmpty());
    QVERIFY(m_rig->presenter.Texts().value(0).startsWith(u"There are no logs yet."_s));
    QVERIFY(QDir().mkpath(m_rig->folder.Program().LogsFolder()));
    logs->trigger();
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_opened.toLocalFile(), m_rig->folder.Program().LogsFolder());
}

void TakenAlongTest::aPastedAddressLosesItsScheme_data() {
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("left");
    QTest::newRow("http") << u"http://a.org/x.txt"_s << u"a.org/x.txt"_s;
    QTest::newRow("https, in capitals") << u"HTTPS://a.org/x.txt"_s << u"a.org/x.txt"_s;
    QTest::newRow("blanks before it") << u"  https://a.org/x.txt"_s << u"a.org/x.txt"_s;
    QTest::newRow("none") << u"a.org/x.txt"_s << u"a.org/x.txt"_s;
    QTest::newRow("inside") << u"a.org/?u=http://b.org"_s << u"a.org/?u=http://b.org"_s;
}

void TakenAlongTest::aPastedAddressLosesItsScheme() {
    QFETCH(const QString, pasted);
    QFETCH(const QString, left);
    InDialog("mnuDownloadKeps", [&](QWidget* dialog) {
        auto* field = In<QLineEdit>(dialog, "txtFile1");
        QGuiApplication::clipboard()->setText(pasted);
        field->setFocus();
        QTest::keySequence(field, QKeySequence::Paste);
        QCOMPARE(field->text(), left);
        QVERIFY(field->toolTip().contains(u"https"_s));
    });
}

void TakenAlongTest::theUsualAddressesAreOneClickAway() {
    InDialog("mnuDownloadKeps", [&](QWidget* dialog) {
        In<QLineEdit>(dialog, "txtFile0")->clear();
        QVERIFY(In<QLineEdit>(dialog, "txtFile1")->placeholderText().contains(u"CATNR=25544"_s));
        QTest::mouseClick(In<QPushButton>(dialog, "cmdUsual"), Qt::LeftButton);
        QCOMPARE(In<QLineEdit>(dialog, "txtFile0")->text(), u"celestrak.org/NORAD/elements/amateur.txt"_s);
        QCOMPARE(In<QLineEdit>(dialog, "txtFile1")->text(),
                 u"celestrak.org/NORAD/elements/gp.php?CATNR=25544&FORMAT=tle"_s);
        Screenshots::Take(*dialog, u"frmDownload"_s);
        // The help names the same two.
        QFile help(QFINDTESTDATA("../../data/qirandecode.HLP"));
        QVERIFY(help.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(help.readAll()).replace(u"&amp;"_s, u"&"_s);
        for (const char* field : {"txtFile0", "txtFile1"})
            QVERIFY(text.contains(In<QLineEdit>(dialog, field)->text()));
    });
}

void TakenAlongTest::whatWasUnderstoodStandsUnderTheField_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("understood");
    QTest::newRow("minutes, not a fraction")
        << u"txtLat"_s << u"51.5N"_s << u"51\u00B0 05.00' N = 51.08333\u00B0"_s;
    QTest::newRow("all of it") << u"txtLat"_s << u"51.30.25S"_s << u"51\u00B0 30.25' S = -51.50417\u00B0"_s;
    QTest::newRow("longitude") << u"txtLong"_s << u"0.7.5W"_s << u"0\u00B0 07.50' W = -0.12500\u00B0"_s;
    QTest::newRow("nothing") << u"txtLat"_s << QString() << QString();
    QTest::newRow("not yet") << u"txtLat"_s << u"51"_s
                             << u"No latitude yet: degrees, minutes and N or S, as in 51.30.25N"_s;
}

void TakenAlongTest::whatWasUnderstoodStandsUnderTheField() {
    QFETCH(const QString, field);
    QFETCH(const QString, typed);
    QFETCH(const QString, understood);
    InDialog("mnuLocation", [&](QWidget* dialog) {
        auto* edit = dialog->findChild<QLineEdit*>(field);
        edit->setFocus();
        QTest::keyClicks(edit, typed);
        QCOMPARE(In<QLabel>(dialog, field == u"txtLat" ? "labLatMeans" : "labLongMeans")->text(), understood);
        QCOMPARE(edit->text(), typed); // the reading stays as it is
        if (typed == u"51.5N"_s)
            Screenshots::Take(*dialog, u"frmLocation"_s);
    });
}

void TakenAlongTest::pastedDecimalDegreesAreOffered_data() {
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::newRow("a pair") << u"51.50000, -0.12000"_s << u"51.30.00N"_s << u"000.07.20W"_s;
    QTest::newRow("with letters") << u"33.86\u00B0 S, 151.21\u00B0 E"_s << u"33.51.60S"_s << u"151.12.60E"_s;
    QTest::newRow("with a blank") << u"51.5 0.25"_s << u"51.30.00N"_s << u"000.15.00E"_s;
    QTest::newRow("one number") << u"51.50000"_s << u"51.30.00N"_s << QString();
    QTest::newRow("off the globe") << u"91.5, 0.25"_s << QString() << QString();
    QTest::newRow("whole numbers") << u"51, 12"_s << QString() << QString();
}

void TakenAlongTest::pastedDecimalDegreesAreOffered() {
    QFETCH(const QString, pasted);
    QFETCH(const QString, latitude);
    QFETCH(const QString, longitude);
    InDialog("mnuLocation", [&](QWidget* dialog) {
        auto* edit = In<QLineEdit>(dialog, "txtLat");
        auto* offer = In<QPushButton>(dialog, "cmdUseDecimal");
        QVERIFY(!offer->isVisible());
        QGuiApplication::clipboard()->setText(pasted);
        edit->setFocus();
        QTest::keySequence(edit, QKeySequence::Paste);
        QCOMPARE(offer->isVisible(), !latitude.isEmpty());
        if (latitude.isEmpty())
            return;
        QVERIFY2(offer->text().contains(latitude) && offer->text().contains(longitude),
                 qPrintable(offer->text()));
        QTest::mouseClick(offer, Qt::LeftButton);
        QCOMPARE(edit->text(), latitude);
        QCOMPARE(In<QLineEdit>(dialog, "txtLong")->text(), longitude);
        QVERIFY(!offer->isVisible());
        QCOMPARE(m_rig->presenter.Texts().filter(u"valid"_s), QStringList());
    });
}

void TakenAlongTest::enterWithoutASideSaysWhatIsMissing() {
    InDialog("mnuCallsigns", [&](QWidget* dialog) {
        auto* call = In<QLineEdit>(dialog, "txtCall");
        const auto* missing = In<QLabel>(dialog, "labMissing");
        QTest::keyClick(call, Qt::Key_Return);
        QCOMPARE(missing->text(), u"Enter a callsign."_s);
        QTest::keyClicks(call, u"g0abc"_s);
        QCOMPARE(missing->text(), QString());
        QTest::keyClick(call, Qt::Key_Return);
        QCOMPARE(missing->text(), u"Choose the side: A or B."_s);
        Screenshots::Take(*dialog, u"frmCalls"_s);
        In<QRadioButton>(dialog, "optB")->click();
        QCOMPARE(missing->text(), QString());
        QTest::keyClick(call, Qt::Key_Return);
        QCOMPARE(In<QListWidget>(dialog, "lstCalls")->currentItem()->text().left(5), u"G0ABC"_s);
        call->clear();
    });
}

void TakenAlongTest::lettersThatTheAirCannotCarryAreNamed() {
    InDialog("mnuLocation", [&](QWidget* dialog) {
        auto* comment = In<QLineEdit>(dialog, "txtComment");
        const auto* note = In<QLabel>(dialog, "labCommentNote");
        comment->insert(u"Grüße"_s);
        QCOMPARE(note->text(), QString());
        comment->insert(u" \u0151\u0151 \U0001F6F0"_s);
        QCOMPARE(note->text(), u"The air cannot carry: \u0151\U0001F6F0 (\"?\" is sent)"_s);
        comment->setText(u"plain"_s);
        QCOMPARE(note->text(), QString());
    });
}

void TakenAlongTest::theCounterRunsToTheSending() {
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* line = InWindow<QLineEdit>("frmTerm", "txtTx");
    const auto* count = InWindow<QLabel>("frmTerm", "labCount");
    QCOMPARE(count->text(), u"0/72"_s);
    QTest::keyClicks(line, u"hello"_s);
    QCOMPARE(count->text(), u"5/72"_s);
    QTest::keyClicks(line, QString(67, u'x')); // the 72nd character sends
    QCOMPARE(count->text(), u"%1/72"_s.arg(line->text().size()));
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(count->text(), u"0/72"_s);
    Screenshots::Take(*WindowNamed(u"frmTerm"_s), u"frmTerm"_s);
}

void TakenAlongTest::upAndDownWalkTheLinesSent() {
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* line = InWindow<QLineEdit>("frmTerm", "txtTx");
    const auto* count = InWindow<QLabel>("frmTerm", "labCount");
    for (const QString& text : {u"one"_s, u"two"_s, QString(72, u'y')}) {
        QTest::keyClicks(line, text);
        if (!line->text().isEmpty())
            QTest::keyClick(line, Qt::Key_Return);
    }
    QTest::keyClicks(line, u"draft"_s);
    QTest::keyClick(line, Qt::Key_Up);
    QCOMPARE(line->text(), QString(72, u'y')); // and is not sent again by itself
    QCOMPARE(count->text(), u"72/72"_s);
    QTest::keyClick(line, Qt::Key_Up);
    QTest::keyClick(line, Qt::Key_Up);
    QCOMPARE(line->text(), u"one"_s);
    QTest::keyClick(line, Qt::Key_Up);
    QCOMPARE(line->text(), u"one"_s);
    QTest::keyClick(line, Qt::Key_Down);
    QCOMPARE(line->text(), u"two"_s);
    QTest::keyClick(line, Qt::Key_Down);
    QTest::keyClick(line, Qt::Key_Down);
    QCOMPARE(line->text(), u"draft"_s);
    QTest::keyClick(line, Qt::Key_Up);
    QTest::keyClick(line, Qt::Key_Up);
    QTest::keyClick(line, Qt::Key_Return); // "two" again
    QVERIFY(line->text().isEmpty());
    QTest::keyClick(line, Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(line->text(), u"two"_s); // as it was: the last line sent
    line->setText(u"mine"_s);
    for (const auto modifiers : {Qt::AltModifier, Qt::MetaModifier, Qt::ShiftModifier})
        QTest::keyClick(line, Qt::Key_Up, modifiers); // other keys walk nowhere
    QCOMPARE(line->text(), u"mine"_s);
}

void TakenAlongTest::sendingShowsTheNewestLine() {
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    for (int i = 0; i < 60; ++i)
        Hear("G0ABC", "line " + QByteArray::number(i));
    QTRY_VERIFY(pane->toPlainText().contains(u"line 59"_s));
    QTRY_VERIFY(pane->verticalScrollBar()->maximum() > 0);
    pane->verticalScrollBar()->setValue(0);
    auto* line = InWindow<QLineEdit>("frmTerm", "txtTx");
    QTest::keyClicks(line, u"hello"_s);
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(pane->verticalScrollBar()->value(), pane->verticalScrollBar()->maximum());
}

void TakenAlongTest::oldValuesAreDimmedWhenAskedFor() {
    m_rig->clock.Set(DateOf(2026, 11, 21) + 0.5);
    Hear("XQ9ZZ-1", telemetry);
    QTRY_COMPARE(m_rig->Cell("gTlm2", 1, TelemetryGrid::ValueA), u"10.0"_s);
    auto* grid = m_rig->Find<QTableView>("gTlm2");
    auto* dim = m_rig->Find<QAction>("mnuDimOld2");
    QVERIFY(dim->isCheckable() && !dim->isChecked()); // off at first
    const QModelIndex cell = grid->model()->index(0, TelemetryGrid::ValueA);
    const auto strongest = [&] {
        QApplication::processEvents();
        const QRect place = grid->visualRect(cell).adjusted(3, 3, -3, -3);
        const QImage drawn = grid->viewport()->grab(place).toImage();
        double best = 1.0;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                best = std::max(best, Contrast::Between(drawn.pixelColor(x, y), drawn.pixelColor(0, 0)));
        return best;
    };
    grid->clearSelection();
    const double plain = strongest();
    m_rig->clock.Set(DateOf(2026, 11, 23)); // a day and a half later
    QCOMPARE(strongest(), plain);
    dim->trigger();
    QCOMPARE(m_rig->Get("GRIDS", "DIM_OLD"), u"TRUE"_s);
    QVERIFY(m_rig->Find<QAction>("mnuDimOld0")->isChecked());
    const double dimmed = strongest();
    QVERIFY2(dimmed < plain && dimmed >= 4.3, qPrintable(u"%1 %2"_s.arg(dimmed).arg(plain)));
    // Heard anew it is no longer old, and bold for a moment.
    const auto isBold = [&] {
        QStyleOptionViewItem option;
        option.initFrom(grid);
        class Open : public QStyledItemDelegate {
        public:
            using QStyledItemDelegate::initStyleOption;
        };
        const auto* delegate = static_cast<const QStyledItemDelegate*>(grid->itemDelegate());
        (delegate->*(&Open::initStyleOption))(&option, cell);
        return option.font.bold();
    };
    QVERIFY(!isBold());
    Hear("XQ9ZZ-1", telemetry);
    QTRY_VERIFY(isBold());
    m_rig->clock.Set(DateOf(2026, 11, 23) + 4.0 / secondsPerDay);
    QVERIFY(!isBold());
    QCOMPARE(strongest(), plain);
    Screenshots::Take(*m_rig->window, u"frmQIRAN-dimmed"_s);
    dim->trigger();
    QCOMPARE(m_rig->Get("GRIDS", "DIM_OLD"), u"FALSE"_s);
}

// What a screen reader says of a control that it comes to.
void TakenAlongTest::everyControlHasAnAccessibleName() {
    QStringList nameless;
    int controls = 0;
    const auto look = [&](QWidget* window) {
        for (QWidget* widget : window->findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(window) ||
                widget->objectName().startsWith(u"qt_"_s) || widget->focusProxy() != nullptr)
                continue;
            QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(widget);
            ++controls;
            if (seen == nullptr || seen->text(QAccessible::Name).isEmpty())
                nameless += window->objectName() + u'.' + widget->objectName() + u' ' +
                            QLatin1StringView(widget->metaObject()->className());
        }
    };
    look(m_rig->window.get());
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    look(WindowNamed(u"frmTerm"_s));
    for (const char* entry : {"mnuLocation", "mnuAGWPESetup", "mnuCallsigns", "mnuDownloadKeps", "mnuAbout"})
        InDialog(entry, look);
    QVERIFY(controls > 40);
    QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(u'\n')));
}

QTEST_MAIN(TakenAlongTest)
#include "TakenAlongTest.moc"
