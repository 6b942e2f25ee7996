#pragma once

#include "orbit/elements/Elements.h"

#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace orbitmath {

/// Finds the two-line sets in a file, a piece at a time: whatever the file holds, memory stays bounded.
class ElementFile {
public:
    using Found = std::function<void(const Elements& elements, std::string_view name)>;

    explicit ElementFile(Found found)
        : m_found(std::move(found)) {}

    /// Reads to the end. A file whose first piece holds a zero byte is no text, and left at once.
    void Read(std::istream& file);

    /// Sets that were passed over; where and why the first one was.
    std::size_t DamagedCount() const { return m_damaged; }
    std::size_t FirstDamagedLine() const { return m_firstDamagedLine; }
    std::string_view FirstFault() const { return m_firstFault; }

private:
    void TakeLine(std::string_view line);
    void TakeName(std::string_view line);
    void MissSecondLine();
    void Damaged(std::size_t line, std::string_view why);

    Found m_found;
    std::size_t m_line = 0;
    std::string m_name;
    std::string m_line1; ///< waiting for its line 2
    std::size_t m_line1Number = 0;
    std::size_t m_damaged = 0;
    std::size_t m_firstDamagedLine = 0;
    std::string_view m_firstFault;
};

} // namespace orbitmath
