#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

/// One field of a kind of records.
struct Column {
    enum class Kind {
        Text,
        Whole,   ///< a whole number
        Decimal, ///< a number with `decimals` decimals, or up to 15 significant digits where they are below 0
        Seconds, ///< a moment, to the second
        Moment,  ///< a moment, to the millisecond
        List,    ///< texts
    };

    const char* name; ///< in JSON and CSV
    Kind kind = Kind::Text;
    int decimals = 0;
    int width = 0;           ///< characters in text, at least
    const char16_t* meaning; ///< for the manual page
};

/// A kind of records that the program prints: its name and its fields, in the order in which they are
/// printed.
struct RecordType {
    const char* name;
    const char16_t* meaning;
    std::vector<Column> columns;
};

/// The value of a field: none, a text, a number, a whole number or moment (milliseconds since 1970-01-01
/// 00:00 UTC), or texts.
using FieldValue = std::variant<std::monostate, QString, double, qint64, QStringList>;

/// The values of a record, one for each column of its type.
using Record = QList<FieldValue>;

/// An optional value as a field.
template <class Value>
FieldValue FieldOf(const std::optional<Value>& value) {
    return value ? FieldValue(*value) : FieldValue();
}
