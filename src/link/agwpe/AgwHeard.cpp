#include "link/agwpe/AgwHeard.h"

#include "telemetry/frames/ByteViews.h"

#include <charconv>

namespace AgwHeard {
namespace {

constexpr std::size_t npos = std::string_view::npos;

// What stands in `text` from behind `mark` to the next blank; empty without the mark.
std::string_view Word(std::string_view text, std::string_view mark) {
    const std::size_t at = text.find(mark);
    if (at == npos)
        return {};
    const std::string_view rest = text.substr(at + mark.size());
    return rest.substr(0, rest.find(' '));
}

// The header in front of its control part, so that no callsign is looked for behind it.
std::string_view Addresses(std::string_view header) {
    return header.substr(0, header.find(" <"));
}

void ReadText(QByteArrayView data, HeardFrame& frame) {
    const std::string_view text = ToView(data);
    const std::size_t headerEnd = FindLineEnd(text);
    const std::string_view header = text.substr(0, headerEnd);
    std::string_view information;
    if (headerEnd != npos)
        information = text.substr(headerEnd + (text.substr(headerEnd).starts_with("\r\n") ? 2 : 1));
    if (information.ends_with('\r'))
        information.remove_suffix(1); // the engine's own
    frame.engineText = data;
    frame.information = information;
    frame.path = Word(Addresses(header), " Via ");
    const std::string_view pid = Word(header, " pid=");
    quint8 number = 0;
    if (!pid.empty() && std::from_chars(pid.data(), pid.data() + pid.size(), number, 16).ec == std::errc())
        frame.pid = number;
}

} // namespace

HeardFrame FromFrame(const MonitoredFrame& frame, qint64 utc) {
    HeardFrame heard{
        .utc = utc, .port = frame.port, .source = frame.source, .destination = frame.destination};
    ReadText(frame.data, heard);
    return heard;
}

HeardFrame FromText(QByteArrayView data, HeardFrame::Kind kind, qint64 utc) {
    HeardFrame heard{.utc = utc, .kind = kind};
    ReadText(data, heard);
    const std::string_view header = ToView(data).substr(0, FindLineEnd(ToView(data)));
    heard.source = Word(Addresses(header), "Fm ");
    heard.destination = Word(Addresses(header), " To ");
    const std::string_view port = header.substr(std::min(header.find_first_not_of(' '), header.size()));
    std::from_chars(port.data(), port.data() + port.size(), heard.port);
    return heard;
}

} // namespace AgwHeard
