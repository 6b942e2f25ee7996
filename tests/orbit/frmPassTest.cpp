#include "orbit/predictions/frmPass.h"

#include "foundation/text/UtcTime.h"
#include "orbit/FakeLibrary.h"
#include "orbit/SkyRig.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QWindow>

namespace {

std::string Passes(int count) {
    std::string list;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            list += ',';
        list += FormatDateTime(DateOf(2026, 11, 21) + 0.6 + i * 0.11, u"(yyyymmddhhnnss").toStdString() +
                " 10 20 " + std::to_string(i % 90) + " 754)";
    }
    return list;
}

struct Fixture {
    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    TestClock clock{DateOf(2026, 11, 21) + 0.5};
    FakeLibrary* library = new FakeLibrary;
    clsSats sats{std::unique_ptr<OrbitLibrary>(library), clock};
    TrackedSatellites satellites;

    explicit Fixture(int passes = 20) {
        satellites.LoadSettings(ini);
        library->passes = Passes(passes);
        library->position = [](const std::string&, double utc) {
            return LibraryPosition{.azimuth = std::fmod(utc * 1000, 360) * radian};
        };
    }
    QString Table() const { return sats.strPassInfo(satellites.Selected().strObjNum); }
};

QString TextOfPdf(const QString& path) {
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    return pdftotext.waitForFinished() ? QString::fromUtf8(pdftotext.readAllStandardOutput()) : QString();
}

// The pages of the PDF that the window prints.
QStringList PrintedPages(Fixture& f) {
    const QString path = f.folder.File(QStringLiteral("out.pdf"));
    frmPass window(f.sats, f.satellites, nullptr, {.choosePrinter = [&](QPrinter& printer, QWidget*) {
                       printer.setOutputFormat(QPrinter::PdfFormat);
                       printer.setOutputFileName(path);
                       return true;
                   }});
    window.show();
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdPrint")), Qt::LeftButton);
    return TextOfPdf(path).split(u'\f', Qt::SkipEmptyParts);
}

} // namespace

class frmPassTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void doubleClickAndEnterChooseThePassOfTheLine();
    void showsTheTableOfTheSelectedSatellite();
    void failedTableOpensEmpty();
    void standsInTheMiddleOfTheScreen();
    void textCannotBeChanged();
    void copyPutsTheTableOnTheClipboardForGood();
    void printsCaptionAndTable();
    void captionAndPrintShowTheNameAsItStands();
    void longTablesTakeMorePages();
    void decliningPrintsNothing();
    void escapeAndFinishedClose();
    void aNewWindowStartsFresh();
    void theContextMenuCopiesAndPrints();
    void itSavesWhatTheCommandLineWrites();
    void ctrlSSavesCsv();
    void aFileThatCannotBeWrittenIsSaid();
    void withoutAPlaceNothingIsSaved();
    void theContextMenuShowsThePassOfItsLine();
    void pictures();
};

