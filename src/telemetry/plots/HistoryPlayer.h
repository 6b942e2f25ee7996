#pragma once

#include <QTimer>
#include <QWidget>

class Clock;
class QComboBox;
class QPushButton;

/// Lives a stretch of the past again: tells a time that runs 1, 10 or 100 times as fast as the true one.
class HistoryPlayer : public QWidget {
    Q_OBJECT
public:
    /// `clock` must outlive it.
    explicit HistoryPlayer(const Clock& clock, QWidget* parent = nullptr);

    bool IsPlaying() const { return m_timer.isActive(); }

    /// From one time to another, milliseconds since 1970-01-01 00:00 UTC.
    void Play(qint64 from, qint64 to);
    void Stop();

Q_SIGNALS:
    /// The user wants to begin.
    void PlayAsked();

    /// It is this time now.
    void Moved(qint64 utc);

private:
    void Advance();

    const Clock& m_clock;
    QTimer m_timer;
    qint64 m_last = 0; // when it was told, by the clock
    qint64 m_now = 0;
    qint64 m_to = 0;
    QPushButton* cmdPlay;
    QComboBox* cboSpeed;
};
