#pragma once

#include "foundation/settings/ProgramFolder.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/skyview/FrequenciesFile.h"
#include "orbit/skyview/HorizonFile.h"
#include "orbit/skyview/PassSteps.h"
#include "orbit/skyview/Reception.h"
#include "orbit/skyview/SkyPath.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

/// What is drawn of the sky.
struct SkyScene {
    struct Track {
        QString name;
        SkyPath path;
        std::optional<SkyPoint> now; ///< where the satellite stands, while it is up
    };

    std::vector<Track> tracks;   ///< the selected satellite first, then the other one while it is up
    std::optional<SkyPoint> sun; ///< while it is up
    std::vector<SkyPoint> heard; ///< where frames came in during the selected satellite's pass
};

/// A line of the values beside it.
struct SkyRow {
    QString name;
    QString value;
    bool isLarge = false;
};

/// The sky over the station: one pass of the selected satellite, and where things stand now. The sky window
/// shows what this answers.
class SkyView {
public:
    using PlaceOfStation = PassSteps::PlaceOfStation;

    /// The time of the map's clock (UTC) while the map simulates, nothing while it follows the real one.
    using SimulatedTime = std::function<std::optional<DateTime>()>;

    static constexpr std::size_t mostHeard = 2000; ///< frames that are marked along a pass

    /// All references outlive it. Reads horizon.txt and frequencies.txt. `heard` may be empty: then nobody
    /// knows.
    SkyView(const clsSats& cSats, const TrackedSatellites& satellites, PlaceOfStation place,
            SimulatedTime simulatedTime, const ProgramFolder& folder, HeardBetween heard = {});

    /// Brings everything up to the present time, place and selection.
    void Refresh();

    /// The elements have changed: searches anew.
    void Forget();

    /// To another pass; the neighbour's where there is one. False where there is none.
    bool StepEarlier();
    bool StepLater();

    /// To the pass that rises at this time (UTC, to two seconds). False, and nothing changes, where none
    /// does.
    bool ShowPassAt(DateTime riseUtc);

    /// Back to the present or next pass, and to follow it.
    void ShowPresent();

    /// Whether the present or next pass is shown, whichever that comes to be.
    bool IsFollowing() const { return m_isFollowing; }

    const SkyScene& Scene() const { return m_scene; }
    const orbitmath::Horizon& Horizon() const { return m_horizon.Around(); }

    /// The moment shown: "2026-Nov-21 12:00:00 UTC", and whether the map's clock gives it.
    QString TimeText() const;

    /// One line about the pass: "QIRAN: rises 12:00:01 at 17° (N), 61° at 12:05:00, sets 12:10:33 at 186°
    /// (S)", or why there is none.
    QString PassText() const;

    /// The countdown and all values.
    const std::vector<SkyRow>& Rows() const { return m_rows; }

    /// What is wrong in the two files, a line each file; empty when nothing is.
    QStringList FileFaults() const;

    /// A time (UTC) for display: "12:00:01", or "12:00" of a tick.
    QString TimeOfDay(DateTime utc) const;
    QString MinuteOfDay(DateTime utc) const;

private:
    /// A satellite's way, kept until it is another one.
    struct Kept {
        QString object;
        std::optional<SatPass> pass;
        SkyPath path;
        DateTime searchedAt = 0;
    };

    DateTime Now() const;
    QString Object() const { return m_satellites.Selected().strObjNum; }
    PassSteps Steps(const QString& object) const { return {m_cSats, object, *m_place}; }
    static bool IsStale(const Kept& kept, const QString& object, DateTime now);
    void Follow(Kept& kept, const QString& object) const;
    void Show(const SatPass& pass);
    void AddOther();
    void PlaceSun();
    void PlaceHeard();
    void MakeRows();
    void AddValues(const SatPosition& position);
    SkyRow Countdown() const;
    QString VisibleText() const;

    const clsSats& m_cSats;
    const TrackedSatellites& m_satellites;
    const PlaceOfStation m_placeOfStation;
    const SimulatedTime m_simulatedTime;
    const HeardBetween m_heardBetween;
    const HorizonFile m_horizon;
    const FrequenciesFile m_frequencies;

    std::optional<PassSteps::Place> m_place;
    DateTime m_now = 0;
    bool m_isSimulated = false;
    bool m_isFollowing = true;
    Kept m_shown;
    Kept m_other;
    std::vector<SkySpan> m_visible;
    std::size_t m_heard = 0; // frames during the pass shown
    SkyScene m_scene;
    std::vector<SkyRow> m_rows;
};
