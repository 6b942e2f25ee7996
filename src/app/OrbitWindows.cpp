#include "app/OrbitWindows.h"

#include "app/HearingOfSky.h"
#include "core/GroundStation.h"
#include "core/Texts.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/settings/Settings.h"
#include "orbit/map/frmMap.h"
#include "orbit/predictions/frmPass.h"
#include "orbit/skyview/frmSky.h"
#include "station/identity/PositionText.h"

OrbitWindows::OrbitWindows(GroundStation& ground, const mb& messages, QWidget* owner)
    : m_ground(ground)
    , m_messages(messages)
    , m_owner(owner)
    , m_heardTimes(ground) {}

OrbitWindows::~OrbitWindows() {
    Close();
}

void OrbitWindows::ShowPasses() {
    PassServices services{.messages = &m_messages};
    if (const auto place = PlaceOfStation())
        services.calendar = {.latitude = place->latitude,
                             .longitude = place->longitude,
                             .alarmMinutes = Settings::NumberOf(m_ground.cIni, Settings::noticeMinutes),
                             .program = Texts::CalendarMaker()};
    frmPass passes(m_ground.cSats, m_ground.satellites, m_owner, std::move(services));
    passes.RememberSize(m_ground.cIni);
    std::optional<DateTime> chosen;
    connect(&passes, &frmPass::PassChosen, this, [&](DateTime startUtc) {
        chosen = startUtc;
        passes.accept();
    });
    passes.exec();
    if (!chosen)
        return;
    ShowSky();
    m_sky->ShowPassAt(*chosen);
}

std::optional<PassSteps::Place> OrbitWindows::PlaceOfStation() const {
    const Station& station = m_ground.station;
    return station.PositionKnown() ? std::optional(PassSteps::Place{station.dblLat(), station.dblLong()})
                                   : std::nullopt;
}

void OrbitWindows::ShowSky() {
    if (!m_sky) {
        const auto place = [this] { return PlaceOfStation(); };
        const auto simulated = [this] { return m_map ? m_map->SimulatedTime() : std::nullopt; };
        m_sky = new frmSky(m_ground.cSats, m_ground.satellites, place, simulated, m_ground.cIni,
                           m_ground.folder, HearingOfSky(m_ground, m_heardTimes, m_messages));
        m_heardTimes.Load();
        connect(&m_heardTimes, &HeardTimes::Loaded, m_sky, &frmSky::HeardHasChanged);
        m_sky->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_sky, &frmSky::ImUnloading, this, [this] { m_sky.clear(); });
    }
    BringForward(m_sky);
}

void OrbitWindows::ShowMap() {
    if (!m_map) {
        m_map = new frmMap(m_ground.cSats, m_ground.satellites, m_ground.cIni, m_messages, m_ground.folder,
                           [this] { return PlaceOfStation(); });
        m_map->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_map, &frmMap::PositionChosen, this, &OrbitWindows::UseAsPosition);
        connect(m_map, &frmMap::ChangeSatRequested, this, &OrbitWindows::ChangeSatRequested);
        connect(m_map, &frmMap::TimeShown, this, [this] {
            if (m_sky)
                m_sky->Refresh();
        });
        connect(m_map, &frmMap::ImUnloading, this, [this] { m_map.clear(); });
    }
    BringForward(m_map);
}

void OrbitWindows::UseAsPosition(double latitude, double longitude) {
    using namespace PositionText;
    const QString lat = ToStored(FromDegrees(latitude, Axis::Latitude), Axis::Latitude);
    const QString lon = ToStored(FromDegrees(longitude, Axis::Longitude), Axis::Longitude);
    m_ground.station.setStrLat(lat);
    m_ground.station.setStrLong(lon);
    m_ground.station.setStrLoc(Locator(lat, lon).value_or(QString()));
}

void OrbitWindows::SatHasChanged() {
    if (m_map)
        m_map->SatHasChanged();
    if (m_sky)
        m_sky->SatHasChanged();
}

void OrbitWindows::DataHaveChanged() {
    if (m_map)
        m_map->DataHaveChanged();
    if (m_sky)
        m_sky->DataHaveChanged();
}

void OrbitWindows::Close() {
    if (frmSky* sky = m_sky) {
        sky->close();
        delete sky;
    }
    if (frmMap* map = m_map) {
        map->close();
        delete map;
    }
}
