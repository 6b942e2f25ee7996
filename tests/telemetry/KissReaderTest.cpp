#include "telemetry/frames/KissReader.h"

#include "telemetry/replay/KissRecording.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace std::string_literals;

struct Kept {
    int port;
    int command;
    std::string data;
    bool operator==(const Kept&) const = default;
};

std::vector<Kept> ReadAll(KissReader& reader, std::string_view stream) {
    std::vector<Kept> frames;
    KissFrame frame;
    while (reader.Next(stream, frame))
        frames.push_back({frame.port, frame.command, std::string(frame.data)});
    EXPECT_TRUE(stream.empty());
    return frames;
}

std::vector<Kept> ReadAll(std::string_view stream) {
    KissReader reader;
    return ReadAll(reader, stream);
}

std::string Written(const KissFrame& frame) {
    std::string stream;
    frame.AppendTo(stream);
    return stream;
}

std::string AllBytes() {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    return all;
}

TEST(KissReader, framesOfARealEngineAreRead) {
    // Dire Wolf 1.6, information "a\rb\nc" and the bytes C0 DB 7F 1F.
    const std::string stream = "\xc0\x00\x82\xa0\xa4\xa6@@\xe0\xb0\xa2r\xb4\xb4@c\x03\xf0"
                               "a\rb\nc\xdb\xdc\xdb\xdd\x7f\x1f\xc0"s;
    EXPECT_EQ(ReadAll(stream), (std::vector<Kept>{{0, 0,
                                                   "\x82\xa0\xa4\xa6@@\xe0\xb0\xa2r\xb4\xb4@c\x03\xf0"
                                                   "a\rb\nc\xc0\xdb\x7f\x1f"s}}));
}

TEST(KissReader, everySplitGivesTheSameFrames) {
    std::string stream = "tail of a frame";
    for (const KissFrame& frame :
         {KissFrame{.port = 0, .data = "\xC0\xDB\xDC\xDD\xDB\xC0"}, KissFrame{.port = 12, .data = "two"},
          KissFrame{.port = 13, .command = 11, .data = "\xDB"}})
        frame.AppendTo(stream);
    const std::vector<Kept> expected{{0, 0, "\xC0\xDB\xDC\xDD\xDB\xC0"}, {12, 0, "two"}, {13, 11, "\xDB"}};
    for (std::size_t first = 0; first <= stream.size(); ++first) {
        for (std::size_t second = first; second <= stream.size(); ++second) {
            KissReader reader;
            std::vector<Kept> frames = ReadAll(reader, std::string_view(stream).substr(0, first));
            for (const auto& piece : {stream.substr(first, second - first), stream.substr(second)})
                for (const Kept& frame : ReadAll(reader, piece))
                    frames.push_back(frame);
            ASSERT_EQ(frames, expected) << first << ' ' << second;
            ASSERT_EQ(reader.Refused(), 0U);
        }
    }
}

TEST(KissReader, everyByteAndEveryPortIsWrittenSoThatItIsReadAgain) {
    for (int port = 0; port < 16; ++port)
        for (int command = 0; command < 16; ++command)
            EXPECT_EQ(ReadAll(Written({.port = static_cast<std::uint8_t>(port),
                                       .command = static_cast<std::uint8_t>(command),
                                       .data = AllBytes()})),
                      (std::vector<Kept>{{port, command, AllBytes()}}));
    EXPECT_EQ(Written({.port = 12, .data = "x"}), "\xC0\xDB\xDC"
                                                  "x\xC0"); // port 12's first byte looks like a mark
}

TEST(KissReader, emptyFramesAreSkipped) {
    EXPECT_EQ(ReadAll("\xC0\xC0\xC0"), std::vector<Kept>());
    EXPECT_EQ(ReadAll("\xC0\xC0\x10x\xC0\xC0\xC0\x20y\xC0\xC0"),
              (std::vector<Kept>{{1, 0, "x"}, {2, 0, "y"}}));
    EXPECT_EQ(ReadAll("\xC0\x10x\xC0\x20y\xC0"),
              (std::vector<Kept>{{1, 0, "x"}, {2, 0, "y"}})); // one mark between
}

TEST(KissReader, whatStandsBeforeTheFirstMarkIsPassedOver) {
    KissReader reader;
    EXPECT_EQ(ReadAll(reader, "\x10"s + "rest of a frame\xDB"), std::vector<Kept>());
    EXPECT_EQ(ReadAll(reader, "\xC0\x20y\xC0"), (std::vector<Kept>{{2, 0, "y"}}));
    EXPECT_EQ(reader.Refused(), 0U);
}

TEST(KissReader, aFrameWithABadEscapeIsRefusedAndTheNextIsRead) {
    for (const std::string& bad : {"a\xDB"s, "a\xDBx"s, "a\xDB\xDB"s, "a\xDB\xDBx"s}) {
        KissReader reader;
        EXPECT_EQ(ReadAll(reader, "\xC0\x10" + bad + "\xC0\x20y\xC0"), (std::vector<Kept>{{2, 0, "y"}}))
            << bad;
        EXPECT_EQ(reader.Refused(), 1U);
    }
}

