#include "keps/Gzip.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace {

constexpr int longestCode = 15;
constexpr int endOfBlock = 256;
constexpr int firstLength = 257;
constexpr int literalCodes = 288;
constexpr int distanceCodes = 30;
constexpr int lengthCodes = 19;

// RFC 1951, section 3.2.5: what a length or distance code stands for, and how many bits more follow it.
constexpr std::array<quint16, 29> lengthBase = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                                15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                                67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<quint8, 29> lengthBits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                               2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<quint16, 30> distanceBase = {
    1,   2,   3,   4,   5,   7,    9,    13,   17,   25,   33,   49,   65,    97,    129,
    193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::array<quint8, 30> distanceBits = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                                 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

// The input, bit by bit from the lowest. Past its end come zeros, and `IsExhausted` says so.
class BitReader {
public:
    explicit BitReader(QByteArrayView bytes)
        : m_bytes(bytes) {}

    quint32 Take(int count) {
        quint32 bits = 0;
        for (int i = 0; i < count; ++i)
            bits |= TakeBit() << i;
        return bits;
    }

    quint32 TakeBit() {
        if (m_at >= m_bytes.size()) {
            m_exhausted = true;
            return 0;
        }
        const unsigned bit = (static_cast<unsigned char>(m_bytes[m_at]) >> m_bit) & 1U;
        m_bit = (m_bit + 1) % 8;
        m_at += m_bit == 0 ? 1 : 0;
        return bit;
    }

    void SkipToByte() {
        m_at += m_bit == 0 ? 0 : 1;
        m_bit = 0;
    }

    bool IsExhausted() const { return m_exhausted; }
    qsizetype Position() const { return m_at; }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
    int m_bit = 0;
    bool m_exhausted = false;
};

// A Huffman code, told by the lengths of its symbols' codes (RFC 1951, section 3.2.2).
class Code {
public:
    explicit Code(std::span<const quint8> lengths) {
        for (quint8 length : lengths)
            ++m_counts[length];
        m_counts[0] = 0;
        for (unsigned length = 1; length <= longestCode; ++length)
            for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol)
                if (lengths[symbol] == length)
                    m_symbols.push_back(static_cast<int>(symbol));
    }

    // The next symbol, -1 when the bits are no code. Codes of one length are consecutive numbers.
    int Decode(BitReader& bits) const {
        int code = 0;
        int first = 0; // the first code of this length
        int index = 0; // its symbol's place
        for (unsigned length = 1; length <= longestCode; ++length) {
            code = code * 2 + static_cast<int>(bits.TakeBit());
            first *= 2;
            if (code >= first && code < first + m_counts[length])
                return m_symbols[static_cast<std::size_t>(index + code - first)];
            first += m_counts[length];
            index += m_counts[length];
        }
        return -1;
    }

private:
    std::array<int, longestCode + 1> m_counts{};
    std::vector<int> m_symbols;
};

struct Codes {
    Code literals;
    Code distances;
};

Codes FixedCodes() {
    std::array<quint8, literalCodes> lengths{};
    std::fill(lengths.begin(), lengths.begin() + 144, quint8{8});
    std::fill(lengths.begin() + 144, lengths.begin() + 256, quint8{9});
    std::fill(lengths.begin() + 256, lengths.begin() + 280, quint8{7});
    std::fill(lengths.begin() + 280, lengths.end(), quint8{8});
    std::array<quint8, distanceCodes> distances{};
    distances.fill(5);
    return {Code(lengths), Code(distances)};
}

// RFC 1951, section 3.2.7: the lengths of the codes come packed themselves.
std::optional<Codes> ReadCodes(BitReader& bits) {
    const std::size_t literals = bits.Take(5) + 257;
    const std::size_t distances = bits.Take(5) + 1;
    const std::size_t codes = bits.Take(4) + 4;
    if (literals > literalCodes - 2 || distances > distanceCodes)
        return std::nullopt;
    constexpr std::array<quint8, lengthCodes> order = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                       11, 4,  12, 3, 13, 2, 14, 1, 15};
    std::array<quint8, lengthCodes> codeLengths{};
    for (std::size_t i = 0; i < codes; ++i)
        codeLengths[order[i]] = static_cast<quint8>(bits.Take(3));
    const Code code(codeLengths);

    std::vector<quint8> lengths;
    while (lengths.size() < literals + distances) {
        const int symbol = code.Decode(bits);
        if (symbol < 0 || bits.IsExhausted() || (symbol == 16 && lengths.empty()))
            return std::nullopt;
        if (symbol < 16)
            lengths.push_back(static_cast<quint8>(symbol));
        else if (symbol == 16)
            lengths.insert(lengths.end(), 3 + bits.Take(2), quint8{lengths.back()});
        else
            lengths.insert(lengths.end(), symbol == 17 ? 3 + bits.Take(3) : 11 + bits.Take(7), quint8{0});
    }
    if (lengths.size() != literals + distances)
        return std::nullopt;
    const std::span<const quint8> all(lengths);
    return Codes{Code(all.first(literals)), Code(all.subspan(literals))};
}

