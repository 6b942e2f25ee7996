#include "app/LinkMenu.h"

#include "core/GroundStation.h"
#include "foundation/fields/Named.h"

#include <QActionGroup>
#include <QDate>
#include <QDir>
#include <QFileDialog>

LinkMenu::LinkMenu(GroundStation& station, QWidget* parent)
    : QMenu(parent)
    , m_station(station) {
    setObjectName(QStringLiteral("mnuLink"));
    QAction* agwpeSetup = Named(u"mnuLinkAgwpeSetup", addAction(tr("&AGWPE Setup")));
    QAction* kissSetup = Named(u"mnuLinkKissSetup", addAction(tr("&KISS Setup")));
    Named(u"mnuLinkBar1", addSeparator());
    mnuLinkUseAgwpe = Named(u"mnuLinkUseAgwpe", addAction(tr("&Use AGWPE")));
    mnuLinkUseKiss = Named(u"mnuLinkUseKiss", addAction(tr("Use K&ISS")));
    QAction* connectNow = Named(u"mnuLinkConnect", addAction(tr("&Connect Now")));
    Named(u"mnuLinkBar2", addSeparator());
    mnuLinkRecord = Named(u"mnuLinkRecord", addAction(tr("&Record Frames...")));
    QAction* forwarding = Named(u"mnuLinkForwarding", addAction(tr("&Forwarding...")));
    auto* used = new QActionGroup(this);
    for (QAction* one : {mnuLinkUseAgwpe, mnuLinkUseKiss}) {
        one->setCheckable(true);
        used->addAction(one);
    }
    mnuLinkRecord->setCheckable(true);

    connect(agwpeSetup, &QAction::triggered, this, &LinkMenu::AgwpeSetupRequested);
    connect(kissSetup, &QAction::triggered, this, &LinkMenu::KissSetupRequested);
    connect(forwarding, &QAction::triggered, this, &LinkMenu::ForwardingRequested);
    connect(mnuLinkUseAgwpe, &QAction::triggered, this, [this] { m_station.UseKiss(false); });
    connect(mnuLinkUseKiss, &QAction::triggered, this, [this] { m_station.UseKiss(true); });
    connect(connectNow, &QAction::triggered, this, [this] { m_station.link.Reconnect(); });
    connect(mnuLinkRecord, &QAction::triggered, this, &LinkMenu::Record);
    connect(this, &QMenu::aboutToShow, this, &LinkMenu::ShowState);
    ShowState();
}

void LinkMenu::ShowState() {
    (m_station.kiss.IsUsed() ? mnuLinkUseKiss : mnuLinkUseAgwpe)->setChecked(true);
    mnuLinkRecord->setChecked(!m_station.RecordingPath().isEmpty());
}

void LinkMenu::Record() {
    if (!m_station.RecordingPath().isEmpty()) {
        m_station.StopRecording();
    } else {
        // Not the desktop's own: this one knows the help key, and goes when the program is asked to end.
        QFileDialog dialog(parentWidget(), tr("Record Frames"), m_station.folder.Path(),
                           tr("KISS recordings (*.kiss);;All files (*)"));
        dialog.setObjectName(QStringLiteral("frmRecord"));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
        dialog.setDefaultSuffix(QStringLiteral("kiss"));
        dialog.selectFile(QDate::currentDate().toString(QStringLiteral("yyyyMMdd")) +
                          QStringLiteral(".kiss"));
        if (dialog.exec() == QDialog::Accepted)
            m_station.StartRecording(dialog.selectedFiles().first());
    }
    ShowState();
}
