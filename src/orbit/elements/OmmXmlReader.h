#pragma once

#include "orbit/elements/OmmRecord.h"

#include <string>

namespace orbitmath {

/// Reads OMM from an XML file: every "omm" element, wherever it stands, whose values are in elements named by
/// the keywords. Each is read by itself, so that a damaged one costs no other, and entities that the file
/// declares mean nothing.
class OmmXmlReader {
public:
    explicit OmmXmlReader(TakeRecord take)
        : m_take(std::move(take)) {}

    /// Takes the next bytes of the file; false when no more are wanted.
    bool TakePiece(std::string_view piece);

    /// The file is at its end.
    void End();

    /// Whether it ended within an element.
    bool IsCut() const { return m_isCut; }

private:
    void Take(char c);
    bool EndsMarkup(char c);
    void TakeMarkup();
    void TakeElement();
    void Refuse(std::string_view what);
    ElementRecord Here() const;

    TakeRecord m_take;
    bool m_isWanted = true;
    bool m_isCut = false;
    std::string m_text;         ///< of the message, as much of it as may be
    bool m_isInMessage = false; ///< such a one is open
    bool m_isTooLong = false;
    std::size_t m_depth = 0;  ///< elements that are open
    std::string m_markup;     ///< the start of a tag or another one that is open; empty: none is
    std::size_t m_length = 0; ///< of it in all
    std::uint32_t m_last = 0; ///< its last four bytes
    char m_quote = 0;         ///< that is open in a tag
    std::size_t m_inside = 0; ///< how much of `m_text` stands before it
    std::size_t m_line = 1;
    std::size_t m_begun = 0; ///< the line where the message begins
    std::size_t m_index = 0; ///< of the message
};

} // namespace orbitmath
