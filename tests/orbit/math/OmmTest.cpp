#include "orbit/elements/Omm.h"

#include "TestElements.h"
#include "orbit/elements/ElementFile.h"
#include "orbit/elements/ElementFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace orbitmath;
using namespace testelements;
namespace fs = std::filesystem;

namespace {

/// The keywords of a message and their values, as they stand in it.
using Fields = std::vector<std::pair<std::string, std::string>>;

const Fields good{{"OBJECT_NAME", "ISS (ZARYA)"},
                  {"OBJECT_ID", "1998-067A"},
                  {"EPOCH", "2026-11-16T12:25:40.104192"},
                  {"MEAN_MOTION", "15.49560532"},
                  {"ECCENTRICITY", ".0006703"},
                  {"INCLINATION", "51.64"},
                  {"RA_OF_ASC_NODE", "208.9163"},
                  {"ARG_OF_PERICENTER", "69.9862"},
                  {"MEAN_ANOMALY", "25.2906"},
                  {"EPHEMERIS_TYPE", "0"},
                  {"NORAD_CAT_ID", "25544"},
                  {"BSTAR", ".30777E-3"},
                  {"MEAN_MOTION_DOT", ".00016717"},
                  {"MEAN_MOTION_DDOT", "0"}};

/// With another value of a keyword, which is added where it is missing.
Fields With(const std::string& keyword, const std::string& value, Fields fields = good) {
    for (auto& [known, text] : fields) {
        if (known == keyword) {
            text = value;
            return fields;
        }
    }
    fields.emplace_back(keyword, value);
    return fields;
}

std::string Joined(const Fields& fields, bool isHeader) {
    std::string line;
    for (const auto& [keyword, value] : fields)
        line += (line.empty() ? "" : ",") + (isHeader ? keyword : value);
    return line + "\n";
}

std::string Csv(const Fields& fields) {
    return Joined(fields, true) + Joined(fields, false);
}

std::string Json(const Fields& fields) {
    std::string object;
    for (const auto& [keyword, value] : fields)
        object += (object.empty() ? "{\"" : ",\"") + keyword + "\":\"" + value + "\"";
    return object + "}";
}

std::string Xml(const Fields& fields) {
    std::string element = "<omm><body><segment>";
    for (const auto& [keyword, value] : fields)
        element += "<" + keyword + ">" + value + "</" + keyword + ">";
    return element + "</segment></body></omm>";
}

std::string InList(const std::string& object) {
    return "[" + object + "]";
}

std::string InNdm(const std::string& element) {
    return "<?xml version=\"1.0\"?>\n<ndm>" + element + "</ndm>\n";
}

/// All that a file holds.
struct Content {
    std::vector<Elements> sets;
    std::vector<std::string> names;
    std::vector<std::string> texts;
    std::vector<std::string> faults;
    ElementFileKind kind;

