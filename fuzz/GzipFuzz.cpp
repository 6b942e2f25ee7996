// A packed file from a server: it is unpacked within its bound or refused, and what we pack comes back.

#include "Input.h"
#include "Require.h"
#include "keps/Gzip.h"

#include <QtEndian>

namespace {

quint32 Checksum(QByteArrayView text) {
    quint32 sum = 0xFFFFFFFFU;
    for (const char byte : text) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 1U) != 0 ? 0xEDB88320U ^ (sum >> 1U) : sum >> 1U;
    }
    return ~sum;
}

QByteArray File(QByteArrayView deflated, QByteArrayView text) {
    QByteArray trailer(8, '\0');
    qToLittleEndian(Checksum(text), trailer.data());
    qToLittleEndian(static_cast<quint32>(text.size()), trailer.data() + 4);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\xff", 10) + deflated.toByteArray() + trailer;
}

void CheckRoundTrip(QByteArrayView text) {
    for (const int level : {0, 1, 9}) {
        // Between the length and header in front and the checksum behind stands what gzip packs, too.
        const QByteArray packed =
            qCompress(reinterpret_cast<const uchar*>(text.data()), text.size(), level).mid(6).chopped(4);
        const QByteArray file = File(packed, text);
        Require(Gzip::Unpack(file, text.size()) == text.toByteArray(), "what was packed is unpacked");
        Require(!Gzip::Unpack(file, text.size() - 1), "what is larger than its bound is refused");
        Require(!Gzip::Unpack(QByteArrayView(file).chopped(1), text.size()), "what is cut is refused");
        Require(Gzip::Unpack(file + file, 2 * text.size()) == text.toByteArray() + text.toByteArray(),
                "two files in one are unpacked");
        QByteArray damaged = file;
        damaged[file.size() - 6] = static_cast<char>(damaged[file.size() - 6] ^ 1);
        Require(!Gzip::Unpack(damaged, text.size()), "what is damaged is refused");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr qsizetype most = 1 << 20;
    const QByteArrayView input = Bytes(Input(data, size));
    if (const auto text = Gzip::Unpack(input, most))
        Require(text->size() <= most, "the bound holds");
    // The same as the packed part of a file whose trailer fits an empty text.
    if (const auto text = Gzip::Unpack(File(input, {}), most))
        Require(text->isEmpty(), "the trailer is checked");
    if (!input.isEmpty())
        CheckRoundTrip(input);
    return 0;
}
