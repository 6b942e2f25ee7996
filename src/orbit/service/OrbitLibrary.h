#pragma once

#include "orbit/service/SatPass.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// The answer to a position query. Angles in radians.
struct LibraryPosition {
    bool visible = false; ///< elevation greater than the threshold asked for
    bool south = false;   ///< the sub-satellite point lies south of the equator
    double azimuth = 0;   ///< 0 to 2 pi, from north over east
    double elevation = 0;
    double longitude = 0; ///< of the sub-satellite point, geodetic, east positive
    double latitude = 0;  ///< likewise, north positive
    double range = 0;     ///< km
    double rangeRate = 0; ///< km/s, positive: going away
    double altitude = 0;  ///< km above the WGS-84 ellipsoid
    double phase = 0;     ///< mean anomaly, 0 to 256
};

/// Where an object's elements come from.
struct ElementSource {
    std::string name;          ///< the name line, trimmed, in Windows-1252; empty when the set has none
    std::string file;          ///< the file's name inside the element folder
    double epochUtc{};         ///< date-time
    double meanMotion{};       ///< revolutions a day
    std::uint32_t number{};    ///< catalogue number
    std::size_t line{};        ///< of the file, counted from 1, where the elements begin
    std::string_view format{}; ///< "TLE", "CSV", "JSON" or "XML"
};

/// The operations of an orbit library. Date-times are days since 1899-12-30 00:00 UTC. An operation that
/// fails answers false or nothing and changes nothing.
///
/// What is const may be called from several threads at a time, as long as none of them changes folder or
/// observer meanwhile.
class OrbitLibrary {
public:
    OrbitLibrary() = default;
    OrbitLibrary(const OrbitLibrary&) = delete;
    OrbitLibrary& operator=(const OrbitLibrary&) = delete;
    virtual ~OrbitLibrary() = default;

    /// Reads the element files of a folder (again).
    virtual bool SetElementFolder(const std::string& path) = 0;

    /// Degrees, north positive.
    virtual bool SetObserverLatitude(double degrees) = 0;

    /// Degrees east, 0 to 360.
    virtual bool SetObserverLongitude(double degreesEast) = 0;

    /// The passes of an object that begin at or after `startUtc`, within `days` days, at most `passesPerDay`
    /// x `days`, in time order, as "(yyyymmddhhmmss riseAzimuth setAzimuth maxElevation duration)" items
    /// separated by ",": UTC, degrees, degrees, degrees, seconds. The last two arguments are 0.
    virtual std::optional<std::string> ListPasses(const std::string& object, double startUtc,
                                                  int passesPerDay, int days, std::int32_t reserved1,
                                                  std::int32_t reserved2) const = 0;

    /// `object` is a catalogue number or a name line; `libraryTime` comes from ConvertTime.
    virtual std::optional<LibraryPosition> Position(const std::string& object, double libraryTime,
                                                    double thresholdDegrees) const = 0;

    /// A UTC date-time as the library counts time.
    virtual std::optional<double> ConvertTime(double utc) const = 0;

    /// The elements that Position goes by.
    virtual std::optional<ElementSource> ElementsOf(const std::string& object) const = 0;

    /// The passes with all their digits, over any observer.
    virtual SatPasses PassesOf(const PassQuery& query) const = 0;

    /// Why an object that has elements has no position at a time, with the file and the line that they stand
    /// in: "amateur.txt, line 2: ..."; empty when it has one.
    virtual std::string WhyNoPosition(const std::string& object, double utc) const = 0;

    /// The set that Position goes by as it came, as a file that holds it alone; empty where it cannot be read
    /// again. It is read from its file: nothing to be asked often.
    virtual std::string ElementTextOf(const std::string& object) const = 0;

    using TakeSource = std::function<void(const ElementSource& source)>;

    /// Reads the element folder again for every set of elements in it, those of the same object too, file by
    /// file. False when it cannot be read.
    virtual bool ForEachElementSet(const TakeSource& take) const = 0;
};
