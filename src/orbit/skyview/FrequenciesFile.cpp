#include "orbit/skyview/FrequenciesFile.h"

#include <algorithm>

namespace {

constexpr std::size_t fieldsInLine = 3;
constexpr qsizetype longestNumber = 9;
constexpr QStringView names[] = {u"QIRAN", u"ISS"};

bool IsSatellite(const QString& text) {
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    return (!text.isEmpty() && text.size() <= longestNumber && std::ranges::all_of(text, isDigit)) ||
           std::ranges::any_of(
               names, [&](QStringView name) { return text.compare(name, Qt::CaseInsensitive) == 0; });
}

// Numbers count by their value: "00123" is "123".
QStringView WithoutZeros(QStringView number) {
    while (number.size() > 1 && number.startsWith(u'0'))
        number = number.sliced(1);
    return number;
}

} // namespace

QString FrequenciesFile::Take(std::span<const QByteArrayView> fields) {
    SatFrequency frequency{QString::fromUtf8(fields[0]), QString::fromUtf8(fields[1]), 0};
    if (!IsSatellite(frequency.satellite))
        return QStringLiteral("the satellite is QIRAN, ISS or a catalogue number, not %1")
            .arg(TableFile::Quoted(fields[0]));
    if (!fields[1].isValidUtf8())
        return QStringLiteral("the name is not in UTF-8");
    if (frequency.name.isEmpty() || frequency.name.size() > longestName)
        return QStringLiteral("the name has 1 to %1 characters, not %2")
            .arg(longestName)
            .arg(frequency.name.size());
    if (!std::ranges::all_of(frequency.name, [](QChar c) { return c.isPrint(); }))
        return QStringLiteral("the name holds what cannot be shown");
    const std::optional<double> megahertz = TableFile::NumberIn(fields[2]);
    if (!megahertz || *megahertz < lowest || *megahertz > highest)
        return QStringLiteral("the frequency is %1 to %2 MHz, not %3")
            .arg(lowest)
            .arg(QString::number(highest, 'f', 0), TableFile::Quoted(fields[2]));
    if (m_frequencies.size() == mostFrequencies)
        return QStringLiteral("more than %1 frequencies").arg(mostFrequencies);
    frequency.megahertz = *megahertz;
    m_frequencies.push_back(std::move(frequency));
    return {};
}

FrequenciesFile FrequenciesFile::Read(const QString& path) {
    FrequenciesFile file;
    file.m_faults = TableFile::Read(path, fieldsInLine, [&](auto, auto fields) { return file.Take(fields); });
    return file;
}

FrequenciesFile FrequenciesFile::Parse(QByteArrayView bytes) {
    FrequenciesFile file;
    file.m_faults =
        TableFile::Parse(bytes, fieldsInLine, [&](auto, auto fields) { return file.Take(fields); });
    return file;
}

std::vector<SatFrequency> FrequenciesFile::Of(const QString& name, const QString& number) const {
    std::vector<SatFrequency> found;
    std::ranges::copy_if(m_frequencies, std::back_inserter(found), [&](const SatFrequency& frequency) {
        return frequency.satellite.compare(name, Qt::CaseInsensitive) == 0 ||
               WithoutZeros(frequency.satellite) == WithoutZeros(number);
    });
    return found;
}
