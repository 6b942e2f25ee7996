#include "telemetry/plots/frmHistory.h"

#include "HistoryRoom.h"
#include "foundation/text/IsoTime.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TestClock.h"
#include "telemetry/plots/HistoryPlot.h"

#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QPrinter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <cmath>

using namespace HistoryRoom;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 now = 1795219200000; // 2026-11-21 00:00 UTC
constexpr qint64 minute = 60'000;

QByteArray Line(qint64 utc, int raw, const char* source = "XQ9ZZ-1") {
    return IsoTime::Milliseconds(utc) + ',' + source + ",A,T#" + QByteArray::number(raw) + ',' +
           QByteArray::number(raw) + ',' + QByteArray::number(raw / 2) + ",3,4,0,0,00111111,0\n";
}

// Passes of ten minutes, every hundred minutes, that end at `now`.
QByteArray Passes(qint64 length) {
    QByteArray lines = header;
    for (qint64 utc = now - length; utc <= now; utc += minute / 2)
        if ((now - utc) % (100 * minute) <= 10 * minute)
            for (const char* source : {"XQ9ZZ-1", "QIRAN-3"})
                lines += Line(utc,
                              150 + static_cast<int>(30 * std::sin(static_cast<double>(utc) / 4e7)) +
                                  (*source == 'X' ? 0 : 9),
                              source);
    return lines;
}

// A station's batteries as they age, in passes of ten minutes, four a day. The newest one ends at `now`.
QByteArray Aged(int minutes) {
    QByteArray lines = header;
    const auto wave = [](double age, double period) { return std::sin(age / period); };
    for (int age = minutes; age >= 0; --age) {
        if (age % 360 > 10)
            continue;
        for (const bool isA : {true, false})
            for (const int kind : {0, 1, 3}) {
                const double battery = 136 + 22 * age / 525600.0 + 9 * wave(age, 97) + (isA ? 0 : 7);
                const double warmth = 120 + 30 * wave(age, 7000) + 12 * wave(age, 5);
                const double first = kind == 3 ? battery : kind == 1 ? warmth - 20 : 90 + 60 * wave(age, 3);
                const double second = kind == 3 ? battery - 3 : warmth;
                lines += IsoTime::Milliseconds(now - age * minute + kind * 10'000 - 40'000) +
                         (isA ? ",XQ9ZZ-1,A" : ",QIRAN-3,B") + ",T#" + QByteArray::number(age % 1000) + ',' +
                         QByteArray::number(std::lround(first)) + ',' +
                         QByteArray::number(std::lround(second)) + ",80,90,0,0,00" + (kind > 1 ? '1' : '0') +
                         (kind % 2 != 0 ? '1' : '0') + "1111,0\n";
            }
    }
    return lines;
}

FormulaTable AllFormulae() {
    FormulaTable table = PowerTimes("0.05");
    const ChannelMap map = Map();
    for (int side = 0; side < ChannelMap::sides; ++side)
        for (int kind = 0; kind < 3; ++kind)
            for (int channel = 0; channel < ChannelMap::channels; ++channel) {
                const ChannelCell* cell = map.At(side, kind, channel);
                const QByteArray row = GridLayout::RowName(cell->grid, cell->row).toByteArray().toUpper();
                const bool isTemperature = cell->grid == 2;
                (void)table.StoreFormulaLine({side == 0 ? "A" : "B", QByteArray::number(kind),
                                              GridLayout::Tag(cell->grid), row, "0", "0",
                                              isTemperature ? "0.35" : "2", isTemperature ? "-30" : "0"});
            }
    return table;
}

} // namespace

class frmHistoryTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void anEmptyHistorySaysWhatWillAppearAndWhenTheNextPassIs();
    void aChannelIsPlottedByItself();
    void tickingAChannelPlotsItToo();
    void theTableShowsEveryChannelAtTheCursorsTime();
    void ctrlAndArrowKeysReadOutReadings();
    void arrowKeysPlusAndMinusMoveAndZoom();
    void backspaceAndDoubleClickGoBack();
    void aTypedRangeIsShown();
    void aWrongRangeIsRefused();
    void whatIsBeingTypedStays();
    void newReadingsAppearWhenTheEndIsInView();
    void newReadingsDoNotMoveAViewOfThePast();
    void timesAreLabelledWithTheirZone();
    void theReadingsInViewAreExported();
    void channelsAndRangeAreRemembered();
    void everyControlIsReachedByKeyboard();
    void theLastPassIsShownAtFirst();
    void passesAreShaded();
    void limitsAreLines();
    void theMouseReadsOutTheNearestReading();
    void wheelAndDragZoomAndMove();
    void aPassIsPlayedAgain();
    void anEventIsJumpedTo();
    void theReadingsInViewAreListed();
    void curvesArePrintedAndCopied();
    void anHourglassShowsWhilePicturesAndPagesAreMade();
    void betterFormulaeMendThePast();
    void importIsOfferedWhereThereIsOne();
    void unchangedSettingsAreNotWritten();
    void escapeClosesAndTellsTheOwner();
    void aFileThatCannotBeReadIsTold();
    void oldValuesAreCalledStale();
    void pictures();

private:
    void Open(const QByteArray& history);
    template <class Widget>
    Widget* Find(const char* name) const {
        auto* found = m_window->findChild<Widget*>(QLatin1String(name));
        if (found == nullptr)
            qFatal("no %s", name);
        return found;
    }
    HistoryPlot& Curves() const { return *Find<HistoryPlot>("pltHistory"); }
    // In the window, for it may be larger than the screen, which holds the mouse itself.
    QPoint InWindow(const QPoint& place) const { return Curves().mapTo(m_window.get(), place); }
    void MoveMouse(const QPoint& place) const {
        QTest::mouseMove(m_window->windowHandle(), InWindow(place));
        QCoreApplication::processEvents();
    }
    QList<QCPAbstractItem*> Items(const char* name) const {
        QList<QCPAbstractItem*> items;
        for (int i = 0; i < Curves().itemCount(); ++i)
            if (Curves().item(i)->objectName() == QLatin1String(name))
                items.append(Curves().item(i));
        return items;
    }
    QString Cell(int row, int column) const {
        const QAbstractItemModel* model = Find<QTableView>("tblChannels")->model();
        return model->index(row, column).data().toString();
    }
    bool IsLoaded(std::size_t channels) const {
        return Curves().Readings().size() == channels && Curves().Channels().size() == channels &&
               (channels == 0 || !Curves().Readings()[0].utc.empty());
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    TestClock m_clock;
    ChannelMap m_map = Map();
    FormulaTable m_formulae;
    LimitTable m_limits;
    std::vector<std::pair<qint64, qint64>> m_passes;
    std::vector<LimitEvent> m_events;
    std::optional<HistoryServices::Decoding> m_decoding;
    std::function<void(QWidget*)> m_import;
    bool m_isLocal = false;
    QString m_file;
    std::unique_ptr<frmHistory> m_window;
};

void frmHistoryTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_clock.SetMilliseconds(now);
    m_ini->SaveIniString(u"HISTORY"_s, u"RANGE"_s, u"24 hours"_s);
    m_presenter.messages.clear();
    m_formulae = PowerTimes("0.05");
    m_limits.clear();
    m_passes.clear();
    m_events.clear();
    m_decoding.reset();
    m_import = {};
    m_file.clear();
    m_isLocal = false;
}

void frmHistoryTest::cleanup() {
    m_window.reset();
}

