#include "app/frmQIRAN.h"

#include "app/FirstSteps.h"
#include "app/HistoryWindow.h"
#include "app/LinkMenu.h"
#include "app/MainMenuView.h"
#include "app/OpenDialogs.h"
#include "app/OrbitWindows.h"
#include "app/StatusBarView.h"
#include "app/frmAbout.h"
#include "core/Texts.h"
#include "foundation/messages/DesktopNotices.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/Twips.h"
#include "foundation/settings/Settings.h"
#include "keps/HttpTransfer.h"
#include "keps/frmDownload.h"
#include "link/agwpe/frmAgwpeSetup.h"
#include "link/kiss/frmKissSetup.h"
#include "orbit/panel/framLocation.h"
#include "sharing/frmForward.h"
#include "station/identity/frmLocation.h"
#include "station/terminal/frmTerm.h"
#include "telemetry/callsigns/frmCalls.h"
#include "telemetry/grids/TelemetryGridView.h"
#include "telemetry/history/TelemetryFiles.h"
#include "telemetry/imports/frmImport.h"
#include "telemetry/monitor/MonitorPane.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QUrl>
#include <QVBoxLayout>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds closeRetry(10); // while dialogs close
constexpr std::chrono::minutes lastPassInterval(1);

// Where the desktop has nothing to show a folder with, its name can at least be copied.
void OpenFolder(const QString& path, QWidget* owner, const mb& messages) {
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        messages.MessageBox(owner, Texts::CannotOpen(path), MessageStyle::Information);
}

} // namespace

frmQIRAN::frmQIRAN(const ProgramFolder& folder, const Clock& clock, mb& messages, DesktopNotices& notices)
    : m_messages(messages)
    , m_notices(notices)
    , m_ground(folder, clock, messages, *this)
    , m_status(m_ground)
    , m_menu(std::make_unique<MainMenuView>(*menuBar()))
    , m_orbit(std::make_unique<OrbitWindows>(m_ground, messages, this))
    , m_history(std::make_unique<HistoryWindow>(m_ground, clock, messages))
    , m_timer1(this)
    , m_legible(this)
    , m_ages([&clock] { return clock.Milliseconds(); })
    , m_size(*this, m_ground.cIni, QStringLiteral("MAIN")) {
    setObjectName(QStringLiteral("frmQIRAN"));
    setWindowTitle(Texts::Title());
    m_ground.setParent(this); // its timers are found by name below the window
    m_timer1.setObjectName(QStringLiteral("Timer1"));
    m_timer1.setInterval(1000);
    // One timer for all that changes with the second: what changes together is painted together.
    connect(&m_timer1, &QTimer::timeout, this, [this] {
        m_framLocation->Tick();
        ShowStatus();
    });
    connect(&m_running, &RunningWindow::Knocked, this, [this] {
        if (isVisible()) // until the start has come so far there is nothing to be seen
            BringForward(this);
    });
    m_lastPass.setParent(this);
    m_lastPass.setObjectName(QStringLiteral("timLastPass"));
    m_lastPass.setInterval(lastPassInterval);
    connect(&m_lastPass, &QTimer::timeout, this, [this] { m_ages.SetPassStart(m_passStart.Start()); });
    LayOut();
    ConnectMenu(*m_menu);
}

frmQIRAN::~frmQIRAN() {
    m_ground.Stop();
}

