#pragma once

#include <QtGlobal>

#include <array>
#include <memory>
#include <vector>

/// The frames of the history in columns, 47 bytes each. Rows count from 0 in the order of their adding;
/// positions from 0 in the order of their times.
class HistoryRows {
public:
    static constexpr std::size_t channels = 4;
    static constexpr quint32 most = 16'000'000; ///< a station's three hundred years

    struct Row {
        qint64 utc = 0;    ///< milliseconds since 1970-01-01 00:00
        qint64 offset = 0; ///< of its line in the file, bytes
        quint16 source = 0;
        quint8 frameType = 0;
        std::array<double, channels> raw{};
    };

    void Clear();

    /// False, and nothing is added, once there are `most`. Offsets grow from one row to the next.
    bool Add(const Row& row);

    /// To be called after rows were added: puts positions in order; of equal times, the first added is first.
    void Sort();

    quint32 Count() const { return m_count; }

    Row At(quint32 row) const;

    qint64 Utc(quint32 row) const { return BlockOf(row).utc[row % blockRows]; }
    quint16 Source(quint32 row) const { return BlockOf(row).source[row % blockRows]; }
    quint8 FrameType(quint32 row) const { return BlockOf(row).frameType[row % blockRows]; }
    double Raw(quint32 row, std::size_t channel) const { return BlockOf(row).raw[row % blockRows][channel]; }

    quint32 RowAt(quint32 position) const { return m_order.empty() ? position : m_order[position]; }

    /// The first position whose time is not before `utc`; Count() when there is none.
    quint32 PositionOf(qint64 utc) const;

private:
    static constexpr quint32 blockRows = 16384;

    // Blocks, since a column that grows in one piece needs twice its room for a moment.
    struct Block {
        qint64 firstOffset;
        std::array<qint64, blockRows> utc;
        std::array<quint32, blockRows> offset; // beyond the first
        std::array<quint16, blockRows> source;
        std::array<quint8, blockRows> frameType;
        std::array<std::array<double, channels>, blockRows> raw;
    };

    const Block& BlockOf(quint32 row) const { return *m_blocks[row / blockRows]; }

    std::vector<std::unique_ptr<Block>> m_blocks;
    quint32 m_count = 0;
    quint32 m_sorted = 0; // rows that are in order
    std::vector<quint32>
        m_order; // the row of each position; empty while rows come in the order of their times
};
