#include "app/MainWindowRig.h"
#include "core/LastPass.h"
#include "foundation/text/UtcTime.h"
#include "support/Drop.h"
#include "telemetry/grids/TelemetryGrid.h"
#include "telemetry/grids/ValueAge.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDialog>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

/// What people take out of the windows and put into them by ways that are less usual: from the terminal, by
/// dropping, in another country.
class TypedInTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void theLineUnderThePointerIsCopiedNotTheCarets();
    void theTerminalsMenuReachesTheEditorAndTheLogs();
    void aSearchInTheTerminalIsClosedAlone();
    void onlyControlFLooksForAText();
    void gridsAreCopiedTheSameInEveryLocale_data();
    void gridsAreCopiedTheSameInEveryLocale();
    void readmeHelpAndDialogAgreeOnTheAddresses();
    void anAddressLosesItsSchemeHoweverItComes();
    void decimalDegreesOfALongitudeAreOffered_data();
    void decimalDegreesOfALongitudeAreOffered();
    void droppedDecimalDegreesAreOffered();
    void typedMinutesAreOfferedAsNothingElse();
    void theMapsNoteGoesOnceThereAreElements();
    void thePausedMapFollowsLocalTime();
    void theLastPassIsThePresentOrTheOneBefore();
    void agesAreShownAtTheNextStart();
    void aFreshValueIsPaintedAnewOnceItIsNone();

public Q_SLOTS:
    void TakeUrl(const QUrl& url) { m_opened = url; } // in the file manager's place

private:
    void InDialog(const char* entry, const std::function<void(QWidget*)>& act);
    void Hear(const QByteArray& from, const QByteArray& information);
    void Track();

    std::unique_ptr<MainWindowRig> m_rig;
    QUrl m_opened;
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n";

template <class Type>
Type* InWindow(const char* window, const char* name) {
    QWidget* shown = WindowNamed(QLatin1StringView(window));
    return shown == nullptr ? nullptr : shown->findChild<Type*>(QLatin1StringView(name));
}

template <class Type>
Type* In(QWidget* window, const char* name) {
    return window->findChild<Type*>(QLatin1StringView(name));
}

// Opens the menu over this line by the mouse, and chooses.
void Choose(QPlainTextEdit* pane, int line, const char* name) {
    const QPoint place =
        pane->cursorRect(QTextCursor(pane->document()->findBlockByNumber(line))).center() + QPoint(2, 0);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, pane->viewport()->mapToGlobal(place));
    QApplication::sendEvent(pane->viewport(), &event);
    QVERIFY(QApplication::activePopupWidget() != nullptr);
    pane->findChild<QAction*>(QLatin1StringView(name))->trigger();
    if (QWidget* menu = QApplication::activePopupWidget())
        menu->close();
}

} // namespace

void TypedInTest::init() {
    m_rig = std::make_unique<MainWindowRig>();
    m_rig->Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    m_rig->Set("SETUP", "CALLSIGN", u"N0CALL"_s);
    m_rig->Set("GUIDE", "SHOW", u"FALSE"_s);
    m_rig->clock.Set(DateOf(2026, 11, 21) + 0.5);
    QVERIFY(m_rig->Start());
    QTRY_COMPARE(m_rig->engine.MonitoringCount(), 1);
}

void TypedInTest::cleanup() {
    m_rig.reset();
}

void TypedInTest::InDialog(const char* entry, const std::function<void(QWidget*)>& act) {
    bool isSeen = false;
    QTimer::singleShot(0, this, [&] {
        isSeen = true;
        act(QApplication::activeModalWidget());
        if (QWidget* open = QApplication::activeModalWidget())
            qobject_cast<QDialog*>(open)->reject();
    });
    m_rig->Find<QAction>(entry)->trigger();
    QVERIFY(isSeen);
}

void TypedInTest::Hear(const QByteArray& from, const QByteArray& information) {
    m_rig->engine.SendHeard({.from = from, .to = "APRS", .via = {}, .information = information});
}

// Starts anew as a station that has all it needs.
void TypedInTest::Track() {
    m_rig->window.reset();
    m_rig->Set("SETUP", "LATITUDE", u"5130.00N"_s);
    m_rig->Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    m_rig->folder.Write(u"Keps/amateur.txt"_s, elements);
    QVERIFY(m_rig->Start());
}