void frmHistoryTest::Open(const QByteArray& history) {
    if (!history.isEmpty())
        m_folder->Write(u"tlm.txt"_s, history);
    m_window = std::make_unique<frmHistory>(
        HistoryServices{
            .ini = *m_ini,
            .clock = m_clock,
            .messages = m_messages,
            .map = m_map,
            .limits = m_limits,
            .displayTime =
                [this](qint64 utc) { return FromCalendar(Clock::UtcAt(utc)) + (m_isLocal ? 1.0 / 24 : 0); },
            .isLocalTime = [this] { return m_isLocal; },
            .nextPass = [] { return u"The next pass begins at 12:34."_s; },
            .passes = [this](qint64, qint64) { return m_passes; },
            .events = [this] { return m_events; },
            .newDecoding = [this] { return std::exchange(m_decoding, std::nullopt); },
            .choosePrinter =
                [this](QPrinter& printer, QWidget*) {
                    printer.setOutputFormat(QPrinter::PdfFormat);
                    printer.setOutputFileName(m_file);
                    return !m_file.isEmpty();
                },
            .chooseFile = [this](QWidget*, const QString&, const QString&) { return m_file; },
            .import = m_import},
        std::make_unique<TelemetryHistory>(m_folder->File(u"tlm.txt"_s), m_map, m_formulae, Sides()));
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void frmHistoryTest::anEmptyHistorySaysWhatWillAppearAndWhenTheNextPassIs() {
    Open({});
    QTRY_VERIFY(Find<QLabel>("labState")->text().contains(u"No telemetry has been kept yet"));
    QVERIFY(Find<QLabel>("labState")->text().endsWith(u"The next pass begins at 12:34."));
    Screenshots::Take(*m_window, u"history-empty"_s);
}

void frmHistoryTest::aChannelIsPlottedByItself() {
    Open(Passes(1440 * minute));
    m_window->Plot(battAOfB);
    QTRY_VERIFY(IsLoaded(1));
    QCOMPARE(Curves().graphCount(), 1);
    QCOMPARE(Curves().graph(0)->name(), u"POWER Batt A, side B"_s);
    QVERIFY(Curves().graph(0)->dataCount() > 100);
    QVERIFY(!Find<QLabel>("labState")->isVisible());
}

void frmHistoryTest::tickingAChannelPlotsItToo() {
    Open(Passes(1440 * minute));
    m_window->Plot(battA);
    QTRY_VERIFY(IsLoaded(1));
    auto* table = Find<QTableView>("tblChannels");
    table->setFocus();
    table->setCurrentIndex(table->model()->index(2, 0)); // POWER Batt B, side A
    Keys::Press(Qt::Key_Space);
    QTRY_VERIFY(IsLoaded(2));
    QCOMPARE(Curves().graph(1)->name(), u"POWER Batt B, side A"_s);
}

void frmHistoryTest::theTableShowsEveryChannelAtTheCursorsTime() {
    Open(header + Line(now - 30 * minute, 100) + Line(now - 20 * minute, 120));
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"6.00"_s);
    QCOMPARE(Cell(0, ChannelTable::Channel), u"POWER Batt A"_s);
    QCOMPARE(Cell(0, ChannelTable::Raw), u"120"_s);
    QCOMPARE(Cell(0, ChannelTable::Heard), u"2026-11-20 23:40:00"_s);
    QCOMPARE(Cell(0, ChannelTable::Age), u"20 min"_s);
    QCOMPARE(Cell(1, ChannelTable::Value), QString());
    Curves().setFocus();
    QTRY_VERIFY(IsLoaded(2));
    Keys::Press(Qt::Key_Right, Qt::ControlModifier);
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"5.00"_s);
    QCOMPARE(Cell(0, ChannelTable::Age), u"0 s"_s);
}

void frmHistoryTest::ctrlAndArrowKeysReadOutReadings() {
    Open(header + Line(now - 30 * minute, 100) + Line(now - 20 * minute, 120));
    QTRY_VERIFY(IsLoaded(2));
    Curves().setFocus();
    Keys::Press(Qt::Key_Left, Qt::ControlModifier);
    QTRY_COMPARE(Find<QLabel>("labReading")->text(),
                 u"POWER Batt A, side A: 6.00, raw 120, T#120, 2026-11-20 23:40:00 UTC"_s);
    Keys::Press(Qt::Key_Left, Qt::ControlModifier);
    QTRY_COMPARE(Find<QLabel>("labReading")->text(),
                 u"POWER Batt A, side A: 5.00, raw 100, T#100, 2026-11-20 23:30:00 UTC"_s);
}

