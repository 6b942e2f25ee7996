#include "station/terminal/LineWrap.h"

#include <algorithm>

namespace {

constexpr qsizetype firstBreak = 52; // the 53rd character, counted from 0

// After how many characters a text breaks that is longer than may stay.
qsizetype BreakOf(QStringView text) {
    for (qsizetype i = std::min(text.size() - 1, longestLine); i >= firstBreak; --i)
        if (text[i] == u' ')
            return i;
    return longestLine;
}

} // namespace

LineWrap WrapLines(QStringView text) {
    LineWrap result;
    while (text.size() >= longestLine) {
        const qsizetype end = BreakOf(text);
        result.lines.append(text.first(end).toString());
        text = text.sliced(end);
        if (text.startsWith(u' '))
            text = text.sliced(1);
    }
    result.rest = text.toString();
    return result;
}