void TypedInTest::theLineUnderThePointerIsCopiedNotTheCarets() {
    Hear("G0ABC", "first line");
    Hear("M1XYZ", "second line");
    QTRY_VERIFY(m_rig->Monitor().contains(u"second line"_s));
    auto* pane = m_rig->Find<QPlainTextEdit>("txtMon");
    pane->moveCursor(QTextCursor::End);
    const int line = pane->document()->find(u"first line"_s).block().blockNumber();
    Choose(pane, line, "mnuCopyLine");
    QCOMPARE(QGuiApplication::clipboard()->text(), u"first line"_s);
    Choose(pane, line, "mnuPutInTo");
    QCOMPARE(InWindow<QLineEdit>("frmTerm", "txtTo")->text(), u"G0ABC"_s);
}

void TypedInTest::theTerminalsMenuReachesTheEditorAndTheLogs() {
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    Hear("G0ABC-7", "hello");
    QTRY_VERIFY(pane->toPlainText().contains(u"hello"_s));
    QString shown;
    QTimer::singleShot(0, this, [&] {
        QWidget* editor = QApplication::activeModalWidget();
        shown = In<QLineEdit>(editor, "txtCall")->text();
        qobject_cast<QDialog*>(editor)->reject();
    });
    Choose(pane, pane->document()->find(u"hello"_s).block().blockNumber(), "mnuAddCallsign");
    QCOMPARE(shown, u"G0ABC-7"_s);
    QVERIFY(QDir().mkpath(m_rig->folder.Program().LogsFolder()));
    QDesktopServices::setUrlHandler(u"file"_s, this, "TakeUrl");
    Choose(pane, 0, "mnuOpenLogs");
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_opened.toLocalFile(), m_rig->folder.Program().LogsFolder());
}

void TypedInTest::aSearchInTheTerminalIsClosedAlone() {
    m_rig->Find<QAction>("mnuTerminal")->trigger();
    auto* pane = InWindow<QPlainTextEdit>("frmTerm", "rtbMon");
    QTRY_VERIFY(pane->toPlainText().contains(u"Connected"_s));
    QVERIFY(QTest::qWaitForWindowActive(WindowNamed(u"frmTerm"_s)));
    pane->setFocus();
    QTest::keyClick(pane, Qt::Key_F, Qt::ControlModifier);
    auto* field = pane->findChild<QLineEdit*>(u"txtFindText"_s);
    QVERIFY(field != nullptr && field->isVisible());
    QTest::keyClicks(field, u"connected"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(pane->textCursor().selectedText(), u"Connected"_s);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!field->isVisible());
    QVERIFY(WindowNamed(u"frmTerm"_s) != nullptr);
}

void TypedInTest::onlyControlFLooksForAText() {
    auto* pane = m_rig->Find<QPlainTextEdit>("txtMon");
    pane->setFocus();
    for (const auto modifiers : {Qt::AltModifier, Qt::MetaModifier, Qt::ShiftModifier})
        QTest::keyClick(pane, Qt::Key_F, modifiers);
    QVERIFY(pane->findChild<QLineEdit*>(u"txtFindText"_s) == nullptr);
}

void TypedInTest::gridsAreCopiedTheSameInEveryLocale_data() {
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("fi") << QLocale(QLocale::Finnish);
    QTest::newRow("ja") << QLocale(QLocale::Japanese);
    QTest::newRow("fa") << QLocale(QLocale::Persian);
}

void TypedInTest::gridsAreCopiedTheSameInEveryLocale() {
    QFETCH(const QLocale, locale);
    const QLocale before;
    QLocale::setDefault(locale);
    Hear("XQ9ZZ-1", "T#001,1234.56789,2,3,4,0,0,00101111,0");
    QTRY_COMPARE(m_rig->Cell("gTlm2", 1, TelemetryGrid::ValueA), u"1234.6"_s);
    auto* grid = m_rig->Find<QTableView>("gTlm2");
    grid->setFocus();
    grid->setCurrentIndex(grid->model()->index(0, TelemetryGrid::ValueA));
    QTest::keySequence(grid, QKeySequence::Copy);
    const QString copied = QGuiApplication::clipboard()->text();
    m_rig->Find<QAction>("mnuCopyFull2")->trigger();
    QLocale::setDefault(before);
    QCOMPARE(copied, u"TEMPS\tA\nX+\t1234.6"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"TEMPS\tA\nX+\t1234.56789"_s);
}

