#include "telemetry/monitor/MonitorHeader.h"

#include "foundation/text/Text.h"
#include "telemetry/monitor/DisplayKind.h"

#include <charconv>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view via = " Via ";
constexpr std::string_view pid = " pid=";

// The text between two marks, one character after the two of the first mark and one before the second mark
// left out: "Fm XQ9ZZ To" gives "XQ9ZZ". Nothing when the second mark stands too near.
bool Between(std::string_view header, std::size_t mark, std::size_t next, std::string_view& found) {
    if (next < mark + 4)
        return false;
    found = header.substr(mark + 3, next - mark - 4);
    return true;
}

void AppendPort(std::string_view portText, std::string& text) {
    const double port = Text::LeadingNumber(portText);
    if (const auto small = Text::RoundToInt16(port); small && *small == port) {
        char digits[8];
        text.append(digits, std::to_chars(digits, digits + sizeof digits, *small).ptr);
    } else {
        text += Text::GeneralNumber(port).toStdString();
    }
}

void AppendPath(std::string_view path, std::string& text) {
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = path.find(via, at);
        text.append(path.substr(at, end - at));
        if (end == npos)
            return;
        text += ',';
        at = end + via.size();
    }
}

// "<UI pid=F0 Len=42 >" becomes "<UI Len=42>".
void AppendControl(std::string_view control, std::string& text) {
    const auto appendJoined = [&text](std::string_view part) {
        // A control part ends in its only ">".
        if (part.ends_with(" >"))
            text.append(part.substr(0, part.size() - 2)) += '>';
        else
            text.append(part);
    };
    const std::size_t item = control.find(pid);
    const std::size_t next = item == npos ? npos : control.find(' ', item + pid.size());
    if (next == npos) {
        appendJoined(control);
    } else if (control.substr(next) == " >") {
        text.append(control.substr(0, item)) += '>';
    } else {
        text.append(control.substr(0, item));
        appendJoined(control.substr(next));
    }
}

} // namespace

void FormatMonitorHeader(std::string_view header, qint16 kind, HeaderForm form, std::string_view time,
                         std::string& text) {
    const std::size_t colon = header.find(':');
    const std::size_t from = header.find("Fm");
    const std::size_t to = header.find("To");
    const std::size_t open = to == npos ? npos : header.find('<', to);
    const std::size_t close = open == npos ? npos : header.find('>', open);
    std::string_view source;
    std::string_view path;
    if (colon == npos || from == npos || open == npos || (form == HeaderForm::Full && close == npos) ||
        !Between(header, from, to, source) || !Between(header, to, open, path)) {
        text.append(header);
        return;
    }
    text.append(time);
    if (form == HeaderForm::Full)
        text += kind == DisplayKind::Transmitted ? 'T' : 'R';
    text += ' ';
    text.append(source) += '>';
    AppendPath(path, text);
    if (form == HeaderForm::Full) {
        text += " Port=";
        AppendPort(header.substr(0, colon), text);
        text += ' ';
        AppendControl(header.substr(open, close - open + 1), text);
    }
    text += ':';
}
