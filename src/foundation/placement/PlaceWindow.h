#pragma once

#include <QWidget>

/// Whether programs may place their windows. Where they may not (Wayland), moving one does nothing and asking
/// where it stands gives no answer.
bool WindowsCanBePlaced();

/// The program's window that gets the keys, and the one that keeps the others from being used; or none.
QWidget* ActiveWindow();
QWidget* ModalWindow();

/// Moves a window to the middle of its screen. Its size must be known: call it after the layout is set.
void CentreOnScreen(QWidget* window);

/// Shows a window, restored if minimised, before all others, as far as the desktop allows it.
void BringForward(QWidget* window);

/// Whether the user may change the window's size by its border.
bool HasSizableBorder(const QWidget& window);
