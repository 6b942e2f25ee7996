// What is typed or pasted into the transmit line: it falls into lines that may be sent, and loses no word.

#include "Input.h"
#include "Require.h"
#include "station/terminal/LineWrap.h"

#include <algorithm>

namespace {

// The text without blanks: a break may drop those alone.
QString Solid(QString text) {
    return text.remove(u' ');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr qsizetype longest = 72;
    const QString text = QString::fromUtf8(Bytes(Input(data, size)));
    const LineWrap wrap = WrapLines(text);
    for (const QString& line : wrap.lines)
        Require(line.size() <= longest, "no line is longer than may be sent");
    Require(wrap.rest.size() < longest, "what stays is shorter than a line");
    Require(WrapLines(wrap.rest).lines.isEmpty() && WrapLines(wrap.rest).rest == wrap.rest,
            "what stays need not be wrapped");
    Require(Solid(wrap.lines.join(QString()) + wrap.rest) == Solid(text), "nothing is lost");

    const qsizetype blanks = std::ranges::count(text, u' ');
    const qsizetype kept = std::ranges::count(wrap.lines.join(QString()) + wrap.rest, u' ');
    Require(kept <= blanks && blanks - kept <= wrap.lines.size(), "a break drops one blank");
    return 0;
}
