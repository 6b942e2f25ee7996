#include "foundation/placement/PlaceWindow.h"

#include <QApplication>
#include <QLayout>
#include <QScreen>

bool WindowsCanBePlaced() {
    return !QGuiApplication::platformName().startsWith(u"wayland");
}

QWidget* ActiveWindow() {
    return QApplication::activeWindow();
}

QWidget* ModalWindow() {
    return QApplication::activeModalWidget();
}

void CentreOnScreen(QWidget* window) {
    const QScreen* screen = window->screen();
    if (screen == nullptr)
        return;
    if (!window->testAttribute(Qt::WA_Resized))
        window->adjustSize(); // the size that it is about to be shown with
    const QSize size = window->frameGeometry().size();
    const QRect area = screen->geometry();
    window->move(area.left() + (area.width() - size.width()) / 2,
                 area.top() + (area.height() - size.height()) / 2);
}

void BringForward(QWidget* window) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

bool HasSizableBorder(const QWidget& window) {
    const bool fixedLayout =
        window.layout() != nullptr && window.layout()->sizeConstraint() == QLayout::SetFixedSize;
    return !fixedLayout && window.minimumSize() != window.maximumSize() &&
           !window.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint);
}
