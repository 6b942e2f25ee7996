#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/mb.h"
#include "support/RecordingPresenter.h"
#include "support/TemporaryProgramFolder.h"
#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/FormulaFile.h"

#include <QTest>

#include <array>
#include <bit>
#include <cmath>
#include <iostream>
#include <sstream>

class FormulaTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void calcValueIsTheCubic_data();
    void calcValueIsTheCubic();
    void calcValueIsThatOfThePowersToTheLastBit();
    void calcValueFailsBeyondDoubles_data();
    void calcValueFailsBeyondDoubles();

    void lineIsStored_data();
    void lineIsStored();
    void lineIsSkipped_data();
    void lineIsSkipped();
    void coefficients_data();
    void coefficients();
    void unknownGridOrRowHaltsAndNamesTheLine_data();
    void unknownGridOrRowHaltsAndNamesTheLine();
    void badNumbersFailWithTheirLine_data();
    void badNumbersFailWithTheirLine();
    void lineEnds_data();
    void lineEnds();

    void laterLineReplacesTheCoefficients();
    void tableGrowsToTheLargestRow();
    void emptyFileLeavesEveryEntryEmpty();
    void loadingAgainStartsEmpty();
    void missingFileIsToldAndFails();
    void folderInsteadOfAFileIsToldAndFails();
    void unreadableFileIsToldAndFails();
    void aMebibyteLineAndManyCommentsAreRead();
    void whatIsNoTextIsSkipped();
    void demonstrationFillsEveryCellPlausibly();

private:
    struct Loaded {
        FormulaLoad outcome;
        FormulaTable table;
        QList<Message> messages;
        QByteArray standardError;
    };
    static Loaded LoadPath(const QString& path);
    static Loaded Load(const QByteArray& content);
};

FormulaTest::Loaded FormulaTest::LoadPath(const QString& path) {
    RecordingPresenter presenter;
    mb messages(presenter);
    std::ostringstream told;
    std::streambuf* before = std::cerr.rdbuf(told.rdbuf());
    Loaded loaded{};
    loaded.outcome = LoadFormulae(path, loaded.table, messages, nullptr);
    std::cerr.rdbuf(before);
    loaded.messages = presenter.messages;
    loaded.standardError = QByteArray::fromStdString(told.str());
    return loaded;
}

FormulaTest::Loaded FormulaTest::Load(const QByteArray& content) {
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("formula.txt"), content);
    return LoadPath(folder.File(QStringLiteral("formula.txt")));
}

void FormulaTest::calcValueIsTheCubic_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<QList<double>>("abcd");
    QTest::addColumn<double>("value");
    QTest::newRow("x itself") << 12.5 << QList{0.0, 0.0, 1.0, 0.0} << 12.5;
    QTest::newRow("square of a negative") << -3.0 << QList{0.0, 2.0, 0.0, 0.0} << 18.0;
    QTest::newRow("cube of a negative") << -3.0 << QList{2.0, 0.0, 0.0, 0.0} << -54.0;
    QTest::newRow("all four") << 2.0 << QList{1.0, 10.0, 100.0, 1000.0} << 1248.0;
    QTest::newRow("zero") << 0.0 << QList{1.0, 2.0, 3.0, 4.0} << 4.0;
}

void FormulaTest::calcValueIsTheCubic() {
    QFETCH(const double, x);
    QFETCH(const QList<double>, abcd);
    clsFormula formula;
    formula.dblA = abcd[0];
    formula.dblB = abcd[1];
    formula.dblC = abcd[2];
    formula.dblD = abcd[3];
    const std::optional<double> result = formula.CalcValue(x);
    QVERIFY(result.has_value());
    QTEST(*result, "value");
}

