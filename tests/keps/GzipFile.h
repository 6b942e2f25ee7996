#pragma once

#include <QByteArray>
#include <QtEndian>

/// `text` packed as gzip does it; `level` as for qCompress.
inline QByteArray GzipFile(const QByteArray& text, int level) {
    quint32 sum = 0xFFFFFFFFU;
    for (char byte : text) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 1U) != 0 ? 0xEDB88320U ^ (sum >> 1U) : sum >> 1U;
    }
    QByteArray trailer(8, '\0');
    qToLittleEndian(~sum, trailer.data());
    qToLittleEndian(static_cast<quint32>(text.size()), trailer.data() + 4);
    // Between qCompress's length and zlib header in front and zlib's checksum behind lies what gzip holds,
    // too.
    QByteArray packed = qCompress(text, level);
    if (packed.size() == 4) // qCompress packs nothing of nothing
        packed += QByteArray("\x78\x9c\x03\0\0\0\0\1", 8);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\xff", 10) + packed.mid(6).chopped(4) + trailer;
}
