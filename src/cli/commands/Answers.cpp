#include "cli/commands/Answers.h"

#include "cli/output/Console.h"

namespace Answers {

int Fail(const Session& session, const QString& why) {
    session.console.Say(why);
    return ExitCode::Failed;
}

int Wrong(const Session& session, const QString& why) {
    session.console.Say(why);
    return ExitCode::WrongCall;
}

QString PositionUnknown() {
    return QStringLiteral("the station's position is not known; give --at LAT,LON, or set SETUP/LATITUDE and "
                          "SETUP/LONGITUDE");
}

QString NoFormulae(const QString& path) {
    return QStringLiteral(
               "put the satellite's calibration formulae into the file %1; formula.example.txt among the "
               "program's files is an example")
        .arg(path);
}

RecordWriter::Format FormatOf(const Session& session, const Option& format) {
    const QString wanted = session.call.Get<QString>(format).value_or(QString());
    if (wanted == u"json")
        return RecordWriter::Format::Json;
    return wanted == u"csv" ? RecordWriter::Format::Csv : RecordWriter::Format::Text;
}

RecordWriter::Zone ZoneOf(const Session& session) {
    return session.call.Has(Options::local) ? RecordWriter::Zone::Local : RecordWriter::Zone::Utc;
}

} // namespace Answers