void FormulaTest::calcValueIsThatOfThePowersToTheLastBit() {
    clsFormula formula;
    const auto expected = [&formula](double x) {
        return ((std::pow(x, 3.0) * formula.dblA + std::pow(x, 2.0) * formula.dblB) + formula.dblC * x) +
               formula.dblD;
    };
    // A power alone: a factor's rounding would swallow its last bit.
    const std::array<std::array<double, 4>, 3> coefficients{
        {{-1.7e-5, 3.1e-3, -0.37, -0.0}, {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}}};
    for (const auto& [a, b, c, d] : coefficients) {
        formula.dblA = a;
        formula.dblB = b;
        formula.dblC = c;
        formula.dblD = d;
        for (int quarter = -40; quarter <= 4 * 300; ++quarter) {
            const double x = quarter / 4.0;
            QCOMPARE(std::bit_cast<quint64>(*formula.CalcValue(x)), std::bit_cast<quint64>(expected(x)));
        }
    }
    formula = {};
    formula.dblA = 1.0;
    formula.dblB = -1.0; // a zero keeps its sign
    formula.dblD = -0.0;
    QCOMPARE(std::bit_cast<quint64>(*formula.CalcValue(-0.0)), std::bit_cast<quint64>(expected(-0.0)));
    QVERIFY(std::bit_cast<quint64>(*formula.CalcValue(-0.0)) !=
            std::bit_cast<quint64>(*formula.CalcValue(0.0)));
}

void FormulaTest::calcValueFailsBeyondDoubles_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("a");
    QTest::newRow("the cube overflows, though it counts zero times") << 1e200 << 0.0;
    QTest::newRow("the product overflows") << 1e100 << 1e100;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0.0;
}

void FormulaTest::calcValueFailsBeyondDoubles() {
    QFETCH(const double, x);
    QFETCH(const double, a);
    clsFormula formula;
    formula.dblA = a;
    QVERIFY(!formula.CalcValue(x).has_value());
}

void FormulaTest::lineIsStored_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QList<int>>("cell"); // side, type, grid, row
    const auto row = [](const char* line, const QList<int>& cell) {
        QTest::newRow(line) << QByteArray(line) << cell;
    };
    row("A, 0, current, x+, 0, 0, 1.5, -20", {0, 0, 1, 1});
    row("B,1,POWER,P OUT,0,0,1.5,-20", {1, 1, 0, 3});
    row("  B , 3 , Temp , xmtr , 0 , 0 , 1.5 , -20  ", {1, 3, 2, 9});
    row("\tA\t,\t0\t,\tCURRENT\t,\tX+\t,\t0\t,\t0\t,\t1.5\t,\t-20\t", {0, 0, 1, 1});
    row("AB,0,POWER,8V Reg,0,0,1.5,-20", {1, 0, 0, 4}); // any side but "A" is the second
    row("Axel,0,POWER,8V Reg,0,0,1.5,-20", {1, 0, 0, 4});
    row("A,2.5,TEMP,Stack,0,0,1.5,-20", {0, 2, 2, 7}); // half to even
    row("A,x,TEMP,Stack,0,0,1.5,-20", {0, 0, 2, 7});
    row("A,,TEMP,Stack,0,0,1.5,-20", {0, 0, 2, 7});
}

void FormulaTest::lineIsStored() {
    QFETCH(const QByteArray, line);
    QFETCH(const QList<int>, cell);
    const Loaded loaded = Load(line + "\r\n");
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    QCOMPARE(loaded.table.RowBound(), cell[3]);
    for (int side = 0; side < 2; ++side)
        for (int type = 0; type < 4; ++type)
            for (int grid = 0; grid < 3; ++grid)
                for (int row = 0; row <= 9; ++row) {
                    const clsFormula* formula = loaded.table.At(side, type, grid, row);
                    QCOMPARE(formula != nullptr, cell == QList({side, type, grid, row}));
                    if (formula != nullptr) {
                        QCOMPARE(formula->dblC, 1.5);
                        QCOMPARE(formula->dblD, -20.0);
                    }
                }
}

