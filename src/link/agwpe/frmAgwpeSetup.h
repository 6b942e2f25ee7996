#pragma once

#include <QDialog>

class AgwLink;
class AgwSettings;
class FieldGuard;
class QLineEdit;
class QVBoxLayout;
class mb;

/// Where the user says how the packet engine is reached. Shows the settings as they are when it is made, in
/// the middle of the screen; make a new one for every opening.
class frmAgwpeSetup : public QDialog {
    Q_OBJECT
public:
    /// All three must outlive the dialog.
    frmAgwpeSetup(AgwSettings& settings, AgwLink& link, const mb& messages, QWidget* parent = nullptr);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void AddButtons(QVBoxLayout* all);
    bool IsHostGood();
    bool IsPortGood();
    void Ok();

    AgwSettings& m_settings;
    AgwLink& m_link;
    const mb& m_messages;
    FieldGuard* m_guard;
    QLineEdit* txtHostAddr;
    QLineEdit* txtPort;
    QLineEdit* txtLoginId;
    QLineEdit* txtPassword;

    // The settings as they were on opening, whole; a field may show less.
    const QString m_oldHost;
    const qint16 m_oldPort;
    const QString m_oldLoginId;
    const QString m_oldPassword;
};