void frmPassTest::showsTheTableOfTheSelectedSatellite() {
    Fixture f;
    f.satellites.Toggle();
    const frmPass window(f.sats, f.satellites);
    QCOMPARE(window.windowTitle(), QStringLiteral("ISS Pass Predictions"));
    QVERIFY(window.isModal());
    QCOMPARE(f.library->listCalls.back().object, std::string("25544"));
    QCOMPARE(window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"))->toPlainText(),
             f.Table().replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
}

void frmPassTest::failedTableOpensEmpty() {
    Fixture f;
    f.library->passes.reset();
    const frmPass window(f.sats, f.satellites);
    QCOMPARE(window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"))->toPlainText(), QString());
}

void frmPassTest::standsInTheMiddleOfTheScreen() {
    Fixture f;
    frmPass window(f.sats, f.satellites);
    window.show();
    const QPoint centre = window.screen()->geometry().center();
    QVERIFY((window.frameGeometry().center() - centre).manhattanLength() <= 40);
}

void frmPassTest::textCannotBeChanged() {
    Fixture f;
    frmPass window(f.sats, f.satellites);
    window.show();
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    const QString before = txtInfo->toPlainText();
    QTest::keyClicks(txtInfo, QStringLiteral("hello"));
    QTest::keyClick(txtInfo, Qt::Key_Delete);
    QCOMPARE(txtInfo->toPlainText(), before);
}

void frmPassTest::copyPutsTheTableOnTheClipboardForGood() {
    Fixture f;
    {
        frmPass window(f.sats, f.satellites);
        window.show();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCopy")), Qt::LeftButton);
    }
    QCOMPARE(QGuiApplication::clipboard()->text(), f.Table());
}

void frmPassTest::printsCaptionAndTable() {
    Fixture f;
    const QStringList pages = PrintedPages(f);
    QCOMPARE(pages.size(), 1);
    QStringList printed;
    for (const QString& line : pages.first().split(u'\n', Qt::SkipEmptyParts))
        printed.append(line.simplified());
    printed.removeAll(QString());
    QStringList expected{QStringLiteral("QIRAN Pass Predictions")};
    for (const QString& line : f.Table().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts))
        expected.append(line.simplified());
    QCOMPARE(printed, expected);
}

void frmPassTest::captionAndPrintShowTheNameAsItStands() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/keps.txt"), "A & B [*]\n1 90417U\n2 90417 \n");
    f.satellites.FindInKeps(f.folder.Program().KepsFolder());
    frmPass window(f.sats, f.satellites);
    window.show();
    const QString caption = QStringLiteral("QIRAN (A & B [*]) Pass Predictions");
    QCOMPARE(window.windowHandle()->title(), caption);
    QCOMPARE(PrintedPages(f).first().split(u'\n', Qt::SkipEmptyParts).first().simplified(), caption);
}

void frmPassTest::longTablesTakeMorePages() {
    Fixture f(200);
    const QStringList pages = PrintedPages(f);
    QVERIFY(pages.size() > 2);
    QCOMPARE(pages.join(QString()).count(QStringLiteral("00:12:34")), 200);
}

void frmPassTest::decliningPrintsNothing() {
    Fixture f;
    const QString path = f.folder.File(QStringLiteral("out.pdf"));
    frmPass window(f.sats, f.satellites, nullptr, {.choosePrinter = [&](QPrinter& printer, QWidget*) {
                       printer.setOutputFileName(path);
                       return false;
                   }});
    window.show();
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdPrint")), Qt::LeftButton);
    QVERIFY(!QFile::exists(path));
}

void frmPassTest::escapeAndFinishedClose() {
    Fixture f;
    frmPass window(f.sats, f.satellites);
    window.show();
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    txtInfo->setFocus();
    QTest::keyClick(txtInfo, Qt::Key_Escape);
    QVERIFY(!window.isVisible());
    window.show();
    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdFinished")), Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

void frmPassTest::aNewWindowStartsFresh() {
    Fixture f;
    const QString first =
        frmPass(f.sats, f.satellites).findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"))->toPlainText();
    f.library->passes = Passes(2);
    const QString second =
        frmPass(f.sats, f.satellites).findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"))->toPlainText();
    QVERIFY(first != second);
}

void frmPassTest::theContextMenuCopiesAndPrints() {
    Fixture f;
    int printed = 0;
    frmPass window(f.sats, f.satellites, nullptr, {.choosePrinter = [&](QPrinter&, QWidget*) {
                       ++printed;
                       return false;
                   }});
    window.show();
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), txtInfo->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(txtInfo->viewport(), &event);
    auto* menu = window.findChild<QMenu*>(QStringLiteral("mnuPass"));
    QVERIFY(menu->isVisible());
    QStringList captions;
    for (const QAction* entry : menu->actions())
        if (!entry->isSeparator())
            captions += QString(entry->text()).remove(u'&');
    QCOMPARE(captions,
             QStringList({QStringLiteral("Copy"), QStringLiteral("Print"), QStringLiteral("Save as CSV"),
                          QStringLiteral("Save as calendar"), QStringLiteral("Show in the sky")}));
    menu->close();
    window.findChild<QAction*>(QStringLiteral("mnuPrint"))->trigger();
    QCOMPARE(printed, 1);
    auto* mnuCopy = window.findChild<QAction*>(QStringLiteral("mnuCopy"));
    mnuCopy->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), f.Table());
    txtInfo->moveCursor(QTextCursor::Start);
    txtInfo->moveCursor(QTextCursor::EndOfWord, QTextCursor::KeepAnchor);
    mnuCopy->trigger(); // what is marked
    QVERIFY(QGuiApplication::clipboard()->text().size() < 20);
}