void frmHistoryTest::arrowKeysPlusAndMinusMoveAndZoom() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    Curves().setFocus();
    const qint64 from = Curves().From();
    const qint64 range = Curves().To() - from;
    Keys::Press(Qt::Key_Left);
    QCOMPARE(Curves().From(), from - range / 10);
    Keys::Press(Qt::Key_Right);
    QCOMPARE(Curves().From(), from);
    Keys::Press(Qt::Key_Plus);
    QVERIFY(Curves().To() - Curves().From() < range);
    Keys::Press(Qt::Key_Minus);
    Keys::Press(Qt::Key_Minus);
    QVERIFY(Curves().To() - Curves().From() > range);
}

void frmHistoryTest::backspaceAndDoubleClickGoBack() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    Curves().setFocus();
    const qint64 from = Curves().From();
    Keys::Press(Qt::Key_Plus);
    QVERIFY(Curves().From() != from);
    Keys::Press(Qt::Key_Backspace);
    QCOMPARE(Curves().From(), from);
    Keys::Press(Qt::Key_Left);
    QTest::mouseDClick(&Curves(), Qt::LeftButton);
    QCOMPARE(Curves().From(), from);
}

void frmHistoryTest::aTypedRangeIsShown() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    Find<QLineEdit>("txtFrom")->setFocus();
    Keys::Replace(u"2026-11-20 10:00"_s);
    Keys::Press(Qt::Key_Tab);
    Keys::Replace(u"2026-11-20 12:30:15"_s);
    Keys::Press(Qt::Key_Return);
    QCOMPARE(Curves().From(), now - 14 * 60 * minute);
    QCOMPARE(Curves().To(), now - 12 * 60 * minute + 30 * minute + 15'000);
}

void frmHistoryTest::aWrongRangeIsRefused() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    const qint64 from = Curves().From();
    Find<QLineEdit>("txtFrom")->setFocus();
    Keys::Replace(u"yesterday"_s);
    Keys::Press(Qt::Key_Return);
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(Curves().From(), from);
}

void frmHistoryTest::whatIsBeingTypedStays() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    Find<QLineEdit>("txtFrom")->setFocus();
    Keys::Replace(u"2026-11-20 10:00"_s);
    Keys::Press(Qt::Key_Tab);
    Curves().SetRange(now - 200 * minute, now);
    QCOMPARE(Find<QLineEdit>("txtFrom")->text(), u"2026-11-20 10:00"_s);
    Keys::Press(Qt::Key_Tab);
    Curves().SetRange(now - 100 * minute, now);
    QCOMPARE(Find<QLineEdit>("txtFrom")->text(), u"2026-11-20 22:20:00"_s);
}

void frmHistoryTest::newReadingsAppearWhenTheEndIsInView() {
    Open(header + Line(now - 30 * minute, 100));
    QTRY_VERIFY(IsLoaded(2));
    const qint64 to = Curves().To();
    QFile file(m_folder->File(u"tlm.txt"_s));
    QVERIFY(file.open(QIODevice::Append));
    file.write(Line(now + 5 * minute, 140));
    file.close();
    QTRY_COMPARE(Curves().Readings()[0].utc.size(), std::size_t{2});
    QCOMPARE(Curves().To(), to + 5 * minute);
}

void frmHistoryTest::newReadingsDoNotMoveAViewOfThePast() {
    Open(header + Line(now - 3000 * minute, 100) + Line(now - 30 * minute, 100));
    QTRY_VERIFY(IsLoaded(2));
    Curves().SetRange(now - 3100 * minute, now - 2900 * minute);
    QFile file(m_folder->File(u"tlm.txt"_s));
    QVERIFY(file.open(QIODevice::Append));
    file.write(Line(now + 5 * minute, 140));
    file.close();
    QTRY_COMPARE(Curves().Readings()[0].utc.size(), std::size_t{3});
    QCOMPARE(Curves().To(), now - 2900 * minute);
}

void frmHistoryTest::timesAreLabelledWithTheirZone() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    QCOMPARE(Curves().axisRect(0)->axis(QCPAxis::atBottom)->label(), u"UTC"_s);
    m_isLocal = true;
    m_window->TimesHaveChanged();
    QCOMPARE(Curves().axisRect(0)->axis(QCPAxis::atBottom)->label(), u"Local time"_s);
    QCOMPARE(Find<QLineEdit>("txtTo")->text(), u"2026-11-21 01:00:00"_s);
}

