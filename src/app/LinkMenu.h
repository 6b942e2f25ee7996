#pragma once

#include <QMenu>

class GroundStation;

/// What can be done about the link: the two setups, which of the links is used, connect now, and what becomes
/// of the frames besides being shown. It shows how things are whenever it opens.
class LinkMenu : public QMenu {
    Q_OBJECT
public:
    /// `station` must outlive the menu.
    explicit LinkMenu(GroundStation& station, QWidget* parent);

Q_SIGNALS:
    /// The user asks for a dialog.
    void AgwpeSetupRequested();
    void KissSetupRequested();
    void ForwardingRequested();

private:
    void ShowState();
    void Record();

    GroundStation& m_station;
    QAction* mnuLinkUseAgwpe;
    QAction* mnuLinkUseKiss;
    QAction* mnuLinkRecord;
};
