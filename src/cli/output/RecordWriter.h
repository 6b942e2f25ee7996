#pragma once

#include "cli/output/Record.h"

class Console;

/// Prints records of one kind.
class RecordWriter {
public:
    enum class Format { Text, Csv, Json };
    enum class Zone { Utc, Local }; ///< of times in text; elsewhere they are UTC

    /// All must outlive the writer.
    RecordWriter(Console& console, const RecordType& type, Format format, Zone zone = Zone::Utc)
        : m_console(console)
        , m_type(type)
        , m_format(format)
        , m_zone(zone) {}

    /// What stands before the records: the columns' names in text and CSV, nothing in JSON.
    void Head();

    /// A line; `record` has a value for each column.
    void Write(const Record& record);

private:
    QString TextLine(const QStringList& cells) const;

    Console& m_console;
    const RecordType& m_type;
    const Format m_format;
    const Zone m_zone;
};

/// Records as the formats write them, each without its line end.
namespace RecordText {

/// An object with "type" first; fields without a value are absent.
QByteArray Json(const RecordType& type, const Record& record);

/// Cells between commas, quoted where they need it (RFC 4180); fields without a value are empty.
QByteArray Csv(const RecordType& type, const Record& record);
QByteArray CsvHead(const RecordType& type);

/// A field as text, empty without a value.
QString Cell(const Column& column, const FieldValue& value,
             RecordWriter::Zone zone = RecordWriter::Zone::Utc);

/// A text for terminals, which would obey its control characters: they become "<0x1b>".
QString Shown(const QString& text);

/// A text as JSON writes it, in double quotes.
QByteArray JsonString(const QString& text);

} // namespace RecordText