void frmHistoryTest::theReadingsInViewAreExported() {
    Open(header + Line(now - 3000 * minute, 100) + Line(now - 30 * minute, 120));
    QTRY_VERIFY(IsLoaded(2));
    m_file = m_folder->File(u"out.csv"_s);
    Find<QAction>("mnuExportCsv")->trigger();
    QTRY_COMPARE(m_folder->Read(u"out.csv"_s),
                 QByteArray("utc,side,grid,row,raw,value,unit\n"
                            "2026-11-20T23:30:00.000Z,A,POWER,Batt A,120,6,\n"));
    m_file = m_folder->File(u"out.png"_s);
    Find<QAction>("mnuExportPng")->trigger();
    QVERIFY(m_folder->Read(u"out.png"_s).startsWith("\x89PNG"));
    m_file = m_folder->File(u"out.pdf"_s);
    Find<QAction>("mnuExportPdf")->trigger();
    QVERIFY(m_folder->Read(u"out.pdf"_s).startsWith("%PDF"));
    m_file = m_folder->File(u"missing/out.csv"_s);
    Find<QAction>("mnuExportCsv")->trigger();
    QTRY_COMPARE(m_presenter.messages.size(), 1);
}

void frmHistoryTest::channelsAndRangeAreRemembered() {
    Open(Passes(1440 * minute));
    m_window->Plot(battAOfB);
    QTRY_VERIFY(IsLoaded(1));
    Find<QComboBox>("cboRange")->setCurrentIndex(3);
    Q_EMIT Find<QComboBox>("cboRange")->activated(3);
    m_window->close();
    m_window.reset();
    Open({});
    QTRY_VERIFY(IsLoaded(1));
    QCOMPARE(Curves().Channels(), std::vector{battAOfB});
    QCOMPARE(Find<QComboBox>("cboRange")->currentText(), u"30 days"_s);
    QTRY_COMPARE(Curves().To() - Curves().From(), qint64{30 * 1440} * minute);
}

void frmHistoryTest::everyControlIsReachedByKeyboard() {
    Open(Passes(1440 * minute));
    Find<QComboBox>("cboRange")->setFocus();
    QStringList reached;
    for (int i = 0; i < 14; ++i) {
        reached.append(Keys::Focus());
        Keys::Press(Qt::Key_Tab);
    }
    for (const char* name : {"cboRange", "txtFrom", "txtTo", "cmdShow", "cmdPlay", "cboSpeed", "cmdExport",
                             "pltHistory", "tblChannels"})
        QVERIFY2(reached.contains(QLatin1String(name)), name);
}

void frmHistoryTest::theLastPassIsShownAtFirst() {
    m_ini->DeleteKey(u"HISTORY"_s, u"RANGE"_s);
    Open(header + Line(now - 3000 * minute, 100) + Line(now - 38 * minute, 100) +
         Line(now - 30 * minute, 100));
    QTRY_VERIFY(IsLoaded(2));
    QCOMPARE(Curves().From(), now - 39 * minute);
    QCOMPARE(Curves().To(), now - 29 * minute);
}

void frmHistoryTest::passesAreShaded() {
    m_passes = {{now - 90 * minute, now - 80 * minute}, {now - 30 * minute, now - 20 * minute}};
    Open(Passes(1440 * minute));
    m_window->Plot(battA);
    QTRY_COMPARE(Items("pass").size(), 2);
    const auto* shade = qobject_cast<QCPItemRect*>(Items("pass").back());
    QCOMPARE(shade->topLeft->key(), static_cast<double>(now - 30 * minute) / 1000.0);
    QCOMPARE(shade->bottomRight->key(), static_cast<double>(now - 20 * minute) / 1000.0);
    Curves().SetRange(now - 400 * 1440 * minute, now); // a pass is no pixel wide
    QTRY_COMPARE(Items("pass").size(), 0);
}

