#pragma once

#include "foundation/panes/FollowingPane.h"

/// A pane that shows frames: its menu offers what can be done with the callsign of the frame under it.
class TrafficPane : public FollowingPane {
    Q_OBJECT
public:
    explicit TrafficPane(QWidget* parent = nullptr);

    /// The source of the frame whose header stands at this place or next above it; empty when there is none
    /// that is a callsign.
    static QString CallsignAt(const QTextCursor& place);

Q_SIGNALS:
    void PutInToAsked(const QString& callsign);
    void AddToCallsignsAsked(const QString& callsign);
    void LogFolderAsked();

protected:
    void PrepareMenu(const QTextCursor& place) override;

private:
    QAction* mnuPutInTo;
    QAction* mnuAddCallsign;
};
