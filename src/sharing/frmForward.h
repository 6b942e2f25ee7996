#pragma once

#include <QDialog>
#include <QTimer>

class FieldGuard;
class Forwarder;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;
class mb;

/// The dialog of forwarding: what is sent, to whom and under which callsign; on and off; the frames that the
/// server refused.
class frmForward : public QDialog {
    Q_OBJECT
public:
    static constexpr int mostShown = 1000; ///< of the parked frames, the oldest

    /// The references must outlive the dialog.
    frmForward(Forwarder& forwarder, const mb& messages, QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* SettingFields();
    QWidget* ParkedFrames();
    QLayout* Buttons();
    void ShowExample();
    void ShowQueue();
    void ShowParked();
    void ShowButtons();
    QList<qint64> Selected() const;
    bool IsUrlGood();
    void Ok();

    Forwarder& m_forwarder;
    const mb& m_messages;
    FieldGuard* m_guard;
    QTimer m_timShow;
    QCheckBox* chkUse;
    QCheckBox* chkDryRun;
    QLineEdit* txtUrl;
    QLineEdit* txtToken;
    QPlainTextEdit* txtExample;
    QLabel* labMissing;
    QLabel* labCounts;
    QTreeWidget* lstParked;
    QPushButton* cmdRetry;
    QPushButton* cmdDiscard;
};
