#pragma once

#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

#include <QDialog>

#include <functional>

class QPlainTextEdit;
class QPrinter;

/// The pass predictions of the selected satellite, to be read, copied and printed. Modal: call exec.
class frmPass : public QDialog {
    Q_OBJECT
public:
    /// Lets the user choose a printer, starting from the default one; false when he does not want to print.
    using ChoosePrinter = std::function<bool(QPrinter& printer, QWidget* window)>;

    frmPass(const clsSats& cSats, const TrackedSatellites& satellites, QWidget* parent = nullptr,
            ChoosePrinter choosePrinter = AskForPrinter);

    /// The platform's print dialog.
    static bool AskForPrinter(QPrinter& printer, QWidget* window);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Copy() const;
    void Print();

    QString m_caption;
    QString m_table;
    ChoosePrinter m_choosePrinter;
    QPlainTextEdit* txtInfo;
};