void TypedInTest::readmeHelpAndDialogAgreeOnTheAddresses() {
    InDialog("mnuDownloadKeps", [&](QWidget* dialog) {
        QTest::mouseClick(In<QPushButton>(dialog, "cmdUsual"), Qt::LeftButton);
        for (const QString& document : {u"../../README.md"_s, u"../../data/qirandecode.HLP"_s}) {
            QFile file(QFINDTESTDATA(document));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll()).replace(u"&amp;"_s, u"&"_s);
            const QString qiran = In<QLineEdit>(dialog, "txtFile0")->text();
            QVERIFY2(text.contains(qiran.section(u'/', -1)), qPrintable(document));
            QVERIFY2(text.contains(In<QLineEdit>(dialog, "txtFile1")->text()), qPrintable(document));
            QVERIFY2(!document.endsWith(u"HLP") || text.contains(u"https"_s), qPrintable(document));
        }
        QVERIFY(In<QLineEdit>(dialog, "txtFile0")->placeholderText().isEmpty());
    });
}

void TypedInTest::anAddressLosesItsSchemeHoweverItComes() {
    m_rig->Set("KEPS", "FILE_2", u"https://b.org/kept.txt"_s);
    InDialog("mnuDownloadKeps", [&](QWidget* dialog) {
        auto* field = In<QLineEdit>(dialog, "txtFile1");
        QCOMPARE(field->text(), u"b.org/kept.txt"_s);
        field->clear();
        QVERIFY(DropOn(field, u"https://a.org/x.txt"_s));
        QCOMPARE(field->text(), u"a.org/x.txt"_s);
        field->clear();
        field->setFocus();
        QTest::keyClicks(field, u"http://c.org"_s);
        QCOMPARE(field->text(), u"c.org"_s);
    });
}

void TypedInTest::decimalDegreesOfALongitudeAreOffered_data() {
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::newRow("one number") << u"-0.12000"_s << QString() << u"000.07.20W"_s;
    QTest::newRow("a pair") << u"51.50000, -0.12000"_s << u"51.30.00N"_s << u"000.07.20W"_s;
    QTest::newRow("beyond a latitude") << u"151.21"_s << QString() << u"151.12.60E"_s;
}

void TypedInTest::decimalDegreesOfALongitudeAreOffered() {
    QFETCH(const QString, pasted);
    QFETCH(const QString, latitude);
    QFETCH(const QString, longitude);
    InDialog("mnuLocation", [&](QWidget* dialog) {
        auto* field = In<QLineEdit>(dialog, "txtLong");
        auto* offer = In<QPushButton>(dialog, "cmdUseDecimal");
        QGuiApplication::clipboard()->setText(pasted);
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        field->setFocus();
        QTest::keySequence(field, QKeySequence::Paste);
        QVERIFY(offer->isVisible());
        QTest::mouseClick(offer, Qt::LeftButton);
        QCOMPARE(field->text(), longitude);
        QCOMPARE(In<QLineEdit>(dialog, "txtLat")->text(), latitude);
    });
}

void TypedInTest::droppedDecimalDegreesAreOffered() {
    InDialog("mnuLocation", [&](QWidget* dialog) {
        QGuiApplication::clipboard()->setText(u"something else"_s);
        auto* field = In<QLineEdit>(dialog, "txtLat");
        field->setFocus();
        QVERIFY(DropOn(field, u"-33.86, 151.21"_s));
        auto* offer = In<QPushButton>(dialog, "cmdUseDecimal");
        QVERIFY(offer->isVisible());
        QTest::mouseClick(offer, Qt::LeftButton);
        QCOMPARE(field->text(), u"33.51.60S"_s);
        QCOMPARE(In<QLineEdit>(dialog, "txtLong")->text(), u"151.12.60E"_s);
        field->clear();
        QVERIFY(DropOn(field, u"51.30.25N"_s)); // that is degrees and minutes
        QVERIFY(!offer->isVisible());
    });
}

void TypedInTest::typedMinutesAreOfferedAsNothingElse() {
    InDialog("mnuLocation", [&](QWidget* dialog) {
        QGuiApplication::clipboard()->setText(u"48.1, 11.5"_s);
        auto* field = In<QLineEdit>(dialog, "txtLat");
        field->setFocus();
        QTest::keyClicks(field, u"51.30.25N"_s);
        QVERIFY(!In<QPushButton>(dialog, "cmdUseDecimal")->isVisible());
    });
}

