#include "telemetry/frames/Ax25Frame.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// As Dire Wolf 1.6 demodulated it: XQ9ZZ-1 to APRS, repeated by QIRAN-1, not yet by WIDE2-2.
const std::string heard = "\x82\xa0\xa4\xa6@@\xe0\xb0\xa2r\xb4\xb4@b\xa2\x92\xa4\x82\x9c@\xe2\xae\x92\x88\x8a"
                          "d@e\x03\xf0star one"s;

std::string Address(std::string_view letters, char last) {
    std::string bytes;
    for (const char letter : letters)
        bytes += static_cast<char>(letter << 1);
    return bytes + last;
}

const std::string twoAddresses = Address("APRS  ", '\x60') + Address("XQ9ZZ ", '\x61');

TEST(Ax25Frame, aFrameIsReadFieldByField) {
    const auto frame = Ax25Frame::FromBytes(heard);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->destination, (Ax25Address{"APRS", true}));
    EXPECT_EQ(frame->source, (Ax25Address{"XQ9ZZ-1", false}));
    EXPECT_EQ(frame->digipeaters, (std::vector<Ax25Address>{{"QIRAN-1", true}, {"WIDE2-2", false}}));
    EXPECT_EQ(frame->control, 0x03);
    EXPECT_EQ(frame->pid, 0xF0);
    EXPECT_EQ(frame->information, "star one");
    EXPECT_EQ(frame->information.data(), heard.data() + heard.size() - 8); // no copy
}

TEST(Ax25Frame, whatIsReadIsWrittenAsItWas) {
    EXPECT_EQ(Ax25Frame::FromBytes(heard)->ToBytes(), heard);
}

TEST(Ax25Frame, nothingOfAFrameIsLeftForTheNext) {
    Ax25Frame frame;
    ASSERT_TRUE(frame.Read(twoAddresses + '\x03' + '\xcf' + "x"));
    EXPECT_EQ(frame.pid, 0xCF);
    ASSERT_FALSE(frame.Read(heard.substr(0, 20)));
    ASSERT_TRUE(frame.Read(heard));
    EXPECT_EQ(frame.digipeaters.size(), 2U);
    ASSERT_TRUE(frame.Read(twoAddresses + '\x3f'));
    EXPECT_EQ(frame.source, (Ax25Address{"XQ9ZZ"}));
    EXPECT_TRUE(frame.digipeaters.empty());
    EXPECT_EQ(frame.pid, Ax25Frame::noLayer3);
    EXPECT_EQ(frame.information, "");
}

TEST(Ax25Frame, everySsidIsReadAndWritten) {
    for (unsigned ssid = 0; ssid < 16; ++ssid) {
        const std::string callsign = ssid == 0 ? "A1"s : "A1-" + std::to_string(ssid);
        const Ax25Frame frame{.destination = {"CQ"}, .source = {callsign}, .information = "x"};
        const auto bytes = frame.ToBytes();
        ASSERT_TRUE(bytes);
        EXPECT_EQ(static_cast<unsigned char>((*bytes)[13]), 0x61U | ssid << 1U);
        EXPECT_EQ(Ax25Frame::FromBytes(*bytes)->source.callsign, callsign);
    }
    const Ax25Frame zero{.destination = {"CQ"}, .source = {"A1-0"}};
    EXPECT_EQ(Ax25Frame::FromBytes(*zero.ToBytes())->source.callsign, "A1");
}

TEST(Ax25Frame, upToEightDigipeaters) {
    Ax25Frame frame{.destination = {"CQ"}, .source = {"A1"}, .information = "x"};
    for (std::size_t count = 0; count <= 8; ++count) {
        const auto bytes = frame.ToBytes();
        ASSERT_TRUE(bytes);
        EXPECT_EQ(bytes->size(), 7 * (2 + count) + 3);
        EXPECT_EQ(Ax25Frame::FromBytes(*bytes)->digipeaters, frame.digipeaters);
        frame.digipeaters.push_back({"D" + std::to_string(count) + "-9", count % 2 == 0});
    }
    EXPECT_FALSE(frame.ToBytes()); // nine
    std::string nine = Address("CQ    ", '\x60') + Address("A1    ", '\x60');
    for (int i = 0; i < 8; ++i)
        nine += Address("D1    ", '\x60');
    EXPECT_FALSE(Ax25Frame::FromBytes(nine + Address("D1    ", '\x61') + "\x03\xf0x"));
    nine.back() = '\x61';
    EXPECT_TRUE(Ax25Frame::FromBytes(nine + "\x03\xf0x"));
}

