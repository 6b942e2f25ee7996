#pragma once

#include "foundation/placement/KeptPlace.h"
#include "telemetry/plots/EventTable.h"
#include "telemetry/plots/HistoryServices.h"
#include "telemetry/plots/ReadingTable.h"

#include <QTimer>
#include <QWidget>

class HistoryExport;
class HistoryPlayer;
class HistoryPlot;
class QLabel;
class QProgressBar;
class QPushButton;
class QTabWidget;
class QTableView;
class RangeBar;

/// The telemetry that was kept: curves of the channels that the user ticks, what every channel showed at the
/// cursor's time, the readings in view and the crossings of limits. A window of its own, not modal; show it
/// after making it.
class frmHistory : public QWidget {
    Q_OBJECT
public:
    /// `history`: not open yet; the window does so.
    frmHistory(HistoryServices services, std::unique_ptr<TelemetryHistory> history);
    ~frmHistory() override;

    /// Plots this channel alone.
    void Plot(const HistoryChannel& channel);

    /// Shows the list of events.
    void ListEvents();

    /// Times are shown as local or UTC from now on.
    void TimesHaveChanged();

    /// Another limit has been crossed.
    void EventsHaveChanged();

    /// Elements have been read, or the station's position has changed.
    void PassesHaveChanged();

Q_SIGNALS:
    /// The user has turned to the list of events.
    void EventsSeen();

    /// The window closes; its owner deletes it (later: the signal comes from within its close event).
    void ImUnloading();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void LayOut();
    QWidget* MakeTools();
    QTableView* MakeTable(QAnyStringView name, QAbstractItemModel* model, const QString& accessibleName);
    void MakeTabs();
    void ConnectPlot();
    void ConnectWorker();
    void TakeState(const HistoryState& state);
    void Follow();
    void LoadPlotted();
    void ShowChosen();
    void ShowEnd(bool isLast);
    void Play();
    void JumpTo(qint64 utc);
    void JumpToEvent(int row);
    void ShadePasses();
    void ListReadings();
    void ShowProgress(const QString& what, int percent);
    void TellEmpty();
    void TellView();
    void TellCursor();
    void TellReading(const QString& sequence);
    QString ReadingText(const QString& sequence) const;
    qint64 CursorTime() const;
    QString TimeText(qint64 utc) const;
    void ReadSettings();
    void SaveSettings();

    const HistoryServices m_services;
    std::unique_ptr<HistoryWorker> m_worker;
    ChannelTable m_channels;
    ReadingTable m_readings;
    EventTable m_events;
    QTimer m_follow;
    QTimer m_settle; // what takes its time is done when the view has come to rest
    HistoryState m_state;
    std::vector<HistoryChannel> m_asked; // what the last Load was for
    std::pair<qint64, qint64> m_chosen;  // the range to go back to
    int m_loadRequest = 0;
    int m_shownRequest = 0;
    int m_sequenceRequest = 0;
    qint64 m_shownTime = 0;   // what the last Show was for
    bool m_isOpen = false;    // the history
    bool m_isShowing = false; // an answer to Show is on its way
    bool m_showAgain = false;

    HistoryPlot* pltHistory;
    RangeBar* fraRange;
    HistoryPlayer* fraPlay;
    HistoryExport* cmdExport;
    QPushButton* cmdImport;
    QLabel* labReading;
    QLabel* labState;
    QProgressBar* prgState;
    QTabWidget* tabHistory;
    QTableView* tblChannels;
    QTableView* tblReadings;
    QTableView* tblEvents;
    std::unique_ptr<KeptPlace> m_place;
};
