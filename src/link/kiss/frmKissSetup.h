#pragma once

#include "link/EngineSetupDialog.h"
#include "link/kiss/KissAddress.h"

class KissSettings;
class PacketLink;

/// Where the user says how a KISS TNC is reached. Shows the settings as they are when it is made.
class frmKissSetup : public EngineSetupDialog {
    Q_OBJECT
public:
    /// All three must outlive the dialog. The link is connected anew where it is in use.
    frmKissSetup(KissSettings& settings, PacketLink& link, const mb& messages, QWidget* parent = nullptr);

private:
    void Store() override;

    KissSettings& m_settings;
    PacketLink& m_link;
    const KissAddress m_old; // on opening
};
