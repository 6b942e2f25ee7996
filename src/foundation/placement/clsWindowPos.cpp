#include "foundation/placement/clsWindowPos.h"

#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/Twips.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"

#include <algorithm>
#include <chrono>

namespace {

// A window system may give a window its maximised size before it calls the window maximised. A place that the
// window takes this shortly before is no place of its normal state.
constexpr std::chrono::milliseconds settleTime(100);

constexpr qint16 normalState = 0;
constexpr qint16 maximizedState = 2;

const QString keyLeft = QStringLiteral("LEFT");
const QString keyTop = QStringLiteral("TOP");
const QString keyWidth = QStringLiteral("WIDTH");
const QString keyHeight = QStringLiteral("HEIGHT");
const QString keyMaximized = QStringLiteral("MAXIMIZED");

} // namespace

clsWindowPos::clsWindowPos() {
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    m_settle.callOnTimeout([this] { KeepPending(); });
}

clsWindowPos::~clsWindowPos() {
    if (!m_window)
        return;
    RecordPosition();
    KeepPending();
    SaveAll();
}

void clsWindowPos::Init(QWidget* window, const QString& name, clsIni* settings) {
    if (settings == nullptr) {
        m_ownIni = std::make_unique<clsIni>(ProgramFolder::OfExecutable().IniFile());
        settings = m_ownIni.get();
    }
    m_ini = settings;
    m_window = window;
    m_section = QString::fromUtf16(Settings::setupSection);
    m_prefix = name + u'_';
    m_canPlace = CanPlace();
    CentreOnScreen(window);
    Restore();
}

bool clsWindowPos::CanPlace() const {
    return WindowsCanBePlaced();
}

QString clsWindowPos::Read(const QString& key, const QString& defaultValue) {
    return m_ini->GetIniStringWriteDefault(m_section, m_prefix + key, defaultValue);
}

void clsWindowPos::Save(const QString& key, const QString& value) {
    m_ini->SaveIniString(m_section, m_prefix + key, value);
}

void clsWindowPos::Restore() {
    Keep(QRect(m_window->pos(), m_window->size()));
    const QString left = Read(keyLeft, Twips::ToText(m_left));
    const QString top = Read(keyTop, Twips::ToText(m_top));
    m_window->move(Twips::PixelsOf(left, *m_window), Twips::PixelsOf(top, *m_window));
    if (HasSizableBorder(*m_window)) {
        const QString width = Read(keyWidth, Twips::ToText(m_width));
        const QString height = Read(keyHeight, Twips::ToText(m_height));
        m_window->resize(std::max(0, Twips::PixelsOf(width, *m_window)),
                         std::max(0, Twips::PixelsOf(height, *m_window)));
    }
    Keep(QRect(m_window->pos(), m_window->size()));
    QString maximized = Read(keyMaximized, clsIni::TrueOrFalse(false));
    if (clsIni::IsItTrue(maximized)) {
        m_window->setWindowState(m_window->windowState() | Qt::WindowMaximized);
        m_state = maximizedState;
    }
}

void clsWindowPos::RecordPosition() {
    if (!m_window)
        return;
    if (m_window->isMaximized()) {
        m_state = maximizedState;
        m_pending.reset();
        return;
    }
    if (m_window->isMinimized() || m_window->isFullScreen())
        return;
    if (blnBeenInResize)
        m_state = normalState;
    m_pending = QRect(m_window->pos(), m_window->size());
    m_settle.start();
}

void clsWindowPos::Keep(const QRect& place) {
    m_left = Twips::FromPixels(place.left(), *m_window);
    m_top = Twips::FromPixels(place.top(), *m_window);
    m_width = Twips::FromPixels(place.width(), *m_window);
    m_height = Twips::FromPixels(place.height(), *m_window);
}

void clsWindowPos::KeepPending() {
    if (m_pending && m_window && !m_window->isMaximized())
        Keep(*m_pending);
    m_pending.reset();
}

void clsWindowPos::SaveAll() {
    if (m_canPlace) {
        Save(keyLeft, Twips::ToText(m_left));
        Save(keyTop, Twips::ToText(m_top));
    }
    if (HasSizableBorder(*m_window)) {
        Save(keyWidth, Twips::ToText(m_width));
        Save(keyHeight, Twips::ToText(m_height));
    }
    Save(keyMaximized, clsIni::TrueOrFalse(m_state == maximizedState));
}
