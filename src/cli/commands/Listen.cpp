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
            Print(TextOf(Records::status, {m_session.clock.Milliseconds(), line}, line));
        });
        station.decoder.Decoded().Add([this, &limits = station.limits](const TelemetryFrame& frame) {
            for (const Reading& reading : frame.Readings())
                m_readings += TextOf(Records::reading, RecordOf(reading, limits.Limits()),
                                     LineOf(reading, limits.Limits()));
            m_readings += std::exchange(m_events, {});
        });
        // An event is judged in the midst of its frame, and printed behind the readings.
        connect(&station, &GroundStation::LimitCrossed, this, [this](const LimitEvent& event) {
            m_events += TextOf(Records::event, RecordOf(event), LineOf(event));
        });
        // The station decodes a frame before this is handed it, but it is printed first.
        station.heard.Add([this](const HeardFrame& frame) {
            Print(TextOf(Records::frame, RecordOf(frame), LineOf(frame)) + std::exchange(m_readings, {}));
        });
    }

private:
    // A record, or in text its time and a line for people. The time stands first in every kind of record.
    QByteArray TextOf(const RecordType& type, const Record& record, const QString& line) const {
        if (m_isJson)
            return RecordText::Json(type, record) + '\n';
        const QString time = RecordText::Cell(type.columns.front(), record.front());
        return (time + QStringLiteral("  ") + RecordText::Shown(line)).toUtf8() + '\n';
    }

    void Print(const QByteArray& text) {
        m_session.console.Print(text);
        if (!std::exchange(m_isFlushDue, true)) // once for all that comes together
            QTimer::singleShot(0, this, &Printer::Flush);
    }

    void Flush() {
        m_isFlushDue = false;
        if (!m_session.console.Flush())
            QCoreApplication::quit();
    }

    const Session& m_session;
    const bool m_isJson;
    QByteArray m_readings; ///< of the frame that is being handed round
    QByteArray m_events;   ///< likewise
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
    if (const auto tnc = session.call.Get<HostAndPort>(Options::kiss))
        station.kiss.UseForThisRun({.host = tnc->host, .port = static_cast<quint16>(tnc->port)});
    if (station.Start() != GroundStation::Outcome::Started)
        return ExitCode::Failed;
    if (const auto recording = session.call.Get<QString>(Options::record);
        recording && !station.StartRecording(*recording))
        return Answers::Fail(session, QStringLiteral("%1 is no recording").arg(*recording));
    std::optional<ElementKeeper> keeper;
    if (const std::optional<int> days = session.call.Get<int>(Options::fetchKeps))
        keeper.emplace(session, station, *days);
    station.ShowNotices();
    QCoreApplication::exec();
    station.Stop();
    return ExitCode::Done;
}

} // namespace Commands
