#include "keps/KepsText.h"

#include <algorithm>

namespace {

constexpr QByteArrayView tag = "<html";

} // namespace

QByteArray KepsText::Convert(QByteArrayView piece) {
    if (m_endedWithCr && piece.startsWith('\n'))
        piece = piece.sliced(1);
    m_endedWithCr = piece.endsWith('\r');

    QByteArray converted;
    converted.reserve(piece.size() + piece.size() / 32);
    for (qsizetype i = 0; i < piece.size(); ++i) {
        if (piece[i] != '\r' && piece[i] != '\n') {
            converted += piece[i];
            continue;
        }
        converted += "\r\n";
        if (piece[i] == '\r' && i + 1 < piece.size() && piece[i + 1] == '\n')
            ++i;
    }

    m_tail += converted;
    m_isHtml = m_isHtml || IsHtml(m_tail);
    m_tail = m_tail.right(tag.size());
    return converted;
}

bool KepsText::IsHtml(QByteArrayView text) {
    const QByteArray lower = text.toByteArray().toLower();
    for (qsizetype at = lower.indexOf(tag); at != -1; at = lower.indexOf(tag, at + 1)) {
        const qsizetype next = at + tag.size();
        if (next < lower.size() && QByteArrayView("> \t\r\n").contains(lower[next]))
            return true;
    }
    return false;
}
