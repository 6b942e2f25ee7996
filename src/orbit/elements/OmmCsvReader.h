#pragma once

#include "foundation/files/Csv.h"
#include "orbit/elements/OmmRecord.h"

#include <vector>

namespace orbitmath {

/// Reads OMM from the lines of a CSV file: a header with their keywords in any order, then a line a record.
/// A header may come again.
class OmmCsvReader {
public:
    explicit OmmCsvReader(TakeRecord take)
        : m_take(std::move(take)) {}

    /// Whether a file that begins with this line is one.
    static bool IsHeader(std::string_view line);

    /// Takes the next line of the file; false when no more are wanted.
    bool TakeLine(std::string_view line);

    /// The file is at its end.
    void End() {}

    /// Whether it ended within a record.
    bool IsCut() const { return m_isCut; }

private:
    void TakeHeader(std::string_view line);
    bool TakeFields(std::string_view line);

    TakeRecord m_take;
    Csv::Record m_record;
    std::string m_header;
    std::vector<std::size_t> m_places; ///< of each column's keyword, see OmmPlace; `none` for another column
    std::size_t m_line = 0;            ///< the last one taken
    bool m_isCut = false;
};

} // namespace orbitmath
