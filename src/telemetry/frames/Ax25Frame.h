#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A station in the address field of an AX.25 frame.
struct Ax25Address {
    std::string callsign;  ///< 1 to 6 of "A" to "Z" and "0" to "9"; "-" and the SSID 1 to 15 unless that is 0
    bool isMarked = false; ///< bit 7: of destination and source C, of a digipeater H, "has been repeated"

    bool operator==(const Ax25Address&) const = default;
};

/// One frame by AX.25 version 2.2 (modulo 8), without flags and checksum:
///
///   destination, source, up to 8 digipeaters, 7 bytes each | control | PID (I and UI frames) | information
///
/// An address is six letters shifted left by one, padded with blanks, and a byte: bit 7 the mark, bits 4 to 1
/// the SSID, bit 0 set in the last address of the field. Bits 6 and 5 of that byte are written as ones and
/// not looked at.
struct Ax25Frame {
    static constexpr std::size_t maxDigipeaters = 8;
    static constexpr std::uint8_t ui = 0x03; ///< the control byte of a UI frame
    static constexpr std::uint8_t pollFinal = 0x10;
    static constexpr std::uint8_t noLayer3 = 0xF0; ///< the PID of text

    enum class Type {
        UI,
        I,
        Supervisory,
        Unnumbered, ///< other than UI
    };

    Ax25Address destination;
    Ax25Address source;
    std::vector<Ax25Address> digipeaters{};
    std::uint8_t control = ui;
    std::uint8_t pid = noLayer3; ///< means nothing where HasPid is false
    std::string_view information{};

    Type FrameType() const;
    bool HasPid() const { return FrameType() == Type::UI || FrameType() == Type::I; }

    /// Becomes the frame in `bytes`, whose information stays there; what it was before lends its storage.
    /// False, and what it is then means nothing, when the address field is bad (letters other than the above,
    /// a letter after a blank, no letter, one address only, more than ten) or the frame ends before its
    /// information begins.
    bool Read(std::string_view bytes);

    /// The frame in `bytes`; nothing where Read answers false.
    static std::optional<Ax25Frame> FromBytes(std::string_view bytes);

    /// The frame as it is sent. Nothing when a callsign does not fit an address (an SSID of 0 may be
    /// written), or with too many digipeaters.
    std::optional<std::string> ToBytes() const;
};