// Appends `length` bytes of the text `distance` bytes back; the copy may run into itself.
bool Repeat(QByteArray& text, qsizetype distance, qsizetype length) {
    if (distance > text.size())
        return false;
    const qsizetype end = text.size();
    text.resize(end + length);
    char* to = text.data() + end;
    for (const char* from = to - distance; length > 0; --length)
        *to++ = *from++;
    return true;
}

bool UnpackBlock(BitReader& bits, const Codes& codes, QByteArray& text, qsizetype most) {
    while (!bits.IsExhausted() && text.size() <= most) {
        const int symbol = codes.literals.Decode(bits);
        if (symbol == endOfBlock)
            return !bits.IsExhausted();
        if (symbol < 0)
            return false;
        if (symbol < endOfBlock) {
            text += static_cast<char>(symbol);
            continue;
        }
        const auto length = static_cast<std::size_t>(symbol - firstLength);
        if (length >= lengthBase.size())
            return false;
        const unsigned count = lengthBase[length] + bits.Take(lengthBits[length]);
        const int distance = codes.distances.Decode(bits);
        if (distance < 0 || distance >= distanceCodes)
            return false;
        const auto place = static_cast<std::size_t>(distance);
        if (!Repeat(text, distanceBase[place] + bits.Take(distanceBits[place]), count))
            return false;
    }
    return false;
}

bool CopyStored(BitReader& bits, QByteArray& text, qsizetype most) {
    bits.SkipToByte();
    const unsigned length = bits.Take(16);
    if ((bits.Take(16) ^ 0xFFFFU) != length || text.size() + length > most)
        return false;
    for (unsigned i = 0; i < length && !bits.IsExhausted(); ++i)
        text += static_cast<char>(bits.Take(8));
    return !bits.IsExhausted();
}

bool Inflate(BitReader& bits, QByteArray& text, qsizetype most) {
    for (bool isLast = false; !isLast;) {
        isLast = bits.TakeBit() == 1;
        const unsigned kind = bits.Take(2);
        if (kind == 0) {
            if (!CopyStored(bits, text, most))
                return false;
            continue;
        }
        const std::optional<Codes> codes = kind == 1   ? FixedCodes()
                                           : kind == 2 ? ReadCodes(bits)
                                                       : std::nullopt;
        if (!codes || !UnpackBlock(bits, *codes, text, most))
            return false;
    }
    bits.SkipToByte();
    return text.size() <= most;
}

// RFC 1952, section 8.
quint32 Checksum(QByteArrayView text) {
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> values{};
        for (quint32 i = 0; i < values.size(); ++i) {
            quint32 value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 1U) != 0 ? 0xEDB88320U ^ (value >> 1U) : value >> 1U;
            values[i] = value;
        }
        return values;
    }();
    quint32 sum = 0xFFFFFFFFU;
    for (char byte : text)
        sum = table[(sum ^ static_cast<unsigned char>(byte)) & 0xFFU] ^ (sum >> 8U);
    return ~sum;
}

// The header's length (RFC 1952, section 2.3), nothing when it is none.
std::optional<qsizetype> HeaderLength(QByteArrayView packed) {
    constexpr qsizetype fixedPart = 10;
    if (packed.size() < fixedPart || !packed.startsWith("\x1f\x8b\x08"))
        return std::nullopt;
    const auto flags = static_cast<unsigned char>(packed[3]);
    qsizetype length = fixedPart;
    if ((flags & 4U) != 0) { // extra field
        if (packed.size() < length + 2)
            return std::nullopt;
        length += 2 + static_cast<unsigned char>(packed[length]) +
                  256 * static_cast<unsigned char>(packed[length + 1]);
    }
    for (unsigned text : {8U, 16U}) { // file name and comment
        if ((flags & text) == 0)
            continue;
        const qsizetype end = length < packed.size() ? packed.indexOf('\0', length) : -1;
        if (end == -1)
            return std::nullopt;
        length = end + 1;
    }
    length += (flags & 2U) != 0 ? 2 : 0; // the header's own checksum
    return length <= packed.size() ? std::optional(length) : std::nullopt;
}

} // namespace

std::optional<QByteArray> Gzip::Unpack(QByteArrayView packed, qsizetype most) {
    QByteArray text;
    do { // a file may be several, one after the other
        const std::optional<qsizetype> header = HeaderLength(packed);
        if (!header)
            return std::nullopt;
        BitReader bits(packed.sliced(*header));
        QByteArray member;
        if (!Inflate(bits, member, most - text.size()))
            return std::nullopt;
        const quint32 sum = bits.Take(32);
        const quint32 size = bits.Take(32);
        if (bits.IsExhausted() || sum != Checksum(member) || size != static_cast<quint32>(member.size()))
            return std::nullopt;
        text += member;
        packed = packed.sliced(*header + bits.Position());
    } while (!packed.isEmpty());
    return text;
}
