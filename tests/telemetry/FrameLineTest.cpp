#include "telemetry/replay/FrameLine.h"

#include "telemetry/replay/LogHeader.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

constexpr LineTime::Clock utcClock = LineTime::Clock::Utc;
constexpr std::int64_t utc = 1795274923000; // 2026-11-21T15:28:43Z

TEST(LineTime, timesWithAZoneAreUtc) {
    for (const auto& [text, milliseconds] : std::vector<std::pair<const char*, std::int64_t>>{
             {"2026-11-21T15:28:43Z", utc},
             {"2026-11-21T15:28:43.120Z", utc + 120},
             {"2026-11-21T15:28:43,1Z", utc + 100},
             {"2026-11-21T15:28:43.999999999Z", utc + 999},
             {"2026-11-21 15:28:43 UTC", utc},
             {"2026-11-21  15:28:43 Z", utc},
             {"2026-11-21 15:28:43 GMT", utc},
             {"2026-11-21 15:28:43UTC", utc},
             {"2026-11-21T17:28:43+02:00", utc},
             {"2026-11-21 17:28:43 +0200", utc},
             {"2026-11-21T20:58:43+05:30", utc},
             {"2026-11-21T10:28:43-05", utc},
             {"2026-11-22T00:28:43+09:00", utc},
             {"2026-11-21T15:28:60Z", utc + 17000},
             {"1970-01-01T00:00:00Z", 0},
             {"1970-01-01T00:00:00+01:00", -3600000},
             {"2024-02-29T00:00:00Z", 1709164800000},
             {"9999-12-31T23:59:59.999Z", 253402300799999},
         }) {
        std::string_view rest = text;
        std::optional<LineTime> time;
        EXPECT_TRUE(TakeTime(rest, time)) << text;
        EXPECT_EQ(rest, "") << text;
        EXPECT_EQ(time, (LineTime{utcClock, milliseconds})) << text;
    }
}

TEST(LineTime, timesWithoutAZoneOrADateSaySo) {
    std::optional<LineTime> time;
    std::string_view rest = "  2026-11-21 15:28:43.5  [0.3] x";
    EXPECT_TRUE(TakeTime(rest, time));
    EXPECT_EQ(rest, "[0.3] x");
    EXPECT_EQ(time, (LineTime{LineTime::Clock::Unknown, utc + 500}));
    rest = "23:59:59 rest";
    EXPECT_TRUE(TakeTime(rest, time));
    EXPECT_EQ(rest, "rest");
    EXPECT_EQ(time, (LineTime{LineTime::Clock::TimeOfDay, 86399000}));
}

TEST(LineTime, timesOfOtherFormsAreTakenWithoutATime) {
    for (const char* text :
         {"21.11.2026 x", "2026/11/21 x", "2026-11-21 x", "15:28 x", "20261121T152843Z x",
          "2026-02-30T10:00:00Z x", "2026-11-21T24:00:00Z x", "2026-11-21T15:28:43+15:00 x",
          "2026-11-21 15:28:43 CET x", "15:28:43 UTC x", "1969-12-31T23:59:59Z x"}) {
        std::string_view rest = text;
        std::optional<LineTime> time = LineTime{};
        EXPECT_TRUE(TakeTime(rest, time)) << text;
        EXPECT_EQ(rest, "x") << text;
        EXPECT_EQ(time, std::nullopt) << text;
    }
}

TEST(LineTime, whatIsNoTimeIsNotTaken) {
    for (const char* text : {"", "x", "2E0ABC-1", "15:28:43R x", "15:28:43abcdef", "12", "-1", "T15:28:43"}) {
        std::string_view rest = text;
        std::optional<LineTime> time;
        EXPECT_FALSE(TakeTime(rest, time)) << text;
        EXPECT_EQ(rest, text);
    }
}

TEST(FrameLine, aLineIsReadFieldByField) {
    const auto line = FrameLine::Read("XQ9ZZ-1>APRS,QIRAN-1*,WIDE2-2:T#001,10,20,30,40,0,0,00101111,0");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->source, "XQ9ZZ-1");
    EXPECT_EQ(line->destination, "APRS");
    EXPECT_EQ(line->path, "QIRAN-1*,WIDE2-2");
    EXPECT_EQ(line->information, "T#001,10,20,30,40,0,0,00101111,0");
    EXPECT_EQ(line->kind, 'U');
    EXPECT_FALSE(line->time);
    EXPECT_FALSE(line->isTransmitted);
}

TEST(FrameLine, allBeforeTheLastMarkHaveRepeated) {
    EXPECT_EQ(FrameLine::Read("A>B,C,D*,E:x")->path, "C*,D*,E");
    EXPECT_EQ(FrameLine::Read("A>B,C*,D*:x")->path, "C*,D*");
    EXPECT_EQ(FrameLine::Read("A>B,C,D:x")->path, "C,D");
    EXPECT_EQ(FrameLine::Read("A>B:x")->path, "");
}

