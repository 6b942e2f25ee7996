#pragma once

#include "orbit/elements/OmmRecord.h"

#include <string>

namespace orbitmath {

/// Reads OMM from a JSON file: one object, or a list of them, whose keys are the keywords. Each object is
/// read by itself, so that a damaged one costs no other.
class OmmJsonReader {
public:
    explicit OmmJsonReader(TakeRecord take)
        : m_take(std::move(take)) {}

    /// Takes the next bytes of the file; false when no more are wanted.
    bool TakePiece(std::string_view piece);

    /// The file is at its end.
    void End();

    /// Whether it ended within an object or a list.
    bool IsCut() const { return m_isCut; }

private:
    void TakeOutside(char c);
    void TakeInside(char c);
    void TakeObject();
    void Refuse(std::string_view what);
    ElementRecord Here() const;

    TakeRecord m_take;
    bool m_isWanted = true;
    bool m_isCut = false;
    std::string m_text;       ///< of the object, as much of it as may be
    std::size_t m_lists = 0;  ///< that are open around it
    std::size_t m_depth = 0;  ///< of what is open within it, itself counted; 0: none has begun
    bool m_isInText = false;  ///< between quotes
    bool m_isEscaped = false; ///< behind a backslash there
    bool m_isTooLong = false;
    std::size_t m_line = 1;
    std::size_t m_begun = 0; ///< the line where the object begins
    std::size_t m_index = 0; ///< of the object
};

} // namespace orbitmath
