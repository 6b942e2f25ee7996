#include "telemetry/calibration/FormulaFile.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/messages/mb.h"
#include "foundation/text/ByteOrderMark.h"
#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"

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

void TellOffendingLine(const QString& path, int number, std::string_view line) {
    constexpr std::size_t longestShown = 200;
    std::string shown(Trimmed(line).substr(0, longestShown));
    std::ranges::replace_if(
        shown, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    std::cerr << path.toLocal8Bit().toStdString() << ", line " << number << ": no such grid or row: " << shown
              << std::endl;
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

FormulaLoad LoadFormulae(const QString& path, FormulaTable& table, const mb& messages, QObject* owner) {
    table = FormulaTable();
    QString reason;
    if (const std::optional<QByteArray> bytes = ReadBoundedFile(path, largestFile, reason)) {
        const std::optional<Fault> fault = StoreLines(ToView(*bytes), table);
        if (!fault)
            return FormulaLoad::Loaded;
        if (fault->store == FormulaTable::Store::UnknownGridOrRow) {
            TellOffendingLine(path, fault->line, fault->text);
            return FormulaLoad::Halt;
        }
        reason = (fault->store == FormulaTable::Store::BadFrameType
                      ? QStringLiteral("The frame type in line %1 is not 0 to 3")
                      : QStringLiteral("A number in line %1 is too large"))
                     .arg(fault->line);
    }
    messages.MessageBox(
        owner,
        QStringLiteral("An error occurred loading the formulae. The error message is '%1'").arg(reason),
        MessageStyle::Critical);
    return FormulaLoad::Failed;
}
