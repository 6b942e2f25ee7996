#include "foundation/records/RecordText.h"

#include "foundation/files/Csv.h"
#include "foundation/text/IsoTime.h"
#include "foundation/text/UtcTime.h"

#include <cmath>

namespace RecordText {
namespace {

using Kind = Column::Kind;

QString TimeText(const Column& column, qint64 utc, Zone zone) {
    const bool isWhole = column.kind == Kind::Seconds;
    if (zone == Zone::Local)
        return UtcTime::ToLocalText(utc, isWhole ? UtcTime::Digits::Seconds : UtcTime::Digits::Milliseconds);
    return QString::fromLatin1(isWhole ? IsoTime::Seconds(UtcTime::ToNearestSecond(utc))
                                       : IsoTime::Milliseconds(utc));
}

bool IsTime(const Column& column) {
    return column.kind == Kind::Seconds || column.kind == Kind::Moment;
}

// "." in every locale, and no sign before a number that is rounded to 0.
QString NumberText(const Column& column, double value) {
    constexpr int significantDigits = 15; // as many as a double surely has
    if (column.decimals < 0)
        return QString::number(value, 'g', significantDigits);
    const QString text = QString::number(value, 'f', column.decimals);
    const bool isZero = text.startsWith(u'-') && text.toDouble() == 0.0;
    return isZero ? text.sliced(1) : text;
}

// Nothing where the field has no value; what is no number is none.
std::optional<QString> CellText(const Column& column, const FieldValue& value, Zone zone) {
    if (const auto* text = std::get_if<QString>(&value))
        return *text;
    if (const auto* number = std::get_if<double>(&value))
        return std::isfinite(*number) ? std::optional(NumberText(column, *number)) : std::nullopt;
    if (const auto* list = std::get_if<QStringList>(&value))
        return list->join(u',');
    const auto* whole = std::get_if<qint64>(&value);
    if (whole == nullptr)
        return std::nullopt;
    return IsTime(column) ? TimeText(column, *whole, zone) : QString::number(*whole);
}

} // namespace

bool IsNumber(const Column& column) {
    return column.kind == Kind::Whole || column.kind == Kind::Decimal;
}

QString Cell(const Column& column, const FieldValue& value, Zone zone) {
    return CellText(column, value, zone).value_or(QString());
}

QString Shown(const QString& text) {
    QString shown;
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code < 0x20 || (code >= 0x7F && code < 0xA0))
            shown += QStringLiteral("<0x%1>").arg(uint{code}, 2, 16, QChar(u'0'));
        else
            shown += c;
    }
    return shown;
}

QByteArray JsonString(const QString& text) {
    QByteArray json = "\"";
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            json += '\\';
        if (static_cast<unsigned char>(c) < 0x20)
            json += "\\u00" + QByteArray(1, c).toHex();
        else
            json += c;
    }
    return json + '"';
}

QByteArray Json(const RecordType& type, const Record& record) {
    QByteArray json = R"({"type":)" + JsonString(QString::fromLatin1(type.name));
    for (qsizetype i = 0; i < record.size(); ++i) {
        const Column& column = type.columns[static_cast<std::size_t>(i)];
        const std::optional<QString> cell = CellText(column, record[i], Zone::Utc);
        if (!cell)
            continue;
        json += ',' + JsonString(QString::fromLatin1(column.name)) + ':';
        if (const auto* list = std::get_if<QStringList>(&record[i])) {
            QByteArrayList items;
            for (const QString& item : *list)
                items.append(JsonString(item));
            json += '[' + items.join(',') + ']';
        } else {
            json += IsNumber(column) ? cell->toLatin1() : JsonString(*cell);
        }
    }
    return json + '}';
}

QByteArray Csv(const RecordType& type, const Record& record) {
    QByteArray line;
    for (qsizetype i = 0; i < record.size(); ++i) {
        if (i > 0)
            line += ',';
        ::Csv::AppendField(line, Cell(type.columns[static_cast<std::size_t>(i)], record[i]).toUtf8());
    }
    return line;
}

QByteArray CsvHead(const RecordType& type) {
    QByteArrayList names;
    for (const Column& column : type.columns)
        names.append(column.name);
    return names.join(',');
}

} // namespace RecordText
