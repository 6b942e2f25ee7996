#pragma once

#include "telemetry/calibration/FormulaTable.h"

#include <QString>
#include <QStringList>

class QObject;
class mb;

/// How the loading of the formulae ended.
enum class FormulaLoad {
    Loaded,
    Failed, ///< the user has seen why; the program cannot start
    Halt    ///< a misspelt grid or row, told to standard error with its line: the program must end at once
};

/// Reads the formula file: one formula a line, in eight fields separated by commas. Only lines that begin
/// with "A" or "B" after their blanks and have eight fields count; all others are the file's own notes.
/// `haltReason` takes, for Halt, what standard error is told.
FormulaLoad LoadFormulae(const QString& path, FormulaTable& table, const mb& messages, QObject* owner,
                         QString* haltReason = nullptr);

/// What is wrong in the formula file, a text for each line of it that is: also what LoadFormulae takes for
/// the file's own notes although a side begins it. A file that cannot be read is one fault.
QStringList CheckFormulae(const QString& path);
