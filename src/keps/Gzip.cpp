#include "keps/Gzip.h"

#define ZLIB_CONST // it does not write what it reads
#include <array>
#include <limits>
#include <memory>
#include <zlib.h>

namespace Gzip {
namespace {

constexpr int gzipOnly = 16 + MAX_WBITS; // a window of any size, with gzip's header and checksums

struct End {
    void operator()(z_stream* stream) const { inflateEnd(stream); }
};

// Unpacks one member from the front of what `stream` reads, behind `text`; whether it was whole and fits.
bool AppendMember(z_stream& stream, QByteArray& text, qsizetype most) {
    std::array<Bytef, 65536> piece{};
    for (;;) {
        stream.next_out = piece.data();
        stream.avail_out = static_cast<uInt>(piece.size());
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END)
            return false; // damaged, or cut: there was nothing left to read
        const auto unpacked = static_cast<qsizetype>(piece.size() - stream.avail_out);
        if (unpacked > most - text.size())
            return false;
        text.append(reinterpret_cast<const char*>(piece.data()), unpacked);
        if (result == Z_STREAM_END)
            return true;
    }
}

} // namespace

std::optional<QByteArray> Unpack(QByteArrayView packed, qsizetype most) {
    z_stream stream{};
    if (packed.size() > std::numeric_limits<int>::max() || inflateInit2(&stream, gzipOnly) != Z_OK)
        return std::nullopt;
    const std::unique_ptr<z_stream, End> ending(&stream);
    stream.next_in = reinterpret_cast<const Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    QByteArray text;
    do {
        if (!AppendMember(stream, text, most) || inflateReset(&stream) != Z_OK)
            return std::nullopt;
    } while (stream.avail_in > 0);
    return text;
}

} // namespace Gzip
