#include "foundation/placement/WindowSize.h"

#include "foundation/placement/Twips.h"
#include "foundation/settings/Settings.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>

#include <utility>

WindowSize::WindowSize(QWidget& window, clsIni& ini, QString name)
    : m_window(window)
    , m_ini(ini)
    , m_name(std::move(name)) {}

bool WindowSize::Restore() {
    const QString section = QString::fromUtf16(Settings::setupSection);
    const QSize size(
        Twips::PixelsOf(m_ini.GetIniString(section, m_name + QStringLiteral("_WIDTH"), {}), m_window),
        Twips::PixelsOf(m_ini.GetIniString(section, m_name + QStringLiteral("_HEIGHT"), {}), m_window));
    if (size.width() <= 0 || size.height() <= 0)
        return false;
    m_window.resize(size.boundedTo(m_window.screen()->availableSize()));
    return true;
}

void WindowSize::Opened() {
    m_opened = NormalSize();
    m_window.installEventFilter(this);
}

// What is in the window may need more room than there is: that is not the user's doing.
bool WindowSize::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        const QSize least = m_window.minimumSize().expandedTo(m_window.minimumSizeHint());
        if (m_window.size() == m_opened.expandedTo(least))
            m_opened = m_window.size();
    }
    return QObject::eventFilter(watched, event);
}

QSize WindowSize::NormalSize() const {
    const bool isNormal = !m_window.isMaximized() && !m_window.isFullScreen();
    return isNormal ? m_window.size() : m_window.normalGeometry().size();
}

void WindowSize::Save() {
    const QSize size = NormalSize();
    if (m_window.isMinimized() || size.isEmpty() || size == m_opened || !m_opened.isValid())
        return;
    const QString section = QString::fromUtf16(Settings::setupSection);
    m_ini.SaveIniString(section, m_name + QStringLiteral("_WIDTH"), Twips::TextOf(size.width(), m_window));
    m_ini.SaveIniString(section, m_name + QStringLiteral("_HEIGHT"), Twips::TextOf(size.height(), m_window));
    m_opened = size;
}