void frmPassTest::itSavesWhatTheCommandLineWrites() {
    const SkyRig rig;
    QStringList proposals;
    const QString path = rig.folder.File(QStringLiteral("saved"));
    const PassRecords::CalendarMaking making{
        .latitude = 52, .longitude = 11, .alarmMinutes = 7, .program = QStringLiteral("maker"), .now = 0};
    frmPass window(rig.sats, rig.satellites, nullptr,
                   {.chooseFile =
                        [&](QWidget*, const QString&, const QString& proposal) {
                            proposals += proposal;
                            return path;
                        },
                    .calendar = making});
    window.show();
    const SatPasses found = rig.sats.PassesOf(
        {.object = "90417", .latitude = 52, .longitude = 11, .startUtc = SkyRig::day, .days = 3, .most = 30});
    std::vector<NamedPass> passes;
    for (const SatPass& pass : found.passes)
        passes.push_back({QStringLiteral("QIRAN"), 90417, pass});
    QVERIFY(passes.size() > 10);
    QCOMPARE(window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"))
                 ->toPlainText()
                 .count(QStringLiteral("2026-Nov")),
             qsizetype(passes.size()));

    window.findChild<QAction*>(QStringLiteral("mnuSaveCsv"))->trigger();
    const QByteArray csv = rig.folder.Read(QStringLiteral("saved"));
    QCOMPARE(csv, PassRecords::Csv(passes));
    QVERIFY(csv.startsWith("satellite,number,rise,culmination,set,rise_azimuth,set_azimuth,max_elevation,"
                           "duration_s\r\nQIRAN,90417,2026-11-17T"));
    window.findChild<QAction*>(QStringLiteral("mnuSaveCalendar"))->trigger();
    PassRecords::CalendarMaking made = making;
    made.now = UtcTime::FromDateTime(SkyRig::day);
    const QByteArray calendar = rig.folder.Read(QStringLiteral("saved"));
    QCOMPARE(calendar, PassRecords::Calendar(passes, made));
    QCOMPARE(calendar.count("BEGIN:VEVENT"), qsizetype(passes.size()));
    QVERIFY(calendar.contains("TRIGGER:-PT7M") && calendar.contains("DTSTAMP:20261117T000000Z"));
    QCOMPARE(proposals, QStringList({QStringLiteral("passes.csv"), QStringLiteral("passes.ics")}));
}

void frmPassTest::ctrlSSavesCsv() {
    const SkyRig rig;
    QStringList proposals;
    frmPass window(rig.sats, rig.satellites, nullptr,
                   {.chooseFile =
                        [&](QWidget*, const QString&, const QString& proposal) {
                            proposals += proposal;
                            return QString(); // does not want to
                        },
                    .calendar = PassRecords::CalendarMaking{.latitude = 52, .longitude = 11}});
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    auto* cmdCopy = window.findChild<QPushButton*>(QStringLiteral("cmdCopy"));
    for (QWidget* focus : {static_cast<QWidget*>(txtInfo), static_cast<QWidget*>(cmdCopy)}) {
        focus->setFocus();
        QTest::keyClick(focus, Qt::Key_S, Qt::ControlModifier);
    }
    QCOMPARE(proposals, QStringList({QStringLiteral("passes.csv"), QStringLiteral("passes.csv")}));
}

