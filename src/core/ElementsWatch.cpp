#include "core/ElementsWatch.h"

ElementsWatch::ElementsWatch(int settleMilliseconds, QObject* parent)
    : QObject(parent)
    , m_timSettle(this) {
    m_timSettle.setObjectName(QStringLiteral("timSettle"));
    m_timSettle.setSingleShot(true);
    m_timSettle.setInterval(settleMilliseconds);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ElementsWatch::Notice);
    connect(&m_timSettle, &QTimer::timeout, this, &ElementsWatch::Changed);
}

void ElementsWatch::Start(const QString& folder, const QString& above) {
    m_folder = folder;
    if (!m_watcher.addPath(folder))
        m_watcher.addPath(above);
}

void ElementsWatch::Stop() {
    m_timSettle.stop();
    if (const QStringList watched = m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
}

void ElementsWatch::Notice() {
    // Above the folder much else is written: that counts only when the folder comes into being.
    if (m_watcher.directories() != QStringList{m_folder}) {
        if (!m_watcher.addPath(m_folder))
            return;
        const QStringList watched = m_watcher.directories();
        for (const QString& path : watched)
            if (path != m_folder)
                m_watcher.removePath(path);
    }
    m_timSettle.start();
}
