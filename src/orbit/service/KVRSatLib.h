#pragma once

#include "orbit/elements/ElementFolder.h"
#include "orbit/passes/PassSearch.h"
#include "orbit/service/OrbitLibrary.h"
#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

/// The orbit library of this program: elements from the files of a folder, SGP4 and SDP4, a station at sea
/// level on the WGS-84 ellipsoid, passes over its horizon.
///
/// Library time is the Julian date (UTC). A double holds it to 40 microseconds, so a conversion loses no more
/// than 20, in which a satellite moves 15 cm.
///
/// A pass item's start is the first whole second at which the object is in view, so it is never before the
/// time asked from; its duration is the time in view, cut to whole seconds. Angles in it have two decimals.
class KVRSatLib : public OrbitLibrary {
public:
    /// Damaged element sets are reported on standard error.
    KVRSatLib();
    explicit KVRSatLib(orbitmath::ElementFolder::Report report);

    /// False when `path` is no folder that can be read.
    bool SetElementFolder(const std::string& path) override;

    /// False outside -90 to 90.
    bool SetObserverLatitude(double degrees) override;

    /// False outside 0 to 360.
    bool SetObserverLongitude(double degreesEast) override;

    std::optional<std::string> ListPasses(const std::string& object, double startUtc, int passesPerDay,
                                          int days, std::int32_t reserved1,
                                          std::int32_t reserved2) const override;
    std::optional<LibraryPosition> Position(const std::string& object, double libraryTime,
                                            double thresholdDegrees) const override;
    std::optional<double> ConvertTime(double utc) const override;
    std::optional<ElementSource> ElementsOf(const std::string& object) const override;
    SatPasses PassesOf(const PassQuery& query) const override;
    std::string WhyNoPosition(const std::string& object, double utc) const override;
    std::string ElementTextOf(const std::string& object) const override;
    bool ForEachElementSet(const TakeSource& take) const override;

    /// The passes over the observer as the search finds them, and what it cost: those that begin within
    /// `days` days, at most `passesPerDay` x `days`. Nothing when the object is unknown.
    std::optional<orbitmath::PassList> Passes(const std::string& object, double startUtc, int passesPerDay,
                                              int days) const;

    /// Gives back what the positions asked for so far have been prepared with: for those who ask for many
    /// objects, one after the other.
    void ForgetTracks();

private:
    /// Nothing when the object is unknown. `utc` is the time it is asked for. Stays valid as long as the
    /// folder.
    const orbitmath::Propagator* Track(const std::string& object, double utc) const;

    const orbitmath::ElementFolder::Report m_report;
    std::string m_path;
    orbitmath::ElementFolder m_folder;
    double m_latitude = 0;
    double m_longitude = 0;
    orbitmath::Observer m_observer{0, 0};

    /// Made when an object is first asked for: a folder may hold a hundred times more than are. What they
    /// answer does not depend on when they were made.
    struct Cache {
        using Named = std::pair<const std::string, const orbitmath::Propagator*>;

        std::mutex lock; ///< held while the maps are read or written
        std::unordered_map<std::uint32_t, orbitmath::Propagator> propagators;
        std::unordered_map<std::string, const orbitmath::Propagator*> byName; ///< as callers name them
        std::atomic<const Named*> last = nullptr; ///< the same one is asked for many times on end
    };
    const std::unique_ptr<Cache> m_cache = std::make_unique<Cache>();
};
