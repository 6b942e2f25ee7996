#include "app/MainWindowRig.h"
#include "telemetry/plots/HistoryPlot.h"
#include "telemetry/plots/frmHistory.h"

#include <QTest>
#include <QToolButton>

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

/// The ways into the history window, and what it hears of the main window.
class HistoryInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theStatusBarsButtonOpensIt();
    void nothingOfItRunsBefore();
    void aStartReadsNothingOfIt();
    void aDoubleClickOpensTheValuesHistory();
    void theContextMenuOpensIt();
    void aFrameThatIsHeardAppears();
    void betterFormulaeMendThePast();
    void anEmptyHistoryNamesTheNextPass();
    void passesOfThePresentElementsAreShaded();
    void passesOfThePastAreThoseOfTheElementsOfTheirTime();
    void localTimeIsTaken();
    void itEndsWithTheProgram();

private:
    static frmHistory* History() { return qobject_cast<frmHistory*>(WindowNamed(u"frmHistory"_s)); }
    static HistoryPlot& Curves() { return *History()->findChild<HistoryPlot*>(u"pltHistory"_s); }
    static QString Value(int row) {
        const auto* model = History()->findChild<QTableView*>(u"tblChannels"_s)->model();
        return model->index(row, ChannelTable::Value).data().toString();
    }
    static int RowOf(const QString& channel) {
        const auto* model = History()->findChild<QTableView*>(u"tblChannels"_s)->model();
        for (int row = 0; row < model->rowCount(); ++row)
            if (model->index(row, 0).data().toString() == channel)
                return row;
        return -1;
    }
    // In each field of curves.
    static int Shades() {
        int count = 0;
        for (int i = 0; i < Curves().itemCount(); ++i)
            count += Curves().item(i)->objectName() == u"pass" ? 1 : 0;
        return count / std::max(Curves().axisRectCount(), 1);
    }
    // A frame whose TEMPS X+ is 10.0.
    static void KeepOne(const MainWindowRig& rig) {
        rig.folder.Write(u"tlm.txt"_s,
                         "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n"
                         "2026-11-20T23:00:00.000Z,XQ9ZZ-1,A,T#1,10,20,30,40,0,0,00100000,0\n");
    }
    static void Open(const MainWindowRig& rig) { rig.Find<QToolButton>("cmdHistory")->click(); }
    static void Place(MainWindowRig& rig) {
        rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
        rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
        QVERIFY(QDir().mkpath(rig.folder.File(u"Keps"_s)));
        QVERIFY(QFile::copy(QStringLiteral(QIRAN_DATA_FOLDER) + u"/demo/Keps/example.txt"_s,
                            rig.folder.File(u"Keps/example.txt"_s)));
    }
};

void HistoryInMainWindowTest::theStatusBarsButtonOpensIt() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    auto* button = rig.Find<QToolButton>("cmdHistory");
    QTest::keyClick(button, Qt::Key_Space);
    QTRY_VERIFY(History());
    QVERIFY(!History()->isModal());
    const frmHistory* first = History();
    button->click();
    QCOMPARE(History(), first);
    History()->close();
    QTRY_VERIFY(!History());
    button->click();
    QVERIFY(History());
}

void HistoryInMainWindowTest::nothingOfItRunsBefore() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    const auto exists = [] {
        return std::ranges::any_of(QApplication::allWidgets(), [](const QWidget* widget) {
            return widget->inherits("frmHistory") || widget->inherits("QCustomPlot");
        });
    };
    QVERIFY(!exists());
    Open(rig);
    QVERIFY(exists());
}

void HistoryInMainWindowTest::aStartReadsNothingOfIt() {
    MainWindowRig rig;
    rig.folder.Write(u"tlm.txt"_s,
                     "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n");
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    QVERIFY(inotify_add_watch(watch, QFile::encodeName(rig.folder.File(u"tlm.txt"_s)).constData(),
                              IN_OPEN | IN_ACCESS) >= 0);
    bool wasOpened = false;
    const auto look = [&] {
        std::array<char, 4096> events{};
        wasOpened = wasOpened || read(watch, events.data(), events.size()) > 0;
        return wasOpened;
    };
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QVERIFY(!look());
    Open(rig);
    QTRY_VERIFY(look());
    close(watch);
}

void HistoryInMainWindowTest::aDoubleClickOpensTheValuesHistory() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    auto* grid = rig.Find<QTableView>("gTlm2");
    const QModelIndex cell = grid->model()->index(1, 2); // TEMPS X- of side B
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, Qt::NoModifier, grid->visualRect(cell).center());
    QTest::mouseDClick(grid->viewport(), Qt::LeftButton, Qt::NoModifier, grid->visualRect(cell).center());
    QVERIFY(History());
    QTRY_COMPARE(Curves().Channels(), (std::vector<HistoryChannel>{{1, 2, 2}}));
}

