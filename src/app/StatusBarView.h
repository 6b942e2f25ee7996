#pragma once

#include "core/StationStatus.h"

#include <QStatusBar>

class QLabel;
class QToolButton;

/// The line at the foot of the main window. Its labels change when what they say does, at most once a second.
class StatusBarView : public QStatusBar {
    Q_OBJECT
public:
    /// `status` must outlive the view.
    explicit StatusBarView(StationStatus& status, QWidget* parent = nullptr);

    /// Shows the status as it is now; called once a second.
    void Refresh();

Q_SIGNALS:
    /// The user asks for the sky.
    void SkyRequested();

    /// The user asks for the last event, which counts as looked at: its time, milliseconds since 1970-01-01
    /// 00:00 UTC.
    void EventRequested(qint64 utc);

    /// The user asks for the dialog of forwarding.
    void ForwardingRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void AddEvent();
    void ShowEvent(const QString& text);
    QLabel* Add(const QString& name, const QString& accessibleName, int stretch);

    StationStatus& m_status;
    StatusTexts m_shown;
    QLabel* labLink;
    QLabel* labLastFrame;
    QLabel* labToday;
    QLabel* labElements;
    QLabel* labNextRise;
    QToolButton* labEvent;
};