void frmQIRAN::LayOut() {
    auto* grids = new QHBoxLayout;
    for (const auto& grid : m_ground.grids) {
        auto* view = new TelemetryGridView(*grid, m_tipCell);
        connect(view, &TelemetryGridView::History, m_history.get(), &HistoryWindow::Show);
        connect(view, &TelemetryGridView::HistoryOfValue, m_history.get(),
                [this](int side, int index, int row) {
                    m_history->ShowValue({side, index, row});
                });
        view->ShowAges(m_ages);
        connect(view, &TelemetryGridView::DimOldToggled, this, [this](bool isOn) {
            Settings::Save(m_ground.cIni, Settings::gridsDimOld, clsIni::TrueOrFalse(isOn));
            DimOld(isOn);
        });
        grids->addWidget(view, 0, Qt::AlignTop);
    }
    Label2 = new QLabel;
    Label2->setObjectName(QStringLiteral("Label2"));
    Label2->setTextFormat(Qt::PlainText);
    txtMon = new MonitorPane(m_ground.monitor);
    connect(txtMon, &TrafficPane::PutInToAsked, this, &frmQIRAN::PutInTo);
    connect(txtMon, &TrafficPane::AddToCallsignsAsked, this, &frmQIRAN::AddToCallsigns);
    connect(txtMon, &TrafficPane::LogFolderAsked, this, &frmQIRAN::OpenLogFolder);

    auto* telemetry = new QVBoxLayout;
    telemetry->addLayout(grids);
    telemetry->addWidget(Label2);
    m_side = new QVBoxLayout;
    auto* upper = new QHBoxLayout;
    upper->addLayout(telemetry, 1);
    upper->addLayout(m_side);
    auto* centre = new QWidget;
    auto* layout = new QVBoxLayout(centre);
    layout->addLayout(upper);
    m_guidePlace = new QVBoxLayout;
    layout->addLayout(m_guidePlace);
    layout->addWidget(txtMon, 1);
    setCentralWidget(centre);
    staStatus = new StatusBarView(m_status);
    setStatusBar(staStatus);
    auto* linkMenu = new LinkMenu(m_ground, this);
    staStatus->SetLinkMenu(linkMenu);
    connect(linkMenu, &LinkMenu::AgwpeSetupRequested, this, &frmQIRAN::ShowAgwpeSetup);
    connect(linkMenu, &LinkMenu::KissSetupRequested, this, &frmQIRAN::ShowKissSetup);
    connect(linkMenu, &LinkMenu::ForwardingRequested, this, &frmQIRAN::ShowForwarding);
}

void frmQIRAN::ConnectMenu(const MainMenuView& menu) {
    const auto entry = [this](const QAction* action, void (frmQIRAN::*operation)()) {
        connect(action, &QAction::triggered, this, operation);
    };
    entry(menu.mnuTerminal, &frmQIRAN::ShowTerminal);
    connect(menu.mnuMap, &QAction::triggered, m_orbit.get(), &OrbitWindows::ShowMap);
    entry(menu.mnuLocation, &frmQIRAN::ShowStationInformation);
    entry(menu.mnuAGWPESetup, &frmQIRAN::ShowAgwpeSetup);
    entry(menu.mnuCallsigns, &frmQIRAN::ShowCallsigns);
    entry(menu.mnuDownloadKeps, &frmQIRAN::DownloadKeps);
    connect(menu.mnuUseLocalTime, &QAction::triggered, this, [this] {
        m_ground.ToggleLocalTime();
        TellWindows();
        m_history->TellTimes();
        SetDueCaption();
        m_framLocation->Refresh();
    });
    connect(menu.mnuOnlyShowQIRAN, &QAction::triggered, this,
            [this] { m_menu->mnuOnlyShowQIRAN->setChecked(m_ground.ToggleOnlyShowQiran()); });
    connect(menu.mnuHelpContents, &QAction::triggered, this, [this] { m_messages.HelpContents(); });
    connect(menu.mnuAbout, &QAction::triggered, this, [this] { frmAbout(this).exec(); });
    connect(menu.mnuExit, &QAction::triggered, this, &QWidget::close);
}

bool frmQIRAN::Load() {
    if (m_isClosing || m_ground.Start() != GroundStation::Outcome::Started)
        return false;
    m_ground.ShowNotices();
    return true;
}

void frmQIRAN::FolderIsTaken() {
    RunningWindow::Knock(m_ground.folder.Path());
}

void frmQIRAN::Announce() {
    m_running.Listen(m_ground.folder.Path());
    setWindowTitle(Texts::Caption(windowTitle()));
    m_messages.SetUpHelp(this, m_ground.folder.Path());
    Label2->setText(Texts::CubeExplanation());
}

void frmQIRAN::PlaceWindow() {
    m_framLocation = new framLocation(m_ground.cSats, m_ground.satellites);
    m_side->addWidget(m_framLocation);
    m_side->addStretch();
    if (!m_size.Restore())
        resize(sizeHint());
    CentreOnScreen(this);
    const auto place = [this](const Setting& setting, int pixels) {
        return Twips::PixelsOf(Settings::ReadOr(m_ground.cIni, setting, Twips::TextOf(pixels, *this)), *this);
    };
    const int left = place(Settings::left, x());
    const int top = place(Settings::top, y());
    if (WindowsCanBePlaced())
        move(left, top);
}

