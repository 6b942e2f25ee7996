#pragma once

#include "app/RunningWindow.h"
#include "core/GroundStation.h"
#include "core/LastPass.h"
#include "core/Roof.h"
#include "core/StartGuide.h"
#include "core/StationStatus.h"
#include "foundation/looks/LegiblePalette.h"
#include "foundation/placement/WindowSize.h"
#include "telemetry/grids/TipCell.h"
#include "telemetry/grids/ValueAge.h"

#include <QMainWindow>
#include <QTimer>

#include <memory>

class DesktopNotices;
class FirstSteps;
class HistoryWindow;
class framLocation;
class frmTerm;
class mb;
class MonitorPane;
class OrbitWindows;
class QLabel;
class QVBoxLayout;
class StatusBarView;
struct MainMenuView;

/// The main window: the roof of windows over the station. Loading it starts the program, closing it ends the
/// program.
class frmQIRAN : public QMainWindow, private Roof {
    Q_OBJECT
public:
    /// All arguments must outlive the window.
    frmQIRAN(const ProgramFolder& folder, const Clock& clock, mb& messages, DesktopNotices& notices);
    ~frmQIRAN() override;

    /// Starts the program, shows the window and tells what is missing; false when the program cannot start,
    /// which the user has been told. Called from a running event loop, so that a message that stands open can
    /// be dismissed when the program is asked to end.
    bool Load();

    /// Lets the user bring logs and recordings into the history, over this window.
    void ImportHistory(QWidget* owner);

    /// Housekeeping of the telemetry files, made ready for a history of decoded values.
    void PurgeTelemetryFiles();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QObject* MessageOwner() override { return this; }
    void FolderIsTaken() override;
    void Announce() override;
    void PlaceWindow() override;
    void PrepareTracking() override;
    void LoadTerminal() override;
    void Show() override;
    void ReleaseWindows() override;
    bool SaveWindowPlace() override;

    void LayOut();
    void Mend(StartGuide::Step step);
    void DimOld(bool isOn);
    void ConnectMenu(const MainMenuView& menu);
    void ApplyStationPosition();
    void SetDueCaption();
    void ShowStatus();
    void ShowTerminal();
    void TellWindows();
    void ShowElements();
    void ShowStationInformation();
    void ShowAgwpeSetup();
    void ShowForwarding();
    void ShowKissSetup();
    void ShowCallsigns();
    void AddToCallsigns(const QString& callsign);
    void PutInTo(const QString& callsign);
    void OpenLogFolder();
    void DownloadKeps();
    void TellOfEvent(const LimitEvent& event);

    mb& m_messages;
    DesktopNotices& m_notices;
    GroundStation m_ground;
    StationStatus m_status;
    TipCell m_tipCell;
    std::unique_ptr<MainMenuView> m_menu;
    std::unique_ptr<frmTerm> m_terminal;
    std::unique_ptr<OrbitWindows> m_orbit;
    std::unique_ptr<HistoryWindow> m_history;
    FirstSteps* m_firstSteps = nullptr; // this window's
    QTimer m_timer1;
    RunningWindow m_running;
    LegiblePalette m_legible;
    ValueAge m_ages;
    LastPass m_passStart{m_ground};
    QTimer m_lastPass; // looks for the last pass now and then, while ages are shown
    WindowSize m_size;
    bool m_isClosing = false;
    MonitorPane* txtMon;
    QLabel* Label2;
    StatusBarView* staStatus;
    framLocation* m_framLocation = nullptr;
    QVBoxLayout* m_guidePlace; // over the monitor
    QVBoxLayout* m_side;       // beside the grids: the explanation, and the tracking panel once there is one
};
