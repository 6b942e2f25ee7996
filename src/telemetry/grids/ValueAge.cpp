#include "telemetry/grids/ValueAge.h"

#include <utility>

ValueAge::ValueAge(std::function<qint64()> now)
    : m_now(std::move(now)) {}

void ValueAge::SetOn(bool isOn) {
    if (m_isOn == isOn)
        return;
    m_isOn = isOn;
    Q_EMIT Changed();
}

void ValueAge::SetPassStart(qint64 utc) {
    if (m_passStart == utc)
        return;
    m_passStart = utc;
    Q_EMIT Changed();
}
