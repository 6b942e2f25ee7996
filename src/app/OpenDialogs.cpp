#include "app/OpenDialogs.h"

#include <QApplication>
#include <QDialog>
#include <QThread>

bool DismissOpenDialogs() {
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    else if (QWidget* modal = QApplication::activeModalWidget()) {
        // A dialog asked to close may say that a field of it is wrong; nobody is asked now.
        if (auto* dialog = qobject_cast<QDialog*>(modal))
            dialog->reject();
        else
            modal->close();
    } else
        return QThread::currentThread()->loopLevel() <= 1;
    return false;
}
