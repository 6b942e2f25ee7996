#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <map>
#include <set>
#include <utility>

/// What became of the frames of a queue so far.
struct ForwardCounts {
    qint64 waiting = 0;
    qint64 parked = 0;
    qint64 sent = 0;
    qint64 discarded = 0; ///< by the user
    qint64 dropped = 0;   ///< the oldest of a full queue

    bool operator==(const ForwardCounts&) const = default;
};

/// A frame that waits to be sent.
struct ForwardFrame {
    QByteArray body;       ///< of the request
    bool isParked = false; ///< refused by the server; it stays until the user decides
    QString words{};       ///< with which the server refused it
};

/// The frames that wait, in their order, as the lines of the queue's file tell it. Whatever happens to a
/// frame is one line: its number, what happened, and more.
///
///   17 queued noradID=90417&source=...      to be sent
///   17 parked 400 Bad Request: ...          refused, in the server's words
///   17 waiting                              to be sent again, since the user said so
///   17 sent 1f0c6b0e8a6f54d2                with what stands for the frame and its time
///   17 discarded                            by the user
///   17 dropped                              out of a full queue
///   17 counted 120 3 0                      the numbers up to 17 are used; so many were sent, discarded,
///   dropped
class ForwardList {
public:
    static constexpr qsizetype mostFrames = 1'000'000;
    static constexpr qsizetype mostRemembered = 10'000; ///< of what was sent
    static constexpr qsizetype longestWords = 300;

    /// Does what a line says; false, and nothing is changed, when it says nothing sensible.
    bool Apply(QByteArrayView line);

    /// Each answers the line, with its LF, that says what it is about to do; Apply does it.
    QByteArray QueuedLine(QByteArrayView body) const;
    static QByteArray ParkedLine(qint64 number, const QString& words);
    static QByteArray WaitingLine(qint64 number);
    QByteArray SentLine(qint64 number) const;
    static QByteArray DiscardedLine(qint64 number);
    static QByteArray DroppedLine(qint64 number);

    /// Lines that say all that is known now.
    QByteArray Lines() const;

    /// How many lines that are.
    qsizetype LineCount() const;

    const std::map<qint64, ForwardFrame>& Frames() const { return m_frames; }

    /// The number of the first frame that is to be sent, 0 when none is.
    qint64 FirstWaiting() const { return m_waiting.empty() ? 0 : *m_waiting.begin(); }

    ForwardCounts Counts() const;

    /// Whether the frame with this key (SidsRequest::FrameKey) waits, is parked or was sent lately.
    bool IsKnown(quint64 key) const;

private:
    bool Queue(qint64 number, QByteArrayView body);
    bool Park(qint64 number, QByteArrayView words);
    bool LetWait(qint64 number);
    bool NoteSent(qint64 number, QByteArrayView key);
    bool TakeCounts(qint64 number, QByteArrayView counts);
    bool Remove(qint64 number, qint64& counter);

    std::map<qint64, ForwardFrame> m_frames;
    std::set<qint64> m_waiting;                   // of the frames
    QSet<quint64> m_keys;                         // of the frames
    QList<std::pair<qint64, quint64>> m_sentKeys; // number and key, the oldest first
    QSet<quint64> m_sent;                         // the keys again
    qint64 m_lastNumber = 0;
    ForwardCounts m_counts; // without waiting and parked
};
