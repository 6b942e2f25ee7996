#pragma once

#include "foundation/records/Record.h"

#include <QByteArray>

/// Records as the formats write them, each without its line end.
namespace RecordText {

enum class Zone { Utc, Local }; ///< of times in text; elsewhere they are UTC

/// An object with "type" first; fields without a value are absent.
QByteArray Json(const RecordType& type, const Record& record);

/// Cells between commas, quoted where they need it (RFC 4180); fields without a value are empty.
QByteArray Csv(const RecordType& type, const Record& record);
QByteArray CsvHead(const RecordType& type);

/// Whether its values are numbers and no times.
bool IsNumber(const Column& column);

/// A field as text, empty without a value.
QString Cell(const Column& column, const FieldValue& value, Zone zone = Zone::Utc);

/// A text for terminals, which would obey its control characters: they become "<0x1b>".
QString Shown(const QString& text);

/// A text as JSON writes it, in double quotes.
QByteArray JsonString(const QString& text);

} // namespace RecordText
