#pragma once

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

/// Notices that files came into the folder of the orbital elements, or went, whoever changed it.
class ElementsWatch : public QObject {
    Q_OBJECT
public:
    /// What changes together is told once: so many milliseconds after the last change.
    explicit ElementsWatch(int settleMilliseconds = 1000, QObject* parent = nullptr);

    /// Watches the folder from now on; `above`, in which it lies, where it does not exist yet.
    void Start(const QString& folder, const QString& above);
    void Stop();

Q_SIGNALS:
    /// Something has changed, and has settled.
    void Changed();

private:
    void Notice();

    QString m_folder;
    QFileSystemWatcher m_watcher;
    QTimer m_timSettle;
};
