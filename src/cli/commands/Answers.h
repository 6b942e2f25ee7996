#pragma once

#include "cli/output/RecordWriter.h"
#include "cli/table/Options.h"
#include "cli/table/Session.h"

#include <QString>

/// What commands have in common.
namespace Answers {

/// Says why it did not work; answers ExitCode::Failed.
int Fail(const Session& session, const QString& why);

/// Says why it cannot be asked for like this; answers ExitCode::WrongCall.
int Wrong(const Session& session, const QString& why);

/// Why what needs the station's position cannot be answered, and why nothing is converted without `path`, the
/// formula file.
QString PositionUnknown();
QString NoFormulae(const QString& path);

/// How the user wants records printed; `format` is the option that says it.
RecordWriter::Format FormatOf(const Session& session, const Option& format = Options::format);

/// Whose times stand in text.
RecordWriter::Zone ZoneOf(const Session& session);

} // namespace Answers