    void Take(const ElementRecord& record) {
        if (const auto* elements = std::get_if<Elements>(&record.content)) {
            sets.push_back(*elements);
            names.emplace_back(record.nameLine);
            texts.push_back(record.Text());
        } else {
            faults.push_back(FaultText(record, std::get<ElementFault>(record.content)));
        }
    }
};

Content Read(const std::string& text) {
    Content content;
    content.kind = ReadElementText(text, [&](const ElementRecord& record) {
        EXPECT_EQ(record.format, content.sets.empty() ? record.format : content.kind.format);
        content.kind.format = record.format;
        content.Take(record);
        return true;
    });
    return content;
}

/// The one fault of a file that holds nothing else.
std::string FaultOf(const std::string& text) {
    const Content content = Read(text);
    EXPECT_EQ(content.sets.size(), 0U);
    EXPECT_EQ(content.faults.size(), 1U);
    return content.faults.empty() ? std::string() : content.faults.front();
}

bool AreSame(const Elements& a, const Elements& b) {
    return a.number == b.number && a.epochUtc == b.epochUtc && a.inclination == b.inclination &&
           a.node == b.node && a.eccentricity == b.eccentricity &&
           a.argumentOfPerigee == b.argumentOfPerigee && a.meanAnomaly == b.meanAnomaly &&
           a.meanMotion == b.meanMotion && a.bstar == b.bstar;
}

std::vector<Elements> GoldenElements() {
    std::ifstream file(ORBIT_GOLDEN "/omm.txt");
    std::vector<Elements> sets;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        std::istringstream words(line);
        Elements set;
        words >> set.number;
        std::array<double, 8> values{};
        for (double& value : values) {
            std::string word;
            words >> word;
            value = std::strtod(word.c_str(), nullptr);
        }
        constexpr double dayOf1950 = 18263; // 1949-12-31
        set.epochUtc = values[0] + dayOf1950;
        set.bstar = values[1];
        set.eccentricity = values[2];
        set.argumentOfPerigee = values[3];
        set.inclination = values[4];
        set.meanAnomaly = values[5];
        set.meanMotion = values[6];
        set.node = values[7];
        EXPECT_TRUE(words) << line;
        sets.push_back(set);
    }
    return sets;
}

class OmmFolderTest : public testing::Test {
protected:
    OmmFolderTest()
        : m_path(fs::temp_directory_path() / ("OmmFolderTest." + std::to_string(getpid()))) {
        fs::create_directory(m_path);
    }
    ~OmmFolderTest() override { fs::remove_all(m_path); }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
    }

    fs::path m_path;
};

} // namespace

TEST(OmmTest, EveryFormatGivesTheOraclesElementsToTheLastBit) {
    const std::vector<Elements> expected = GoldenElements();
    ASSERT_EQ(expected.size(), 120U);
    const std::pair<const char*, ElementFormat> files[] = {{"/omm.csv", ElementFormat::OmmCsv},
                                                           {"/omm.json", ElementFormat::OmmJson},
                                                           {"/omm.xml", ElementFormat::OmmXml}};
    for (const auto& [name, format] : files) {
        Content found;
        found.kind = ReadElementFile(std::string(ORBIT_GOLDEN) + name, [&](const ElementRecord& record) {
            found.Take(record);
            return true;
        });
        EXPECT_EQ(found.kind.format, format);
        EXPECT_FALSE(found.kind.isCut);
        EXPECT_EQ(found.faults, std::vector<std::string>());
        ASSERT_EQ(found.sets.size(), expected.size()) << name;
        for (std::size_t k = 0; k < expected.size(); ++k) {
            EXPECT_TRUE(AreSame(found.sets[k], expected[k])) << name << ", object " << expected[k].number;
            EXPECT_EQ(found.names[k], k % 10 == 0 ? "MADE, UP \"" + std::to_string(k) + "\" & CO"
                                                  : "MADE UP " + std::to_string(k));
        }
    }
}

TEST(OmmTest, ARecordsTextIsAFileOfItsOwn) {
    for (const char* name : {"/omm.csv", "/omm.json", "/omm.xml"}) {
        Content found;
        ReadElementFile(std::string(ORBIT_GOLDEN) + name, [&](const ElementRecord& record) {
            found.Take(record);
            return true;
        });
        for (std::size_t k = 0; k < found.sets.size(); ++k) {
            const Content again = Read(found.texts[k]);
            ASSERT_EQ(again.sets.size(), 1U) << found.texts[k];
            EXPECT_TRUE(AreSame(again.sets.front(), found.sets[k]));
            EXPECT_EQ(again.names.front(), found.names[k]);
        }
    }
    const std::string lines = issName + "\n" + WithChecksum(issLine1) + "\n" + WithChecksum(issLine2) + "\n";
    EXPECT_EQ(Read("\r\n" + lines).texts, std::vector{lines});
}

