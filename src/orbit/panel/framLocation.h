#pragma once

#include "orbit/panel/TrackingDisplay.h"

#include <QGroupBox>

#include <array>

class QLabel;
class QPushButton;

/// The panel of the main window that shows where the selected satellite is.
class framLocation : public QGroupBox {
    Q_OBJECT
public:
    framLocation(clsSats& cSats, TrackedSatellites& satellites, QWidget* parent = nullptr);

    /// The satellite that is shown, or what the element files call it, has changed.
    void ShowCaption();

    /// The place of the station in degrees, north and east positive; see QIRUtil::IsPositionKnown.
    void ApplyStationPosition(double latitude, double longitude);

    /// A second has passed. `forced` refreshes at once.
    void Tick(bool forced = false);

    /// Shows where the satellite is now.
    void Refresh();

    /// Shows whether due times are local or UTC; call it when that changes, and Refresh after it.
    void SetDueCaption();

    /// Goes over to the other satellite.
    void ChangeSat();

Q_SIGNALS:
    /// The other satellite is selected, and shown.
    void SatChanged();

    /// The user asks for the sky.
    void SkyRequested();

    /// The user asks for the pass predictions of the selected satellite.
    void PassInfoRequested();

private:
    QLabel* AddValue(class QGridLayout& layout, int row, QLabel* caption, const QString& name);
    void Show(const TrackingLabels& labels);

    TrackedSatellites& m_satellites;
    TrackingDisplay m_display;
    QLabel* labLat;
    QLabel* labLong;
    QLabel* labAz;
    QLabel* labEl;
    QLabel* labDue;
    QLabel* labDueCap;
    QPushButton* cmdChangeSat;
    QPushButton* cmdPassInfo;
};
