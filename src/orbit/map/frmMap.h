#pragma once

#include "foundation/messages/mb.h"
#include "foundation/placement/WindowSize.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "orbit/map/MapPicture.h"
#include "orbit/map/SimulatedClock.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

#include <QTimer>
#include <QWidget>

class QAction;
class QMenu;
class TimeBox;

/// The world map with the selected satellite. A window of its own, not modal; show it after making it.
class frmMap : public QWidget {
    Q_OBJECT
public:
    frmMap(const clsSats& cSats, const TrackedSatellites& satellites, clsIni& cIni, const mb& messages,
           const ProgramFolder& folder, PassSteps::PlaceOfStation placeOfStation);

    /// The other satellite has been selected.
    void SatHasChanged();

    /// Other elements have been read, or the station's position or whether times are local has changed.
    void DataHaveChanged();

    /// The time that the map shows, UTC, while it does not follow the real clock.
    std::optional<DateTime> SimulatedTime() const;

    /// Shows a satellite, its footprint and its track.
    void DrawSat(const GroundTrack& track);

Q_SIGNALS:
    /// The window closes; its owner deletes it (later: the signal comes from within its close event).
    void ImUnloading();

    /// Another time is shown.
    void TimeShown();

    /// The user asks for the other satellite.
    void ChangeSatRequested();

    /// The user has said that his station is here; degrees, north and east positive.
    void PositionChosen(double latitude, double longitude);

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void MakeMenu();
    void MakeLayers();
    QAction* AddEntry(const QString& name, const QString& caption, bool checkable);
    void LoadWorld(const ProgramFolder& folder, const mb& messages);
    void FitPicture();
    void RestorePosition();
    void SavePosition();
    void ShowCaption();
    void ChooseSpeed(SimulatedClock::Speed speed);
    void Reset();
    void Tick();
    void FollowClock();
    void AskForPosition(const MapGeometry::GeoPoint& point);

    const clsSats& m_cSats;
    const TrackedSatellites& m_satellites;
    clsIni& m_cIni;
    const mb& m_messages;
    WindowSize m_size;
    SimulatedClock m_clock;
    MapLayers m_layers;
    DateTime m_shown = 0.0; // by the last tick, UTC
    MapPicture* picMap;
    TimeBox* picTime;
    QMenu* mnuSpeed;
    QAction* mnuSpeedNormal = nullptr;
    QAction* mnuSpeedFast = nullptr;
    QAction* mnuSpeedVeryFast = nullptr;
    QAction* mnuSpeedBackwards = nullptr;
    QAction* mnuSpeedPause = nullptr;
    QTimer* Timer1;
};
