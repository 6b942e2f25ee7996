#pragma once

#include "foundation/placement/WindowSize.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <vector>

class QPlainTextEdit;
class QPrinter;
class QTextCursor;

/// The pass predictions of the selected satellite, to be read, copied and printed. Modal: call exec.
class frmPass : public QDialog {
    Q_OBJECT
public:
    /// Lets the user choose a printer, starting from the default one; false when he does not want to print.
    using ChoosePrinter = std::function<bool(QPrinter& printer, QWidget* window)>;

    frmPass(const clsSats& cSats, const TrackedSatellites& satellites, QWidget* parent = nullptr,
            ChoosePrinter choosePrinter = AskForPrinter);

    /// The window keeps the size that the user gives it in these settings, which outlive it.
    void RememberSize(clsIni& ini);

    /// Closing by any way keeps the size.
    void done(int result) override;

    /// The platform's print dialog.
    static bool AskForPrinter(QPrinter& printer, QWidget* window);

Q_SIGNALS:
    /// The user has double-clicked a pass, or pressed Enter on it: it begins at this UTC, to the second.
    void PassChosen(DateTime startUtc);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Copy() const;
    void Print();
    bool ChoosePass(const QTextCursor& cursor);

    std::unique_ptr<WindowSize> m_size; // none where nothing is remembered
    QString m_caption;
    QString m_table;
    std::vector<DateTime> m_starts; // of the table's passes
    ChoosePrinter m_choosePrinter;
    QPlainTextEdit* txtInfo;
};
