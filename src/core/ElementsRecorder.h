#pragma once

#include "orbit/history/ElementsHistory.h"

#include <QObject>
#include <QTimer>

class Clock;
class TrackedSatellites;
class clsSats;

/// Keeps each new set of elements that the two satellites are tracked by in elements-history.txt. It does so
/// some time after they were read, so that no start waits for it.
class ElementsRecorder : public QObject {
    Q_OBJECT
public:
    /// The references must outlive the recorder. `failed`: see AppendFile.
    ElementsRecorder(const QString& path, const clsSats& cSats, const TrackedSatellites& satellites,
                     const Clock& clock, AppendFile::Failed failed);

    /// Whether anything is kept; it is unless said otherwise.
    void SetKept(bool isKept) { m_isKept = isKept; }

    /// The elements have been read, perhaps again.
    void Note() { m_timKeep.start(); }

    /// What is not kept yet is left to the next start.
    void Stop() { m_timKeep.stop(); }

private:
    void Keep();
    void KeepElementsOf(const QString& object);

    const clsSats& m_cSats;
    const TrackedSatellites& m_satellites;
    const Clock& m_clock;
    ElementsHistory m_history;
    bool m_isLoaded = false;
    bool m_isKept = true;
    QTimer m_timKeep;
};
