#pragma once

#include <QObject>
#include <QThread>

#include <atomic>
#include <deque>
#include <memory>
#include <vector>

class GroundStation;

/// When telemetry frames of the satellite were heard: those of the history file, read on a thread of its own
/// when somebody first wants them, and those that have come in since the station was made.
class HeardTimes : public QObject {
    Q_OBJECT
public:
    /// `station` must outlive this object and is handed to nobody else's thread.
    explicit HeardTimes(GroundStation& station, QObject* parent = nullptr);
    ~HeardTimes() override; ///< ends the reading
    HeardTimes(const HeardTimes&) = delete;
    HeardTimes& operator=(const HeardTimes&) = delete;

    /// So many frames are known beside the file; of more of them the oldest are forgotten until it is read.
    static constexpr std::size_t mostLive = 10'000;

    /// Reads the file (again), unless it is being read.
    void Load();

    /// From one time to another, both included, in order; milliseconds since 1970-01-01 00:00 UTC.
    std::vector<qint64> Between(qint64 from, qint64 to) const;

Q_SIGNALS:
    /// The file has been read.
    void Loaded();

private:
    void Take(std::vector<qint64> kept);

    GroundStation& m_station;
    std::vector<qint64> m_kept; // in the file, in order
    std::deque<qint64> m_live;  // and not in what was read of it
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_isEnding = false;
};
