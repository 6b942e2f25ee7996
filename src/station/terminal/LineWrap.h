#pragma once

#include <QStringList>

/// What a transmit line that has become too long, or into which several lines were pasted, falls into.
struct LineWrap {
    QStringList lines; ///< to be sent, in order, none longer than 72 characters
    QString rest;      ///< stays in the transmit line: shorter than 72 characters, without a line end
};

/// A line of 72 characters or more breaks at the last blank among its characters 53 to 73, which is dropped,
/// or after its 72nd character. A line end ends a line. Takes time in proportion to the text.
LineWrap WrapLines(QStringView text);
