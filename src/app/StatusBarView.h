#pragma once

#include "core/StationStatus.h"

#include <QStatusBar>
#include <QTimer>

class QLabel;

/// The line at the foot of the main window. Its labels change when what they say does, at most once a second.
class StatusBarView : public QStatusBar {
    Q_OBJECT
public:
    /// `status` must outlive the view.
    explicit StatusBarView(StationStatus& status, QWidget* parent = nullptr);

    /// Begins to follow the status, and ends.
    void Start();
    void Stop() { m_timer.stop(); }

    /// Shows the status as it is now.
    void Refresh();

Q_SIGNALS:
    /// The user asks for the sky.
    void SkyRequested();

protected:
    void changeEvent(QEvent* event) override;

private:
    QLabel* Add(const QString& name, const QString& accessibleName, int stretch);

    StationStatus& m_status;
    StatusTexts m_shown;
    QTimer m_timer;
    QLabel* labLink;
    QLabel* labLastFrame;
    QLabel* labToday;
    QLabel* labElements;
    QLabel* labNextRise;
    QLabel* labEvent;
};
