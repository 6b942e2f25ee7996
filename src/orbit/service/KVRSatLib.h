#pragma once

#include "orbit/elements/ElementFolder.h"
#include "orbit/passes/PassSearch.h"
#include "orbit/service/OrbitLibrary.h"
#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"

#include <memory>
#include <unordered_map>

/// The orbit library of this program: two-line elements from a folder, SGP4 and SDP4, a station at sea level
/// on the WGS-84 ellipsoid, passes over its horizon.
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
                                          int days, std::int32_t reserved1, std::int32_t reserved2) override;
    std::optional<LibraryPosition> Position(const std::string& object, double libraryTime,
                                            double thresholdDegrees) override;
    std::optional<double> ConvertTime(double utc) override;
    std::optional<ElementSource> ElementsOf(const std::string& object) const override;

    /// The passes with all their digits, and what the search cost. Nothing when the object is unknown.
    std::optional<orbitmath::PassList> Passes(const std::string& object, double startUtc, int passesPerDay,
                                              int days);

private:
    /// An object that has been asked for.
    struct Tracked {
        std::string object; ///< as the caller names it
        const orbitmath::ElementSet* set = nullptr;
        const orbitmath::Propagator* propagator = nullptr;
    };

    /// Nothing when the object is unknown. `utc` is the time it is asked for.
    const Tracked* Track(const std::string& object, double utc);

    orbitmath::ElementFolder::Report m_report;
    orbitmath::ElementFolder m_folder;
    double m_latitude = 0;
    double m_longitude = 0;
    orbitmath::Observer m_observer{0, 0};
    /// Made when an object is first asked for: a folder may hold a hundred times more than are.
    std::unordered_map<std::uint32_t, orbitmath::Propagator> m_propagators;
    Tracked m_last; ///< the same object is asked for many times on end
};
