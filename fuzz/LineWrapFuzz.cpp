// What is typed or pasted into the transmit line: it falls into lines that may be sent, and loses nothing.

#include "Input.h"
#include "Require.h"
#include "station/terminal/LineWrap.h"

#include <algorithm>

namespace {

bool IsLineEnd(QChar c) {
    return c == u'\r' || c == u'\n' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

// The text without blanks and line ends: a break may drop those alone.
QString Solid(QString text) {
    return text.removeIf([](QChar c) { return c == u' ' || IsLineEnd(c); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr qsizetype longest = 72;
    const QString text = QString::fromUtf8(Bytes(Input(data, size)));
    const LineWrap wrap = WrapLines(text);
    for (const QString& line : wrap.lines) {
        Require(line.size() <= longest, "no line is longer than may be sent");
        Require(std::ranges::none_of(line, IsLineEnd), "a line holds no line end");
    }
    Require(wrap.rest.size() < longest && std::ranges::none_of(wrap.rest, IsLineEnd),
            "what stays is shorter than a line");
    Require(WrapLines(wrap.rest).lines.isEmpty() && WrapLines(wrap.rest).rest == wrap.rest,
            "what stays need not be wrapped");
    Require(Solid(wrap.lines.join(QString()) + wrap.rest) == Solid(text), "nothing is lost");

    const qsizetype blanks = std::ranges::count(text, u' ');
    const qsizetype kept = std::ranges::count(wrap.lines.join(QString()) + wrap.rest, u' ');
    Require(kept <= blanks && blanks - kept <= wrap.lines.size(), "a break drops one blank");
    for (const QString& line : wrap.lines)
        if (line.size() < longest)
            Require(WrapLines(line + u'\n').lines == QStringList(line),
                    "a short line that is sent again stays whole");
    return 0;
}
