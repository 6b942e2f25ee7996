#pragma once

#include <QDialog>

class CallsignList;
class FieldGuard;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class mb;

/// The editor of the satellite's callsigns and their sides.
class frmCalls : public QDialog {
    Q_OBJECT
public:
    frmCalls(CallsignList& callsigns, const mb& messages, QWidget* parent = nullptr);

    /// Shows the dialog modally until the user closes it, with `callsign`, if any, in the editor.
    void DoCalls(const QString& callsign = {});

    /// Fills the list with the present callsigns and empties the editor.
    void ShowCallsigns();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void LayOut();
    void FillList();
    QStringList Items() const;
    bool IsCallsignGood();
    void EnableAdd();
    void SayWhatIsMissing();
    void PutInList();
    void EditItem();
    void RemoveItem();
    void Ok();
    void Defaults();

    CallsignList& m_callsigns;
    const mb& m_messages;
    QLineEdit* txtCall;
    QRadioButton* optA;
    QRadioButton* optB;
    QPushButton* cmdAdd;
    QListWidget* lstCalls;
    QPushButton* cmdOk;
    QPushButton* cmdCancel;
    QPushButton* cmdDefaults;
    QLabel* labMissing = nullptr;
    FieldGuard* m_guard;
};
