#include "orbit/map/frmMap.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/Twips.h"
#include "foundation/placement/WindowTitle.h"
#include "foundation/settings/Settings.h"
#include "foundation/settings/ShippedFile.h"
#include "orbit/map/TimeBox.h"
#include "orbit/service/LatLongText.h"

#include <QAction>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFile>
#include <QImageReader>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// A picture beyond this is no map that a screen could show.
constexpr int mostPixels = 16384;

// The number of bytes of the colour table that a GIF's packed field tells of.
qint64 ColourTableSize(char packed) {
    constexpr int hasTable = 0x80;
    constexpr int sizeBits = 0x07;
    constexpr qint64 bytesPerColour = 3;
    return (packed & hasTable) != 0 ? bytesPerColour << ((packed & sizeBits) + 1) : 0;
}

// Goes over a chain of GIF data blocks; false when the file ends within it.
bool SkipBlocks(QFile& file) {
    for (char length = 0; file.getChar(&length);) {
        if (length == 0)
            return true;
        file.skip(static_cast<unsigned char>(length));
    }
    return false;
}

// Whether a GIF ends within its picture. It would load, and show nothing for what is missing.
bool IsCutOff(const QString& path) {
    constexpr char extension = 0x21;
    constexpr char image = 0x2C;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.read(6).startsWith("GIF8"))
        return false;
    constexpr qint64 screenSize =
        7; // of its description, and that of the picture; where the packed field stands
    constexpr qint64 screenPacked = 4;
    constexpr qint64 imageSize = 9;
    constexpr qint64 imagePacked = 8;
    const QByteArray screen = file.read(screenSize);
    if (screen.size() < screenSize)
        return true;
    file.skip(ColourTableSize(screen[screenPacked]));
    char kind = 0;
    while (file.getChar(&kind) && kind == extension) {
        file.skip(1); // its label
        SkipBlocks(file);
    }
    const QByteArray description = file.read(imageSize);
    if (kind != image || description.size() < imageSize)
        return true;
    file.skip(ColourTableSize(description[imagePacked]) + 1); // and the size of a code
    return !SkipBlocks(file);
}

} // namespace