TEST(OmmTest, ContentTellsTheFormat) {
    const std::pair<std::string, ElementFormat> files[] = {
        {Csv(good), ElementFormat::OmmCsv},
        {"\xEF\xBB\xBF\r\n" + Csv(good), ElementFormat::OmmCsv},
        {Json(good), ElementFormat::OmmJson},
        {"\n [ \n" + Json(good) + "]", ElementFormat::OmmJson},
        {InNdm(Xml(good)), ElementFormat::OmmXml},
        {"\xEF\xBB\xBF" + Xml(good), ElementFormat::OmmXml},
        {"[+] " + issName + "\n" + WithChecksum(issLine1) + "\n" + WithChecksum(issLine2),
         ElementFormat::TwoLines},
        {"{" + issName + "}\n" + WithChecksum(issLine1) + "\n" + WithChecksum(issLine2),
         ElementFormat::TwoLines},
        {"<" + issName + ">\n" + WithChecksum(issLine1) + "\n" + WithChecksum(issLine2),
         ElementFormat::TwoLines},
    };
    for (const auto& [text, format] : files) {
        const Content content = Read(text);
        EXPECT_EQ(content.kind.format, format) << text;
        EXPECT_EQ(content.sets.size(), 1U) << text;
        EXPECT_EQ(content.faults, std::vector<std::string>()) << text;
    }
}

TEST(OmmTest, EpochsHaveAnyDecimalsAndDaysOfTheYear) {
    const auto epoch = [](const std::string& text) {
        const Content content = Read(Csv(With("EPOCH", text)));
        return content.sets.empty() ? 0.0 : content.sets.front().epochUtc;
    };
    EXPECT_DOUBLE_EQ(epoch("2026-11-16T12:00:00"), 46342.5);
    EXPECT_DOUBLE_EQ(epoch("2026-11-16T12:00:00Z"), 46342.5);
    EXPECT_DOUBLE_EQ(epoch("2026-320T12:00:00.0"), 46342.5);
    EXPECT_DOUBLE_EQ(epoch("2024-366T00:00:00"), 45657.0);
    EXPECT_DOUBLE_EQ(epoch("2026-11-16T12:00:00.000001999"), epoch("2026-11-16T12:00:00.000001"));
    EXPECT_DOUBLE_EQ(epoch("1957-01-01T00:00:00.5"), 20821 + 0.5 / 86400);
    EXPECT_DOUBLE_EQ(epoch("2056-12-31T23:59:59"), 57346 - 1.0 / 86400);
    for (const char* wrong :
         {"2026-11-16", "2026-11-16 12:00:00", "2026-13-16T12:00:00", "2026-02-29T12:00:00",
          "2026-11-16T24:00:00", "2026-11-16T12:60:00", "2026-11-16T12:00:60", "2026-11-16T12:00:00.",
          "2026-11-16T12:00:00.5x", "2026-11-16T12:00", "1956-12-31T23:59:59", "2057-01-01T00:00:00",
          "2026-366T00:00:00", "2026-000T00:00:00", "26320.5", "T", "2026-11-1", "someday",
          "2026-11-16T12:00:00+01:00"})
        EXPECT_EQ(FaultOf(Csv(With("EPOCH", wrong))), "line 2, EPOCH: it is no time from 1957 to 2056")
            << wrong;
}