void frmQIRAN::PrepareTracking() {
    m_menu->mnuOnlyShowQIRAN->setChecked(m_ground.OnlyShowQiran());
    connect(m_framLocation, &framLocation::SatChanged, m_orbit.get(), &OrbitWindows::SatHasChanged);
    connect(m_framLocation, &framLocation::SkyRequested, m_orbit.get(), &OrbitWindows::ShowSky);
    connect(m_framLocation, &framLocation::PassInfoRequested, m_orbit.get(), &OrbitWindows::ShowPasses);
    connect(m_orbit.get(), &OrbitWindows::ChangeSatRequested, m_framLocation, &framLocation::ChangeSat);
    connect(staStatus, &StatusBarView::SkyRequested, m_orbit.get(), &OrbitWindows::ShowSky);
    m_history->SetImport([this](QWidget* owner) { ImportHistory(owner); });
    connect(staStatus, &StatusBarView::HistoryRequested, m_history.get(), &HistoryWindow::Show);
    connect(staStatus, &StatusBarView::EventRequested, m_history.get(), &HistoryWindow::ShowEvents);
    connect(m_history.get(), &HistoryWindow::EventsSeen, this, [this] {
        m_status.EventSeen();
        staStatus->Refresh();
    });
    connect(&m_ground.station, &Station::Changed, this, &frmQIRAN::TellWindows);
    connect(&m_ground.station, &Station::Changed, this, &frmQIRAN::ApplyStationPosition);
    connect(&m_ground, &GroundStation::ElementsChanged, this, &frmQIRAN::ShowElements);
    connect(&m_ground, &GroundStation::LimitCrossed, this, &frmQIRAN::TellOfEvent);
    connect(&m_ground.link, &ChosenLink::MonitorEnabled, txtMon, &QWidget::setEnabled);
    ApplyStationPosition();
    m_framLocation->ShowCaption();
    SetDueCaption();
    m_firstSteps = new FirstSteps(m_ground, *m_guidePlace, this);
    connect(m_firstSteps, &FirstSteps::Mend, this, &frmQIRAN::Mend);
}

void frmQIRAN::DimOld(bool isOn) {
    if (isOn) {
        m_ages.SetPassStart(m_passStart.Start());
        m_lastPass.start();
    } else
        m_lastPass.stop();
    m_ages.SetOn(isOn);
}

void frmQIRAN::Mend(StartGuide::Step step) {
    switch (step) {
    case StartGuide::Step::Formulae:
        OpenFolder(m_ground.folder.Path(), this, m_messages);
        break;
    case StartGuide::Step::Engine:
        m_ground.kiss.IsUsed() ? ShowKissSetup() : ShowAgwpeSetup();
        break;
    case StartGuide::Step::Position:
        ShowStationInformation();
        break;
    case StartGuide::Step::Elements:
        DownloadKeps();
        break;
    }
}

void frmQIRAN::LoadTerminal() {
    m_terminal = std::make_unique<frmTerm>(m_ground.cIni, m_messages, m_ground.link, m_ground.terminal,
                                           m_ground.folder);
    connect(m_terminal.get(), &frmTerm::AddToCallsignsAsked, this, &frmQIRAN::AddToCallsigns);
    connect(m_terminal.get(), &frmTerm::LogFolderAsked, this, &frmQIRAN::OpenLogFolder);
    connect(m_terminal.get(), &frmTerm::ImUnloading, this,
            [this] { m_terminal.release()->deleteLater(); }); // it is still about its own closing
}

void frmQIRAN::Show() {
    m_framLocation->Tick(true);
    m_timer1.start();
    QString showStatus = Settings::Peek(m_ground.cIni, Settings::statusShow);
    staStatus->setVisible(clsIni::IsItTrue(showStatus));
    ShowStatus();
    m_firstSteps->Update();
    DimOld(Settings::IsOn(m_ground.cIni, Settings::gridsDimOld));
    // A window that grows while it is shown forgets that its place is that of its frame.
    centralWidget()->layout()->activate();
    layout()->activate();
    show();
    m_size.Opened();
}

// A rise is told of with the status bar hidden, too.
void frmQIRAN::ShowStatus() {
    staStatus->Refresh();
    const QString rise = m_status.TakeRiseNotice();
    if (rise.isEmpty())
        return;
    QApplication::alert(this);
    m_notices.Show(Texts::Title(), rise);
}

