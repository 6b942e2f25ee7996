#pragma once

#include "foundation/records/RecordText.h"

class Console;

/// Prints records of one kind.
class RecordWriter {
public:
    enum class Format { Text, Csv, Json };
    using Zone = RecordText::Zone;

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
