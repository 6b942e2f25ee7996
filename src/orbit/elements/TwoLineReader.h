#pragma once

#include "orbit/elements/ElementRecord.h"

#include <string>

namespace orbitmath {

/// Finds the two-line sets among the lines of a file: a name line before each or none, blanks at both ends of
/// a line, blank lines between them.
class TwoLineReader {
public:
    explicit TwoLineReader(TakeRecord take)
        : m_take(std::move(take)) {}

    /// Takes the next line of the file; false when no more are wanted.
    bool TakeLine(std::string_view line);

    /// The file is at its end.
    void End();

    /// Whether it ended within a set.
    bool IsCut() const { return m_isCut; }

private:
    void TakeSet(std::string_view line2);
    void TakeName(std::string_view line);
    void MissSecondLine();
    void RefuseHalf(std::string_view number, std::size_t line, const ElementFault& fault);

    TakeRecord m_take;
    bool m_isWanted = true;
    bool m_isCut = false;
    std::size_t m_line = 0; ///< the last one taken
    std::string m_above;    ///< that line, trimmed
    std::string m_name;
    std::string m_line1; ///< waiting for its line 2
    std::size_t m_line1Number = 0;
    std::string m_aboveLine1;
};

} // namespace orbitmath
