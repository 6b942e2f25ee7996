#include "cli/commands/Answers.h"

#include "cli/output/Console.h"
#include "cli/table/Options.h"

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

RecordWriter::Format FormatOf(const Session& session) {
    const QString format = session.call.Get<QString>(Options::format).value_or(QString());
    if (format == u"json")
        return RecordWriter::Format::Json;
    return format == u"csv" ? RecordWriter::Format::Csv : RecordWriter::Format::Text;
}

RecordWriter::Zone ZoneOf(const Session& session) {
    return session.call.Has(Options::local) ? RecordWriter::Zone::Local : RecordWriter::Zone::Utc;
}

} // namespace Answers
