#include "telemetry/frames/Ax25Frame.h"

#include <array>
#include <charconv>
#include <utility>

namespace {

constexpr std::size_t letters = 6;
constexpr std::size_t addressLength = letters + 1;
constexpr int largestSsid = 15;
constexpr unsigned lastAddress = 0x01; // of the SSID byte, as the next two
constexpr unsigned reserved = 0x60;
constexpr unsigned mark = 0x80;

unsigned ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

bool IsCallsignLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool ReadAddress(std::string_view bytes, Ax25Address& address) {
    std::array<char, letters + sizeof "-15"> text{};
    std::size_t length = 0;
    bool isPadding = false;
    for (std::size_t i = 0; i < letters; ++i) {
        const unsigned byte = ByteAt(bytes, i);
        const char letter = static_cast<char>(byte >> 1U);
        isPadding = isPadding || letter == ' ';
        if ((byte & lastAddress) != 0 || (isPadding ? letter != ' ' : !IsCallsignLetter(letter)))
            return false;
        if (!isPadding)
            text[length++] = letter;
    }
    if (length == 0)
        return false;
    const unsigned last = ByteAt(bytes, letters);
    if (const unsigned ssid = last >> 1U & 0x0FU; ssid != 0) {
        text[length++] = '-';
        if (ssid >= 10)
            text[length++] = '1';
        text[length++] = static_cast<char>('0' + ssid % 10);
    }
    address.callsign.assign(text.data(), length);
    address.isMarked = (last & mark) != 0;
    return true;
}

bool AppendAddress(const Ax25Address& address, bool isLast, std::string& bytes) {
    const std::string_view callsign = address.callsign;
    const std::string_view base = callsign.substr(0, callsign.find('-'));
    if (base.empty() || base.size() > letters)
        return false;
    for (const char letter : base) {
        if (!IsCallsignLetter(letter))
            return false;
        bytes += static_cast<char>(static_cast<unsigned char>(letter) << 1U);
    }
    bytes.append(letters - base.size(), ' ' << 1);
    unsigned ssid = 0;
    if (base.size() < callsign.size()) {
        const std::string_view digits = callsign.substr(base.size() + 1);
        const char* const end = digits.data() + digits.size();
        if (digits.size() > 2 ||
            std::from_chars(digits.data(), end, ssid) != std::from_chars_result{end, {}} ||
            ssid > largestSsid)
            return false;
    }
    bytes +=
        static_cast<char>((address.isMarked ? mark : 0) | reserved | ssid << 1U | (isLast ? lastAddress : 0));
    return true;
}

} // namespace

Ax25Frame::Type Ax25Frame::FrameType() const {
    if ((control & 0x01U) == 0)
        return Type::I;
    if ((control & 0x02U) == 0)
        return Type::Supervisory;
    return (control & ~pollFinal) == ui ? Type::UI : Type::Unnumbered;
}

bool Ax25Frame::Read(std::string_view bytes) {
    digipeaters.clear();
    for (std::size_t count = 0;; ++count) {
        if (count == 2 + maxDigipeaters || bytes.size() < addressLength)
            return false;
        Ax25Address& address = count == 0 ? destination : count == 1 ? source : digipeaters.emplace_back();
        if (!ReadAddress(bytes, address))
            return false;
        const bool isLast = (ByteAt(bytes, letters) & lastAddress) != 0;
        bytes.remove_prefix(addressLength);
        if (!isLast)
            continue;
        if (count == 0)
            return false;
        break;
    }
    if (bytes.empty())
        return false;
    control = static_cast<std::uint8_t>(bytes.front());
    bytes.remove_prefix(1);
    if (HasPid()) {
        if (bytes.empty())
            return false;
        pid = static_cast<std::uint8_t>(bytes.front());
        bytes.remove_prefix(1);
    } else {
        pid = noLayer3;
    }
    information = bytes;
    return true;
}

std::optional<Ax25Frame> Ax25Frame::FromBytes(std::string_view bytes) {
    Ax25Frame frame;
    return frame.Read(bytes) ? std::optional(std::move(frame)) : std::nullopt;
}

std::optional<std::string> Ax25Frame::ToBytes() const {
    std::string bytes;
    bytes.reserve((2 + digipeaters.size()) * addressLength + 2 + information.size());
    if (digipeaters.size() > maxDigipeaters || !AppendAddress(destination, false, bytes) ||
        !AppendAddress(source, digipeaters.empty(), bytes))
        return std::nullopt;
    for (const Ax25Address& digipeater : digipeaters)
        if (!AppendAddress(digipeater, &digipeater == &digipeaters.back(), bytes))
            return std::nullopt;
    bytes += static_cast<char>(control);
    if (HasPid())
        bytes += static_cast<char>(pid);
    bytes += information;
    return bytes;
}