TEST(OmmTest, WhatIsWrongIsToldWithItsField) {
    const struct {
        const char* keyword;
        const char* value;
        const char* fault;
    } cases[] = {
        {"NORAD_CAT_ID", "", "NORAD_CAT_ID: it is missing"},
        {"NORAD_CAT_ID", "1234567890", "NORAD_CAT_ID: the catalogue number is none"},
        {"NORAD_CAT_ID", "-5", "NORAD_CAT_ID: the catalogue number is none"},
        {"EPOCH", "", "EPOCH: it is missing"},
        {"MEAN_MOTION", "", "MEAN_MOTION: it is missing"},
        {"MEAN_MOTION", "0", "MEAN_MOTION: the mean motion is no number or cannot be"},
        {"MEAN_MOTION", "20", "MEAN_MOTION: the mean motion is no number or cannot be"},
        {"MEAN_MOTION", "nan", "MEAN_MOTION: the mean motion is no number or cannot be"},
        {"MEAN_MOTION", "15,5", "it has not as many fields as the header"},
        {"MEAN_MOTION", "15.5 x", "MEAN_MOTION: the mean motion is no number or cannot be"},
        {"ECCENTRICITY", "1", "ECCENTRICITY: it is no number from 0 to 0.9999999"},
        {"ECCENTRICITY", "-.1", "ECCENTRICITY: it is no number from 0 to 0.9999999"},
        {"INCLINATION", "180.0001", "INCLINATION: it is no angle from 0 to 180 degrees"},
        {"RA_OF_ASC_NODE", "-1", "RA_OF_ASC_NODE: it is no angle from 0 to 360 degrees"},
        {"ARG_OF_PERICENTER", "inf", "ARG_OF_PERICENTER: it is no angle from 0 to 360 degrees"},
        {"MEAN_ANOMALY", "360.1", "MEAN_ANOMALY: it is no angle from 0 to 360 degrees"},
        {"BSTAR", "", "BSTAR: it is missing"},
        {"BSTAR", "1e999", "BSTAR: the drag term is no number"},
        {"BSTAR", "12345-3", "BSTAR: the drag term is no number"},
        {"MEAN_MOTION_DOT", "x", "MEAN_MOTION_DOT: it is no number"},
        {"MEAN_MOTION_DDOT", "+-1", "MEAN_MOTION_DDOT: it is no number"},
        {"EPHEMERIS_TYPE", "4", "EPHEMERIS_TYPE: elements of another theory (SGP4-XP)"},
        {"EPHEMERIS_TYPE", "1", "EPHEMERIS_TYPE: elements of another theory than SGP4"},
        {"MEAN_ELEMENT_THEORY", "SGP4-XP", "MEAN_ELEMENT_THEORY: elements of another theory (SGP4-XP)"},
        {"MEAN_ELEMENT_THEORY", "DSST", "MEAN_ELEMENT_THEORY: elements of another theory than SGP4"},
        {"TIME_SYSTEM", "TAI", "TIME_SYSTEM: a time other than UTC"},
        {"REF_FRAME", "EME2000", "REF_FRAME: elements in another frame than TEME"},
        {"CENTER_NAME", "MOON", "CENTER_NAME: it does not circle the earth"},
    };
    for (const auto& one : cases) {
        const Fields fields = With(one.keyword, one.value);
        const bool isOfCsv = std::string_view(one.fault).ends_with("header");
        EXPECT_EQ(FaultOf(Csv(fields)), std::string(isOfCsv ? "line 2: " : "line 2, ") + one.fault);
        if (isOfCsv)
            continue;
        EXPECT_EQ(FaultOf(InList("\n" + Json(fields))), std::string("line 2, record 1, ") + one.fault);
        EXPECT_EQ(FaultOf(InNdm("\n\n" + Xml(fields))), std::string("line 4, record 1, ") + one.fault);
    }
}

TEST(OmmTest, WhatNeedNotBeThereNeedNot) {
    Fields fewest;
    for (const auto& field : good) {
        if (field.first != "OBJECT_NAME" && field.first != "OBJECT_ID" && field.first != "EPHEMERIS_TYPE" &&
            !field.first.starts_with("MEAN_MOTION_"))
            fewest.push_back(field);
    }
    for (const std::string& text : {Csv(fewest), Json(fewest), InNdm(Xml(fewest))}) {
        const Content content = Read(text);
        ASSERT_EQ(content.sets.size(), 1U) << text;
        EXPECT_EQ(content.names.front(), ""); // no group of three lines then
        EXPECT_TRUE(AreSame(content.sets.front(), Read(Csv(good)).sets.front()));
    }
    const Content said = Read(Csv(
        With("TIME_SYSTEM", "UTC",
             With("REF_FRAME", "TEME", With("MEAN_ELEMENT_THEORY", "SGP4", With("CENTER_NAME", "EARTH"))))));
    EXPECT_EQ(said.sets.size(), 1U);
}

