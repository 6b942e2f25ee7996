// AX.25 frames from the air: what is read can be written, and reads as it was; the text that shows it.

#include "Input.h"
#include "Require.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/Ax25Heard.h"

#include <algorithm>

namespace {

// The bits of the address field that are written as ones and not looked at.
std::string WithReservedBits(std::string_view bytes, std::size_t addresses) {
    std::string same(bytes);
    for (std::size_t i = 0; i < addresses; ++i)
        same[7 * i + 6] = static_cast<char>(static_cast<unsigned char>(same[7 * i + 6]) | 0x60U);
    return same;
}

bool IsCallsign(std::string_view callsign) {
    const std::string_view base = callsign.substr(0, callsign.find('-'));
    return !base.empty() && base.size() <= 6 && callsign.size() <= 9 &&
           std::ranges::all_of(base, [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = Input(data, size);
    const auto frame = Ax25Frame::FromBytes(bytes);
    Ax25Heard reader;
    const HeardFrame heard = reader.Read(Bytes(bytes), {.port = 2, .time = "12:34:56"});
    Require(View(heard.raw) == bytes, "the bytes stay");
    Require(View(heard.engineText).starts_with(" 2:") && heard.engineText.endsWith('\r'),
            "every frame has a text");
    Require(heard.isComplete == frame.has_value() && heard.source.isEmpty() != frame.has_value(),
            "only a frame tells who sent it");
    if (!frame) {
        Require(heard.engineText.size() < 300, "bytes are shown shortened");
        return 0;
    }
    Require(frame->digipeaters.size() <= Ax25Frame::maxDigipeaters, "there are at most eight digipeaters");
    Require(IsCallsign(frame->source.callsign) && IsCallsign(frame->destination.callsign) &&
                std::ranges::all_of(frame->digipeaters, IsCallsign, &Ax25Address::callsign),
            "callsigns are well formed");
    const auto written = frame->ToBytes();
    Require(written == WithReservedBits(bytes, 2 + frame->digipeaters.size()),
            "what is read is written as it was");
    Require(View(heard.information) == frame->information, "the information is handed on");
    return 0;
}