void frmHistoryTest::limitsAreLines() {
    m_limits[{0, 0, 1}] = {
        .unit = u"V"_s, .lowAlarm = 6.2, .lowWarning = {}, .highWarning = 8.6, .highAlarm = {}};
    Open(Passes(1440 * minute));
    m_window->Plot(battA);
    QTRY_COMPARE(Items("limit").size(), 2);
    QCOMPARE(qobject_cast<QCPItemStraightLine*>(Items("limit")[0])->point1->value(), 6.2);
    QCOMPARE(Curves().axisRect(0)->axis(QCPAxis::atLeft)->label(), u"POWER [V]"_s);
    QTRY_COMPARE(Cell(0, ChannelTable::Unit), u"V"_s);
}

void frmHistoryTest::theMouseReadsOutTheNearestReading() {
    Open(header + Line(now - 30 * minute, 100) + Line(now - 25 * minute, 120));
    QTRY_VERIFY(IsLoaded(2));
    Curves().SetRange(now - 40 * minute, now);
    Curves().replot();
    const QCPGraph* curve = Curves().graph(0);
    MoveMouse(
        QPointF(curve->keyAxis()->coordToPixel(now / 1000 - 24 * 60), curve->valueAxis()->coordToPixel(5.9))
            .toPoint());
    QTRY_COMPARE(Find<QLabel>("labReading")->text(),
                 u"POWER Batt A, side A: 6.00, raw 120, T#120, 2026-11-20 23:35:00 UTC"_s);
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"6.00"_s);
}

void frmHistoryTest::wheelAndDragZoomAndMove() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    const qint64 range = Curves().To() - Curves().From();
    Curves().replot(); // lays out
    const QPointF middle = Curves().axisRect(0)->center();
    QWheelEvent wheel(middle, Curves().mapToGlobal(middle), {}, QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Curves(), &wheel);
    QCOMPARE(Curves().To() - Curves().From(), std::llround(static_cast<double>(range) / 1.5));
    const qint64 from = Curves().From();
    QTest::mousePress(&Curves(), Qt::LeftButton, Qt::NoModifier, middle.toPoint());
    for (const int way : {20, 60}) {
        const QPointF place = middle + QPointF(way, 0);
        QMouseEvent move(QEvent::MouseMove, place, Curves().mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&Curves(), &move);
    }
    QTest::mouseRelease(&Curves(), Qt::LeftButton, Qt::NoModifier, middle.toPoint() + QPoint(60, 0));
    QTRY_VERIFY(Curves().From() < from);
    QCOMPARE(std::abs(Curves().To() - Curves().From() - std::llround(static_cast<double>(range) / 1.5)) < 2,
             true);
}

void frmHistoryTest::aPassIsPlayedAgain() {
    Open(header + Line(now - 30 * minute, 100) + Line(now - 25 * minute, 120));
    QTRY_VERIFY(IsLoaded(2));
    Curves().SetRange(now - 31 * minute, now - 24 * minute);
    Find<QComboBox>("cboSpeed")->setCurrentIndex(2); // 100 times
    auto* play = Find<QPushButton>("cmdPlay");
    play->click();
    QCOMPARE(Curves().Cursor(), std::optional(now - 31 * minute));
    QTRY_COMPARE(Cell(0, ChannelTable::Value), QString());
    m_clock.Advance(0.9); // a minute and a half of the past
    QTRY_COMPARE(Curves().Cursor(), std::optional(now - 30 * minute + minute / 2));
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"5.00"_s);
    QVERIFY(play->isChecked());
    m_clock.Advance(-60); // set back
    m_clock.Advance(3600);
    QTRY_VERIFY(!play->isChecked());
    QCOMPARE(Curves().Cursor(), std::optional(now - 24 * minute));
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"6.00"_s);
}