void frmQIRAN::ApplyStationPosition() {
    m_framLocation->ApplyStationPosition(m_ground.station.dblLat(), m_ground.station.dblLong());
}

void frmQIRAN::SetDueCaption() {
    m_framLocation->SetDueCaption();
    m_menu->mnuUseLocalTime->setChecked(m_ground.cSats.blnLocalTime());
}

// Elements, the station's position, or whether times are local.
void frmQIRAN::TellWindows() {
    m_orbit->DataHaveChanged();
    m_history->TellPasses();
}

void frmQIRAN::ShowElements() {
    TellWindows();
    m_framLocation->ShowCaption();
    m_framLocation->Refresh();
}

void frmQIRAN::ShowTerminal() {
    if (!m_terminal)
        m_ground.OpenTerminal(); // LoadTerminal has its turn in it
    if (m_terminal)
        m_terminal->BringForward();
}

void frmQIRAN::ShowStationInformation() {
    frmLocation(m_ground.station, m_messages, this).exec();
}

void frmQIRAN::ShowAgwpeSetup() {
    frmAgwpeSetup(m_ground.agw, m_ground.link.Agw(), m_messages, this).exec();
}

void frmQIRAN::ShowForwarding() {
    frmForward(m_ground.forwarder, m_messages, this).exec();
}

void frmQIRAN::ShowKissSetup() {
    frmKissSetup(m_ground.kiss, m_ground.link.Kiss(), m_messages, this).exec();
}

void frmQIRAN::AddToCallsigns(const QString& callsign) {
    frmCalls(m_ground.callsigns, m_messages, this).DoCalls(callsign);
}

void frmQIRAN::PutInTo(const QString& callsign) {
    ShowTerminal();
    if (m_terminal)
        m_terminal->PutInTo(callsign);
}

void frmQIRAN::OpenLogFolder() {
    const QString logs = m_ground.folder.LogsFolder();
    if (QFileInfo(logs).isDir())
        OpenFolder(logs, this, m_messages);
    else
        m_messages.MessageBox(this, Texts::NoLogs(), MessageStyle::Information, {}, HelpTopics::terminal);
}

void frmQIRAN::ShowCallsigns() {
    frmCalls(m_ground.callsigns, m_messages, this).DoCalls();
}

void frmQIRAN::DownloadKeps() {
    HttpTransfer inet;
    if (!frmDownload(m_ground.folder, m_ground.cIni, m_messages, inet, this).DownloadKeps())
        return;
    activateWindow(); // a box and its dialog that go at once leave some desktops without an active window
    m_ground.LoadElements();
    m_firstSteps->Update();
    ShowElements();
}

void frmQIRAN::TellOfEvent(const LimitEvent& event) {
    if (Settings::IsOn(m_ground.cIni, Settings::noticeEvents))
        m_notices.Show(Texts::Title(), Texts::Crossed(event));
}

void frmQIRAN::ImportHistory(QWidget* owner) {
    frmImport(
        m_ground.folder.File(QStringLiteral("tlm.txt")), SidesOf(m_ground.callsigns),
        [this] { return m_ground.history.Settle(); }, m_messages, owner)
        .exec();
}

void frmQIRAN::PurgeTelemetryFiles() {
    TelemetryFiles::PurgeTelemetryFiles(m_ground.folder.Path());
}

void frmQIRAN::closeEvent(QCloseEvent* event) {
    m_isClosing = true;
    // What stands open still needs what is released below.
    if (!DismissOpenDialogs()) {
        event->ignore();
        QTimer::singleShot(closeRetry, this, &QWidget::close);
        return;
    }
    m_ground.Stop();
    event->accept();
    QApplication::quit();
}

void frmQIRAN::ReleaseWindows() {
    m_timer1.stop();
    m_lastPass.stop();
    m_terminal.reset();
    m_history->Close();
    m_orbit->Close();
}

bool frmQIRAN::SaveWindowPlace() {
    if (isMinimized())
        return false;
    m_size.Save();
    if (WindowsCanBePlaced()) {
        Settings::Save(m_ground.cIni, Settings::left, Twips::TextOf(x(), *this));
        Settings::Save(m_ground.cIni, Settings::top, Twips::TextOf(y(), *this));
    }
    return true;
}
