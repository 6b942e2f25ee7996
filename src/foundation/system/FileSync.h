#pragma once

#include <QString>

#include <atomic>
#include <optional>
#include <thread>

class QFileDevice;

/// Which file an open descriptor or a path (links are followed) stands for, whatever its name.
struct FileIdentity {
    quint64 device = 0;
    quint64 number = 0;

    static std::optional<FileIdentity> Of(int descriptor);
    static std::optional<FileIdentity> Of(const QString& path);

    bool operator==(const FileIdentity&) const = default;
};

/// Waits until the disk has all that was written to an open file: a power cut afterwards cannot take it away.
/// Answers an empty text, or the system's reason.
QString SyncToDisk(QFileDevice& file);

/// The same of a folder's entries: names that were given, changed and taken away in it. Where the file system
/// has no such thing, it does what it can.
void SyncFolderToDisk(const QString& folder);

/// Puts what was written to a file on the disk, where a power cut leaves it, without holding up the caller: a
/// slow disk may take seconds. All functions are one thread's.
class FileSync {
public:
    FileSync() = default;
    FileSync(const FileSync&) = delete;
    FileSync& operator=(const FileSync&) = delete;
    ~FileSync() { (void)Wait(); }

    bool IsRunning() const { return m_isRunning; }

    /// Begins with all that was written through `descriptor` until now; not while one is running. With a
    /// `folder`, its entry of a new file is put on the disk as well.
    void Start(int descriptor, const QString& folder);

    /// Waits for the end of what was started last. Answers an empty text, or, once, the system's reason.
    QString Wait();

private:
    void Run(int descriptor, const QString& folder);

    std::thread m_thread;
    std::atomic<bool> m_isRunning = false;
    QString m_reason;
};
