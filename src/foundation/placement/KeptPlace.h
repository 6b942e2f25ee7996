#pragma once

#include "foundation/placement/clsWindowPos.h"

#include <QObject>

/// Lets a window reopen where the user left it: puts it there, and watches what the user does with it. The
/// window makes one once its usual size is set, and drops it when it closes: dropping saves.
class KeptPlace : public QObject {
    Q_OBJECT
public:
    /// The name is that of clsWindowPos. Window and settings must outlive this object.
    KeptPlace(QWidget& window, const QString& name, clsIni& ini);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& m_window;
    clsWindowPos m_place;
};