void TypedInTest::theMapsNoteGoesOnceThereAreElements() {
    m_rig->Find<QAction>("mnuMap")->trigger();
    const auto* note = InWindow<QLabel>("frmMap", "labMapNote");
    QVERIFY(note->isVisible());
    m_rig->folder.Write(u"Keps/amateur.txt"_s, elements);
    QTRY_VERIFY(!note->isVisible()); // long before the map's next tick
    WindowNamed(u"frmMap"_s)->close();
}

void TypedInTest::thePausedMapFollowsLocalTime() {
    Track();
    m_rig->clock.SetOffsetHours(2);
    m_rig->Find<QAction>("mnuMap")->trigger();
    InWindow<QAction>("frmMap", "mnuSpeedFast")->trigger();
    InWindow<QAction>("frmMap", "mnuSpeedPause")->trigger();
    const auto* note = InWindow<QLabel>("frmMap", "labTimeNote");
    const auto* box = InWindow<QWidget>("frmMap", "picTime");
    QCOMPARE(note->text(), u"simulated, UTC"_s);
    const QString utc = box->accessibleName();
    m_rig->Find<QAction>("mnuUseLocalTime")->trigger();
    QCOMPARE(note->text(), u"simulated, local"_s);
    QVERIFY2(box->accessibleName() != utc && box->accessibleName().startsWith(u"2026-Nov-21 14:"_s),
             qPrintable(box->accessibleName()));
    m_rig->Find<QAction>("mnuUseLocalTime")->trigger();
    QCOMPARE(box->accessibleName(), utc); // no minute has passed
    WindowNamed(u"frmMap"_s)->close();
}

void TypedInTest::theLastPassIsThePresentOrTheOneBefore() {
    auto* ground = m_rig->window->findChild<GroundStation*>();
    QCOMPARE(LastPass(*ground).Start(), m_rig->clock.Milliseconds() - 12 * 3'600'000); // nobody knows a pass
    Track();
    ground = m_rig->window->findChild<GroundStation*>();
    const DateTime now = DateOf(2026, 11, 21) + 0.5;
    const SatPasses answer = ground->cSats.PassesOf(
        {.object = "90417", .latitude = 51.5, .longitude = -0.5, .startUtc = now, .days = 2.0, .most = 3});
    QVERIFY(answer.passes.size() == 3);
    const auto startAt = [&](DateTime at) {
        m_rig->clock.Set(at);
        return LastPass(*ground).Start();
    };
    const auto isRiseOf = [&](qint64 start, std::size_t pass) {
        return std::abs(start - UtcTime::FromDateTime(answer.passes[pass].riseUtc)) < 2000; // ms
    };
    constexpr double minute = 60.0 / secondsPerDay;
    QVERIFY(isRiseOf(startAt(answer.passes[1].riseUtc + minute), 1)); // within it
    QVERIFY(isRiseOf(startAt(answer.passes[1].setUtc + minute), 1));  // it is over
    QVERIFY(isRiseOf(startAt(answer.passes[2].riseUtc - minute), 1)); // the next is about to begin
    QVERIFY(isRiseOf(startAt(answer.passes[2].riseUtc + minute), 2));
}

void TypedInTest::agesAreShownAtTheNextStart() {
    m_rig->Find<QAction>("mnuDimOld1")->trigger();
    m_rig->window.reset();
    QVERIFY(m_rig->Start());
    for (const char* entry : {"mnuDimOld0", "mnuDimOld1", "mnuDimOld2"})
        QVERIFY(m_rig->Find<QAction>(entry)->isChecked());
    QVERIFY(m_rig->Find<QTimer>("timLastPass")->isActive());
    m_rig->Find<QAction>("mnuDimOld2")->trigger();
    QVERIFY(!m_rig->Find<QTimer>("timLastPass")->isActive());
}

void TypedInTest::aFreshValueIsPaintedAnewOnceItIsNone() {
    auto* fresh = m_rig->Find<QTimer>("timFresh2");
    Hear("XQ9ZZ-1", "T#001,10,20,30,40,0,0,00101111,0");
    QTRY_COMPARE(m_rig->Cell("gTlm2", 1, TelemetryGrid::ValueA), u"10.0"_s);
    QVERIFY(!fresh->isActive()); // off, it costs nothing
    m_rig->Find<QAction>("mnuDimOld2")->trigger();
    Hear("XQ9ZZ-1", "T#002,11,20,30,40,0,0,00101111,0");
    QTRY_VERIFY(fresh->isActive());
    QVERIFY(fresh->isSingleShot() && fresh->interval() >= ValueAge::freshFor);
}

QTEST_MAIN(TypedInTest)
#include "TypedInTest.moc"
