#pragma once

#include "foundation/messages/FileChoice.h"
#include "foundation/placement/KeptPlace.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "orbit/skyview/SkyPicture.h"
#include "orbit/skyview/SkyView.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;
class QTableWidget;
class mb;

/// What the sky window knows of frames that were heard. Without `between` it shows nothing of it.
struct SkyHearing {
    HeardBetween between;
    DirectionAt directionAt;
    FileChoice::Choose chooseFile = FileChoice::Ask;
    const mb* messages = nullptr; ///< is told why a file could not be saved; may be null
};

/// The sky over the station: the present or next pass of the selected satellite and what it has to be known
/// by. A window of its own, not modal; show it after making it.
class frmSky : public QWidget {
    Q_OBJECT
public:
    /// All references outlive it.
    frmSky(const clsSats& cSats, const TrackedSatellites& satellites, SkyView::PlaceOfStation place,
           SkyView::SimulatedTime simulatedTime, clsIni& cIni, const ProgramFolder& folder,
           SkyHearing hearing = {});
    ~frmSky() override;
    frmSky(const frmSky&) = delete;
    frmSky& operator=(const frmSky&) = delete;

    /// The other satellite has been selected.
    void SatHasChanged();

    /// Other elements have been read, or the station's position, or whether times are local, has changed.
    void DataHaveChanged();

    /// Other frames are known to have been heard.
    void HeardHasChanged();

    /// Shows the pass that rises at this time (UTC, to two seconds); where none does, the present or next
    /// one.
    void ShowPassAt(DateTime riseUtc);

    /// The time has changed by more than the clock's running: the map's clock.
    void Refresh();

Q_SIGNALS:
    /// The window closes; its owner deletes it (later: the signal comes from within its close event).
    void ImUnloading();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* MakeLeft();
    QWidget* MakeRight();
    void MakeKeys();
    QWidget* MakeHearing();
    void SumUp(bool isWanted);
    void GoOnSumming();
    void ShowSum();
    void SaveHeard();
    void ShowEast(bool isLeft);
    void Step(bool found);
    void ShowRows();
    void SetCell(int row, int column, const QString& text, bool isLarge);

    clsIni& m_cIni;
    const SkyHearing m_hearing;
    SkyView m_view;
    std::unique_ptr<ReceptionSum> m_sum; // while it is wanted
    SkyPicture* picSky;
    QLabel* labPass;
    QLabel* labTime;
    QLabel* labNote;
    QTableWidget* tblValues;
    QPushButton* cmdEarlier;
    QPushButton* cmdPresent;
    QPushButton* cmdLater;
    QCheckBox* chkEastLeft;
    QCheckBox* chkHeard;
    QLabel* labHeard;
    QPushButton* cmdSaveHeard;
    QTimer* Timer1;
    QTimer* timSum; // runs while frames are being summed up
    std::unique_ptr<KeptPlace> m_place;
};
