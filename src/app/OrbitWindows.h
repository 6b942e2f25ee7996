#pragma once

#include "core/HeardTimes.h"
#include "orbit/skyview/PassSteps.h"

#include <QObject>
#include <QPointer>

#include <optional>

class frmMap;
class frmSky;
class GroundStation;
class mb;
class QWidget;

/// The windows about the satellite's way: map, sky and pass predictions. Made over the station when they are
/// asked for; they are told what changes, and of each other.
class OrbitWindows : public QObject {
    Q_OBJECT
public:
    /// All must outlive it; the pass predictions stand over `owner`.
    OrbitWindows(GroundStation& ground, const mb& messages, QWidget* owner);
    ~OrbitWindows() override;

    void ShowMap();
    void ShowSky();
    void ShowPasses();

    /// Another satellite is selected.
    void SatHasChanged();

    /// Elements, the station's position, or whether times are local.
    void DataHaveChanged();

    /// Closes map and sky.
    void Close();

Q_SIGNALS:
    /// The user wants the other satellite.
    void ChangeSatRequested();

private:
    std::optional<PassSteps::Place> PlaceOfStation() const;
    void UseAsPosition(double latitude, double longitude);

    GroundStation& m_ground;
    const mb& m_messages;
    QWidget* m_owner;
    HeardTimes m_heardTimes;
    QPointer<frmMap> m_map;
    QPointer<frmSky> m_sky;
};
