#pragma once

#include "foundation/fields/FieldGuard.h"
#include "station/identity/PositionText.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class Station;
class mb;

/// "Station Information": the station's callsign, position and comment. Nothing reaches the station before
/// OK.
class frmLocation : public QDialog {
    Q_OBJECT
public:
    frmLocation(Station& station, const mb& messages, QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void Build();
    void Fill();
    bool CheckCallsign();
    bool CheckPosition(QLineEdit& field, PositionText::Axis axis);
    void ShowLocator();
    void Ok();

    Station& m_station;
    const mb& m_messages;
    FieldGuard m_guard;
    QLineEdit* txtCallsign;
    QLineEdit* txtLat;
    QLineEdit* txtLong;
    QLineEdit* txtComment;
    QLabel* labLocator;
};
