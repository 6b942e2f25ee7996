#include "cli/commands/Answers.h"
#include "cli/commands/Sky.h"
#include "cli/output/Calendar.h"
#include "cli/output/Console.h"
#include "cli/output/Records.h"
#include "cli/table/Options.h"
#include "core/Texts.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"
#include "foundation/text/UtcTime.h"
#include "orbit/service/PassTable.h"

#include <QCryptographicHash>

#include <algorithm>
#include <limits>

namespace Commands {

int Passes(const Session& session);

namespace {

constexpr int usualDays = 3;
constexpr int usualDaysOfAll = 1;
constexpr int usualPassesPerDay = 10;

struct FoundPass {
    Satellite satellite;
    SatPass pass;
};

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
            std::vector<FoundPass>& found) {
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
        found.push_back({satellite, pass});
    }
    return answer.fault == SatPasses::Fault::None;
}

// The same to the second for all programs: from rise to set it lasts as long as is printed.
struct WholeSeconds {
    qint64 rise;
    qint64 culmination;
    qint64 set;
};

WholeSeconds SecondsOf(const SatPass& pass) {
    const auto rounded = [](DateTime utc) { return UtcTime::ToNearestSecond(UtcTime::FromDateTime(utc)); };
    return {rounded(pass.riseUtc), rounded(pass.culminationUtc), rounded(pass.setUtc)};
}

void PrintRecords(const Session& session, const std::vector<FoundPass>& found) {
    RecordWriter writer(session.console, Records::pass, Answers::FormatOf(session, Options::passFormat));
    writer.Head();
    for (const auto& [satellite, pass] : found) {
        const WholeSeconds time = SecondsOf(pass);
        writer.Write({satellite.name, qint64{satellite.number}, time.rise, time.culmination, time.set,
                      pass.riseAzimuth, pass.setAzimuth, pass.maxElevation, (time.set - time.rise) / 1000});
    }
}

void PrintTable(const Session& session, const Sky& sky, const std::vector<FoundPass>& found) {
    PassTable table(session.call.Has(Options::local) ? PassTable::Zone::Local : PassTable::Zone::Utc,
                    sky.AllAreAsked() ? PassTable::Names::Shown : PassTable::Names::None);
    for (const auto& [satellite, pass] : found)
        sky.Service().AddToTable(table, satellite.object, PassList::ToWholeSeconds(pass), satellite.name);
    session.console.Print(table.Text());
}

// The same whenever it is asked for: newer elements move a pass by seconds, and two passes of a satellite are
// an orbit apart.
QString UidOf(const Satellite& satellite, const WholeSeconds& time, const PlaceOnEarth& place) {
    constexpr qint64 halfAnHour = 1800 * 1000;
    const qint64 slot = (time.culmination + halfAnHour / 2) / halfAnHour;
    // A calendar may be shown to others, who need not read from it where the station is.
    const QByteArray where =
        QByteArray::number(place.latitude, 'f', 2) + ',' + QByteArray::number(place.longitude, 'f', 2);
    const QByteArray hash = QCryptographicHash::hash(where, QCryptographicHash::Sha256).first(4).toHex();
    return QStringLiteral("%1-%2-%3@qirandecode")
        .arg(satellite.number)
        .arg(slot)
        .arg(QString::fromLatin1(hash));
}

void PrintCalendar(const Session& session, const Sky& sky, const std::vector<FoundPass>& found) {
    const int alarm = Settings::NumberOf(clsIni(session.folder.IniFile()), Settings::noticeMinutes);
    QList<CalendarEvent> events;
    for (const auto& [satellite, pass] : found) {
        const WholeSeconds time = SecondsOf(pass);
        events.append({.uid = UidOf(satellite, time, *sky.Place()),
                       .start = time.rise,
                       .end = time.set,
                       .summary = QStringLiteral("%1 %2° (rise %3°, set %4°)")
                                      .arg(satellite.name)
                                      .arg(pass.maxElevation, 0, 'f', 0)
                                      .arg(pass.riseAzimuth, 0, 'f', 0)
                                      .arg(pass.setAzimuth, 0, 'f', 0),
                       .alarmMinutes = alarm});
    }
    session.console.Print(Calendar(events, QStringLiteral("qirandecode-cli ") + Texts::VersionNumber(),
                                   session.clock.Milliseconds()));
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
    std::vector<FoundPass> found;
    std::vector<Satellite> lost;
    for (const Satellite& satellite : satellites)
        if (!Search(sky, satellite, question, found))
            lost.push_back(satellite);
    sky.SayLost(lost);
    std::ranges::stable_sort(found, {}, [](const FoundPass& one) { return one.pass.riseUtc; });
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
