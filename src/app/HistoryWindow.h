#pragma once

#include "orbit/history/PastPasses.h"
#include "telemetry/plots/frmHistory.h"

#include <QPointer>

class GroundStation;
struct HistoryChannel;

/// The history window's place in the program: makes it over the station when it is asked for, and not
/// before, and tells it what changes.
class HistoryWindow : public QObject {
    Q_OBJECT
public:
    /// All must outlive it.
    HistoryWindow(GroundStation& ground, const Clock& clock, const mb& messages);
    ~HistoryWindow() override;

    /// What the window's "Import" does; without it the window has no such button. Before it is shown.
    void SetImport(std::function<void(QWidget*)> import) { m_import = std::move(import); }

    /// Shows the window, as it was left or with this channel alone.
    void Show();
    void ShowValue(const HistoryChannel& channel);

    /// Shows the window with its list of events.
    void ShowEvents();

    void Close();

    /// Whether times are local has changed; elements, or the station's position.
    void TellTimes();
    void TellPasses();

Q_SIGNALS:
    /// The user looks at the list of events.
    void EventsSeen();

private:
    HistoryServices Services();
    QString NextPass() const;
    std::vector<PastPasses::Span> Passes(qint64 from, qint64 to);
    std::optional<HistoryServices::Decoding> NewDecoding();
    std::optional<FormulaTable> ReadFormulae() const;

    GroundStation& m_ground;
    const Clock& m_clock;
    const mb& m_messages;
    std::function<void(QWidget*)> m_import;
    QPointer<frmHistory> m_window;
    ElementsHistory m_flownOn; // read as often as the window opens
    PastElements m_elements;
    PastPasses m_passes;

    // What the window's history is decoded with.
    FormulaTable m_formulae;
    HistorySides m_sides;
    std::pair<qint64, qint64> m_formulaFile; // its last change and its size
};
