#include "telemetry/calibration/FormulaFile.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/mb.h"
#include "foundation/settings/ShippedFile.h"
#include "foundation/text/ByteOrderMark.h"
#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <tuple>

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;
constexpr std::string_view blanks = " \t";

std::string_view Trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// Takes the first line off `text`; lines end in CR, LF or CR LF.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find_first_of("\r\n");
    const std::string_view line = text.substr(0, end);
    const std::size_t ending = end == std::string_view::npos          ? 0
                               : text.substr(end).starts_with("\r\n") ? 2
                                                                      : 1;
    text.remove_prefix(line.size() + ending);
    return line;
}

// The fields of a formula line; nothing for every other line.
std::optional<FormulaTable::Fields> SplitFormulaLine(std::string_view line) {
    line = Trimmed(line);
    if (!line.starts_with('A') && !line.starts_with('B'))
        return std::nullopt;
    const auto split = SplitAtCommas<FormulaTable::fieldsInLine>(line);
    if (!split)
        return std::nullopt;
    FormulaTable::Fields fields;
    std::ranges::copy(*split, fields.begin());
    return fields;
}

QString OffendingLine(const QString& path, int number, std::string_view line) {
    constexpr qsizetype longestShown = 200;
    const std::string_view trimmed = Trimmed(line);
    const QByteArray bytes(trimmed.data(), static_cast<qsizetype>(trimmed.size()));
    return QStringLiteral("%1, line %2: no such grid or row: %3")
        .arg(path, QString::number(number), Text::OneLine(Text::FromBytes(bytes), longestShown));
}

// What a user can do about a file that cannot be read.
QString WhereFormulaeBelong(const QString& path) {
    const QString example = QFileInfo(path).dir().filePath(QStringLiteral("formula.example.txt"));
    const QString shipped = ShippedFile(example);
    const QString advice = QStringLiteral(
        "Put the satellite's calibration formulae into this file, and start the program again.");
    return QFileInfo::exists(shipped)
               ? QStringLiteral("%1 An example to begin with is %2").arg(advice, shipped)
               : advice;
}

// What a line at fault came to, and its number.
struct Fault {
    FormulaTable::Store store;
    int line;
    std::string_view text;
};

// Up to the first fault.
std::optional<Fault> StoreLines(std::string_view text, FormulaTable& table) {
    text = WithoutByteOrderMark(text);
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = TakeLine(text);
        if (const auto fields = SplitFormulaLine(line))
            if (const auto store = table.StoreFormulaLine(*fields); store != FormulaTable::Store::Done)
                return Fault{store, number, line};
    }
    return std::nullopt;
}

// A side and a comma: no note begins so.
bool IsMeantAsFormula(std::string_view line) {
    line = Trimmed(line);
    return (line.starts_with('A') || line.starts_with('B')) && Trimmed(line.substr(1)).starts_with(',');
}

// What is wrong with a line; empty for one that is good or a note.
QString FaultOf(std::string_view line, FormulaTable& table) {
    constexpr std::size_t firstCoefficient = 4;
    const auto fields = SplitFormulaLine(line);
    if (!fields)
        return IsMeantAsFormula(line) ? QStringLiteral("it has not eight fields") : QString();
    switch (table.StoreFormulaLine(*fields)) {
    case FormulaTable::Store::UnknownGridOrRow:
        return QStringLiteral("no such grid or row");
    case FormulaTable::Store::BadFrameType:
        return QStringLiteral("the frame type is not 0 to 3");
    case FormulaTable::Store::TooLarge:
        return QStringLiteral("a number is too large");
    case FormulaTable::Store::Done:
        break;
    }
    for (const QByteArrayView field : std::span(*fields).subspan(firstCoefficient)) {
        bool isNumber = false;
        std::ignore = field.trimmed().toDouble(&isNumber);
        if (!isNumber)
            return QStringLiteral("'%1' is no number").arg(Text::FromBytes(field.trimmed()));
    }
    return {};
}

} // namespace

QStringList CheckFormulae(const QString& path) {
    QString reason;
    const std::optional<QByteArray> bytes = ReadBoundedFile(path, largestFile, reason);
    if (!bytes)
        return {reason};
    QStringList faults;
    FormulaTable table;
    std::string_view text = WithoutByteOrderMark(ToView(*bytes));
    for (int number = 1; !text.empty(); ++number)
        if (const QString fault = FaultOf(TakeLine(text), table); !fault.isEmpty())
            faults.append(QStringLiteral("line %1: %2").arg(number).arg(fault));
    return faults;
}

FormulaLoad LoadFormulae(const QString& path, FormulaTable& table, const mb& messages, QObject* owner,
                         QString* haltReason) {
    table = FormulaTable();
    QString reason;
    if (const std::optional<QByteArray> bytes = ReadBoundedFile(path, largestFile, reason)) {
        const std::optional<Fault> fault = StoreLines(ToView(*bytes), table);
        if (!fault)
            return FormulaLoad::Loaded;
        if (fault->store == FormulaTable::Store::UnknownGridOrRow) {
            const QString line = OffendingLine(path, fault->line, fault->text);
            std::cerr << "QiranDecode: " << line.toLocal8Bit().constData() << std::endl;
            if (haltReason != nullptr)
                *haltReason = line;
            return FormulaLoad::Halt;
        }
        reason = (fault->store == FormulaTable::Store::BadFrameType
                      ? QStringLiteral("%1: The frame type in line %2 is not 0 to 3. ")
                      : QStringLiteral("%1: A number in line %2 is too large. "))
                     .arg(path)
                     .arg(fault->line) +
                 QStringLiteral(
                     "Mend the line, and start the program again. 'qirandecode-cli decode --check' names "
                     "every line that is wrong.");
    } else
        reason = (reason.contains(path) ? reason : QStringLiteral("%1: %2").arg(path, reason)) +
                 QStringLiteral(". ") + WhereFormulaeBelong(path);
    messages.MessageBox(
        owner,
        QStringLiteral("An error occurred loading the formulae. The error message is '%1'").arg(reason),
        MessageStyle::Critical, QStringLiteral("QiranDecode"), HelpTopics::formulas);
    return FormulaLoad::Failed;
}
