#pragma once

#include "orbit/elements/Elements.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <variant>

namespace orbitmath {

/// How a file writes its elements.
enum class ElementFormat { TwoLines, OmmCsv, OmmJson, OmmXml };

/// "TLE", "CSV", "JSON" or "XML": as public servers and the command line name a format.
std::string_view NameOf(ElementFormat format);

/// What a file tells about one object: its name, its elements or why they are refused, and where that stands.
/// Names are bytes in Windows-1252. The texts live as long as the call that hands the record over.
struct ElementRecord {
    ElementFormat format = ElementFormat::TwoLines;

    /// Trimmed, without a leading "0 ", at most 64 bytes; empty when there is none.
    std::string_view name{};

    /// Where name and elements are a group of three lines, one right below the other: the name line, trimmed.
    /// Empty where they are not. An OMM that names its object counts as such a group.
    std::string_view nameLine{};

    /// The catalogue number as each of the two lines of elements begins with it; the first may be followed by
    /// a classification letter. In an OMM both are its one number.
    std::string_view number1{};
    std::string_view number2{};

    /// Of the file, counted from 1: the line where the elements begin, or the one that is at fault.
    std::size_t line = 0;

    /// Of a file in JSON or XML, where a line says little: which of its records it is, counted from 1. Else
    /// 0.
    std::size_t index = 0;

    /// The set as it came: name line, line 1 and line 2; or the header of the CSV file and the record's line;
    /// or the JSON object or XML element. What is missing is empty.
    std::array<std::string_view, 3> lines{};

    std::variant<Elements, ElementFault> content{};

    /// False when a fault is not worth a word: what was read is hardly meant as elements.
    bool isMeant = true;

    /// Whether it is a group of three lines that holds an object: `number` is the catalogue number as the
    /// user writes it.
    bool IsGroupOf(std::string_view number) const;

    /// `lines` as a file that holds this set alone, each ended by LF.
    std::string Text() const;
};

/// Gets the records of a file in turn, until it answers false.
using TakeRecord = std::function<bool(const ElementRecord& record)>;

} // namespace orbitmath
