// What a frame costs on its road, beside a bare loop that reads the same stream from a loopback socket and
// splits its text with string views: the road without widgets (client, intake, header, decoder) and with the
// true ones (monitor pane, grids, terminal). The three take turns in one run, for only their ratios hold from
// one machine to the next.
//
//   frames [FRAMES]     ends with 1 when a ratio or a pace misses its mark

#include "foundation/messages/mb.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Clock.h"
#include "link/UnprotoLink.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "link/kiss/KissLink.h"
#include "station/identity/Station.h"
#include "station/terminal/frmTerm.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/KissReader.h"
#include "telemetry/grids/GridValues.h"
#include "telemetry/grids/TelemetryGridView.h"
#include "telemetry/grids/TipCell.h"
#include "telemetry/monitor/FrameIntake.h"
#include "telemetry/monitor/MonitorPane.h"
#include "telemetry/monitor/SecondTime.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QTemporaryDir>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <netinet/in.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t headerLength = 36;
constexpr double mostWithoutWidgets = 10.0; // times the bare loop's cost a frame
constexpr double mostWithWidgets = 60.0;
constexpr double mostOfRawFrames = 18.0; // every frame comes twice, and one form waits for the other
constexpr double mostOverKiss = 12.0;    // they are taken apart, and their text is made
constexpr double paceWithoutWidgets = 1'000'000.0; // frames a second
constexpr double paceOfRawFrames = 200'000.0;
constexpr double paceWithWidgets = 50'000.0;

// How frames come: in the engine's text, in its text behind their bytes, or over KISS.
enum class Wire { Text, TextAndRaw, Kiss };

// An AX.25 frame.
std::string RawFrame(std::string_view source, std::string_view path, std::string_view information) {
    const std::size_t via = path.find(" Via ");
    return Ax25Frame{.destination = {std::string(path.substr(0, via))},
                     .source = {std::string(source)},
                     .digipeaters = {{std::string(path.substr(via + 5))}},
                     .information = information}
        .ToBytes()
        .value();
}

// One frame on the engine's wire.
std::string EngineFrame(char kind, std::string_view source, std::string_view path, const std::string& data) {
    std::string frame(headerLength, '\0');
    frame[4] = kind;
    frame[6] = '\xF0';
    source.copy(frame.data() + 8, 9);
    path.substr(0, path.find(' ')).copy(frame.data() + 18, 9);
    const auto length = static_cast<std::uint32_t>(data.size());
    for (unsigned byte = 0; byte < 4; ++byte)
        frame[28 + byte] = static_cast<char>(length >> (8 * byte) & 0xFFU);
    return frame + data;
}

std::string Frame(Wire wire, std::string_view source, std::string_view path, std::string_view information) {
    if (wire == Wire::Kiss) {
        std::string stream;
        KissFrame{.data = RawFrame(source, path, information)}.AppendTo(stream);
        return stream;
    }
    const std::string data = " 1:Fm " + std::string(source) + " To " + std::string(path) +
                             " <UI pid=F0 Len=" + std::to_string(information.size()) + " PF=0 >[00:16:57]\r" +
                             std::string(information) + "\r" + '\0';
    const std::string text = EngineFrame('U', source, path, data);
    if (wire == Wire::Text)
        return text;
    return EngineFrame('K', source, path, '\0' + RawFrame(source, path, information)) + text;
}

// Frames in the proportions of a pass: both sides and all frame types, and half of it other stations.
struct Stream {
    std::string bytes;
    long frames = 0;

    void Add(const std::string& frame) {
        bytes += frame;
        ++frames;
    }
};

Stream MakeStream(Wire wire) {
    Stream stream;
    for (int i = 0; i < 4096; ++i) {
        std::array<char, 64> text{};
        const int number = 100 + i % 900;
        std::snprintf(text.data(), text.size(), "T#%d,142,108.5,%d,67,0,0,00%d%d1111,0\n", number, number,
                      i / 2 % 2, i % 2);
        stream.Add(Frame(wire, i % 8 < 4 ? "XQ9ZZ-1" : "QIRAN-3", "APRS Via WIDE2-2", text.data()));
        std::snprintf(text.data(), text.size(), "Hello from the coast, heard %d today", number);
        stream.Add(Frame(wire, "N0CALL-7", "CQ Via QIRAN-1", text.data()));
    }
    return stream;
}

// An engine that answers nothing and sends at once all it has.
class Sender {
public:
    Sender(const Stream& stream, long frames)
        : m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        // The settings' ports end at 32767, so one is looked for.
        int port = 20000;
        do
            address.sin_port = htons(static_cast<std::uint16_t>(++port));
        while (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), length) != 0 && port < 32767);
        m_port = static_cast<qint16>(port);
        listen(m_listener, 1);
        m_thread = std::thread([this, &stream, frames] {
            const int peer = accept(m_listener, nullptr, nullptr);
            for (long sent = 0; sent < frames; sent += stream.frames)
                for (std::size_t at = 0; at < stream.bytes.size();) {
                    const ssize_t count =
                        send(peer, stream.bytes.data() + at, stream.bytes.size() - at, MSG_NOSIGNAL);
                    if (count <= 0)
                        std::abort();
                    at += static_cast<std::size_t>(count);
                }
            // What the client asked is read before the end, so that the end is no reset.
            shutdown(peer, SHUT_WR);
            std::array<char, 4096> asked{};
            while (recv(peer, asked.data(), asked.size(), 0) > 0) {
            }
            close(peer);
        });
    }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() {
        m_thread.join();
        close(m_listener);
    }

    qint16 Port() const { return m_port; }

