#pragma once

#include <QStringList>

/// A transmit line that becomes as long is sent.
constexpr qsizetype longestLine = 72;

/// What a transmit line that has become too long falls into.
struct LineWrap {
    QStringList lines; ///< to be sent, in order, none longer than 72 characters
    QString rest;      ///< stays in the transmit line: shorter than 72 characters
};

/// A line of 72 characters or more breaks at the last blank among its characters 53 to 73, which is dropped,
/// or after its 72nd character. Takes time in proportion to the text.
LineWrap WrapLines(QStringView text);
