#include "cli/commands/Answers.h"
#include "cli/commands/Sky.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "cli/table/Options.h"
#include "core/Texts.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"
#include "foundation/text/UtcTime.h"
#include "orbit/service/PassRecords.h"
#include "orbit/service/PassTable.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Commands {

int Passes(const Session& session);

namespace {

constexpr int usualDays = 3;
constexpr int usualDaysOfAll = 1;
constexpr int usualPassesPerDay = 10;

struct Question {
    DateTime fromUtc = 0;
    int days = usualDays;
    std::size_t most = 0; ///< of each satellite
    double minElevation = 0;
};

Question QuestionOf(const Session& session, const Sky& sky) {
    Question question;
    const std::optional<qint64> from = session.call.Get<qint64>(Options::from);
    question.fromUtc = from ? UtcTime::ToDateTime(*from) : sky.Service().datGmtTime();
    question.days =
        session.call.Get<int>(Options::days).value_or(sky.AllAreAsked() ? usualDaysOfAll : usualDays);
    question.most = static_cast<std::size_t>(
        session.call.Get<int>(Options::count).value_or(question.days * usualPassesPerDay));
    question.minElevation = session.call.Get<double>(Options::minElevation).value_or(0.0);
    return question;
}

/// A pass, small: a night's list of all satellites has hundreds of thousands.
struct FoundPass {
    SatPass pass;
    std::uint32_t satellite = 0; ///< in the list of those asked for
    clsSats::PassEnds ends{};    ///< for the table
};

/// Searches and prints.
class PassPrinter {
public:
    PassPrinter(const Session& session, Sky& sky, std::vector<Satellite> satellites)
        : m_session(session)
        , m_sky(sky)
        , m_satellites(std::move(satellites))
        , m_question(QuestionOf(session, sky))
        , m_format(session.call.Get<QString>(Options::passFormat).value_or(QStringLiteral("text"))) {}

    int Run();

private:
    bool Search(std::uint32_t index);
    NamedPass Named(const FoundPass& found) const;
    void PrintRecords() const;
    void PrintTable() const;
    void PrintCalendar() const;

    const Session& m_session;
    Sky& m_sky;
    const std::vector<Satellite> m_satellites;
    const Question m_question;
    const QString m_format;
    std::vector<FoundPass> m_found;
};

// False when the elements give no passes.
bool PassPrinter::Search(std::uint32_t index) {
    const Satellite& satellite = m_satellites[index];
    // What stays too low is found and dropped, so that the others are as many as were asked for.
    const bool takesAll = m_question.minElevation > 0.0;
    const SatPasses answer = m_sky.Service().PassesOf(
        {.object = satellite.object.toStdString(),
         .latitude = m_sky.Place()->latitude,
         .longitude = m_sky.Place()->longitude,
         .startUtc = m_question.fromUtc,
         .days = static_cast<double>(m_question.days),
         .most = takesAll ? std::numeric_limits<std::size_t>::max() : m_question.most});
    std::size_t taken = 0;
    for (const SatPass& pass : answer.passes) {
        if (pass.maxElevation < m_question.minElevation)
            continue;
        if (taken++ == m_question.most)
            break;
        // Asked for while the satellite is at hand, not when the list is in the order of its times.
        const auto ends = m_format == u"text"
                              ? m_sky.Service().EndsOf(satellite.object, PassList::ToWholeSeconds(pass))
                              : clsSats::PassEnds();
        if (ends)
            m_found.push_back({pass, index, *ends});
    }
    m_sky.ForgetTracks();
    return answer.fault == SatPasses::Fault::None;
}

NamedPass PassPrinter::Named(const FoundPass& found) const {
    const Satellite& satellite = m_satellites[found.satellite];
    return {satellite.name, satellite.number, found.pass};
}

void PassPrinter::PrintRecords() const {
    RecordWriter writer(m_session.console, PassRecords::type,
                        Answers::FormatOf(m_session, Options::passFormat));
    writer.Head();
    for (const FoundPass& found : m_found)
        writer.Write(PassRecords::Of(Named(found)));
}

void PassPrinter::PrintTable() const {
    PassTable table(m_session.call.Has(Options::local) ? PassTable::Zone::Local : PassTable::Zone::Utc,
                    m_sky.AllAreAsked() ? PassTable::Names::Shown : PassTable::Names::None);
    m_session.console.Print(table.Head());
    for (const FoundPass& found : m_found) {
        m_sky.Service().AddToTable(table, PassList::ToWholeSeconds(found.pass), found.ends,
                                   m_satellites[found.satellite].name);
        m_session.console.Print(table.TakeLines());
    }
}

void PassPrinter::PrintCalendar() const {
    std::vector<NamedPass> passes;
    passes.reserve(m_found.size());
    for (const FoundPass& found : m_found)
        passes.push_back(Named(found));
    const clsIni ini(m_session.folder.IniFile());
    m_session.console.Print(
        PassRecords::Calendar(passes, {.latitude = m_sky.Place()->latitude,
                                       .longitude = m_sky.Place()->longitude,
                                       .alarmMinutes = Settings::NumberOf(ini, Settings::noticeMinutes),
                                       .program = Texts::CalendarMaker(),
                                       .now = m_session.clock.Milliseconds()}));
}

int PassPrinter::Run() {
    constexpr std::uint32_t betweenProgress = 500;
    std::vector<Satellite> lost;
    for (std::uint32_t k = 0; k < m_satellites.size(); ++k) {
        if (!Search(k))
            lost.push_back(m_satellites[k]);
        if ((k + 1) % betweenProgress == 0)
            m_session.console.Progress(
                QStringLiteral("%1 of %2 satellites").arg(k + 1).arg(m_satellites.size()));
    }
    m_session.console.Progress({});
    m_sky.SayLost(lost, m_question.fromUtc);
    std::ranges::sort(m_found, {},
                      [](const FoundPass& one) { return std::pair(one.pass.riseUtc, one.satellite); });
    if (m_format == u"ical")
        PrintCalendar();
    else if (m_format == u"text")
        PrintTable();
    else
        PrintRecords();
    return lost.size() == m_satellites.size() ? ExitCode::Failed : ExitCode::Done;
}

} // namespace

int Passes(const Session& session) {
    Sky sky(session);
    if (!sky.Place())
        return Answers::Fail(session, Answers::PositionUnknown());
    std::vector<Satellite> satellites = sky.Satellites();
    if (satellites.empty())
        return ExitCode::Failed;
    return PassPrinter(session, sky, std::move(satellites)).Run();
}

} // namespace Commands
