#pragma once

#include "foundation/messages/MessageBoxPresenter.h"

#include <QStringList>

class QMainWindow;
class QWidget;

/// Runs the program where nobody looks: messages go to standard error instead of waiting for a click, and
/// after a while the monitor and the grids are printed and every window's picture is saved.
class ReportPresenter : public MessageBoxPresenter {
public:
    /// Pictures go to `pictureFolder`, each named after its window.
    ReportPresenter(const QString& helpFile, QString pictureFolder);

    int ShowMessage(const Message& message) override;

    /// Reports on `window` after `seconds`, then closes it.
    void ReportAfter(QMainWindow& window, int seconds);

    /// Reports at once, unless a report has begun, then closes `window`.
    void Report(QMainWindow& window);

private:
    void OpenAndSave(const std::function<void()>& open);
    void Save(QWidget& window);

    QString m_pictureFolder;
    bool m_reporting = false;
};