TEST(KissReader, aFrameOf64KiBIsReadAndALongerOneRefused) {
    const std::string longest(KissFrame::longestData, '\xC0');
    EXPECT_EQ(ReadAll(Written({.data = longest})), (std::vector<Kept>{{0, 0, longest}}));
    for (const std::size_t piece : {std::size_t{1}, std::size_t{5000}, std::size_t{1} << 24U}) {
        KissReader reader;
        const std::string stream = Written({.data = longest + 'x'}) +
                                   Written({.data = std::string(1 << 20, 'x')}) + Written({.data = "y"});
        std::vector<Kept> frames;
        for (std::size_t at = 0; at < stream.size(); at += piece)
            for (const Kept& frame : ReadAll(reader, std::string_view(stream).substr(at, piece)))
                frames.push_back(frame);
        EXPECT_EQ(frames, (std::vector<Kept>{{0, 0, "y"}}));
        EXPECT_EQ(reader.Refused(), 2U);
    }
}

// 2026-11-21T15:28:43.120Z
constexpr std::int64_t utc = 1795274923120;

struct KeptRecord {
    std::optional<std::int64_t> utc;
    int port;
    std::string bytes;
    bool operator==(const KeptRecord&) const = default;
};

std::vector<KeptRecord> ReadRecording(std::string_view recording) {
    KissRecordingReader reader;
    std::vector<KeptRecord> frames;
    RecordedFrame frame;
    while (reader.Next(recording, frame))
        frames.push_back({frame.utc, frame.port, std::string(frame.bytes)});
    return frames;
}

TEST(KissRecording, theTimeStandsBeforeTheFrame) {
    std::string recording;
    RecordedFrame{.utc = utc, .port = 1, .bytes = "x"}.AppendTo(recording);
    EXPECT_EQ(recording, "\xC0\x09\x00\x00\x01\xA1\xFE\xB9\x5C\x70\xC0\xC0\x10x\xC0"s);
}

TEST(KissRecording, whatIsRecordedIsReadAgain) {
    std::string recording;
    std::vector<KeptRecord> expected;
    // Times whose bytes have to be escaped among them.
    for (const std::int64_t time :
         {std::int64_t{0}, utc, std::int64_t{0xC0DBC0DBC0}, std::int64_t{253402300799999}}) {
        RecordedFrame{.utc = time, .port = 15, .bytes = AllBytes()}.AppendTo(recording);
        expected.push_back({time, 15, AllBytes()});
    }
    RecordedFrame{.utc = std::nullopt, .port = 0, .bytes = "no time"}.AppendTo(recording);
    expected.push_back({std::nullopt, 0, "no time"});
    EXPECT_EQ(ReadRecording(recording), expected);
}

TEST(KissRecording, aTimeHoldsForOneFrame) {
    EXPECT_EQ(ReadRecording("\xC0\x09\x00\x00\x00\x00\x00\x00\x00\x07\xC0\x00x\xC0\x00y\xC0"s),
              (std::vector<KeptRecord>{{7, 0, "x"}, {std::nullopt, 0, "y"}}));
}

TEST(KissRecording, otherCommandsArePassedOver) {
    EXPECT_EQ(
        ReadRecording("\xC0\x09\x00\x00\x00\x00\x00\x00\x00\x07\xC0\x06HW\xC0\x01\x10\xC0\xFF\xC0\x00x\xC0"s),
        (std::vector<KeptRecord>{{7, 0, "x"}}));
    EXPECT_EQ(ReadRecording("\xC0\x19\x00\x00\x00\x00\x00\x00\x00\x07\xC0\x00x\xC0"s),
              (std::vector<KeptRecord>{{std::nullopt, 0, "x"}}));
}

TEST(KissRecording, aTimeThatIsNoneIsNone) {
    for (const std::string& time : {"\x00\x00\x00\x00\x00\x00\x07"s, "\x00\x00\x00\x00\x00\x00\x00\x00\x07"s,
                                    "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, "\x00\x00\xE6\x77\xD2\x1F\xDC\x00"s})
        EXPECT_EQ(ReadRecording("\xC0\x09" + time + "\xC0\x00x\xC0"s),
                  (std::vector<KeptRecord>{{std::nullopt, 0, "x"}}));
    EXPECT_EQ(ReadRecording(
                  "\xC0\x09\x00\x00\xE6\x77\xD2\x1F\xDB\xDD\xFF\xC0\x00x\xC0"s), // 9999-12-31T23:59:59.999Z
              (std::vector<KeptRecord>{{253402300799999, 0, "x"}}));
}

TEST(KissRecording, aTornEndThatIsMarkedIsNoFrame) {
    std::string recording;
    RecordedFrame{.utc = utc, .port = 0, .bytes = "torn by a power cut"}.AppendTo(recording);
    for (std::size_t length = 1; length < recording.size(); ++length) {
        std::string torn = recording.substr(0, length);
        torn += RecordedFrame::tornEnd;
        RecordedFrame{.utc = utc, .port = 0, .bytes = "next"}.AppendTo(torn);
        EXPECT_EQ(ReadRecording(torn), (std::vector<KeptRecord>{{utc, 0, "next"}})) << length;
    }
}

} // namespace