private:
    int m_listener;
    qint16 m_port = 0;
    std::thread m_thread;
};

double Seconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Result {
    long frames = 0;
    double wall = 0.0; // seconds
    double cpu = 0.0;  // seconds of the reading thread

    double Cost() const { return cpu / static_cast<double>(frames); }
    double Pace() const { return static_cast<double>(frames) / wall; }
};

class Stopwatch {
public:
    Result Read(long frames) const {
        return {frames, Seconds(CLOCK_MONOTONIC) - m_wall, Seconds(CLOCK_THREAD_CPUTIME_ID) - m_cpu};
    }

private:
    double m_wall = Seconds(CLOCK_MONOTONIC);
    double m_cpu = Seconds(CLOCK_THREAD_CPUTIME_ID);
};

std::size_t Pieces(std::string_view text, char separator) {
    std::size_t pieces = 1;
    for (std::size_t at = text.find(separator); at != std::string_view::npos;
         at = text.find(separator, at + 1))
        ++pieces;
    return pieces;
}

Result BareLoop(const Stream& stream, long frames) {
    const Sender sender(stream, frames);
    const int peer = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(sender.Port()));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(peer, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        std::abort();
    const Stopwatch watch;
    std::vector<char> buffer(128 * 1024);
    std::size_t held = 0;
    long seen = 0;
    std::size_t pieces = 0;
    for (ssize_t count = 0; (count = recv(peer, buffer.data() + held, buffer.size() - held, 0)) > 0;) {
        held += static_cast<std::size_t>(count);
        std::size_t at = 0;
        while (held - at >= headerLength) {
            std::uint32_t length = 0;
            std::memcpy(&length, buffer.data() + at + 28, sizeof length);
            if (held - at < headerLength + length)
                break;
            const std::string_view text(buffer.data() + at + headerLength, length - 1);
            const std::size_t end = text.find('\r');
            pieces += Pieces(text.substr(0, end), ' ');
            pieces += Pieces(text.substr(end + 1, text.find('\r', end + 1) - end - 1), ',');
            at += headerLength + length;
            ++seen;
        }
        std::memmove(buffer.data(), buffer.data() + at, held - at);
        held -= at;
    }
    const Result result = watch.Read(seen);
    close(peer);
    if (pieces == 0)
        std::abort();
    return result;
}

// Stands where messages would, and where frames would go out: the road under test only hears.
class Nobody : public MessagePresenter, public UnprotoLink {
public:
    int ShowMessage(const Message&) override { return 1; }
    void ShowHelp(QObject*, const QString&, HelpCommand) override {}
    bool blnConectedToAgw() const override { return false; }
    int PortCount() const override { return 0; }
    void SendUnproto(qint16, const QString&, const QString&, const QString&) override {}
};

// The road from the client to the grids, as the program lays it.
struct Road {
    QTemporaryDir folder;
    ProgramFolder program{folder.path(), QStringLiteral("frames")};
    clsIni ini{program.IniFile()};
    Clock clock;
    SecondTime time{[](qint64 utc) { return FromCalendar(Clock::UtcAt(utc)); }};
    std::function<DateTime(qint64)> displayTime = [this](qint64 utc) { return time.At(utc); };
    TelemetryGrids grids = MakeTelemetryGrids();
    ChannelMap map;
    FormulaTable formulae;
    CallsignList callsigns{ini};
    TelemetryDecoder decoder{map, formulae, callsigns};
    GridValues values{grids, displayTime};
    MonitorText monitor;
    FrameIntake intake{callsigns, monitor, displayTime};
    FanOut<HeardFrame> heard;
    AgwSettings settings{ini};
    AgwLink agw{settings, clock};
    KissAddress address;
    KissLink kiss{[this] { return address; }, clock};
    PacketLink& link;

    Road(Wire wire, bool onlyShowQiran)
        : link(wire == Wire::Kiss ? static_cast<PacketLink&>(kiss) : agw) {
        agw.SetWantsRawFrames(wire == Wire::TextAndRaw);
        map.BuildChannelMap();
        callsigns.LoadCallsigns();
        intake.SetOnlyShowQiran(onlyShowQiran);
        heard.Add([this](const HeardFrame& frame) { intake.Take(frame); });
        heard.Add([this](const HeardFrame& frame) { decoder.Take(frame); },
                  FanOut<HeardFrame>::Takes::LiveAndReplayed);
        decoder.Decoded().Add([this](const TelemetryFrame& frame) { values.Take(frame); });
        for (const auto& grid : grids)
            for (const char* side : {"A", "B"})
                for (const char* type : {"0", "1", "2", "3"})
                    for (int row = 1; row <= grid->Rows(); ++row)
                        formulae.StoreFormulaLine({side, type, grid->Tag(),
                                                   grid->TextMatrix(row, TelemetryGrid::Name).toLatin1(),
                                                   "1e-6", "1e-4", "1.25", "-12.5"});
    }

