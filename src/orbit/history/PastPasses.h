#pragma once

#include "orbit/history/PastElements.h"

#include <utility>
#include <vector>

/// The passes of a satellite over a station, each by the elements of its time.
class PastPasses {
public:
    using Span = std::pair<qint64, qint64>; ///< from rise to set, milliseconds since 1970-01-01 00:00 UTC

    /// The reference outlives it.
    explicit PastPasses(PastElements& elements)
        : m_elements(elements) {}

    /// Those that have a part between two times, in order, at most `most`. `object`: see PastElements;
    /// degrees. None where no elements are near enough.
    std::vector<Span> Between(const QString& object, double latitude, double longitude, qint64 from,
                              qint64 to, std::size_t most);

private:
    PastElements& m_elements;
};
