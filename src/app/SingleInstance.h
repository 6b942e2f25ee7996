#pragma once

#include <QLockFile>
#include <QString>

class ProgramFolder;

/// Sees to it that one instance of the program runs in a program folder. Two stations may run from two
/// folders, and the lock that a crashed run leaves behind does not block.
class SingleInstance {
public:
    explicit SingleInstance(const ProgramFolder& folder);

    /// Whether another instance runs in the folder. Where the folder takes no lock, none is assumed.
    bool IsAnotherRunning();

private:
    QLockFile m_lock;
};
