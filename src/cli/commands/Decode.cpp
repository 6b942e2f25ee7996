#include "cli/commands/Answers.h"
#include "cli/commands/ConsolePresenter.h"
#include "cli/commands/FrameRecords.h"
#include "cli/output/Records.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "telemetry/calibration/FormulaFile.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/limits/ChannelsFile.h"
#include "telemetry/replay/FrameRecording.h"
#include "telemetry/replay/FrameText.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace Commands {

int Decode(const Session& session);

namespace {

constexpr std::size_t pieceSize = 65536;

const QString formulaFile = QStringLiteral("formula.txt");
const QString channelsFile = QStringLiteral("channels.txt");
const QString standardInput = QStringLiteral("-");

/// The frames of a stream, whose first bytes tell whether it is a recording or text.
class FrameStream {
public:
    explicit FrameStream(const std::function<void(const HeardFrame&)>& take)
        : m_text([take](const FrameText::Told& told) { take(told.frame); })
        , m_recording([take](const HeardFrame& frame, std::optional<qint64>) { take(frame); }) {}

    void Add(QByteArrayView bytes) {
        if (!m_isRecording)
            m_isRecording = FrameRecording::Begins(bytes);
        if (*m_isRecording)
            m_recording.Add(bytes);
        else
            m_text.Add(bytes);
    }

    void End() { m_text.End(); }

    qint64 NotUnderstood() const { return m_text.NotUnderstood() + m_recording.Refused(); }

private:
    std::optional<bool> m_isRecording; // none before the first bytes
    FrameText m_text;
    FrameRecording m_recording;
};

/// Decodes frames and prints their readings.
class FrameDecoder {
public:
    explicit FrameDecoder(const Session& session)
        : m_session(session)
        , m_ini(session.folder.IniFile())
        , m_callsigns(m_ini)
        , m_channels(ChannelsFile::Read(session.folder.File(channelsFile)).Limits())
        , m_decoder(m_channelMap, m_formulae, m_callsigns)
        , m_writer(session.console, Records::reading, Answers::FormatOf(session), Answers::ZoneOf(session)) {
        m_channelMap.BuildChannelMap();
        m_callsigns.PeekCallsigns();
        m_decoder.Decoded().Add(
            [this](const TelemetryFrame& frame) {
                for (const Reading& reading : frame.Readings())
                    m_writer.Write(RecordOf(reading, m_channels));
            },
            FanOut<TelemetryFrame>::Takes::LiveAndReplayed);
    }

    /// False, and why is said, when the formulae cannot be loaded.
    bool LoadFormulaeFile() {
        const QString path = m_session.folder.File(formulaFile);
        if (!QFile::exists(path)) {
            m_session.console.Say(Answers::NoFormulae(path));
            return false;
        }
        ConsolePresenter presenter(m_session.console);
        return LoadFormulae(path, m_formulae, mb(presenter), nullptr) == FormulaLoad::Loaded;
    }

    void Head() { m_writer.Head(); }

    /// False, and why is said, when a file cannot be read. Ends early when nobody reads any further.
    bool DecodeFile(const QString& name) {
        QFile file(name);
        const bool isFolder = QFileInfo(name).isDir();
        const bool isOpen = name == standardInput ? file.open(STDIN_FILENO, QIODevice::ReadOnly)
                                                  : !isFolder && file.open(QIODevice::ReadOnly);
        QString reason = isFolder ? QStringLiteral("it is a folder") : file.errorString();
        if (isOpen) {
            FrameStream stream([this](const HeardFrame& frame) { m_decoder.Take(frame); });
            reason = DecodeAll(file.handle(), stream);
            m_notUnderstood += stream.NotUnderstood();
        }
        if (!reason.isEmpty())
            m_session.console.Say(QStringLiteral("%1 cannot be read: %2").arg(name, reason));
        return reason.isEmpty();
    }

    qint64 NotUnderstood() const { return m_notUnderstood; }

    /// Whether nobody reads any further.
    bool IsEnded() const { return m_isEnded; }

private:
    // What is printed is shown before more is waited for; QFile would wait for a whole piece. Answers why the
    // rest cannot be read, or an empty text.
    QString DecodeAll(int descriptor, FrameStream& stream) {
        std::array<char, pieceSize> piece{};
        for (;;) {
            pollfd input{.fd = descriptor, .events = POLLIN, .revents = 0};
            if (poll(&input, 1, 0) == 0 && !m_session.console.Flush()) {
                m_isEnded = true;
                return {};
            }
            const ssize_t length = read(descriptor, piece.data(), piece.size());
            if (length > 0)
                stream.Add(QByteArrayView(piece.data(), length));
            else if (length == 0 || errno != EINTR) {
                const QString reason = length == 0 ? QString() : QString::fromLocal8Bit(std::strerror(errno));
                stream.End();
                return reason;
            }
        }
    }

    const Session& m_session;
    clsIni m_ini;
    CallsignList m_callsigns;
    const LimitTable m_channels;
    ChannelMap m_channelMap;
    FormulaTable m_formulae;
    TelemetryDecoder m_decoder;
    RecordWriter m_writer;
    qint64 m_notUnderstood = 0;
    bool m_isEnded = false;
};

int Check(const Session& session) {
    QStringList faults;
    const QStringList formulaFaults = CheckFormulae(session.folder.File(formulaFile));
    for (const QString& fault : formulaFaults)
        faults.append(QStringLiteral("%1: %2").arg(formulaFile, fault));
    const ChannelsFile channels = ChannelsFile::Read(session.folder.File(channelsFile));
    for (const ChannelsFile::Fault& fault : channels.Faults())
        faults.append(
            fault.line == 0
                ? QStringLiteral("%1: %2").arg(channelsFile, fault.reason)
                : QStringLiteral("%1: line %2: %3").arg(channelsFile).arg(fault.line).arg(fault.reason));
    for (const QString& fault : faults)
        session.console.Print(fault + u'\n');
    return faults.isEmpty() ? ExitCode::Done : ExitCode::Failed;
}

} // namespace

int Decode(const Session& session) {
    QStringList files = session.call.Arguments();
    if (session.call.Has(Options::check))
        return files.isEmpty()
                   ? Check(session)
                   : Answers::Wrong(session, QStringLiteral("--check takes no files; it looks at those in "
                                                            "the program folder"));
    FrameDecoder decoder(session);
    if (!decoder.LoadFormulaeFile())
        return ExitCode::Failed;
    decoder.Head();
    if (files.isEmpty())
        files.append(standardInput);
    int code = ExitCode::Done;
    for (const QString& file : files)
        if (!decoder.IsEnded() && !decoder.DecodeFile(file))
            code = ExitCode::Failed;
    if (decoder.NotUnderstood() > 0)
        session.console.Say(
            QStringLiteral("lines that were not understood: %1").arg(decoder.NotUnderstood()));
    return code;
}

} // namespace Commands
