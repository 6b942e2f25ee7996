#include "cli/commands/Answers.h"
#include "cli/commands/ConsolePresenter.h"
#include "cli/commands/ElementKeeper.h"
#include "cli/commands/FrameRecords.h"
#include "cli/output/Records.h"
#include "core/GroundStation.h"
#include "core/Roof.h"
#include "foundation/system/EndRequests.h"
#include "foundation/text/Clock.h"

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

namespace Commands {

int Listen(const Session& session);

namespace {

/// Prints what the station hears, as it comes.
class Printer : public QObject {
public:
    Printer(const Session& session, GroundStation& station)
        : m_session(session)
        , m_isJson(Answers::FormatOf(session, Options::listenFormat) == RecordWriter::Format::Json) {
        connect(&station, &GroundStation::StatusLine, this, [this](const QString& line) {
            Print(Records::status, {m_session.clock.Milliseconds(), line}, line);
        });
        station.heard.Add([this](const HeardFrame& frame) {
            Print(Records::frame, RecordOf(frame), LineOf(frame));
        });
        station.decoder.Decoded().Add([this](const TelemetryFrame& frame) {
            for (const Reading& reading : frame.Readings())
                Print(Records::reading, RecordOf(reading), LineOf(reading));
        });
    }

private:
    // The time stands first in every kind of record.
    void Print(const RecordType& type, const Record& record, const QString& text) {
        if (m_isJson)
            m_session.console.Print(RecordText::Json(type, record) + '\n');
        else
            m_session.console.Print(RecordText::Cell(type.columns.front(), record.front()) + QStringLiteral("  ") +
                                    RecordText::Shown(text) + u'\n');
        if (!std::exchange(m_isFlushDue, true)) // once for all that came together
            QTimer::singleShot(0, this, &Printer::Flush);
    }

    void Flush() {
        m_isFlushDue = false;
        if (!m_session.console.Flush())
            QCoreApplication::quit();
    }

    const Session& m_session;
    const bool m_isJson;
    bool m_isFlushDue = false;
};

} // namespace

int Listen(const Session& session) {
    const QString formulae = session.folder.File(QStringLiteral("formula.txt"));
    if (!QFile::exists(formulae))
        return Answers::Fail(session, Answers::NoFormulae(formulae));
    EndRequests::Hold();
    const EndRequests requests;
    ConsolePresenter presenter(session.console);
    mb messages(presenter);
    Roof roof;
    GroundStation station(session.folder, session.clock, messages, roof);
    std::optional<Printer> printer;
    if (!session.call.Has(Options::quiet))
        printer.emplace(session, station);
    QObject::connect(&requests, &EndRequests::Requested, qApp, &QCoreApplication::quit);
    if (station.Start() != GroundStation::Outcome::Started)
        return ExitCode::Failed;
    std::optional<ElementKeeper> keeper;
    if (const std::optional<int> days = session.call.Get<int>(Options::fetchKeps))
        keeper.emplace(session, station, *days);
    station.ShowNotices();
    QCoreApplication::exec();
    station.Stop();
    return ExitCode::Done;
}

} // namespace Commands