frmMap::frmMap(const clsSats& cSats, const TrackedSatellites& satellites, clsIni& cIni, const mb& messages,
               const ProgramFolder& folder, PassSteps::PlaceOfStation placeOfStation)
    : m_cSats(cSats)
    , m_satellites(satellites)
    , m_cIni(cIni)
    , m_messages(messages)
    , m_size(*this, cIni, QStringLiteral("MAP"))
    , m_layers(cSats, satellites, std::move(placeOfStation))
    , picMap(new MapPicture(this))
    , picTime(new TimeBox(picMap))
    , mnuSpeed(new QMenu(this))
    , Timer1(new QTimer(this)) {
    setObjectName(QStringLiteral("frmMap"));
    picMap->setObjectName(QStringLiteral("picMap"));
    picMap->setAccessibleName(tr("World map"));
    picTime->setObjectName(QStringLiteral("picTime"));
    picTime->setFont(FixedFont());
    Timer1->setObjectName(QStringLiteral("Timer1"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(picMap);
    MakeMenu();
    MakeLayers();

    LoadWorld(folder, messages);
    FitPicture();
    if (m_size.Restore())
        picMap->resize(size());
    RestorePosition();
    ShowCaption();
    Tick();
    connect(picMap, &MapPicture::PointChosen, this, &frmMap::AskForPosition);
    connect(Timer1, &QTimer::timeout, this, &frmMap::Tick);
    FollowClock();
}

void frmMap::MakeMenu() {
    mnuSpeed->setObjectName(QStringLiteral("mnuSpeed"));
    mnuSpeedNormal = AddEntry(QStringLiteral("mnuSpeedNormal"), tr("&Normal"), true);
    mnuSpeedFast = AddEntry(QStringLiteral("mnuSpeedFast"), tr("&Fast"), true);
    mnuSpeedVeryFast = AddEntry(QStringLiteral("mnuSpeedVeryFast"), tr("&Very Fast"), true);
    mnuSpeedBackwards = AddEntry(QStringLiteral("mnuSpeedBackwards"), tr("&Backwards"), true);
    mnuSpeedPause = AddEntry(QStringLiteral("mnuSpeedPause"), tr("&Pause"), true);
    QAction* mnuSpeedReset = AddEntry(QStringLiteral("mnuSpeedReset"), tr("&Reset"), false);
    mnuSpeed->addSeparator()->setObjectName(QStringLiteral("mnuSpeedBar"));
    QAction* mnuChangeSat = AddEntry(QStringLiteral("mnuChangeSat"), tr("&Change Satellite"), false);

    using Speed = SimulatedClock::Speed;
    connect(mnuSpeedNormal, &QAction::triggered, this, [this] { ChooseSpeed(Speed::Normal); });
    connect(mnuSpeedFast, &QAction::triggered, this, [this] { ChooseSpeed(Speed::Fast); });
    connect(mnuSpeedVeryFast, &QAction::triggered, this, [this] { ChooseSpeed(Speed::VeryFast); });
    connect(mnuSpeedBackwards, &QAction::triggered, this, [this] {
        m_clock.ToggleBackwards(m_cSats.datGmtTime());
        FollowClock();
    });
    connect(mnuSpeedPause, &QAction::triggered, this, [this] {
        m_clock.TogglePause();
        FollowClock();
    });
    connect(mnuSpeedReset, &QAction::triggered, this, &frmMap::Reset);
    connect(mnuChangeSat, &QAction::triggered, this, &frmMap::ChangeSatRequested);
}

void frmMap::MakeLayers() {
    mnuSpeed->addSeparator()->setObjectName(QStringLiteral("mnuLayersBar"));
    const auto add = [this](const char* name, const QString& caption, MapLayer layer,
                            const Setting& setting) {
        QAction* entry = AddEntry(QString::fromLatin1(name), caption, true);
        m_layers.Show(layer, Settings::IsOn(m_cIni, setting));
        entry->setChecked(m_layers.IsShown(layer));
        connect(entry, &QAction::triggered, this, [this, layer, &setting](bool isShown) {
            m_layers.Show(layer, isShown);
            Settings::Save(m_cIni, setting, clsIni::TrueOrFalse(isShown));
            DataHaveChanged();
        });
    };
    add("mnuNight", tr("&Day and night"), MapLayer::Night, Settings::mapNight);
    add("mnuStation", tr("&My station"), MapLayer::Station, Settings::mapStation);
    add("mnuOtherSat", tr("&Other satellite"), MapLayer::Other, Settings::mapOther);
    add("mnuPassTrack", tr("Ground &track of the next pass"), MapLayer::Pass, Settings::mapPass);
}

QAction* frmMap::AddEntry(const QString& name, const QString& caption, bool checkable) {
    QAction* entry = mnuSpeed->addAction(caption);
    entry->setObjectName(name);
    entry->setCheckable(checkable);
    return entry;
}

void frmMap::LoadWorld(const ProgramFolder& folder, const mb& messages) {
    const QString path = ShippedFile(folder.File(QStringLiteral("world.gif")));
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    const bool isTooLarge = size.width() > mostPixels || size.height() > mostPixels;
    const QImage world = isTooLarge || IsCutOff(path) ? QImage() : reader.read();
    picMap->SetWorld(world);
    if (world.isNull()) {
        messages.MessageBox(
            this, tr("The map picture %1 cannot be shown. The map has a plain background instead.").arg(path),
            MessageStyle::Information, {}, HelpTopics::programFolder);
    }
}

// The window takes the picture's size, or as much of it as the screen has room for.
void frmMap::FitPicture() {
    const QSize room = screen()->availableSize() * 9 / 10;
    const QSize picture = picMap->sizeHint();
    resize(picture.width() <= room.width() && picture.height() <= room.height()
               ? picture
               : picture.scaled(room, Qt::KeepAspectRatio));
    picMap->resize(size()); // the layout follows when the window is shown
}

void frmMap::RestorePosition() {
    const QString left = Settings::Read(m_cIni, Settings::mapLeft);
    const QString top = Settings::Read(m_cIni, Settings::mapTop);
    if (!left.isEmpty() && !top.isEmpty())
        move(Twips::PixelsOf(left, *this), Twips::PixelsOf(top, *this));
}

void frmMap::SavePosition() {
    m_size.Save();
    if (isMinimized() || !WindowsCanBePlaced())
        return;
    Settings::Save(m_cIni, Settings::mapLeft, Twips::TextOf(x(), *this));
    Settings::Save(m_cIni, Settings::mapTop, Twips::TextOf(y(), *this));
}

void frmMap::ShowCaption() {
    SetPlainTitle(*this, QStringLiteral("Current Location of ") + m_satellites.DisplayName() +
                             QStringLiteral(" Right-click for menu"));
}

void frmMap::ChooseSpeed(SimulatedClock::Speed speed) {
    if (m_clock.ChooseSpeed(speed, m_cSats.datGmtTime()))
        Tick();
    FollowClock();
}

void frmMap::Reset() {
    m_clock.Reset();
    Tick();
    FollowClock();
}

void frmMap::SatHasChanged() {
    ShowCaption();
    Reset();
}

void frmMap::DataHaveChanged() {
    const GroundTrack track = GroundTrack::Of(m_cSats, m_satellites.Selected().strObjNum, m_shown);
    DrawSat(track);
    picMap->SetNote(
        track.points.empty()
            ? tr("There are no elements of %1 that can be used. Fetch them with Options, Download Keps.")
                  .arg(m_satellites.Selected().strBaseName)
            : QString());
    picMap->SetOverlay(m_layers.At(m_shown));
    const QString zone = m_cSats.blnLocalTime() ? tr("local") : tr("UTC");
    picTime->SetNote(m_clock.IsSimulated() ? tr("simulated, %1").arg(zone) : zone, m_clock.IsSimulated());
    picTime->SetText(
        FormatDateTime(m_cSats.ToDisplayTime(m_shown), u"yyyy-mmm-dd hh:nn:ss", MonthNames::English));
}

std::optional<DateTime> frmMap::SimulatedTime() const {
    return m_clock.IsSimulated() ? std::optional(m_shown) : std::nullopt;
}

void frmMap::Tick() {
    m_shown = m_clock.Shown(m_cSats.datGmtTime());
    DataHaveChanged();
    Q_EMIT TimeShown();
    m_clock.Step();
}

void frmMap::DrawSat(const GroundTrack& track) {
    picMap->SetTrack(track);
}

// The menu's marks and the ticker show what the clock does. A ticker that runs at its interval is not
// restarted.
void frmMap::FollowClock() {
    using Speed = SimulatedClock::Speed;
    mnuSpeedNormal->setChecked(m_clock.CheckedSpeed() == Speed::Normal);
    mnuSpeedFast->setChecked(m_clock.CheckedSpeed() == Speed::Fast);
    mnuSpeedVeryFast->setChecked(m_clock.CheckedSpeed() == Speed::VeryFast);
    mnuSpeedBackwards->setChecked(m_clock.IsBackwardsChecked());
    mnuSpeedPause->setChecked(m_clock.IsPauseChecked());
    if (Timer1->interval() != m_clock.Interval())
        Timer1->setInterval(m_clock.Interval());
    if (m_clock.IsTicking() && !Timer1->isActive())
        Timer1->start();
    else if (!m_clock.IsTicking())
        Timer1->stop();
}

// The key asks for the menu at the middle of the map; the mouse does when its button is released.
void frmMap::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() != QContextMenuEvent::Mouse)
        mnuSpeed->popup(mapToGlobal(rect().center()));
}

void frmMap::AskForPosition(const MapGeometry::GeoPoint& point) {
    const QString place = LatLongText::Latitude(point.latitude).value_or(QString()) + u' ' +
                          LatLongText::Longitude(point.longitude).value_or(QString());
    const int answer =
        m_messages.MessageBox(this, tr("Use %1 as your station's position?").arg(place),
                              MessageStyle::Question | MessageStyle::YesNo, {}, HelpTopics::station);
    if (answer == answerYes)
        Q_EMIT PositionChosen(point.latitude, point.longitude);
}

void frmMap::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous())
        m_size.Opened();
}

void frmMap::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton)
        mnuSpeed->popup(event->globalPosition().toPoint());
}

void frmMap::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)
        mnuSpeed->popup(mapToGlobal(rect().center())); // where the system makes no menu key of it
    else
        QWidget::keyPressEvent(event);
}

void frmMap::closeEvent(QCloseEvent* event) {
    Timer1->stop();
    SavePosition();
    event->accept();
    Q_EMIT ImUnloading();
}
