#pragma once

#include <QByteArray>

class ProgramFolder;

/// Sees to it that one instance of the program runs in a program folder. Two stations may run from two
/// folders, and the lock file that a crashed run leaves behind does not block: the lock itself ends with its
/// process.
class SingleInstance {
public:
    explicit SingleInstance(const ProgramFolder& folder);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Whether another instance runs in the folder. Where the folder takes no lock, none is assumed.
    bool IsAnotherRunning();

private:
    const QByteArray m_path;
    int m_lock = -1; // its descriptor, while it is ours
};
