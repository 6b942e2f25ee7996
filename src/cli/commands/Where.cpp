#include "cli/commands/Answers.h"
#include "cli/commands/Sky.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "cli/table/Options.h"
#include "foundation/system/EndRequests.h"
#include "foundation/text/Clock.h"
#include "foundation/text/UtcTime.h"
#include "orbit/sky/Doppler.h"

#include <QCoreApplication>
#include <QHash>
#include <QTimer>

#include <cmath>

namespace Commands {

int Where(const Session& session);

namespace {

/// Prints where satellites are, as often as it is asked.
class Whereabouts {
public:
    Whereabouts(const Session& session, const Sky& sky, std::vector<Satellite> satellites)
        : m_session(session)
        , m_sky(sky)
        , m_satellites(std::move(satellites))
        , m_frequencyMhz(session.call.Get<double>(Options::frequency))
        , m_writer(session.console, Records::position, Answers::FormatOf(session), Answers::ZoneOf(session)) {
        m_writer.Head();
    }

    /// A line for each satellite. False when none has a position, or when nobody reads any further.
    bool Print() {
        const qint64 now = m_session.clock.Milliseconds() / 1000 * 1000; // as it is printed
        std::vector<Satellite> lost;
        for (const Satellite& satellite : m_satellites) {
            if (const auto position = m_sky.Service().PositionAt(satellite.object, UtcTime::ToDateTime(now)))
                m_writer.Write(RecordOf(satellite, *position, now));
            else
                lost.push_back(satellite);
        }
        if (!std::exchange(m_areLostSaid, true))
            m_sky.SayLost(lost, UtcTime::ToDateTime(now));
        return m_session.console.Flush() && lost.size() < m_satellites.size();
    }

private:
    Record RecordOf(const Satellite& satellite, const SatPosition& position, qint64 now) {
        Record record{now,
                      satellite.name,
                      qint64{satellite.number},
                      position.dblLat,
                      position.dblLong,
                      position.dblAltitude};
        if (!m_sky.Place())
            return record << FieldValue() << FieldValue() << FieldValue() << FieldValue() << FieldValue()
                          << FieldValue();
        return record << position.dblAz << position.dblEl << position.dblRange << position.dblRangeRate
                      << Doppler(position.dblRangeRate)
                      << (position.blnvisible ? FieldValue(now) : FieldOf(DueOf(satellite, now)));
    }

    // Of what comes from the satellite, in Hz.
    FieldValue Doppler(double rangeRate) const {
        constexpr double hertzPerMegahertz = 1e6;
        if (!m_frequencyMhz)
            return {};
        return qint64{std::llround(orbitmath::DopplerShift(rangeRate, *m_frequencyMhz * hertzPerMegahertz))};
    }

    // When the next pass begins that begins within two days. Searched for again only when it is over.
    std::optional<qint64> DueOf(const Satellite& satellite, qint64 now) {
        constexpr int daysAhead = 2;
        if (const auto known = m_due.constFind(satellite.number); known != m_due.cend() && *known > now)
            return *known;
        const SatPasses answer = m_sky.Service().PassesOf({.object = satellite.object.toStdString(),
                                                           .latitude = m_sky.Place()->latitude,
                                                           .longitude = m_sky.Place()->longitude,
                                                           .startUtc = UtcTime::ToDateTime(now),
                                                           .days = daysAhead,
                                                           .most = 1});
        if (answer.passes.empty())
            return std::nullopt;
        return *m_due.insert(satellite.number, UtcTime::FromDateTime(answer.passes.front().riseUtc));
    }

    const Session& m_session;
    const Sky& m_sky;
    const std::vector<Satellite> m_satellites;
    const std::optional<double> m_frequencyMhz;
    RecordWriter m_writer;
    QHash<std::uint32_t, qint64> m_due;
    bool m_areLostSaid = false;
};

} // namespace

int Where(const Session& session) {
    const std::optional<int> every = session.call.Get<int>(Options::every);
    if (every)
        EndRequests::Hold();
    const Sky sky(session);
    if (session.call.Has(Options::frequency) && !sky.Place())
        return Answers::Fail(session, Answers::PositionUnknown());
    const std::vector<Satellite> satellites = sky.Satellites();
    if (satellites.empty())
        return ExitCode::Failed;
    Whereabouts whereabouts(session, sky, satellites);
    if (!whereabouts.Print())
        return ExitCode::Failed;
    if (!every)
        return ExitCode::Done;
    const EndRequests requests;
    QObject::connect(&requests, &EndRequests::Requested, qApp, &QCoreApplication::quit);
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, qApp, [&] {
        if (!whereabouts.Print())
            QCoreApplication::quit();
    });
    timer.start(*every * 1000);
    return QCoreApplication::exec();
}

} // namespace Commands