void frmHistoryTest::anEventIsJumpedTo() {
    m_events = {{now - 3000 * minute, {1, 0, 1}, 5.0, Level::Normal, Level::LowWarning},
                {now - 30 * minute, {0, 0, 1}, 6.0, Level::LowWarning, Level::Normal}};
    Open(header + Line(now - 3000 * minute, 100, "QIRAN-3") + Line(now - 30 * minute, 120));
    m_window->Plot(battA);
    QTRY_VERIFY(IsLoaded(1));
    Find<QTabWidget>("tabHistory")->setCurrentIndex(2);
    auto* events = Find<QTableView>("tblEvents");
    QCOMPARE(events->model()->rowCount(), 2);
    QCOMPARE(events->model()->index(1, EventTable::Channel).data().toString(), u"POWER Batt A"_s);
    QCOMPARE(events->model()->index(1, EventTable::To).data().toString(), u"low warning"_s);
    events->setFocus();
    events->setCurrentIndex(events->model()->index(1, 0));
    Keys::Press(Qt::Key_Return);
    QCOMPARE(Curves().Cursor(), std::optional(now - 3000 * minute));
    QVERIFY(Curves().From() < now - 3000 * minute && Curves().To() > now - 3000 * minute);
    QTRY_VERIFY(IsLoaded(2)); // its channel too
    Screenshots::Take(*m_window, u"history-events"_s);
}

void frmHistoryTest::theReadingsInViewAreListed() {
    Open(header + Line(now - 3000 * minute, 100) + Line(now - 30 * minute, 100) +
         Line(now - 20 * minute, 120));
    QTRY_VERIFY(IsLoaded(2));
    Find<QTabWidget>("tabHistory")->setCurrentIndex(1);
    auto* readings = Find<QTableView>("tblReadings");
    QTRY_COMPARE(readings->model()->rowCount(), 2);
    QCOMPARE(readings->model()->index(1, ReadingTable::Time).data().toString(), u"2026-11-20 23:40:00"_s);
    QCOMPARE(readings->model()->index(1, ReadingTable::Value).data().toString(), u"6.00"_s);
    QCOMPARE(readings->model()->index(1, ReadingTable::Raw).data().toString(), u"120"_s);
    Curves().SetRange(now - 4000 * minute, now);
    QTRY_COMPARE(readings->model()->rowCount(), 3);
    readings->setFocus();
    readings->setCurrentIndex(readings->model()->index(0, 0));
    Keys::Press(Qt::Key_Return);
    QCOMPARE(Curves().Cursor(), std::optional(now - 3000 * minute));
}

void frmHistoryTest::curvesArePrintedAndCopied() {
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    Find<QAction>("mnuPrintHistory")->trigger(); // he does not want to
    m_file = m_folder->File(u"printed.pdf"_s);
    Find<QAction>("mnuPrintHistory")->trigger();
    QVERIFY(m_folder->Read(u"printed.pdf"_s).startsWith("%PDF"));
    QApplication::clipboard()->clear();
    Find<QAction>("mnuCopyPicture")->trigger();
    QVERIFY(QApplication::clipboard()->pixmap().width() > 100);
}

void frmHistoryTest::anHourglassShowsWhilePicturesAndPagesAreMade() {
    // Looks at the cursor while the axis is drawn.
    class Watch : public QCPAxisTicker {
    public:
        int hourglasses = 0;

    protected:
        QString getTickLabel(double tick, const QLocale& locale, QChar form, int precision) override {
            const QCursor* cursor = QGuiApplication::overrideCursor();
            hourglasses += cursor != nullptr && cursor->shape() == Qt::WaitCursor ? 1 : 0;
            return QCPAxisTicker::getTickLabel(tick, locale, form, precision);
        }
    };
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    const QSharedPointer<Watch> watch(new Watch);
    Curves().axisRect(0)->axis(QCPAxis::atLeft)->setTicker(watch);
    m_file = m_folder->File(u"out"_s);
    for (const char* name : {"mnuExportPng", "mnuExportPdf", "mnuPrintHistory", "mnuCopyPicture"}) {
        watch->hourglasses = 0;
        Find<QAction>(name)->trigger();
        QVERIFY2(watch->hourglasses > 0, name);
        QVERIFY2(QGuiApplication::overrideCursor() == nullptr, name);
    }
}

