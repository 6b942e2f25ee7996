// formula.txt: it loads, or the program says why not; what loads does not depend on the kind of line ends.

#include "Input.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "foundation/messages/mb.h"
#include "telemetry/calibration/FormulaFile.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <sstream>
#include <string>

namespace {

struct CountingPresenter : MessagePresenter {
    int messages = 0;
    int ShowMessage(const Message& message) override {
        Require(message.text.size() < 300, "a message stays short");
        return ++messages;
    }
    void ShowHelp(QObject*, const QString&, HelpCommand) override {}
};

struct Loading {
    FormulaLoad end = FormulaLoad::Failed;
    FormulaTable table;
    std::string error; // what went to standard error
};

Loading Load(const QString& path) {
    CountingPresenter presenter;
    Loading loading;
    std::ostringstream error;
    std::streambuf* const before = std::cerr.rdbuf(error.rdbuf());
    loading.end = LoadFormulae(path, loading.table, mb(presenter), nullptr);
    std::cerr.rdbuf(before);
    loading.error = error.str();
    Require(presenter.messages == (loading.end == FormulaLoad::Failed ? 1 : 0),
            "a file that does not load is told about once");
    return loading;
}

bool Equal(const clsFormula* a, const clsFormula* b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    return a->dblA == b->dblA && a->dblB == b->dblB && a->dblC == b->dblC && a->dblD == b->dblD;
}

void CheckFormula(const clsFormula& formula) {
    for (const double number : {formula.dblA, formula.dblB, formula.dblC, formula.dblD})
        Require(std::isfinite(number), "coefficients are numbers");
    Require(formula.CalcValue(0.0) == formula.dblD, "the last coefficient is the value at 0");
    for (const double x : {1.0, -3.5, 32767.0, 1e300})
        if (const auto value = formula.CalcValue(x))
            Require(std::isfinite(*value), "a value is a number");
}

void CheckSame(const FormulaTable& a, const FormulaTable& b, const TelemetryGrids& grids) {
    Require(a.RowBound() == b.RowBound() && a.RowBound() <= 9, "rows are those of the grids");
    for (int side = 0; side < FormulaTable::sides; ++side)
        for (int type = 0; type < FormulaTable::frameTypes; ++type)
            for (const auto& grid : grids)
                for (int row = 0; row <= a.RowBound(); ++row) {
                    const clsFormula* formula = a.At(side, type, grid->Index(), row);
                    Require(Equal(formula, b.At(side, type, grid->Index(), row)), "line ends do not count");
                    Require(formula == nullptr || (row > 0 && row <= grid->Rows()), "a formula has a cell");
                    if (formula != nullptr)
                        CheckFormula(*formula);
                }
}

// The text with every line end made CR LF, and a line end after it.
std::string WithLineEnds(std::string_view text) {
    std::string made;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            made += text[i];
            continue;
        }
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            ++i;
        made += "\r\n";
    }
    return made + "\r\n";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    static const TelemetryGrids grids = MakeTelemetryGrids();
    const std::string_view text = Input(data, size);
    const Loading first = Load(scratch.Write(QStringLiteral("a"), text));
    const Loading second = Load(scratch.Write(QStringLiteral("a"), WithLineEnds(text)));
    Require(first.end == second.end && first.error == second.error, "line ends do not count");
    Require(first.error.empty() == (first.end != FormulaLoad::Halt), "a halt is told, and nothing else is");
    Require(first.error.size() < 1000 &&
                std::ranges::all_of(first.error,
                                    [](char c) { return static_cast<unsigned char>(c) >= ' ' || c == '\n'; }),
            "what a halt tells is one short line");
    CheckSame(first.table, second.table, grids);
    return 0;
}