void FormulaTest::lineIsSkipped_data() {
    QTest::addColumn<QByteArray>("line");
    for (const char* line :
         {"", " ", "A", "A,0,POWER,Batt A,0,0,1", "A,0,POWER,Batt A,0,0,1,0,0", "a,0,POWER,Batt A,0,0,1,0",
          "#A,0,POWER,Batt A,0,0,1,0", "C,0,POWER,Batt A,0,0,1,0", ",,,,,,,", "A comment, of the user's"})
        QTest::newRow(line) << QByteArray(line);
}

void FormulaTest::lineIsSkipped() {
    QFETCH(const QByteArray, line);
    const Loaded loaded = Load(line + "\nA,0,POWER,Batt B,0,0,1,0\n");
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    QVERIFY(loaded.table.At(0, 0, 0, 1) == nullptr);
    QVERIFY(loaded.table.At(0, 0, 0, 2) != nullptr);
}

void FormulaTest::coefficients_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<double>("value");
    const auto row = [](const char* field, double value) {
        QTest::newRow(field) << QByteArray(field) << value;
    };
    row("+5", 5.0);
    row(".5", 0.5);
    row("5.", 5.0);
    row("-5", -5.0);
    row(" 7", 7.0);
    row("1.5E-3", 0.0015);
    row("1.5e3", 1500.0);
    row("2e", 2.0);
    row("nan", 0.0);
    row("inf", 0.0);
    row("0x10", 0.0);
    row("", 0.0);
    row("3 volts", 3.0);
    row("1e-400", 0.0);
}

void FormulaTest::coefficients() {
    QFETCH(const QByteArray, field);
    QFETCH(const double, value);
    const Loaded loaded = Load("A,0,POWER,Batt A," + QByteArrayList(4, field).join(','));
    const clsFormula* formula = loaded.table.At(0, 0, 0, 1);
    QVERIFY(formula != nullptr);
    QCOMPARE(formula->dblA, value);
    QCOMPARE(formula->dblB, value);
    QCOMPARE(formula->dblC, value);
    QCOMPARE(formula->dblD, value);
}

void FormulaTest::unknownGridOrRowHaltsAndNamesTheLine_data() {
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"A,0,VOLTS,Batt A,0,0,1,0", "A,0,TEMPS,Batt,0,0,1,0", "A,0,POWER,Batt C,0,0,1,0",
                             "A,0,POWER,,0,0,1,0", "A,0,POWER,POWER,0,0,1,0", "B,9,POWER,Bat A,0,0,1,0"})
        QTest::newRow(line) << QByteArray(line);
}

void FormulaTest::unknownGridOrRowHaltsAndNamesTheLine() {
    QFETCH(const QByteArray, line);
    const Loaded loaded = Load("# notes\r\n\r\n" + line + "\r\nA,0,POWER,Batt A,0,0,1,0\r\n");
    QCOMPARE(loaded.outcome, FormulaLoad::Halt);
    QVERIFY(loaded.messages.isEmpty());
    QVERIFY2(loaded.standardError.contains("line 3:"), loaded.standardError.constData());
    QVERIFY2(loaded.standardError.contains(line), loaded.standardError.constData());
}

void FormulaTest::badNumbersFailWithTheirLine_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("frame type beyond the table") << QByteArray("A,4,POWER,Batt A,0,0,1,0");
    QTest::newRow("negative frame type") << QByteArray("A,-1,POWER,Batt A,0,0,1,0");
    QTest::newRow("frame type beyond 16 bits") << QByteArray("A,32768,POWER,Batt A,0,0,1,0");
    QTest::newRow("frame type beyond 16 bits before a misspelt grid")
        << QByteArray("A,32768,VOLTS,Batt A,0,0,1,0");
    QTest::newRow("coefficient beyond doubles") << QByteArray("A,0,POWER,Batt A,0,0,1e400,0");
}

