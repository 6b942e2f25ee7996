#pragma once

#include "orbit/elements/Elements.h"

#include <functional>
#include <string_view>
#include <variant>

namespace orbitmath {

/// How a file writes its elements.
enum class ElementFormat { TwoLines };

/// "TLE": as public servers and the command line name a format.
std::string_view NameOf(ElementFormat format);

/// What a file tells about one object: its name, its elements or why they are refused, and where that stands.
/// Names are bytes in Windows-1252. The texts live as long as the call that hands the record over.
struct ElementRecord {
    ElementFormat format = ElementFormat::TwoLines;

    /// Trimmed, without a leading "0 ", at most 64 bytes; empty when there is none.
    std::string_view name;

    /// Where name and elements are a group of three lines, one right below the other: the name line, trimmed.
    /// Empty where they are not.
    std::string_view nameLine;

    /// The catalogue number as each of the two lines of elements begins with it; the first may be followed by
    /// a classification letter.
    std::string_view number1;
    std::string_view number2;

    /// Of the file, counted from 1: the line where the elements begin, or the one that is at fault.
    std::size_t line = 0;

    std::variant<Elements, ElementFault> content;

    /// False when a fault is not worth a word: what was read is hardly meant as elements.
    bool isMeant = true;

    /// Whether it is a group of three lines that holds an object: `number` is the catalogue number as the
    /// user writes it.
    bool IsGroupOf(std::string_view number) const;
};

/// Gets the records of a file in turn, until it answers false.
using TakeRecord = std::function<bool(const ElementRecord& record)>;

} // namespace orbitmath
