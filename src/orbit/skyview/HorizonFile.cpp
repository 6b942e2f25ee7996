#include "orbit/skyview/HorizonFile.h"

#include <map>

namespace {

constexpr double fullCircle = 360;

/// Gathers the points of a file.
class Points {
public:
    QString Take(std::size_t line, std::span<const QByteArrayView> fields) {
        const std::optional<double> azimuth = TableFile::NumberIn(fields[0]);
        if (!azimuth || *azimuth < 0 || *azimuth > fullCircle)
            return QStringLiteral("the azimuth is 0 to 360 degrees, not %1")
                .arg(TableFile::Quoted(fields[0]));
        const std::optional<double> elevation = TableFile::NumberIn(fields[1]);
        if (!elevation || *elevation < HorizonFile::lowest || *elevation > HorizonFile::highest)
            return QStringLiteral("the elevation is %1 to %2 degrees, not %3")
                .arg(HorizonFile::lowest)
                .arg(HorizonFile::highest)
                .arg(TableFile::Quoted(fields[1]));
        const double onCircle = *azimuth < fullCircle ? *azimuth : 0;
        if (const auto [first, isNew] = m_lines.try_emplace(onCircle, line); !isNew)
            return QStringLiteral("line %1 is for the same azimuth").arg(first->second);
        m_points.push_back({onCircle, *elevation});
        return {};
    }

    orbitmath::Horizon Made() { return orbitmath::Horizon(std::move(m_points)); }

private:
    std::vector<orbitmath::Horizon::Point> m_points;
    std::map<double, std::size_t> m_lines; // of each azimuth
};

constexpr std::size_t fieldsInLine = 2;

} // namespace

HorizonFile HorizonFile::Read(const QString& path) {
    Points points;
    HorizonFile file;
    file.m_faults = TableFile::Read(path, fieldsInLine,
                                    [&](auto line, auto fields) { return points.Take(line, fields); });
    file.m_horizon = points.Made();
    return file;
}

HorizonFile HorizonFile::Parse(QByteArrayView bytes) {
    Points points;
    HorizonFile file;
    file.m_faults = TableFile::Parse(bytes, fieldsInLine,
                                     [&](auto line, auto fields) { return points.Take(line, fields); });
    file.m_horizon = points.Made();
    return file;
}
