#include "pesim/ScriptPlayer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>

#include <cstdio>
#include <unistd.h>

namespace {

void Say(const QByteArray& line) {
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

void Complain(const QString& line) {
    std::fputs((QStringLiteral("pesim: ") + line + u'\n').toLocal8Bit().constData(), stderr);
}

/// Commands that come in on standard input, a line each.
class CommandInput : public QObject {
public:
    explicit CommandInput(ScriptPlayer& player)
        : m_player(player)
        , m_notifier(STDIN_FILENO, QSocketNotifier::Read) {
        connect(&m_notifier, &QSocketNotifier::activated, this, [this] { Read(); });
    }

private:
    void Read() {
        QByteArray bytes(4096, '\0');
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), static_cast<size_t>(bytes.size()));
        if (count <= 0) {
            m_notifier.setEnabled(false);
            return;
        }
        m_unfinished += bytes.first(count);
        for (qsizetype end = 0; (end = m_unfinished.indexOf('\n')) >= 0; m_unfinished.remove(0, end + 1)) {
            const PesimScript::Line line = PesimScript::ParseLine(m_unfinished.first(end));
            if (!line.error.isEmpty())
                Complain(line.error);
            m_player.Append(line.commands);
        }
    }

    ScriptPlayer& m_player;
    QSocketNotifier m_notifier;
    QByteArray m_unfinished;
};

void Announce(EngineSimulator& engine) {
    QObject::connect(&engine, &EngineSimulator::ConnectionOpened,
                     [](int number) { Say("connected " + QByteArray::number(number)); });
    QObject::connect(&engine, &EngineSimulator::ConnectionClosed,
                     [](int number) { Say("disconnected " + QByteArray::number(number)); });
    QObject::connect(&engine, &EngineSimulator::FrameReceived, [](int number, const QByteArray& frame) {
        Say("frame " + QByteArray::number(number) + ' ' + frame.toHex());
    });
}

bool LoadScript(const QString& path, ScriptPlayer& player) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Complain(path + QStringLiteral(": ") + file.errorString());
        return false;
    }
    const PesimScript::Script script = PesimScript::Parse(file.readAll());
    for (const QString& error : script.errors)
        Complain(path + QStringLiteral(", ") + error);
    player.Append(script.commands);
    return script.errors.isEmpty();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral(
            "A simulated packet engine on the loopback address. It prints \"listening PORT\", then "
            "\"connected N\", \"disconnected N\" and \"frame N HEX\" for what programs do, and takes "
            "commands from a script and from standard input.\n\n") +
        QString::fromUtf8(PesimScript::help));
    options.addHelpOption();
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("TCP port; 0 takes a free one."),
                                  QStringLiteral("N"), QStringLiteral("8000"));
    const QCommandLineOption script(QStringLiteral("script"), QStringLiteral("What to play."),
                                    QStringLiteral("FILE"));
    const QCommandLineOption loop(QStringLiteral("loop"), QStringLiteral("Play the script again and again."));
    options.addOptions({port, script, loop});
    options.process(app);

    EngineSimulator engine;
    ScriptPlayer scriptPlayer(engine);
    ScriptPlayer inputPlayer(engine);
    Announce(engine);
    for (const ScriptPlayer* player : {&scriptPlayer, &inputPlayer})
        QObject::connect(player, &ScriptPlayer::QuitRequested, &app, &QCoreApplication::quit);

    bool isNumber = false;
    const quint16 number = options.value(port).toUShort(&isNumber);
    if (!isNumber || !engine.Listen(number)) {
        Complain(QStringLiteral("cannot listen on port %1").arg(options.value(port)));
        return 1;
    }
    scriptPlayer.SetLoop(options.isSet(loop));
    if (options.isSet(script) && !LoadScript(options.value(script), scriptPlayer))
        return 1;
    QObject::connect(&scriptPlayer, &ScriptPlayer::Ended, [] { Say("script ended"); });
    const CommandInput input(inputPlayer);
    Say("listening " + QByteArray::number(engine.Port()));
    return QCoreApplication::exec();
}
