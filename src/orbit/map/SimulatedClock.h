#pragma once

#include "foundation/text/DateTime.h"

/// The clock of the map: it follows the real one until the user runs it faster or backwards. Each choice of
/// the user answers whether the map is to be drawn anew.
class SimulatedClock {
public:
    enum class Speed { Normal, Fast, VeryFast };

    bool ChooseSpeed(Speed speed, DateTime nowUtc);
    void ToggleBackwards(DateTime nowUtc);
    void TogglePause();

    /// Back to the real clock, at normal speed.
    void Reset();

    Speed CheckedSpeed() const { return m_speed; }
    bool IsBackwardsChecked() const { return m_backwards; }
    bool IsPauseChecked() const { return m_pause; }

    /// Whether the ticker runs, and the milliseconds between two ticks.
    bool IsTicking() const { return m_ticking; }
    int Interval() const;

    bool IsSimulated() const { return m_simulated != 0.0; }

    /// The time that a tick shows, UTC.
    DateTime Shown(DateTime nowUtc) const { return IsSimulated() ? m_simulated : nowUtc; }

    /// The end of a tick: the simulated clock goes on.
    void Step();

private:
    void Start(DateTime nowUtc);

    Speed m_speed = Speed::Normal;
    bool m_backwards = false;
    bool m_pause = false;
    bool m_ticking = true;
    DateTime m_simulated = 0; // UTC, a whole minute; 0: follows the real clock
};