void frmPassTest::aFileThatCannotBeWrittenIsSaid() {
    const SkyRig rig;
    RecordingPresenter presenter;
    const mb messages(presenter);
    const QString path = rig.folder.File(QStringLiteral("no/such/folder/passes.csv"));
    frmPass window(rig.sats, rig.satellites, nullptr,
                   {.chooseFile = [&](QWidget*, const QString&, const QString&) { return path; },
                    .messages = &messages,
                    .calendar = PassRecords::CalendarMaking{.latitude = 52, .longitude = 11}});
    window.show();
    window.findChild<QAction*>(QStringLiteral("mnuSaveCsv"))->trigger();
    QCOMPARE(presenter.messages.size(), 1);
    QVERIFY(
        presenter.Texts().first().startsWith(QStringLiteral("The passes cannot be saved in %1: ").arg(path)));
}

void frmPassTest::withoutAPlaceNothingIsSaved() {
    Fixture f;
    const frmPass window(f.sats, f.satellites);
    QVERIFY(!window.findChild<QAction*>(QStringLiteral("mnuSaveCsv"))->isEnabled());
    QVERIFY(!window.findChild<QAction*>(QStringLiteral("mnuSaveCalendar"))->isEnabled());
}

void frmPassTest::theContextMenuShowsThePassOfItsLine() {
    Fixture f;
    frmPass window(f.sats, f.satellites);
    QList<DateTime> chosen;
    connect(&window, &frmPass::PassChosen, &window, [&](DateTime start) { chosen += start; });
    window.show();
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    auto* entry = window.findChild<QAction*>(QStringLiteral("mnuShowInSky"));
    const auto openAt = [&](int line) {
        const QTextCursor cursor(txtInfo->document()->findBlockByNumber(line));
        const QPoint place = txtInfo->cursorRect(cursor).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, txtInfo->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(txtInfo->viewport(), &event);
        window.findChild<QMenu*>(QStringLiteral("mnuPass"))->close();
    };
    openAt(2);
    QVERIFY(!entry->isEnabled());
    openAt(5);
    QVERIFY(entry->isEnabled());
    entry->trigger();
    QCOMPARE(chosen.size(), 1);
    QVERIFY(std::abs(chosen.first() - (DateOf(2026, 11, 21) + 0.71)) * secondsPerDay < 0.6);
}

void frmPassTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    Fixture f(18);
    frmPass window(f.sats, f.satellites);
    window.show();
    Screenshots::Take(window, QStringLiteral("frmPass"));
}

void frmPassTest::doubleClickAndEnterChooseThePassOfTheLine() {
    Fixture f;
    f.clock.SetOffsetHours(3);
    f.sats.setBlnLocalTime(true);
    frmPass window(f.sats, f.satellites);
    QList<DateTime> chosen;
    connect(&window, &frmPass::PassChosen, &window, [&](DateTime start) { chosen += start; });
    window.show();
    auto* txtInfo = window.findChild<QPlainTextEdit*>(QStringLiteral("txtInfo"));
    txtInfo->setFocus();
    int passes = 0;
    int days = 0;
    for (QTextBlock block = txtInfo->document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockNumber() < 4 || block.text().isEmpty()) {
            days += block.text().isEmpty() ? 1 : 0;
            continue;
        }
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock);
        txtInfo->setTextCursor(cursor);
        QTest::keyClick(txtInfo, passes % 2 == 0 ? Qt::Key_Return : Qt::Key_Enter);
        QTest::mouseDClick(txtInfo->viewport(), Qt::LeftButton, {}, txtInfo->cursorRect().center());
        const DateTime start = DateOf(2026, 11, 21) + 0.6 + passes * 0.11;
        QCOMPARE(chosen.size(), 2);
        for (const DateTime one : chosen)
            QVERIFY(std::abs(one - start) * secondsPerDay < 0.6);
        chosen.clear();
        ++passes;
    }
    QCOMPARE(passes, 20);
    QVERIFY(days >= 3); // empty lines stand between
    txtInfo->moveCursor(QTextCursor::Start);
    QTest::mouseDClick(txtInfo->viewport(), Qt::LeftButton, {}, txtInfo->cursorRect().center());
    QVERIFY(window.isVisible());
    QTest::keyClick(txtInfo, Qt::Key_Return); // no pass: the default button, as ever
    QVERIFY(!window.isVisible());
    QVERIFY(chosen.isEmpty());
}

QTEST_MAIN(frmPassTest)
#include "frmPassTest.moc"