// What Dire Wolf 1.6 and its kissutil printed of frames that were on the air.
TEST(FrameLine, linesOfRealMonitorsAreRead) {
    struct Real {
        std::string line, source, path, information;
        char kind = 'U';
    };
    for (const Real& real : {
             Real{"[0.3] XQ9ZZ-1>APRS,WIDE2-2:T#001,10,20,30,40,0,0,00101111,0", "XQ9ZZ-1", "WIDE2-2",
                  "T#001,10,20,30,40,0,0,00101111,0"},
             Real{"[0 2026-11-21T17:45:28] XQ9ZZ-1>APRS,QIRAN-1,WIDE2-2*:star two \xe9\x80 <0x41> end <0x0d>",
                  "XQ9ZZ-1", "QIRAN-1*,WIDE2-2*", "star two \xe9\x80 <0x41> end \r"},
             Real{"[0.3] XQ9ZZ-1>APRS:nul<0x20><0x00> after nul", "XQ9ZZ-1", "", "nul \0 after nul"s},
             Real{"[0] XQ9ZZ-1>APRS:trail <0x20>", "XQ9ZZ-1", "", "trail  "},
             Real{"[0.3] XQ9ZZ-1>APRS:", "XQ9ZZ-1", "", ""},
             Real{"[0.3] XQ9ZZ-1>APRS:a<0x0d>b<0x0a>c\xc0\xdb<0x7f><0x1f>", "XQ9ZZ-1", "",
                  "a\rb\nc\xc0\xdb\x7f\x1f"},
             Real{"[0.3] XQ9ZZ-1>APRS:(UI cmd, p=1)T#001,1", "XQ9ZZ-1", "", "T#001,1"},
             Real{"[0.3] XQ9ZZ-1>N0CALL-2,RELAY*:(I cmd, n(s)=3, n(r)=3, p=1, pid=0xf0)I frame s3 r3 p",
                  "XQ9ZZ-1", "RELAY*", "I frame s3 r3 p", 'I'},
             Real{"[0.3] XQ9ZZ-1>N0CALL-2:(RR res, n(r)=1, f=0)", "XQ9ZZ-1", "", "", 'S'},
             Real{"[0.3] XQ9ZZ-1>N0CALL-2:(SABM cmd, p=1)", "XQ9ZZ-1", "", "", 'S'},
         }) {
        const auto line = FrameLine::Read(real.line);
        ASSERT_TRUE(line) << real.line;
        EXPECT_EQ(line->source, real.source);
        EXPECT_EQ(line->path, real.path);
        EXPECT_EQ(line->information, real.information);
        EXPECT_EQ(line->kind, real.kind) << real.line;
        EXPECT_FALSE(line->isTransmitted);
    }
}

TEST(FrameLine, textInRoundBracketsThatNobodyNamedStays) {
    EXPECT_EQ(FrameLine::Read("A>B:(RR res, n(r)=1, f=0)")->information, "(RR res, n(r)=1, f=0)");
    EXPECT_EQ(FrameLine::Read("[0.3] A>B:(hello there) x")->information, "(hello there) x");
    EXPECT_EQ(FrameLine::Read("[0.3] A>B:(I cmd, n(")->information, "(I cmd, n(");
}

TEST(FrameLine, bracketsTellChannelDirectionAndTime) {
    auto line = FrameLine::Read("[3.10] A>B:x");
    EXPECT_EQ(line->channel, 3);
    EXPECT_FALSE(line->isTransmitted);
    line = FrameLine::Read("[1L] A>B:x");
    EXPECT_EQ(line->channel, 1);
    EXPECT_TRUE(line->isTransmitted);
    EXPECT_TRUE(FrameLine::Read("[0H] A>B:x")->isTransmitted);
    EXPECT_EQ(FrameLine::Read("[0.3 2026-11-21T15:28:43Z] A>B:x")->time, (LineTime{utcClock, utc}));
    EXPECT_EQ(FrameLine::Read("[0 2026-11-21T15:28:43] A>B:x")->time,
              (LineTime{LineTime::Clock::Unknown, utc}));
    EXPECT_EQ(FrameLine::Read("[ig] A>B:x")->channel, 0);
    EXPECT_EQ(FrameLine::Read("[999999999999] A>B:x")->channel, 0);
    EXPECT_EQ(FrameLine::Read("[-1] A>B:x")->channel, 0);
}

TEST(FrameLine, timesStandBeforeOrBehindTheBrackets) {
    for (const char* text : {"2026-11-21T15:28:43Z A>B:x", "2026-11-21 15:28:43 UTC A>B:x",
                             "2026-11-21 15:28:43 UTC [0.3] A>B:x", "[0.3] 2026-11-21T15:28:43Z A>B:x",
                             "2026-11-21T15:28:43Z A,T#1"}) {
        const auto line = FrameLine::Read(text);
        ASSERT_TRUE(line) << text;
        EXPECT_EQ(line->time, (LineTime{utcClock, utc})) << text;
    }
    // The date is of a form that is not read, so the time of day alone would mislead.
    const auto line = FrameLine::Read("21.11.2026 15:28:43 A>B:x");
    ASSERT_TRUE(line);
    EXPECT_FALSE(line->time);
}

