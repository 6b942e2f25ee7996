#include "app/HearingOfSky.h"

#include "core/GroundStation.h"
#include "core/HeardTimes.h"
#include "foundation/text/UtcTime.h"
#include "orbit/history/PastDirection.h"
#include "orbit/skyview/frmSky.h"

#include <memory>
#include <utility>

namespace {

/// The elements that are kept, read when one of them is first asked for.
class Past {
public:
    explicit Past(const GroundStation& ground)
        : m_ground(ground)
        , m_history(ground.folder.File(QStringLiteral("elements-history.txt")), {})
        , m_elements(m_history, ground.cSats)
        , m_direction(m_elements) {}
    Past(const Past&) = delete;
    Past& operator=(const Past&) = delete;
    ~Past() = default;

    std::optional<SkyPoint> At(DateTime utc) {
        if (!m_ground.station.PositionKnown())
            return std::nullopt;
        if (!std::exchange(m_isLoaded, true))
            m_history.Load();
        return m_direction.At(m_ground.satellites.At(0).strObjNum, m_ground.station.dblLat(),
                              m_ground.station.dblLong(), utc);
    }

private:
    const GroundStation& m_ground;
    ElementsHistory m_history;
    PastElements m_elements;
    PastDirection m_direction;
    bool m_isLoaded = false;
};

} // namespace

SkyHearing HearingOfSky(const GroundStation& ground, const HeardTimes& heard, const mb& messages) {
    const auto between = [&heard](DateTime from, DateTime to) {
        std::vector<DateTime> times;
        for (const qint64 utc : heard.Between(UtcTime::FromDateTime(from), UtcTime::FromDateTime(to)))
            times.push_back(UtcTime::ToDateTime(utc));
        return times;
    };
    const auto past = std::make_shared<Past>(ground);
    return {.between = between,
            .directionAt = [past](DateTime utc) { return past->At(utc); },
            .messages = &messages};
}
