#include "station/terminal/LineWrap.h"

#include <algorithm>

namespace {

constexpr qsizetype longestLine = 72;
constexpr qsizetype firstBreak = 52; // the 53rd character, counted from 0

constexpr bool IsLineEnd(QChar c) {
    return c == u'\r' || c == u'\n' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

qsizetype LineEndLength(QStringView text) {
    return text.startsWith(u"\r\n") ? 2 : !text.isEmpty() && IsLineEnd(text[0]) ? 1 : 0;
}

// The length of the first line of `text`, as far as one character beyond the longest.
qsizetype FirstLineLength(QStringView text) {
    const QStringView head = text.left(longestLine + 1);
    return std::ranges::find_if(head, IsLineEnd) - head.begin();
}

// Where a line of this length breaks: after how many characters.
qsizetype BreakOf(QStringView text, qsizetype length) {
    for (qsizetype i = std::min(length - 1, longestLine); i >= firstBreak; --i)
        if (text[i] == u' ')
            return i;
    return longestLine;
}

} // namespace

LineWrap WrapLines(QStringView text) {
    LineWrap result;
    for (;;) {
        const qsizetype length = FirstLineLength(text);
        if (length < longestLine) {
            if (length == text.size())
                break;
            result.lines.append(text.first(length).toString());
            text = text.sliced(length + LineEndLength(text.sliced(length)));
            continue;
        }
        const qsizetype end = BreakOf(text, length);
        result.lines.append(text.first(end).toString());
        text = text.sliced(end < length && text[end] == u' ' ? end + 1 : end);
        text = text.sliced(LineEndLength(text)); // of a line that is sent whole
    }
    result.rest = text.toString();
    return result;
}