TEST(OmmTest, ColumnsComeInAnyOrderWithOthersAmongThem) {
    Fields turned(good.rbegin(), good.rend());
    turned.insert(turned.begin() + 3, {"RCS_SIZE", "\"LARGE, they say\""});
    turned.emplace_back("DECAY_DATE", "");
    const Content content = Read(Csv(turned));
    ASSERT_EQ(content.sets.size(), 1U);
    EXPECT_TRUE(AreSame(content.sets.front(), Read(Csv(good)).sets.front()));
}

TEST(OmmTest, ADamagedLineOfCsvCostsNoOther) {
    const std::string header = Joined(good, true);
    const std::string line = Joined(good, false);
    const std::string crlf = line.substr(0, line.size() - 1) + "\r\n";
    const Content content = Read(header + line + "torn,line\n" + "\n" + "\"open," + line +
                                 std::string(3000, 'x') + "\n" + crlf + header + " " + line);
    EXPECT_EQ(content.sets.size(), 3U);
    EXPECT_EQ(content.faults,
              (std::vector<std::string>{"line 3: it has not as many fields as the header",
                                        "line 5: the quotes do not match", "line 6: the line is too long"}));
}

TEST(OmmTest, ADamagedObjectOfJsonCostsNoOther) {
    const std::string object = Json(good);
    const std::string deep = "{\"a\":" + std::string(5000, '[') + std::string(5000, ']') + "}";
    const Content content =
        Read("[" + object + ",\n{\"NORAD_CAT_ID\":5 6},\n" + deep + ",{\"text\":\"} ] \\\" {\"},{\"big\":\"" +
             std::string(70000, 'x') + "\"}," + object + "]");
    EXPECT_EQ(content.sets.size(), 2U);
    EXPECT_EQ(content.faults,
              (std::vector<std::string>{"line 2, record 2: it is no JSON", "line 3, record 3: it is no JSON",
                                        "line 3, record 4, NORAD_CAT_ID: it is missing",
                                        "line 3, record 5: it is longer than 64 KiB"}));
}

TEST(OmmTest, NumbersOfJsonKeepTheirDigits) {
    std::string object = Json(With("NORAD_CAT_ID", "100000000"));
    for (const char* keyword : {"NORAD_CAT_ID", "MEAN_MOTION", "INCLINATION"}) {
        const std::size_t at = object.find(std::string(keyword) + "\":\"") + std::string(keyword).size() + 2;
        object.erase(at, 1);
        object.erase(object.find('"', at), 1);
    }
    const Content content = Read(object);
    ASSERT_EQ(content.sets.size(), 1U) << object;
    EXPECT_EQ(content.sets.front().number, 100'000'000U);
    EXPECT_EQ(content.sets.front().meanMotion, Read(Csv(good)).sets.front().meanMotion);
}

TEST(OmmTest, ADamagedMessageOfXmlCostsNoOther) {
    const std::string message = Xml(good);
    const Content content = Read(InNdm(
        message +
        "\n<omm><EPOCH>&lol;</EPOCH></omm>\n<omm/><!-- <omm> --><omm><EPOCH>1</EPOCH><EPOCH>2</EPOCH></omm>" +
        "<omm><a></b></omm><omm>" + std::string(70000, 'x') + "</omm>" + message));
    EXPECT_EQ(content.sets.size(), 2U);
    EXPECT_EQ(content.faults, (std::vector<std::string>{"line 3, record 2: it is no XML",
                                                        "line 4, record 3, EPOCH: it stands there twice",
                                                        "line 4, record 4: it is no XML",
                                                        "line 4, record 5: it is longer than 64 KiB"}));
}

