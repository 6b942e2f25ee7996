#pragma once

#include "orbit/skyview/TableFile.h"

/// A frequency on which a satellite is heard.
struct SatFrequency {
    QString satellite; ///< as the file names it
    QString name;
    double megahertz = 0;
};

/// frequencies.txt: what is shown with its Doppler shift, a line a frequency, in three fields:
///
///     satellite, name, MHz
///
/// The satellite is QIRAN or ISS in any case, or a catalogue number; the name is 1 to 32 characters; MHz is 1
/// to 300000.
class FrequenciesFile {
public:
    static constexpr qsizetype longestName = 32;
    static constexpr double lowest = 1;
    static constexpr double highest = 300000;
    static constexpr std::size_t mostFrequencies = 64; ///< lines after these do not count

    static FrequenciesFile Read(const QString& path);

    /// `bytes`: the file's.
    static FrequenciesFile Parse(QByteArrayView bytes);

    /// Those of the satellite of this name or this catalogue number, in the file's order.
    std::vector<SatFrequency> Of(const QString& name, const QString& number) const;

    const std::vector<SatFrequency>& Frequencies() const { return m_frequencies; }
    const std::vector<LineFault>& Faults() const { return m_faults; }

private:
    QString Take(std::span<const QByteArrayView> fields);

    std::vector<SatFrequency> m_frequencies;
    std::vector<LineFault> m_faults;
};
