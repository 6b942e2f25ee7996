#pragma once

#include <QObject>

#include <functional>

/// How old a value of the grids is, where the user wants to see that: heard before the last pass, or just
/// now.
class ValueAge : public QObject {
    Q_OBJECT
public:
    /// `now`: milliseconds since 1970-01-01 00:00 UTC.
    explicit ValueAge(std::function<qint64()> now);

    static constexpr int freshFor = 3000; ///< milliseconds in which a new value stands out

    /// Off until it is switched on.
    void SetOn(bool isOn);
    bool IsOn() const { return m_isOn; }

    /// When the present or last pass began: what was heard before is old.
    void SetPassStart(qint64 utc);

    bool IsOld(qint64 heardUtc) const { return m_isOn && heardUtc < m_passStart; }
    bool IsFresh(qint64 heardUtc) const { return m_isOn && m_now() - heardUtc < freshFor; }

Q_SIGNALS:
    /// Cells are to be painted anew.
    void Changed();

private:
    const std::function<qint64()> m_now;
    qint64 m_passStart = 0;
    bool m_isOn = false;
};