void frmHistoryTest::betterFormulaeMendThePast() {
    Open(header + Line(now - 30 * minute, 100));
    QTRY_VERIFY(IsLoaded(2));
    QTRY_COMPARE(Cell(0, ChannelTable::Value), u"5.00"_s);
    m_decoding = HistoryServices::Decoding{PowerTimes("0.1"), {{"XQ9ZZ-1", 1}}};
    QTRY_COMPARE(Cell(1, ChannelTable::Value), u"10.00"_s); // of the other side now
    QCOMPARE(Cell(0, ChannelTable::Value), QString());
}

void frmHistoryTest::importIsOfferedWhereThereIsOne() {
    Open({});
    QVERIFY(!Find<QPushButton>("cmdImport")->isVisible());
    const QWidget* over = nullptr;
    m_import = [&](QWidget* window) { over = window; };
    Open({});
    Find<QPushButton>("cmdImport")->click();
    QCOMPARE(over, m_window.get());
}

void frmHistoryTest::unchangedSettingsAreNotWritten() {
    m_ini->DeleteSection(u"HISTORY"_s);
    Open(Passes(1440 * minute));
    QTRY_VERIFY(IsLoaded(2));
    m_window->close();
    QVERIFY(!m_folder->Read(u"QiranDecode.INI"_s).contains("[HISTORY]"));
    QVERIFY(m_folder->Read(u"QiranDecode.INI"_s).contains("HISTORY_WIDTH"));
}

void frmHistoryTest::escapeClosesAndTellsTheOwner() {
    Open(Passes(1440 * minute));
    QSignalSpy unloading(m_window.get(), &frmHistory::ImUnloading);
    Curves().setFocus();
    Keys::Press(Qt::Key_Escape);
    QCOMPARE(unloading.size(), 1);
    QVERIFY(!m_window->isVisible());
}

void frmHistoryTest::aFileThatCannotBeReadIsTold() {
    QVERIFY(QDir().mkpath(m_folder->File(u"tlm.txt"_s)));
    Open({});
    QTRY_VERIFY(Find<QLabel>("labState")->text().startsWith(u"The history cannot be read: "));
}

void frmHistoryTest::oldValuesAreCalledStale() {
    Open(header + Line(now - 1441 * minute, 100));
    QTRY_COMPARE(Cell(0, ChannelTable::Age), u"1 d 0 h, stale"_s);
}

void frmHistoryTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    m_limits[{0, 0, 1}] = {
        .unit = u"V"_s, .lowAlarm = 6.0, .lowWarning = 6.4, .highWarning = {}, .highAlarm = {}};
    m_limits[{1, 0, 1}] = {
        .unit = u"V"_s, .lowAlarm = {}, .lowWarning = {}, .highWarning = {}, .highAlarm = {}};
    for (const auto& [name, length] :
         {std::pair("hour", 60), std::pair("month", 30 * 1440), std::pair("year", 365 * 1440)}) {
        m_window.reset();
        m_passes.clear();
        if (length < 1440)
            m_passes = {{now - 11 * minute, now + minute / 2}};
        m_formulae = AllFormulae();
        Open(Aged(length));
        m_window->resize(1000, 760);
        std::vector<HistoryChannel> shown{battA, battAOfB};
        if (length < 1440)
            shown.insert(shown.end(), {{0, 1, 1}, {1, 1, 2}, {0, 2, 8}, {1, 2, 8}});
        auto* table = static_cast<ChannelTable*>(Find<QTableView>("tblChannels")->model());
        table->SetPlotted(shown);
        Q_EMIT table->PlottedChanged();
        QTRY_VERIFY(IsLoaded(shown.size()));
        Find<QComboBox>("cboRange")->setCurrentIndex(4);
        Q_EMIT Find<QComboBox>("cboRange")->activated(4);
        Curves().setFocus();
        Keys::Press(Qt::Key_Left, Qt::ControlModifier);
        QTRY_VERIFY(Find<QLabel>("labReading")->text().contains(u"T#"));
        QTRY_VERIFY(m_passes.empty() || !Items("pass").empty());
        QTRY_VERIFY(!Cell(0, ChannelTable::Value).isEmpty());
        Screenshots::Take(*m_window, u"history-"_s + QLatin1String(name));
    }
}

QTEST_MAIN(frmHistoryTest)
#include "frmHistoryTest.moc"
