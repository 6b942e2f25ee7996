#pragma once

#include "link/EngineSetupDialog.h"

class AgwLink;
class AgwSettings;

/// Where the user says how the packet engine is reached. Shows the settings as they are when it is made.
class frmAgwpeSetup : public EngineSetupDialog {
    Q_OBJECT
public:
    /// All three must outlive the dialog. The link is connected anew where it is in use.
    frmAgwpeSetup(AgwSettings& settings, AgwLink& link, const mb& messages, QWidget* parent = nullptr);

private:
    void Store() override;

    AgwSettings& m_settings;
    AgwLink& m_link;
    QLineEdit* txtLoginId;
    QLineEdit* txtPassword;

    // The settings as they were on opening, whole; a field may show less.
    const QString m_oldHost;
    const qint16 m_oldPort;
    const QString m_oldLoginId;
    const QString m_oldPassword;
};
