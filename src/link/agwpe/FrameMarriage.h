#pragma once

#include "telemetry/frames/HeardFrame.h"

#include <functional>
#include <optional>
#include <vector>

/// Brings the two forms together in which a packet engine tells of one frame, when it is asked for raw frames
/// as well: the raw one, complete, which engines send first, and the monitored one, whose text is shown,
/// logged and decoded. Times are milliseconds of a clock that never goes back.
class FrameMarriage {
public:
    using Hand = std::function<void(const HeardFrame& frame)>;

    static constexpr qint64 patience = 1000;       ///< how long a raw frame waits for its monitored form
    static constexpr std::size_t mostWaiting = 64; ///< beyond, the raw frame that waits longest is handed on

    /// `hand` is given every frame once: a married one as the monitored form with path, PID and bytes of the
    /// raw one, and its information where the text shows all of that (else the text's, for what is decoded
    /// must not depend on whether raw frames are asked for); a monitored one without a raw form as it is; a
    /// raw one without a monitored form with neither text nor information, so that nothing is shown or
    /// decoded of it.
    explicit FrameMarriage(Hand hand);

    /// A raw frame (Ax25Heard reads it) waits.
    void AddRaw(const HeardFrame& raw, qint64 now);

    /// A monitored frame is handed on at once, married when its raw form waits.
    void AddMonitored(const HeardFrame& monitored, qint64 now);

    /// When PassTime is due; nothing while none waits.
    std::optional<qint64> Due() const;

    /// Hands on the raw frames that have waited long enough.
    void PassTime(qint64 now);

    /// Hands on every raw frame that waits: the connection has ended.
    void End();

private:
    struct Waiting {
        OwnedFrame raw;
        qint64 due;
    };

    OwnedFrame TakeOff(std::vector<Waiting>::iterator waiting);
    void HandFirstAlone();

    Hand m_hand;
    std::vector<Waiting> m_waiting; // the oldest first
    OwnedFrame m_spare;             // lends its storage to the next one that waits
};