void FormulaTest::badNumbersFailWithTheirLine() {
    QFETCH(const QByteArray, line);
    const Loaded loaded = Load("\n" + line);
    QCOMPARE(loaded.outcome, FormulaLoad::Failed);
    QCOMPARE(loaded.messages.size(), 1);
    QVERIFY(loaded.messages[0].text.contains(u"line 2"));
}

void FormulaTest::lineEnds_data() {
    QTest::addColumn<QByteArray>("ending");
    QTest::newRow("CR LF") << QByteArray("\r\n");
    QTest::newRow("LF") << QByteArray("\n");
    QTest::newRow("CR") << QByteArray("\r");
}

void FormulaTest::lineEnds() {
    QFETCH(const QByteArray, ending);
    const Loaded loaded = Load("\xEF\xBB\xBF"
                               "A,0,POWER,Batt A,0,0,1,0" +
                               ending + ending + "A,0,POWER,Batt B,0,0,1,0");
    QVERIFY(loaded.table.At(0, 0, 0, 1) != nullptr); // behind a byte-order mark
    QVERIFY(loaded.table.At(0, 0, 0, 2) != nullptr); // without an end
}

void FormulaTest::laterLineReplacesTheCoefficients() {
    const Loaded loaded = Load("A,0,POWER,Batt A,1,2,3,4\nA,0,power,batt a,5,6,7,8\n");
    const clsFormula* formula = loaded.table.At(0, 0, 0, 1);
    QVERIFY(formula != nullptr);
    QCOMPARE(QList({formula->dblA, formula->dblB, formula->dblC, formula->dblD}),
             QList({5.0, 6.0, 7.0, 8.0}));
}

void FormulaTest::tableGrowsToTheLargestRow() {
    const Loaded loaded = Load("A,0,TEMP,Xmtr,0,0,1,0\nA,0,TEMP,X+,0,0,1,0\n");
    QCOMPARE(loaded.table.RowBound(), 9);
    QVERIFY(loaded.table.At(0, 0, 2, 9) != nullptr);
    QVERIFY(loaded.table.At(0, 0, 2, 1) != nullptr);
    QVERIFY(loaded.table.At(0, 0, 2, 10) == nullptr);
    QVERIFY(loaded.table.At(0, 0, 2, -1) == nullptr);
    QVERIFY(loaded.table.At(2, 0, 2, 9) == nullptr);
    QVERIFY(loaded.table.At(0, 4, 2, 9) == nullptr);
    QVERIFY(loaded.table.At(0, 0, 3, 9) == nullptr);
}

void FormulaTest::emptyFileLeavesEveryEntryEmpty() {
    const Loaded loaded = Load(QByteArray());
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    QCOMPARE(loaded.table.RowBound(), 0);
    QVERIFY(loaded.messages.isEmpty());
}

void FormulaTest::loadingAgainStartsEmpty() {
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("formula.txt"), "# nothing");
    RecordingPresenter presenter;
    FormulaTable table;
    table.StoreFormulaLine({"A", "0", "TEMP", "X+", "0", "0", "1", "0"});
    QCOMPARE(LoadFormulae(folder.File(QStringLiteral("formula.txt")), table, mb(presenter), nullptr),
             FormulaLoad::Loaded);
    QVERIFY(table.At(0, 0, 2, 1) == nullptr);
}

void FormulaTest::missingFileIsToldAndFails() {
    const TemporaryProgramFolder folder;
    const Loaded loaded = LoadPath(folder.File(QStringLiteral("formula.txt")));
    QCOMPARE(loaded.outcome, FormulaLoad::Failed);
    QCOMPARE(loaded.messages.size(), 1);
    QCOMPARE(loaded.messages[0].style, MessageStyle::Critical | MessageStyle::HelpButton);
    QCOMPARE(loaded.messages[0].contextId, HelpTopics::formulas);
    QCOMPARE(loaded.messages[0].text,
             QStringLiteral("An error occurred loading the formulae. The error message is "
                            "'%1: No such file or directory. Put the satellite's calibration formulae into "
                            "this file, and start the program again.'")
                 .arg(folder.File(QStringLiteral("formula.txt"))));
    QVERIFY(loaded.standardError.isEmpty());
}

