#pragma once

#include "foundation/text/Clock.h"
#include "foundation/text/DateTime.h"
#include "orbit/service/OrbitLibrary.h"
#include "orbit/service/SatInfo.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class PassTable;
struct Pass;

/// The one object that the program asks about satellites, passes and the time. An object is named by what the
/// orbit library finds it by: its catalogue number as text. What fails answers false or nothing.
///
/// What is const may be called from several threads at a time, as long as none of them calls a setter
/// meanwhile.
class clsSats {
public:
    clsSats(std::unique_ptr<OrbitLibrary> library, const Clock& clock);

    /// Whether times for display are local time instead of UTC.
    bool blnLocalTime() const { return m_blnLocalTime; }
    void setBlnLocalTime(bool blnLocalTime) { m_blnLocalTime = blnLocalTime; }

    /// Reads the element files of a folder (again).
    bool setStrKeplerPath(const QString& strKeplerPath);

    /// The observer, in degrees, north and east positive.
    bool setDblObsLat(double dblL);
    bool setDblObsLong(double dblL);

    DateTime datGmtTime() const;

    /// Now, in display time.
    DateTime datTime() const;

    /// A UTC time in milliseconds since 1970, in display time.
    DateTime datTimeAt(qint64 utc) const;

    /// The local time of a UTC time by the operating system's rules; `datT` itself when they have none.
    DateTime GmtToLocal(DateTime datT) const;

    /// A UTC time in display time.
    DateTime ToDisplayTime(DateTime datT) const { return m_blnLocalTime ? GmtToLocal(datT) : datT; }

    static double DateToJulianDate(DateTime datT);

    /// Everything about one satellite at one UTC time. All but the object, the time and the threshold are
    /// outputs, which a failure leaves alone; strDue costs a pass search.
    bool GetSatInfo(bool& blnvisible, const QString& strSat, DateTime datT, double dblThresholdDeg,
                    bool& blnSouth, double& dblAz, double& dblEl, double& dblLong, double& dblLat,
                    QString& strLong, QString& strLat, double& dblRange, double& dblRangeRate,
                    double& dblAltitude, double& dblPhase, QString* strDue = nullptr) const;

    enum class Due { No, Yes };

    /// The same as one value.
    std::optional<SatInfo> SatInfoAt(const QString& strSat, DateTime datT, Due due = Due::No) const;

    /// The same without its texts, for those who ask for many points.
    std::optional<SatPosition> PositionAt(const QString& strSat, DateTime datT,
                                          double dblThresholdDeg = 0.0) const;

    /// When the next pass begins, in display time. Where the list of passes holds none that is still to come:
    /// the start of its last one, or date-time 0 when it is empty.
    std::optional<DateTime> GetNextPassTime(const QString& strSat) const;

    /// The table of pass predictions, its lines ended by CR LF, and the UTC at which each of its passes
    /// begins, to the second; both empty when it cannot be made.
    struct PassInfo {
        QString table;
        std::vector<DateTime> starts;
        DateTime fromUtc = 0; ///< the passes that begin from here on
    };

    static constexpr int daysOfTable = 3;
    static constexpr int passesPerDay = 10; ///< at most; the table may hold all of them in one day
    PassInfo PassInfoOf(const QString& strObject) const;

    /// The table alone.
    QString strPassInfo(const QString& strObject) const { return PassInfoOf(strObject).table; }

    /// Where a pass begins and ends, as the table of predictions has it: azimuths in whole degrees. Nothing
    /// when the object has no position then.
    struct PassEnds {
        qint16 startAzimuth = 0;
        qint16 endAzimuth = 0;
    };
    std::optional<PassEnds> EndsOf(const QString& strObject, const Pass& pass) const;

    /// Adds the line of a pass to a table of predictions in display time.
    void AddToTable(PassTable& table, const Pass& pass, const PassEnds& ends, const QString& name = {}) const;

    /// Which elements an object is tracked by.
    std::optional<ElementSource> ElementsOf(const QString& strSat) const;

    /// The set it is tracked by as it came: see OrbitLibrary::ElementTextOf.
    QByteArray ElementTextOf(const QString& strSat) const;

    /// Why an object that has elements has no position now, with their file and line; empty when it has one.
    QString WhyNoPosition(const QString& strSat) const;

    /// The passes with all their digits, over any observer, at any time.
    SatPasses PassesOf(const PassQuery& query) const { return m_library->PassesOf(query); }

    /// Every set of elements in the folder: see OrbitLibrary::ForEachElementSet.
    bool ForEachElementSet(const OrbitLibrary::TakeSource& take) const {
        return m_library->ForEachElementSet(take);
    }

private:
    std::optional<qint16> AzimuthAt(const QString& strSat, DateTime datT) const;

    const std::unique_ptr<OrbitLibrary> m_library;
    const Clock& m_clock;
    bool m_blnLocalTime = false;
};
