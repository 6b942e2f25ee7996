#include "telemetry/history/HistoryRows.h"

#include <algorithm>
#include <limits>
#include <numeric>

void HistoryRows::Clear() {
    *this = HistoryRows();
}

bool HistoryRows::Add(const Row& row) {
    if (m_count == most)
        return false;
    const quint32 at = m_count % blockRows;
    if (at == 0) {
        m_blocks.push_back(std::make_unique_for_overwrite<Block>()); // untouched memory costs nothing
        m_blocks.back()->firstOffset = row.offset;
    }
    Block& block = *m_blocks.back();
    const qint64 beyond = row.offset - block.firstOffset;
    if (beyond > std::numeric_limits<quint32>::max())
        return false; // gibibytes of foreign lines in between
    block.utc[at] = row.utc;
    block.offset[at] = static_cast<quint32>(beyond);
    block.source[at] = row.source;
    block.frameType[at] = row.frameType;
    block.raw[at] = row.raw;
    ++m_count;
    return true;
}

// Rows come in the order of their times unless a clock was set back, so that there is mostly nothing to do.
void HistoryRows::Sort() {
    const auto isEarlier = [this](quint32 a, quint32 b) { return Utc(a) < Utc(b); };
    if (m_order.empty()) {
        quint32 row = std::max(m_sorted, 1U);
        while (row < m_count && !isEarlier(row, row - 1))
            ++row;
        if (row >= m_count) {
            m_sorted = m_count;
            return;
        }
        m_sorted = row;
    }
    const std::size_t known = m_order.empty() ? 0 : m_order.size();
    m_order.resize(m_count);
    std::iota(m_order.begin() + static_cast<qptrdiff>(known), m_order.end(), static_cast<quint32>(known));
    const auto added = m_order.begin() + m_sorted;
    std::stable_sort(added, m_order.end(), isEarlier);
    // Only what is later than the first of the new ones has to make room.
    const auto first =
        added == m_order.end() ? added : std::upper_bound(m_order.begin(), added, *added, isEarlier);
    std::inplace_merge(first, added, m_order.end(), isEarlier);
    m_sorted = m_count;
}

HistoryRows::Row HistoryRows::At(quint32 row) const {
    const Block& block = BlockOf(row);
    const quint32 at = row % blockRows;
    return {.utc = block.utc[at],
            .offset = block.firstOffset + block.offset[at],
            .source = block.source[at],
            .frameType = block.frameType[at],
            .raw = block.raw[at]};
}

quint32 HistoryRows::PositionOf(qint64 utc) const {
    quint32 first = 0;
    quint32 count = m_count;
    while (count > 0) {
        const quint32 half = count / 2;
        if (Utc(RowAt(first + half)) < utc) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}
