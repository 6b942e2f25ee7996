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

// False when the elements give no passes.
bool Search(const Sky& sky, const Satellite& satellite, const Question& question,
            std::vector<NamedPass>& found) {
    // What stays too low is found and dropped, so that the others are as many as were asked for.
    const bool takesAll = question.minElevation > 0.0;
    const SatPasses answer =
        sky.Service().PassesOf({.object = satellite.object.toStdString(),
                                .latitude = sky.Place()->latitude,
                                .longitude = sky.Place()->longitude,
                                .startUtc = question.fromUtc,
                                .days = static_cast<double>(question.days),
                                .most = takesAll ? std::numeric_limits<std::size_t>::max() : question.most});
    std::size_t taken = 0;
    for (const SatPass& pass : answer.passes) {
        if (pass.maxElevation < question.minElevation)
            continue;
        if (taken++ == question.most)
            break;
        found.push_back({satellite.name, satellite.number, pass});
    }
    return answer.fault == SatPasses::Fault::None;
}

void PrintRecords(const Session& session, const std::vector<NamedPass>& found) {
    RecordWriter writer(session.console, PassRecords::type, Answers::FormatOf(session, Options::passFormat));
    writer.Head();
    for (const NamedPass& pass : found)
        writer.Write(PassRecords::Of(pass));
}

void PrintTable(const Session& session, const Sky& sky, const std::vector<NamedPass>& found) {
    PassTable table(session.call.Has(Options::local) ? PassTable::Zone::Local : PassTable::Zone::Utc,
                    sky.AllAreAsked() ? PassTable::Names::Shown : PassTable::Names::None);
    for (const auto& [satellite, number, pass] : found)
        sky.Service().AddToTable(table, QString::number(number), PassList::ToWholeSeconds(pass), satellite);
    session.console.Print(table.Text());
}

void PrintCalendar(const Session& session, const Sky& sky, const std::vector<NamedPass>& found) {
    session.console.Print(PassRecords::Calendar(
        found, {.latitude = sky.Place()->latitude,
                .longitude = sky.Place()->longitude,
                .alarmMinutes = Settings::NumberOf(clsIni(session.folder.IniFile()), Settings::noticeMinutes),
                .program = Texts::CalendarMaker(),
                .now = session.clock.Milliseconds()}));
}

} // namespace

int Passes(const Session& session) {
    const Sky sky(session);
    if (!sky.Place())
        return Answers::Fail(session, Answers::PositionUnknown());
    const std::vector<Satellite> satellites = sky.Satellites();
    if (satellites.empty())
        return ExitCode::Failed;
    const Question question = QuestionOf(session, sky);
    std::vector<NamedPass> found;
    std::vector<Satellite> lost;
    for (const Satellite& satellite : satellites)
        if (!Search(sky, satellite, question, found))
            lost.push_back(satellite);
    sky.SayLost(lost);
    std::ranges::stable_sort(found, {}, [](const NamedPass& one) { return one.pass.riseUtc; });
    const QString format = session.call.Get<QString>(Options::passFormat).value_or(QString());
    if (format == u"ical")
        PrintCalendar(session, sky, found);
    else if (format.isEmpty() || format == u"text")
        PrintTable(session, sky, found);
    else
        PrintRecords(session, found);
    return lost.size() == satellites.size() ? ExitCode::Failed : ExitCode::Done;
}

} // namespace Commands
