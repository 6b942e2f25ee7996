#pragma once

#include "foundation/settings/clsIni.h"
#include "orbit/service/clsSats.h"

#include <QString>
#include <QStringList>

#include <array>

/// One of the two satellites that the program tracks.
struct TrackedSatellite {
    QString strBaseName;     ///< "QIRAN" or "ISS"
    QString strName;         ///< the name line of an element file; empty until one was found
    QString strObjNum;       ///< the catalogue number, by which the orbit service finds it
    qint16 intInterval = 10; ///< ticks from one refresh of the display to the next
    qint16 intTicks = 0;
    qint16 intInView = 0; ///< refreshes; set anew by every refresh that finds it in view
    bool blnFound = false;
    QString strFault; ///< why the elements that were found are refused, with file and line; empty when they
                      ///< are good
};

/// The tracked satellites (0: the one whose telemetry is decoded, 1: the space station) and which of them is
/// shown.
class TrackedSatellites {
public:
    TrackedSatellites();

    /// Reads the catalogue numbers and the selection; missing settings are written with their defaults.
    void LoadSettings(clsIni& ini);

    /// Saves the selection.
    void SaveSettings(clsIni& ini) const;

    /// 0 or 1.
    qint16 intObjIndex() const { return m_intObjIndex; }

    /// Any other number than 1 selects satellite 0.
    void setIntObjIndex(double intObjIndex);

    void Toggle() { m_intObjIndex = m_intObjIndex == 0 ? 1 : 0; }

    TrackedSatellite& Selected() { return m_satellites[static_cast<std::size_t>(m_intObjIndex)]; }
    const TrackedSatellite& Selected() const { return m_satellites[static_cast<std::size_t>(m_intObjIndex)]; }
    const TrackedSatellite& At(std::size_t index) const { return m_satellites.at(index); }

    /// The base name of the selected satellite, and the one in the element file where it says more.
    QString DisplayName() const;

    /// Looks for the satellites' names in the element files of a folder, in the file system's order, until
    /// both are found.
    void FindInKeps(const QString& folder);

    /// A line for each satellite that is found and yet cannot be tracked: why, with file and line.
    QStringList UntrackedMessages(const clsSats& cSats) const;

    /// "No Keps found for …" with the satellites that have no elements; empty when both have.
    QString NoKepsMessage() const;

    /// A second has passed: whether the display is to be refreshed.
    bool Tick(bool forced = false);

private:
    bool AllFound() const;
    void FindInFile(const std::string& folder, const std::string& file);

    std::array<TrackedSatellite, 2> m_satellites;
    qint16 m_intObjIndex = 0;
};