    Result Run(const Stream& stream, long frames) {
        const Sender sender(stream, frames);
        long seen = 0;
        QObject::connect(&link, &PacketLink::Heard, &link, [&](const HeardFrame& frame) {
            heard.Hand(frame);
            ++seen;
        });
        QObject::connect(&link, &PacketLink::MonitorEnabled, qApp, [](bool isConnected) {
            if (!isConnected)
                QCoreApplication::quit();
        });
        settings.setStrAgwHost(QStringLiteral("127.0.0.1"));
        settings.setIntAgwPort(sender.Port());
        address = {QStringLiteral("127.0.0.1"), static_cast<quint16>(sender.Port())};
        link.Connect();
        const Stopwatch watch;
        QCoreApplication::exec();
        const Result result = watch.Read(seen);
        link.disconnect();
        link.Stop();
        if (grids[0]->TextMatrix(1, TelemetryGrid::ValueA).isEmpty())
            std::abort();
        return result;
    }
};

Result WithoutWidgets(const Stream& stream, long frames, bool onlyShowQiran, Wire wire = Wire::Text) {
    return Road(wire, onlyShowQiran).Run(stream, frames);
}

Result WithWidgets(const Stream& stream, long frames, bool onlyShowQiran) {
    Road road(Wire::Text, onlyShowQiran);
    Nobody nobody;
    const mb messages(nobody);
    const Station station(road.ini);
    TipCell tipCell;
    QWidget window;
    auto* all = new QVBoxLayout(&window);
    auto* row = new QHBoxLayout;
    all->addWidget(new MonitorPane(road.monitor), 1);
    all->addLayout(row);
    for (const auto& grid : road.grids)
        row->addWidget(new TelemetryGridView(*grid, tipCell));
    window.resize(900, 600);
    window.show();
    TerminalSession session(road.ini, road.clock, road.program, station, nobody, messages, ProgramVersion{});
    session.Open();
    frmTerm terminal(road.ini, messages, nobody, session, road.program);
    terminal.show();
    road.intake.SetTerminal([&](QByteArrayView text, qint16 kind) { session.Take(text, kind); });
    return road.Run(stream, frames);
}

struct Contest {
    const char* name;
    double mostRatio;
    double leastPace;
    std::optional<Result> best;
};

void KeepBest(Contest& contest, const Result& result) {
    if (!contest.best || result.Cost() < contest.best->Cost())
        contest.best = result;
}

bool Report(const Contest& contest, const Result& bare) {
    const Result& result = *contest.best;
    const double ratio = result.Cost() / bare.Cost();
    const bool isGood = ratio <= contest.mostRatio && result.Pace() >= contest.leastPace;
    std::printf("%-42s %9.0f ns/frame %10.0f frames/s %7.2f x%s\n", contest.name, result.Cost() * 1e9,
                result.Pace(), ratio, isGood ? "" : "   MISSED");
    return isGood;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const long frames = std::max(argc > 1 ? std::atol(argv[1]) : 2'000'000L, 10'000L);
    const Stream stream = MakeStream(Wire::Text);
    const Stream rawStream = MakeStream(Wire::TextAndRaw);
    const Stream kissStream = MakeStream(Wire::Kiss);

    Contest bare{"bare loop", 1.0, 0.0, {}};
    std::array<Contest, 6> contests{{
        {"without widgets, only QIRAN shown", mostWithoutWidgets, paceWithoutWidgets, {}},
        {"without widgets, every frame shown", mostWithoutWidgets, paceWithoutWidgets, {}},
        {"with widgets, only QIRAN shown", mostWithWidgets, paceWithWidgets, {}},
        {"with widgets, every frame shown", mostWithWidgets, paceWithWidgets, {}},
        {"without widgets, raw frames too", mostOfRawFrames, paceOfRawFrames, {}},
        {"without widgets, over KISS", mostOverKiss, paceOfRawFrames, {}},
    }};
    for (int turn = 0; turn < 3; ++turn) {
        KeepBest(bare, BareLoop(stream, frames));
        KeepBest(contests[0], WithoutWidgets(stream, frames, true));
        KeepBest(contests[1], WithoutWidgets(stream, frames, false));
        KeepBest(contests[2], WithWidgets(stream, frames / 10, true));
        KeepBest(contests[3], WithWidgets(stream, frames / 10, false));
        KeepBest(contests[4], WithoutWidgets(rawStream, frames / 4, true, Wire::TextAndRaw));
        KeepBest(contests[5], WithoutWidgets(kissStream, frames / 4, true, Wire::Kiss));
    }
    std::printf("cost: time of the reading thread; pace: by the clock on the wall; best of 3\n");
    Report(bare, *bare.best);
    bool isGood = true;
    for (const Contest& contest : contests)
        isGood = Report(contest, *bare.best) && isGood;
    return isGood ? 0 : 1;
}