TEST(OmmTest, XmlIsReadAsXml) {
    std::string message = Xml(With("OBJECT_NAME", "<![CDATA[A </omm> <B>]]> &amp; C&#xE4;"));
    message.replace(0, 5, "<!-- it's \" --><x:omm id='>'><?pi \"?>");
    message.replace(message.find("</omm>", message.find("body></")), 6, "</x:omm >");
    const Content content =
        Read("<?xml version='1.0'?><!DOCTYPE ndm [<!ENTITY a \"b\">]><ndm>" + message + "</ndm>");
    EXPECT_EQ(content.faults, std::vector<std::string>());
    ASSERT_EQ(content.sets.size(), 1U);
    EXPECT_EQ(content.names.front(), "A </omm> <B> & C\xE4");
    EXPECT_FALSE(content.kind.isCut);
}

TEST(OmmTest, EntitiesThatMultiplyMeanNothing) {
    std::string bomb = "<?xml version='1.0'?><!DOCTYPE ndm [<!ENTITY a0 \"x\">";
    for (int k = 1; k < 40; ++k)
        bomb += "<!ENTITY a" + std::to_string(k) + " \"&a" + std::to_string(k - 1) + ";&a" +
                std::to_string(k - 1) + ";\">";
    const Content content =
        Read(bomb + "]><ndm><omm><OBJECT_NAME>&a39;</OBJECT_NAME></omm>" + Xml(good) + "</ndm>");
    EXPECT_EQ(content.sets.size(), 1U);
    EXPECT_EQ(content.faults, std::vector<std::string>{"line 1, record 1: it is no XML"});
}

TEST(OmmTest, NamesAreOneLineInTheSystemsCodePage) {
    const Content content =
        Read(Json(With("OBJECT_NAME", "T\xC3\x96KK\xC3\x96 \\n  \xE2\x82\xAC" + std::string(80, 'x'))));
    ASSERT_EQ(content.names.size(), 1U);
    EXPECT_EQ(content.names.front(), ("T\xD6KK\xD6 \x80" + std::string(80, 'x')).substr(0, 64));
    EXPECT_EQ(Read(Csv(With("OBJECT_NAME", "  " + std::string(80, 'y')))).names.front(),
              std::string(64, 'y'));
}

TEST(OmmTest, AFileThatIsCutSaysSo) {
    const std::string lines = WithChecksum(issLine1) + "\n" + WithChecksum(issLine2) + "\n";
    for (const std::string& whole :
         {issName + "\n" + lines, Csv(good), Json(good), InList(Json(good)), InNdm(Xml(good)),
          Csv(good) + "torn,line\n" + Joined(good, false), lines + "torn\n" + lines + "/EX\n"})
        EXPECT_FALSE(Read(whole + "\r\n").kind.isCut) << whole;
    for (const std::string& whole : {InList(Json(good)), InNdm(Xml(good))}) {
        for (std::size_t length = 30; length < whole.find_last_of("]>"); ++length) {
            const Content content = Read(whole.substr(0, length) + "\r\n");
            EXPECT_TRUE(content.kind.isCut) << whole.substr(0, length);
            EXPECT_FALSE(content.faults.empty());
        }
    }
    for (std::size_t length = 3; length + 1 < lines.size(); ++length) {
        EXPECT_TRUE(Read(lines.substr(0, length) + "\r\n").kind.isCut) << lines.substr(0, length);
    }
    const std::string csv = Csv(good);
    for (std::size_t length = csv.find('\n') + 2; length < csv.find_last_of(','); ++length)
        EXPECT_TRUE(Read(csv.substr(0, length) + "\r\n").kind.isCut) << csv.substr(0, length);
}

