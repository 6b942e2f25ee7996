#pragma once

#include <QDialog>

class FieldGuard;
class QFormLayout;
class QLineEdit;
class QVBoxLayout;
class mb;

/// What the setup dialogs of the links have in common: host address and port, and the rules of a dialog's
/// fields and buttons. In the middle of the screen; make a new one for every opening.
class EngineSetupDialog : public QDialog {
    Q_OBJECT
protected:
    /// What a field of this dialog may hold.
    static constexpr int longestText = 80;

    EngineSetupDialog(const QString& name, const QString& title, int greatestPort, const mb& messages,
                      QWidget* parent);

    void closeEvent(QCloseEvent* event) override;

    /// Adds a field to the form; its label is named after it.
    QLineEdit* AddField(const QString& name, const QString& label, int maxLength, const QString& text);

    /// The host's and the port's field, to be called first.
    void AddAddress(const QString& host, int port);

    /// What stands under the fields, to be called last.
    void Complete();

    /// What a field stands for: what was stored, of which it shows no more than its length, until the user
    /// changes it.
    static QString Entered(const QLineEdit& field, const QString& stored);

    QString EnteredHost(const QString& stored) const { return Entered(*txtHostAddr, stored); }
    int EnteredPort(int stored) const;

    /// The user accepts what the fields hold; it is good.
    virtual void Store() = 0;

private:
    void AddButtons();
    bool IsHostGood();
    bool IsPortGood();
    void Ok();

    const int m_greatestPort;
    const mb& m_messages;
    FieldGuard* m_guard;
    QVBoxLayout* m_all;
    QFormLayout* m_fields;
    QLineEdit* txtHostAddr = nullptr;
    QLineEdit* txtPort = nullptr;
};
