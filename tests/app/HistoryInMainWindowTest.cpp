#include "app/MainWindowRig.h"
#include "telemetry/plots/HistoryPlot.h"
#include "telemetry/plots/frmHistory.h"

#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

/// The ways into the history window, and what it hears of the main window.
class HistoryInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theStatusBarsButtonOpensIt();
    void nothingOfItRunsBefore();
    void aDoubleClickOpensTheValuesHistory();
    void theContextMenuOpensIt();
    void aFrameThatIsHeardAppears();
    void betterFormulaeMendThePast();
    void anEmptyHistoryNamesTheNextPass();
    void passesOfThePresentElementsAreShaded();
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
    rig.folder.Write(u"tlm.txt"_s,
                     "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n"
                     "2026-11-20T23:00:00.000Z,XQ9ZZ-1,A,T#1,10,20,30,40,0,0,00100000,0\n");
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
    QVERIFY(rig.Start());
    Open(rig);
    const auto shades = [] {
        int count = 0;
        for (int i = 0; i < Curves().itemCount(); ++i)
            count += Curves().item(i)->objectName() == u"pass" ? 1 : 0;
        return count;
    };
    QTRY_VERIFY(shades() >= 2 && shades() <= 12);
    Curves().SetRange(0, 86'400'000); // the elements are no guide to 1970
    QTRY_COMPARE(shades(), 0);
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
