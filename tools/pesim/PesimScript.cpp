#include "pesim/PesimScript.h"

#include <QHash>

#include <functional>
#include <optional>

namespace PesimScript {

const char* const help = R"(Commands, one a line; a line that begins with # is a comment:
  heard FROM>TO[,DIGIPEATER...]:TEXT         the engine heard a UI frame
  information FROM>TO[,DIGIPEATER...]:TEXT   an information frame of a connection
  supervisory FROM>TO:                       a supervisory frame of a connection
  transmitted FROM>TO[,DIGIPEATER...]:TEXT   the engine sent this frame itself
  port N                   the frames that follow are of radio port N (from 1)
  pause MS                 go on after MS milliseconds
  await                    go on when a program has switched monitoring on
  drop                     close every connection
  down MS                  close every connection and the port, open the port again after MS milliseconds
  mute on|off              take frames, answer nothing
  dribble on|off           send byte by byte
  close-after KIND|never   close a connection once a frame of this kind (P R G m M V) was answered
  broken length            send a header that announces 4 GiB of data
  broken zeros             send 36 bytes of zeros
  broken kind              send a frame of a kind never heard of
  broken half              send half a frame
  broken garbage           send 300 bytes of no sense
  raw HEX                  send these bytes
  quit                     end the simulator
In TEXT: \r \n \0 \\ and \xHH.
)";

namespace {

using Result = std::optional<PesimCommand>;

constexpr int maxMilliseconds = 3600 * 1000;

std::optional<int> Number(const QByteArray& text, int least, int greatest) {
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= least && value <= greatest ? std::optional(value) : std::nullopt;
}

std::optional<bool> OnOff(const QByteArray& text) {
    if (text == "on" || text == "off")
        return text == "on";
    return {};
}

std::optional<QByteArray> Hex(const QByteArray& text) {
    const QByteArray bytes = QByteArray::fromHex(text);
    return bytes.toHex() == text.toLower() ? std::optional(bytes) : std::nullopt;
}

std::optional<QByteArray> Unescape(const QByteArray& text) {
    static const QHash<char, char> letters = {{'r', '\r'}, {'n', '\n'}, {'0', '\0'}, {'\\', '\\'}};
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        if (++i == text.size())
            return {};
        if (text[i] == 'x') {
            const auto byte = Hex(text.mid(i + 1, 2));
            if (!byte || byte->size() != 1)
                return {};
            bytes += *byte;
            i += 2;
        } else if (letters.contains(text[i])) {
            bytes += letters.value(text[i]);
        } else {
            return {};
        }
    }
    return bytes;
}

Result Frame(char kind, const QByteArray& text) {
    const qsizetype arrow = text.indexOf('>');
    const qsizetype colon = text.indexOf(':', arrow + 1);
    if (arrow < 1 || colon < 0)
        return {};
    QByteArrayList path = text.mid(arrow + 1, colon - arrow - 1).split(',');
    const QByteArray to = path.takeFirst();
    const auto information = Unescape(text.mid(colon + 1));
    if (to.isEmpty() || !information)
        return {};
    return PesimStep::Heard{
        {.kind = kind, .from = text.first(arrow), .to = to, .via = path, .information = *information}};
}

Result Broken(const QByteArray& what) {
    const AgwFrame text{
        .kind = AgwKind::MonitoredUnproto, .callFrom = "BROKEN", .callTo = "CQ", .data = "broken"};
    QByteArray bytes = text.ToBytes();
    if (what == "length") {
        bytes.replace(28, 4, QByteArray(4, '\xFF'));
    } else if (what == "zeros") {
        bytes = QByteArray(AgwFrame::headerLength, '\0');
    } else if (what == "kind") {
        bytes[4] = '\x7F';
    } else if (what == "half") {
        bytes.truncate(AgwFrame::headerLength / 2);
    } else if (what == "garbage") {
        for (bytes.clear(); bytes.size() < 300;)
            bytes += static_cast<char>(bytes.size() * 167 + 13);
    } else {
        return {};
    }
    return PesimStep::Raw{bytes};
}

template <typename Step, typename Value>
Result Make(const std::optional<Value>& value) {
    return value ? Result(Step{*value}) : std::nullopt;
}

Result Parse(const QByteArray& verb, const QByteArray& rest) {
    using namespace PesimStep;
    using Parser = std::function<Result(const QByteArray&)>;
    const auto alone = [](const PesimCommand& command) {
        return [command](const QByteArray& text) { return text.isEmpty() ? Result(command) : std::nullopt; };
    };
    const auto frame = [](char kind) { return [kind](const QByteArray& text) { return Frame(kind, text); }; };
    static const QHash<QByteArray, Parser> parsers = {
        {"heard", frame(AgwKind::MonitoredUnproto)},
        {"information", frame(AgwKind::MonitoredInformation)},
        {"supervisory", frame(AgwKind::MonitoredSupervisory)},
        {"transmitted", frame(AgwKind::Transmitted)},
        {"port", [](const QByteArray& text) { return Make<RadioPort>(Number(text, 1, 256)); }},
        {"pause", [](const QByteArray& text) { return Make<Pause>(Number(text, 0, maxMilliseconds)); }},
        {"await", alone(Await{})},
        {"drop", alone(Drop{})},
        {"down", [](const QByteArray& text) { return Make<Down>(Number(text, 0, maxMilliseconds)); }},
        {"mute", [](const QByteArray& text) { return Make<Mute>(OnOff(text)); }},
        {"dribble", [](const QByteArray& text) { return Make<PesimStep::Dribble>(OnOff(text)); }},
        {"close-after",
         [](const QByteArray& text) -> Result {
             if (text == "never")
                 return CloseAfter{'\0'};
             return text.size() == 1 ? Result(CloseAfter{text[0]}) : std::nullopt;
         }},
        {"broken", Broken},
        {"raw", [](const QByteArray& text) { return Make<Raw>(Hex(text)); }},
        {"quit", alone(Quit{})},
    };
    const Parser parser = parsers.value(verb);
    return parser ? parser(rest) : std::nullopt;
}

} // namespace

Line ParseLine(const QByteArray& line) {
    QByteArray text = line;
    while (text.endsWith('\n') || text.endsWith('\r'))
        text.chop(1);
    if (text.trimmed().isEmpty() || text.startsWith('#'))
        return {};
    const qsizetype blank = text.indexOf(' ');
    const QByteArray verb = blank < 0 ? text : text.first(blank);
    const QByteArray rest = blank < 0 ? QByteArray() : text.mid(blank + 1);
    if (const Result command = Parse(verb, rest))
        return {{*command}, {}};
    return {{}, QStringLiteral("not understood: %1").arg(QString::fromUtf8(text))};
}

Script Parse(const QByteArray& text) {
    Script script;
    int number = 0;
    for (const QByteArray& line : text.split('\n')) {
        ++number;
        const Line parsed = ParseLine(line);
        script.commands += parsed.commands;
        if (!parsed.error.isEmpty())
            script.errors += QStringLiteral("line %1: %2").arg(number).arg(parsed.error);
    }
    return script;
}

} // namespace PesimScript
