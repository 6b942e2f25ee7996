#pragma once

#include <QDir>
#include <QFile>

#include <malloc.h>
#include <unistd.h>

/// What this process costs the machine at this moment.
namespace ProcessFigures {

inline bool IsLongRun() {
    return qEnvironmentVariableIsSet("QIRAN_LONG");
}

/// Whether memory is the program's own: sanitizers keep freed memory for themselves.
inline bool IsMemoryKnown() {
    return !qEnvironmentVariableIsSet("QIRAN_MEMORY_UNKNOWN");
}

/// Resident memory, KiB, after what is free has been given back.
inline qint64 ResidentKib() {
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toLongLong() * (sysconf(_SC_PAGESIZE) / 1024);
}

inline qsizetype Descriptors() {
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace ProcessFigures
