#include "cli/output/RecordWriter.h"

#include "cli/output/Console.h"

QString RecordWriter::TextLine(const QStringList& cells) const {
    QString line;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const Column& column = m_type.columns[static_cast<std::size_t>(i)];
        line += RecordText::IsNumber(column) ? cells[i].rightJustified(column.width)
                                             : cells[i].leftJustified(column.width);
        line += QStringLiteral("  ");
    }
    while (line.endsWith(u' '))
        line.chop(1);
    return line + u'\n';
}

void RecordWriter::Head() {
    if (m_format == Format::Csv)
        m_console.Print(RecordText::CsvHead(m_type) + "\r\n");
    if (m_format != Format::Text)
        return;
    QStringList names;
    for (const Column& column : m_type.columns)
        names.append(QString::fromLatin1(column.name));
    m_console.Print(TextLine(names));
}

void RecordWriter::Write(const Record& record) {
    if (m_format == Format::Json)
        m_console.Print(RecordText::Json(m_type, record) + '\n');
    else if (m_format == Format::Csv)
        m_console.Print(RecordText::Csv(m_type, record) + "\r\n");
    else {
        QStringList cells;
        for (qsizetype i = 0; i < record.size(); ++i)
            cells.append(RecordText::Shown(
                RecordText::Cell(m_type.columns[static_cast<std::size_t>(i)], record[i], m_zone)));
        m_console.Print(TextLine(cells));
    }
}
