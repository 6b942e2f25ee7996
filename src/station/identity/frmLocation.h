#pragma once

#include "foundation/fields/FieldGuard.h"
#include "station/identity/PositionText.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class Station;
class mb;

/// "Station Information": the station's callsign, position and comment. Each field is checked when the user
/// leaves it. Nothing reaches the station before OK, and what the user has not changed stays as it is.
class frmLocation : public QDialog {
    Q_OBJECT
public:
    frmLocation(Station& station, const mb& messages, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Build();
    void Fill();
    bool CheckCallsign();
    bool CheckPosition(QLineEdit& field, PositionText::Axis axis);
    void ShowLocator();
    void ShowMeaning();
    std::optional<PositionText::DecimalDegrees> DecimalIn(const QString& field) const;
    void OfferDecimal();
    void UseDecimal();
    void ShowCommentNote();
    static QString StoredForm(const QLineEdit& field, const QString& stored, PositionText::Axis axis);
    void Ok();

    Station& m_station;
    const mb& m_messages;
    FieldGuard m_guard;
    QLineEdit* txtCallsign;
    QLineEdit* txtLat;
    QLineEdit* txtLong;
    QLineEdit* txtComment;
    QLabel* labLatMeans;
    QLabel* labLongMeans;
    QPushButton* cmdUseDecimal;
    QLabel* labCommentNote;
    QLabel* labLocator;
    QString m_dropped;    // on a position's field, last
    QString m_offeredLat; // behind the button; empty where it leaves the field alone
    QString m_offeredLong;
    QString m_shownLocator; // on opening
};