TEST(Ax25Frame, badAddressesAreRefused) {
    const std::string rest = "\x03\xf0x";
    const std::string source = Address("XQ9ZZ ", '\x61');
    ASSERT_TRUE(Ax25Frame::FromBytes(Address("APRS  ", '\x60') + source + rest));
    for (const std::string_view letters :
         {"aprs  "sv, "AP S  "sv, " APRS "sv, "      "sv, "AP-1  "sv, "AP\0   "sv, "AP/   "sv}) {
        EXPECT_FALSE(Ax25Frame::FromBytes(Address(letters, '\x60') + source + rest)) << letters;
        EXPECT_FALSE(Ax25Frame::FromBytes(source.substr(0, 6) + '\x60' + Address(letters, '\x61') + rest));
    }
    std::string early = Address("APRS  ", '\x60') + source + rest;
    early[2] = static_cast<char>(early[2] | 1); // the field ends within a callsign
    EXPECT_FALSE(Ax25Frame::FromBytes(early));
    EXPECT_FALSE(Ax25Frame::FromBytes(Address("APRS  ", '\x61') + source + rest)) << "one address only";
}

TEST(Ax25Frame, reservedBitsAreNotLookedAt) {
    const std::string bytes = Address("APRS  ", '\x00') + Address("XQ9ZZ ", '\x01') + "\x03\xf0x";
    const auto frame = Ax25Frame::FromBytes(bytes);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->ToBytes(), twoAddresses + "\x03\xf0x");
}

TEST(Ax25Frame, aFrameThatEndsEarlyIsRefused) {
    for (std::size_t length = 0; length < 30; ++length)
        EXPECT_FALSE(Ax25Frame::FromBytes(heard.substr(0, length))) << length;
    EXPECT_EQ(Ax25Frame::FromBytes(heard.substr(0, 30))->information, "");
    EXPECT_TRUE(Ax25Frame::FromBytes(twoAddresses + '\x3f')); // a frame without PID is whole
}

TEST(Ax25Frame, theControlByteTellsTheType) {
    std::string bytes;
    const auto read = [&bytes](const std::string& rest) {
        bytes = twoAddresses + rest;
        return *Ax25Frame::FromBytes(bytes);
    };
    EXPECT_EQ(read("\x03\xf0").FrameType(), Ax25Frame::Type::UI);
    EXPECT_EQ(read("\x13\xcf").FrameType(), Ax25Frame::Type::UI);
    EXPECT_EQ(read("\x76\xf0").FrameType(), Ax25Frame::Type::I);
    EXPECT_EQ(read("\x35").FrameType(), Ax25Frame::Type::Supervisory);
    EXPECT_EQ(read("\x3f").FrameType(), Ax25Frame::Type::Unnumbered);
    EXPECT_EQ(read("\x13\xcfx").pid, 0xCF);
    EXPECT_EQ(read("\x97"s + "abc").information, "abc");
    for (const std::string& rest : {"\x03\xf0y"s, "\x76\xf0y"s, "\x35"s, "\x97"s + "abc"})
        EXPECT_EQ(read(rest).ToBytes(), twoAddresses + rest);
}

TEST(Ax25Frame, anyBytesAreInformation) {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    const Ax25Frame frame{.destination = {"CQ"}, .source = {"A1"}, .information = all};
    EXPECT_EQ(Ax25Frame::FromBytes(*frame.ToBytes())->information, all);
}

TEST(Ax25Frame, callsignsThatFitNoAddressAreNotWritten) {
    for (const char* callsign : {"", "-1", "ABCDEFG", "a1", "A 1", "A1-", "A1-16", "A1-99", "A1--1", "A1-1x",
                                 "A1-001", "A1-+1", "A/1", "A1 "}) {
        EXPECT_FALSE((Ax25Frame{.destination = {"CQ"}, .source = {callsign}}).ToBytes()) << callsign;
        EXPECT_FALSE((Ax25Frame{.destination = {callsign}, .source = {"A1"}}).ToBytes());
        EXPECT_FALSE(
            (Ax25Frame{.destination = {"CQ"}, .source = {"A1"}, .digipeaters = {{callsign}}}).ToBytes());
    }
}

} // namespace
