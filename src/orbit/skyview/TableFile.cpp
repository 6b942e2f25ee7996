#include "orbit/skyview/TableFile.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/files/Csv.h"
#include "foundation/text/ByteOrderMark.h"

#include <QFile>

#include <charconv>
#include <cmath>

namespace TableFile {

std::vector<LineFault> Read(const QString& path, std::size_t count, const Take& take) {
    if (!QFile::exists(path))
        return {};
    QString reason;
    if (const std::optional<QByteArray> bytes = ReadBoundedFile(path, largestFile, reason))
        return Parse(*bytes, count, take);
    return {{0, reason}};
}

std::vector<LineFault> Parse(QByteArrayView bytes, std::size_t count, const Take& take) {
    std::vector<LineFault> faults;
    std::vector<QByteArrayView> fields;
    Csv::Reader reader(WithoutByteOrderMark({bytes.data(), static_cast<std::size_t>(bytes.size())}),
                       Csv::Reader::LineEnds::EndRecords);
    while (reader.Next()) {
        const std::size_t start = reader.Text().find_first_not_of(" \t");
        if (start == std::string_view::npos || reader.Text()[start] == '#')
            continue;
        fields.clear();
        for (const std::string_view field : reader.Fields())
            fields.push_back(QByteArrayView(field.data(), static_cast<qsizetype>(field.size())).trimmed());
        QString reason;
        if (!reader.IsSound())
            reason = QStringLiteral("a quote is out of place, or the line is too long");
        else if (fields.size() != count)
            reason = QStringLiteral("%1 fields in place of %2").arg(fields.size()).arg(count);
        else
            reason = take(reader.LineNumber(), fields);
        if (!reason.isEmpty())
            faults.push_back({reader.LineNumber(), reason});
    }
    return faults;
}

QString Quoted(QByteArrayView field) {
    constexpr qsizetype longestShown = 40;
    QString text = QString::fromUtf8(field).left(longestShown);
    for (QChar& c : text)
        if (!c.isPrint())
            c = u'?';
    return u'"' + text + u'"';
}

std::optional<double> NumberIn(QByteArrayView field) {
    double number = 0;
    const char* const end = field.data() + field.size();
    const char* const start = field.startsWith('+') ? field.data() + 1 : field.data();
    const auto read = std::from_chars(start, end, number);
    const bool isNumber = read.ec == std::errc() && read.ptr == end && std::isfinite(number);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace TableFile