TEST(FrameLine, callsignsMayBeginLikeTimes) {
    EXPECT_EQ(FrameLine::Read("2026>B:x")->source, "2026");
    EXPECT_EQ(FrameLine::Read("15:28:43 9A1ABC>B:x")->source, "9A1ABC");
}

TEST(FrameLine, aTelemetryLineBehindItsCallsignIsRead) {
    const auto line = FrameLine::Read("QIRAN-1,T#001,10,20,30,40,0,0,00101111,0");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->source, "QIRAN-1");
    EXPECT_EQ(line->destination, "");
    EXPECT_EQ(line->information, "T#001,10,20,30,40,0,0,00101111,0");
}

TEST(FrameLine, whatIsNoFrameIsRefused) {
    for (const char* text : {"",
                             " ",
                             ">",
                             ":",
                             "A>:x",
                             ">B:x",
                             "A>B",
                             "A>B,:x",
                             "A>B,,C:x",
                             "A>B,C**:x",
                             "A>B C:x",
                             "A B>C:x",
                             "TOOLONGCALL>B:x",
                             "A>TOOLONGCALL:x",
                             "a b c",
                             "[0.3 A>B:x",
                             "XQ9ZZ-1 audio level = 73(36/38)   [NONE]   |||||||__",
                             "A*>B:x",
                             "A>B*:x",
                             "QIRAN-1,001,2",
                             ",T#001",
                             "http://a>b:c",
                             "*** AGW-Connected to - localhost",
                             "1 2 3 4 5 6 7 8 A>B:x",
                             "15:28:43 15:28:43 15:28:43 15:28:43 15:28:43 A>B:x"})
        EXPECT_FALSE(FrameLine::Read(text)) << text;
}

TEST(FrameLine, onlyEscapesOfUnseenBytesAreRead) {
    EXPECT_EQ(FrameLine::Read("A>B:<0x1F><0xfF><0x7f><0x80>")->information, "\x1f\xff\x7f\x80");
    for (const char* text :
         {"<0x41>", "<0x1>", "<0x001>", "<0x0g>", "<0x", "<0x1f", "<0x+1>", "<0x-1>", "<", "<0x<0x41>"})
        EXPECT_EQ(FrameLine::Read("A>B:"s + text)->information, text);
}

TEST(LogHeader, aHeaderIsReadFieldByField) {
    const auto header = LogHeader::Read("12:00:01R XQ9ZZ-1>APRS,QIRAN-1,WIDE2-2* Port=2 <UI Len=42>:");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->timeOfDay, 43201000);
    EXPECT_FALSE(header->isTransmitted);
    EXPECT_EQ(header->source, "XQ9ZZ-1");
    EXPECT_EQ(header->destination, "APRS");
    EXPECT_EQ(header->path, "QIRAN-1*,WIDE2-2*");
    EXPECT_EQ(header->port, 2);
    EXPECT_EQ(header->kind, 'U');
    EXPECT_EQ(header->length, 42U);
}

TEST(LogHeader, directionAndKindAreTold) {
    EXPECT_TRUE(LogHeader::Read("12:00:01T A>B Port=1 <UI Len=8 PF=0>:")->isTransmitted);
    EXPECT_EQ(LogHeader::Read("12:00:01T A>B Port=1 <UI Len=8 PF=0>:")->length, 8U);
    EXPECT_EQ(LogHeader::Read("12:00:01R A>B Port=1 <I S3 R3 Len=15 P=1>:")->kind, 'I');
    EXPECT_EQ(LogHeader::Read("12:00:01R A>B Port=1 <RR R1 F=0>:")->kind, 'S');
    EXPECT_EQ(LogHeader::Read("12:00:01R A>B Port=1 <UI>:")->kind, 'U');
    EXPECT_EQ(LogHeader::Read("12:00:01R A>B Port=1 <UI>:")->length, 0U);
    EXPECT_EQ(LogHeader::Read("12:00:01R A>B Port=1 <UI Len=99999999999999999999999>:")->length, 0U);
}

TEST(LogHeader, whatIsNoHeaderIsRefused) {
    for (const char* text :
         {"", "12:00:01 A>B:", "12:00:01R A>B Port=1 <UI Len=8>", "12:00:01X A>B Port=1 <UI>:",
          "24:00:01R A>B Port=1 <UI>:", "12:00:01R A>B Port=0 <UI>:", "12:00:01R A>B Port=257 <UI>:",
          "12:00:01R A>B Port=x <UI>:", "12:00:01R A>B <UI>:", "12:00:01R A>B,C D Port=1 <UI>:",
          "12:00:01R A B Port=1 <UI>:", "12:00:01RA>B Port=1 <UI>:", ">:", "12:00:01R A>B Port=1 >:"})
        EXPECT_FALSE(LogHeader::Read(text)) << text;
}

} // namespace