void HistoryInMainWindowTest::theContextMenuOpensIt() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuHistory0")->trigger();
    QVERIFY(History());
    QTRY_COMPARE(Curves().Channels().size(), std::size_t{2}); // as it was left
    rig.Find<QAction>("mnuHistoryOfValue0")->trigger();
    QTRY_COMPARE(Curves().Channels(), (std::vector<HistoryChannel>{{0, 0, 1}}));
}

void HistoryInMainWindowTest::aFrameThatIsHeardAppears() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    Open(rig);
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard(
        {.from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = "T#001,10,20,30,40,0,0,00100000,0"});
    const int row = RowOf(u"TEMPS X+"_s);
    QVERIFY(row >= 0);
    QTRY_COMPARE(Value(row), u"10.0"_s);
}

void HistoryInMainWindowTest::betterFormulaeMendThePast() {
    MainWindowRig rig;
    KeepOne(rig);
    QVERIFY(rig.Start());
    Open(rig);
    const int row = RowOf(u"TEMPS X+"_s);
    QTRY_COMPARE(Value(row), u"10.0"_s);
    rig.folder.Write(u"formula.txt"_s, "A,2,TEMP,X+,0,0,wrong");
    rig.folder.Write(u"formula.txt"_s, "A,2,TEMP,X+,0,0,3,1\r\n");
    QTRY_COMPARE(Value(row), u"31.0"_s);
}

void HistoryInMainWindowTest::anEmptyHistoryNamesTheNextPass() {
    MainWindowRig rig;
    Place(rig);
    QVERIFY(rig.Start());
    Open(rig);
    const auto text = [] { return History()->findChild<QLabel*>(u"labState"_s)->text(); };
    QTRY_VERIFY(text().contains(u"The next pass of QIRAN begins at 2026-Nov-2"));
    QVERIFY(text().endsWith(u" UTC."));
}

void HistoryInMainWindowTest::passesOfThePresentElementsAreShaded() {
    MainWindowRig rig;
    Place(rig);
    rig.Set("HISTORY", "RANGE", u"24 hours"_s);
    KeepOne(rig);
    QVERIFY(rig.Start());
    Open(rig);
    QTRY_COMPARE(Value(RowOf(u"TEMPS X+"_s)), u"10.0"_s); // the range that it opens with is shown
    QTRY_VERIFY(Shades() >= 2 && Shades() <= 12);
    Curves().SetRange(0, 86'400'000); // the elements are no guide to 1970
    QTRY_COMPARE(Shades(), 0);
}

void HistoryInMainWindowTest::passesOfThePastAreThoseOfTheElementsOfTheirTime() {
    MainWindowRig rig;
    Place(rig);
    rig.Set("SETUP", "QIRAN_OBJ_NUM", u"25544"_s);
    rig.folder.Write(u"elements-history.txt"_s,
                     "utc,number,epoch,elements\n2020-01-02T00:00:00.000Z,25544,2020-01-01T00:00:00.000Z,"
                     "\"1 25544U 98067A   20001.00000000  .00016717  00000-0  10270-3 0  9000\n"
                     "2 25544  51.6400 208.9163 0006317  69.9862  25.2906 15.49560532 14777\"\n");
    KeepOne(rig);
    QVERIFY(rig.Start());
    Open(rig);
    QTRY_COMPARE(Value(RowOf(u"TEMPS X+"_s)), u"10.0"_s);
    constexpr qint64 day = 86'400'000;
    constexpr qint64 epoch = 1'577'836'800'000; // 2020-01-01
    Curves().SetRange(epoch - day, epoch + day);
    QTRY_VERIFY(Shades() >= 6 && Shades() <= 18);
    Curves().SetRange(epoch + 15 * day, epoch + 17 * day);
    QTRY_COMPARE(Shades(), 0);
    Curves().SetRange(epoch - 13 * day, epoch);
    QTRY_VERIFY(Shades() > 40);
    Curves().SetRange(epoch - 13 * day, epoch + 13 * day); // no pass has a pixel to itself
    QTRY_COMPARE(Shades(), 0);
}

void HistoryInMainWindowTest::localTimeIsTaken() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    Open(rig);
    const auto label = [] { return Curves().axisRect(0)->axis(QCPAxis::atBottom)->label(); };
    QTRY_VERIFY(Curves().axisRectCount() == 1);
    QCOMPARE(label(), u"UTC"_s);
    rig.Find<QAction>("mnuUseLocalTime")->trigger();
    QCOMPARE(label(), u"Local time"_s);
}

void HistoryInMainWindowTest::itEndsWithTheProgram() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    Open(rig);
    rig.window->close();
    QVERIFY(!History());
}

QTEST_MAIN(HistoryInMainWindowTest)
#include "HistoryInMainWindowTest.moc"
