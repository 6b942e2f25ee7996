#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>
#include <span>
#include <vector>

/// A line of a user's file that does not count, and why not.
struct LineFault {
    std::size_t line = 0; ///< from 1; 0: the file as a whole
    QString reason;
};

/// Small files of the user's: a line of CSV an entry, in UTF-8. Blanks around a field do not count; empty
/// lines and lines that begin with "#" are notes.
namespace TableFile {

constexpr qint64 largestFile = 64LL * 1024;

/// Takes an entry's fields and answers why it does not count, or nothing when it does.
using Take = std::function<QString(std::size_t line, std::span<const QByteArrayView> fields)>;

/// Hands over each line that has `count` fields; answers what is wrong with the others and with those that
/// `take` refuses, in their order. Where there is no file there are neither entries nor faults.
std::vector<LineFault> Read(const QString& path, std::size_t count, const Take& take);

/// The same with a file's bytes.
std::vector<LineFault> Parse(QByteArrayView bytes, std::size_t count, const Take& take);

/// A field as a reason quotes it: cut, in quotes, with "?" for what cannot be shown.
QString Quoted(QByteArrayView field);

/// The field as a number, "." as the decimal mark; nothing unless it is a finite one, and all of the field.
std::optional<double> NumberIn(QByteArrayView field);

} // namespace TableFile
