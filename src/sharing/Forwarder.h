#pragma once

#include "sharing/FormPost.h"
#include "sharing/ForwardQueue.h"
#include "sharing/ForwardSettings.h"
#include "sharing/RetryPause.h"
#include "sharing/SidsRequest.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

class CallsignList;
class Clock;
class clsIni;
struct HeardFrame;

/// Sends heard frames of the satellite on to a server that takes SiDS requests: one at a time, in their
/// order, at least once, and again only where no answer was stored. Frames for which the server or the
/// network is not ready wait; those that the server refuses are parked until the user retries or discards
/// them.
class Forwarder : public QObject {
    Q_OBJECT
public:
    static constexpr int leastInterval = 250; ///< milliseconds from one request to the next

    /// What the forwarder asks of the rest of the program; all must outlive it.
    struct Surroundings {
        const ProgramFolder& folder;
        clsIni& ini;
        const Clock& clock;
        const CallsignList& callsigns;
        FormPost& post;
        std::function<SidsStation()> station; ///< as it is now
        std::function<double()> random;       ///< at least 0 and below 1
        int interval = leastInterval;         ///< milliseconds from one request to the next
    };

    explicit Forwarder(Surroundings surroundings, QObject* parent = nullptr);
    ~Forwarder() override;

    /// Reads settings and queue and begins. The folder's lock is held until Stop.
    void Start();

    /// Ends a request without its answer; what waits stays in the file. A second call does nothing.
    void Stop();

    /// A sink of live frames: those with raw bytes from one of the satellite's callsigns are queued.
    void Take(const HeardFrame& frame);

    /// Whether raw frames are needed.
    bool WantsRawFrames() const { return m_settings.use; }

    const ForwardSettings& Settings() const { return m_settings; }

    /// Saves what differs, and goes by it from now on.
    void SetSettings(const ForwardSettings& settings);

    ForwardCounts Counts() const { return m_queue.List().Counts(); }
    const std::map<qint64, ForwardFrame>& Frames() const { return m_queue.List().Frames(); }

    /// Parked frames wait again, and the server is asked at once; or they are discarded.
    void Retry(const QList<qint64>& numbers);
    void Discard(const QList<qint64>& numbers);

    /// What is missing before anything can be sent to this address: "callsign", "position", "catalogue
    /// number", "address of a server".
    QStringList Missing(const QString& url) const;

    /// The fields of the request for the frame heard last; where there is none yet, of one heard now, with a
    /// frame of no bytes.
    QList<std::pair<QByteArray, QByteArray>> Example() const;

Q_SIGNALS:
    void StatusText(const QString& text); ///< lines for the monitor, each ended by CR LF
    void WantsRawFramesChanged(bool wants);
    void
    Changed(); ///< the queue, or the frame heard last; listeners look once a turn of the event loop at most

private:
    void LookForRequest();
    void Next();
    void AskAtOnce();
    void Answered(const PostAnswer& answer);
    void Refused(const PostAnswer& answer);
    void Failed(const PostAnswer& answer);
    void NoteRoom();
    void Say(const QString& line);
    QString Host() const;

    const Surroundings m_around;
    ForwardSettings m_settings;
    ForwardQueue m_queue;
    RetryPause m_pause;
    QTimer m_timNext;             // runs until the next request may be sent
    QFileSystemWatcher m_watcher; // of the folder, for what other programs ask
    bool m_isRunning = false;
    qint64 m_underWay = 0; // number of the frame that is being sent
    QByteArray m_lastRaw;
    qint64 m_lastUtc = 0;
    QString m_saidMissing;
    QString m_saidRefusal;
    bool m_saidFailure = false;
    bool m_saidFull = false;
    qint64 m_dropped = 0;
};
