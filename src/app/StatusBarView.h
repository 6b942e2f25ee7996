#pragma once

#include "core/StationStatus.h"

#include <QStatusBar>

class LinkButton;
class QLabel;
class QMenu;
class QToolButton;

/// The line at the foot of the main window. Its labels change when what they say does, at most once a second.
class StatusBarView : public QStatusBar {
    Q_OBJECT
public:
    /// `status` must outlive the view.
    explicit StatusBarView(StationStatus& status, QWidget* parent = nullptr);

    /// What opens at how the link stands.
    void SetLinkMenu(QMenu* menu);

    /// Shows the status as it is now; called once a second.
    void Refresh();

Q_SIGNALS:
    /// The user asks for the history.
    void HistoryRequested();

    /// The user asks for the sky.
    void SkyRequested();

    /// The user asks for the last event, which counts as looked at: its time, milliseconds since 1970-01-01
    /// 00:00 UTC.
    void EventRequested(qint64 utc);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void AddEvent();
    void ShowEvent(const QString& text);
    QToolButton* AddButton(const QString& name, const QString& text, const QString& tip);
    QLabel* Add(const QString& name, const QString& accessibleName, int stretch);

    StationStatus& m_status;
    StatusTexts m_shown;
    LinkButton* labLink;
    QLabel* labLastFrame;
    QLabel* labToday;
    QLabel* labElements;
    QLabel* labNextRise;
    QToolButton* labEvent;
};
