#pragma once

#include "app/GroundStation.h"
#include "foundation/system/FolderLock.h"
#include "telemetry/grids/TipCell.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <memory>

class framLocation;
class frmMap;
class frmTerm;
class mb;
class MonitorPane;
class QLabel;
class QVBoxLayout;
struct MainMenuView;

/// The main window: it owns everything that lives as long as the program, and wires it. Loading it starts the
/// program, closing it ends the program.
class frmQIRAN : public QMainWindow {
    Q_OBJECT
public:
    /// All arguments must outlive the window.
    frmQIRAN(const ProgramFolder& folder, const Clock& clock, mb& messages);
    ~frmQIRAN() override;

    /// Starts the program and shows the window; false when it cannot start, which the user has been told.
    bool Load();

    /// Housekeeping of the telemetry files, made ready for a history of decoded values.
    void PurgeTelemetryFiles();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void LayOut();
    void ConnectMenu(const MainMenuView& menu);
    bool LoadFormulaTable();
    void LoadSettings();
    void PlaceWindow();
    void PrepareTracking();
    void LoadTerminal();
    void ApplyStationPosition();
    void LoadElements();
    void SetDueCaption();
    void ShowPassPredictions();
    void ShowTerminal();
    void ShowMap();
    void ShowStationInformation();
    void ShowAgwpeSetup();
    void ShowCallsigns();
    void DownloadKeps();
    void WarnOfWhatIsMissing();
    void Unload();

    const ProgramFolder& m_folder;
    const Clock& m_clock;
    mb& m_messages;
    FolderLock m_lock;
    TelemetryTables m_tables;
    TipCell m_tipCell;
    MonitorText m_monitor;
    std::unique_ptr<GroundStation> m_ground; // from the settings' loading to the end
    std::unique_ptr<MainMenuView> m_menu;
    std::unique_ptr<frmTerm> m_terminal;
    QPointer<frmMap> m_map;
    QTimer m_timer1;
    MonitorPane* txtMon;
    QLabel* Label2;
    framLocation* m_framLocation = nullptr;
    QVBoxLayout* m_side; // beside the grids: the explanation, and the tracking panel once there is one
};