TEST(OmmTest, ItEndsWhenNoMoreIsWanted) {
    for (const std::string& text :
         {Csv(good) + Joined(good, false), InList(Json(good) + "," + Json(good)),
          InNdm(Xml(good) + Xml(good)), InList(Json(good) + "," + Json(good)).substr(0, 600)}) {
        int taken = 0;
        ReadElementText(text, [&](const ElementRecord&) {
            ++taken;
            return false;
        });
        EXPECT_EQ(taken, 1) << text;
    }
}

TEST(OmmTest, AnObjectIsNamedByItsNumberAsGroupOfThreeLines) {
    const auto isGroupOf = [](const Fields& fields, std::string_view number) {
        bool found = false;
        ReadElementText(Csv(fields), [&](const ElementRecord& record) {
            found = record.IsGroupOf(number);
            return false;
        });
        return found;
    };
    EXPECT_TRUE(isGroupOf(good, "25544"));
    EXPECT_FALSE(isGroupOf(good, "2554"));
    EXPECT_FALSE(isGroupOf(With("OBJECT_NAME", " "), "25544"));
    EXPECT_TRUE(isGroupOf(With("NORAD_CAT_ID", "5"), "00005"));
    EXPECT_TRUE(isGroupOf(With("NORAD_CAT_ID", "100001"), "A0001"));
    EXPECT_TRUE(isGroupOf(With("NORAD_CAT_ID", "123456789"), "123456789"));
    EXPECT_TRUE(isGroupOf(With("EPOCH", "someday"), "25544")); // damaged, and found all the same
    EXPECT_FALSE(isGroupOf(good, ""));
}

TEST_F(OmmFolderTest, OfTwoFormatsTheNewestEpochCounts) {
    const std::string lines = issName + "\n" + WithChecksum(issLine1) + "\n" + WithChecksum(issLine2) + "\n";
    Write("a.txt", lines);
    Write("b.csv", Csv(With("EPOCH", "2026-11-17T00:00:00")));
    Write("c.json", Json(With("EPOCH", "2026-11-19T00:00:00", With("OBJECT_NAME", "NEWEST"))));
    Write("d.xml", InNdm(Xml(With("EPOCH", "2026-11-18T00:00:00"))));
    auto folder = ElementFolder::Read(m_path.string(), {});
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->Count(), 1U);
    const ElementSet* set = folder->Find("25544");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->elements.epochUtc, 46345);
    EXPECT_EQ(set->name, "NEWEST");
    EXPECT_EQ(folder->FileOf(*set), "c.json");
    EXPECT_EQ(NameOf(set->format), "JSON");
    EXPECT_EQ(folder->Find("newest"), set);
    fs::remove(m_path / "c.json");
    fs::remove(m_path / "d.xml");
    folder = ElementFolder::Read(m_path.string(), {});
    EXPECT_EQ(NameOf(folder->Find("25544")->format), "CSV");
}

TEST_F(OmmFolderTest, WhatIsRefusedIsReportedWithItsReason) {
    Write("xp.csv", Csv(With("EPHEMERIS_TYPE", "4")) + Joined(With("EPOCH", ""), false));
    std::vector<std::string> reports;
    const auto folder =
        ElementFolder::Read(m_path.string(), [&](const std::string& line) { reports.push_back(line); });
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->Find("25544"), nullptr);
    EXPECT_EQ(
        reports,
        std::vector{(m_path / "xp.csv").string() +
                    ", line 2, EPHEMERIS_TYPE: elements of another theory (SGP4-XP); element set passed "
                    "over, and 1 more in this file"});
}

TEST_F(OmmFolderTest, EndlessRecordsAreNotKept) {
    std::string endless(3 << 20, '[');
    for (const char* start :
         {"[{\"NORAD_CAT_ID\":", "<?xml version='1.0'?><ndm><omm><a ", "<?xml version='1.0'?><ndm><omm>"}) {
        Content content = Read(start + endless);
        EXPECT_EQ(content.faults.size(), 1U);
        EXPECT_TRUE(content.kind.isCut);
    }
}
