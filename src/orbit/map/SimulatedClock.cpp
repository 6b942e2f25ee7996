#include "orbit/map/SimulatedClock.h"

#include <cmath>

bool SimulatedClock::ChooseSpeed(Speed speed, DateTime nowUtc) {
    if (speed == m_speed)
        return false;
    m_speed = speed;
    if (speed != Speed::Normal && !IsSimulated())
        Start(nowUtc);
    m_ticking = true; // also while paused
    return true;
}

void SimulatedClock::ToggleBackwards(DateTime nowUtc) {
    m_backwards = !m_backwards;
    if (m_backwards && !IsSimulated())
        Start(nowUtc);
}

void SimulatedClock::TogglePause() {
    m_pause = !m_pause;
    m_ticking = !m_pause;
}

void SimulatedClock::Reset() {
    *this = SimulatedClock();
}

int SimulatedClock::Interval() const {
    switch (m_speed) {
    case Speed::Fast:
        return 500;
    case Speed::VeryFast:
        return 250;
    case Speed::Normal:
        break;
    }
    return 15000;
}

void SimulatedClock::Start(DateTime nowUtc) {
    CalendarRecord minute = ToCalendar(nowUtc);
    minute.second = 0;
    m_simulated = FromCalendar(minute) + (m_backwards ? 0.0 : 1.0 / minutesPerDay);
}

void SimulatedClock::Step() {
    if (!IsSimulated())
        return;
    const double minutes = (m_speed == Speed::VeryFast ? 2.0 : 1.0) * (m_backwards ? -1.0 : 1.0);
    m_simulated = std::round(m_simulated * minutesPerDay + minutes) / minutesPerDay;
}
