#pragma once

#include "telemetry/history/HistoryLayout.h"

#include <QByteArray>

#include <span>
#include <vector>

/// Telemetry frames on their way into the history: the lines of tlm.txt that they become, without those that
/// are known already. A frame is known when the same source sent the same line within five minutes of it.
class IncomingFrames {
public:
    static constexpr qint64 knownWithin = qint64{5} * 60 * 1000;
    static constexpr qsizetype mostBytes = qsizetype{256} * 1024 * 1024; ///< of lines

    /// A frame of the history. To be called for all of them before Sort.
    void AddKnown(qint64 utc, std::string_view source, const HistoryLayout::Fields& fields);

    /// A frame that is to come in. `fields`: UTF-8. False when there are `mostBytes`.
    bool Add(qint64 utc, std::string_view source, int side, const HistoryLayout::Fields& fields);

    /// Puts what came in into the order of time and drops what is known; of frames that come in twice, the
    /// first stays.
    void Sort();

    std::size_t Count() const { return m_frames.size(); }
    qint64 Known() const { return m_known; }

    /// In the order of time, 0 to Count() - 1: the line of the newest layout, with its LF.
    qint64 Utc(std::size_t index) const { return m_frames[index].utc; }
    std::string_view Line(std::size_t index) const;

private:
    struct Frame {
        qint64 utc = 0;
        std::size_t hash = 0; // of source and line
        qsizetype offset = 0; // of its line
        qsizetype length = 0;
    };
    struct Seen {
        std::size_t hash = 0;
        qint64 utc = 0;

        auto operator<=>(const Seen&) const = default;
    };

    QByteArray m_lines;
    std::vector<Frame> m_frames;
    std::vector<Seen> m_seen;
    qint64 m_known = 0;
};