void FormulaTest::folderInsteadOfAFileIsToldAndFails() {
    const QTemporaryDir folder;
    const Loaded loaded = LoadPath(folder.path());
    QCOMPARE(loaded.outcome, FormulaLoad::Failed);
    QCOMPARE(loaded.messages.size(), 1);
}

void FormulaTest::unreadableFileIsToldAndFails() {
    // A file that opens and then fails, whoever asks.
    const QString memory = QStringLiteral("/proc/self/mem");
    if (!QFileInfo(memory).isFile())
        QSKIP("no such file on this system");
    const Loaded loaded = LoadPath(memory);
    QCOMPARE(loaded.outcome, FormulaLoad::Failed);
    QCOMPARE(loaded.messages.size(), 1);
    QVERIFY(loaded.messages[0].text.startsWith(
        u"An error occurred loading the formulae. The error message is '"));
}

void FormulaTest::aMebibyteLineAndManyCommentsAreRead() {
    QByteArray content = "A,0,POWER,Batt A,0,0,1," + QByteArray(1024 * 1024, ' ') + "2\n";
    content += "A" + QByteArray(1024 * 1024, ',') + "\n";
    content += QByteArray(1024 * 1024, 'x') + "\n";
    for (int i = 0; i < 65535; ++i)
        content += "# comment\r\n";
    content += "B,3,TEMP,Xmtr,0,0,1,0";
    const Loaded loaded = Load(content);
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    QVERIFY(loaded.table.At(0, 0, 0, 1) != nullptr);
    QCOMPARE(loaded.table.At(0, 0, 0, 1)->dblD, 2.0);
    QVERIFY(loaded.table.At(1, 3, 2, 9) != nullptr);
    const Loaded halted = Load(content + "\nA,0,POWER," + QByteArray(1024 * 1024, '\x1b') + ",0,0,1,0");
    QCOMPARE(halted.outcome, FormulaLoad::Halt);
    QVERIFY(halted.standardError.contains("line 65540:"));
    QVERIFY(halted.standardError.size() < 1000);
    QVERIFY(!halted.standardError.contains('\x1b'));
}

void FormulaTest::whatIsNoTextIsSkipped() {
    QByteArray content;
    for (int i = 0; i < 65536; ++i)
        content += static_cast<char>(i * 7919 >> 3);
    content.replace(',', ';');
    const Loaded loaded = Load(content);
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    QCOMPARE(loaded.table.RowBound(), 0);
}

void FormulaTest::demonstrationFillsEveryCellPlausibly() {
    const QString path = QFINDTESTDATA("../../data/demo/formula.txt");
    const Loaded loaded = LoadPath(path);
    QCOMPARE(loaded.outcome, FormulaLoad::Loaded);
    ChannelMap map;
    map.BuildChannelMap();
    constexpr std::array<std::pair<double, double>, 3> plausible{
        {{0, 12}, {-1000, 1000}, {-60, 100}}}; // by grid
    for (int side = 0; side < ChannelMap::sides; ++side)
        for (int type = 0; type < ChannelMap::frameTypes; ++type)
            for (int channel = 0; channel < ChannelMap::channels; ++channel) {
                const ChannelCell& cell = *map.At(side, type, channel);
                const clsFormula* formula = loaded.table.At(side, type, cell.grid, cell.row);
                QVERIFY(formula != nullptr);
                const auto [least, most] = plausible[static_cast<std::size_t>(cell.grid)];
                for (int raw = 20; raw <= 200; raw += 20) {
                    const double value = formula->CalcValue(raw).value();
                    QVERIFY(value >= least && value <= most);
                }
            }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readLine().contains("EXAMPLE"));
}

QTEST_GUILESS_MAIN(FormulaTest)
#include "FormulaTest.moc"
