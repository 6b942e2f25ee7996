#pragma once

#include <QByteArray>

/// The text of an element file on its way into the Keps folder, piece by piece: every line end becomes CR LF,
/// and a page in HTML is noticed.
class KepsText {
public:
    /// Bytes of the shortest text that is stored; what is shorter holds no set of elements.
    static constexpr qsizetype shortest = 80;

    /// The piece with its line ends mended; a CR LF that is split between two pieces is one line end.
    QByteArray Convert(QByteArrayView piece);

    /// Whether the pieces so far, as one text, held the tag "<html>" in any case, with attributes or without.
    bool IsHtml() const { return m_isHtml; }

    static bool IsHtml(QByteArrayView text);

private:
    bool m_endedWithCr = false;
    bool m_isHtml = false;
    QByteArray m_tail; // the end of the last piece: a tag may begin there
};
