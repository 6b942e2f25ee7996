// A frame heard: its header line in both forms, and what the monitor and the terminal are given of it.

#include "Input.h"
#include "Require.h"
#include "foundation/settings/clsIni.h"
#include "link/agwpe/AgwHeard.h"
#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/FrameIntake.h"
#include "telemetry/monitor/MonitorHeader.h"

#include <algorithm>
#include <string>

namespace {

constexpr std::string_view time = "12:34:56";
constexpr std::string_view before = "before";

void CheckForm(std::string_view header, qint16 kind, HeaderForm form) {
    std::string text(before);
    FormatMonitorHeader(header, kind, form, time, text);
    Require(text.starts_with(before), "what stood in the text stays");
    const std::string_view made = std::string_view(text).substr(before.size());
    if (made == header)
        return;
    Require(made.starts_with(time) && made.ends_with(':'), "a header in our form begins with the time");
    Require(made.size() <= header.size() + 32, "a header in our form is hardly longer");
    const char mark = made[time.size()];
    Require(form == HeaderForm::Short ? mark == ' ' : mark == (kind == DisplayKind::Transmitted ? 'T' : 'R'),
            "the full form tells who sent the frame");
}

// Lines of the monitor: each ended by CR LF, none empty, none with blanks at its ends.
void CheckLines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find("\r\n");
        Require(end != std::string_view::npos && end > 0, "lines are ended, and none is empty");
        const std::string_view line = text.substr(0, end);
        Require(line.front() != ' ' && line.back() != ' ', "lines have no blanks at their ends");
        Require(line.find_first_of("\r\n") == std::string_view::npos, "a line holds no line end");
        text.remove_prefix(end + 2);
    }
}

// The characters that are neither blanks nor line ends.
std::size_t CountSolid(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return c != ' ' && c != '\r' && c != '\n'; }));
}

struct Room {
    clsIni ini{QString()};
    CallsignList callsigns{ini};
    MonitorText monitor;
    FrameIntake intake{callsigns, monitor, [](qint64) { return 45000.0; }};
    QByteArray terminal;

    Room() {
        callsigns.LoadCallsigns();
        intake.SetTerminal([this](QByteArrayView text, qint16) { terminal += text; });
    }
};

void CheckIntake(std::string_view frame, std::string_view source, bool onlyQiran) {
    Room room;
    room.intake.SetOnlyShowQiran(onlyQiran);
    const MonitoredFrame monitored{
        .port = 1, .source = Bytes(source), .destination = "APRS", .data = Bytes(frame)};
    const HeardFrame heard = AgwHeard::FromFrame(monitored, 0);
    Require(heard.information.size() <= monitored.data.size(), "the information is a part of the text");
    room.intake.Take(heard);
    for (const auto kind : {HeardFrame::Kind::I, HeardFrame::Kind::S, HeardFrame::Kind::T})
        AgwHeard::FromText(Bytes(frame), kind, 0);
    const std::string_view shown = View(room.terminal);
    Require(shown.ends_with("\r\n"), "a frame ends with a blank line in the terminal");
    CheckLines(shown.substr(0, shown.size() - 2));
    CheckLines(View(room.monitor.Text()));
    if (!onlyQiran)
        Require(View(room.monitor.Text()) == shown.substr(0, shown.size() - 2),
                "terminal and monitor show the same");

    const auto length = static_cast<std::size_t>(room.terminal.size());
    room.intake.AddToMonitor(Bytes(frame), DisplayKind::Status);
    const std::string_view status = View(room.terminal).substr(length);
    CheckLines(status);
    Require(CountSolid(status) == CountSolid(frame), "a status text is shown whole");
    Require(View(room.monitor.Text()).ends_with(status), "a status text is shown in the monitor too");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view frame = Input(data, size);
    const std::string_view header = frame.substr(0, frame.find('\r'));
    for (const qint16 kind : {DisplayKind::Frame, DisplayKind::Information, DisplayKind::Transmitted})
        for (const HeaderForm form : {HeaderForm::Full, HeaderForm::Short})
            CheckForm(header, kind, form);
    CheckIntake(frame, "QIRAN-1", true);
    CheckIntake(frame, "XQ9ZZ", false);
    CheckIntake(frame, "N0CALL", true);
    return 0;
}
