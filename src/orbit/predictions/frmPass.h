#pragma once

#include "foundation/messages/FileChoice.h"
#include "foundation/placement/WindowSize.h"
#include "orbit/service/PassRecords.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;
class QPlainTextEdit;
class QPrinter;
class QTextCursor;
class mb;

/// Lets the user choose a printer, starting from the default one; false when he does not want to print.
using ChoosePrinter = std::function<bool(QPrinter& printer, QWidget* window)>;

/// The platform's print dialog.
bool AskForPrinter(QPrinter& printer, QWidget* window);

/// What the pass window prints and saves with.
struct PassServices {
    ChoosePrinter choosePrinter = AskForPrinter;
    FileChoice::Choose chooseFile = FileChoice::Ask;

    /// Is told why a file could not be saved; may be null.
    const mb* messages = nullptr;

    /// The observer, without whom nothing is saved, and what a calendar is made with; its time is the
    /// window's business.
    std::optional<PassRecords::CalendarMaking> calendar = std::nullopt;
};

/// The pass predictions of the selected satellite, to be read, copied, printed and saved. Modal: call exec.
class frmPass : public QDialog {
    Q_OBJECT
public:
    /// Both references outlive it.
    frmPass(const clsSats& cSats, const TrackedSatellites& satellites, QWidget* parent = nullptr,
            PassServices services = {});

    /// The window keeps the size that the user gives it in these settings, which outlive it.
    void RememberSize(clsIni& ini);

    /// Closing by any way keeps the size.
    void done(int result) override;

Q_SIGNALS:
    /// The user has double-clicked a pass, or pressed Enter on it: it begins at this UTC, to the second.
    void PassChosen(DateTime startUtc);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Making = PassRecords::CalendarMaking;

    void MakeMenu();
    QAction* AddEntry(const QString& name, const QString& caption, void (frmPass::*operation)());
    void ShowMenu(const QPoint& place);
    void Copy();
    void CopyMarked();
    void Print();
    void SaveCsv();
    void SaveCalendar();
    void Save(const QString& name, QByteArray (*write)(std::span<const NamedPass>, const Making&));
    void ShowInSky();
    std::vector<NamedPass> Passes() const;
    std::optional<DateTime> StartAt(const QTextCursor& cursor) const;
    bool ChoosePass(const QTextCursor& cursor);

    const clsSats& m_cSats;
    const TrackedSatellite m_satellite;
    const PassServices m_services;
    std::unique_ptr<WindowSize> m_size; // none where nothing is remembered
    QString m_caption;
    QString m_table;
    std::vector<DateTime> m_starts; // of the table's passes
    DateTime m_fromUtc = 0;
    QMenu* mnuPass;
    QAction* mnuShowInSky = nullptr;
    QPlainTextEdit* txtInfo;
};
