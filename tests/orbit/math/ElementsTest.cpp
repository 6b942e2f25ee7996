#include "TestElements.h"
#include "orbit/elements/ElementFile.h"
#include "orbit/elements/ElementFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace orbitmath;
using namespace testelements;
namespace fs = std::filesystem;

namespace {

const std::string line1 = WithChecksum(issLine1);
const std::string line2 = WithChecksum(issLine2);

/// A line with some columns written over, counted from 1, and its checksum made right again.
std::string With(std::string line, std::size_t column, const std::string& text) {
    line.replace(column - 1, text.size(), text);
    return WithChecksum(line);
}

Elements Read(const std::string& one, const std::string& two) {
    const auto read = ReadElements(one, two);
    const auto* elements = std::get_if<Elements>(&read);
    EXPECT_NE(elements, nullptr) << std::get<ElementFault>(read).what << "\n" << one << "\n" << two;
    return elements ? *elements : Elements{};
}

/// The fault as "line, column: what"; empty when there is none.
std::string WhyNot(const std::string& one, const std::string& two) {
    const auto read = ReadElements(one, two);
    const auto* fault = std::get_if<ElementFault>(&read);
    if (fault == nullptr)
        return {};
    ElementRecord record;
    record.line = static_cast<std::size_t>(fault->line);
    return FaultText(record, *fault);
}

std::string Numbered(const std::string& line, const std::string& number) {
    return With(line, 3, number);
}

class ElementFolderTest : public testing::Test {
protected:
    ElementFolderTest()
        : m_path(fs::temp_directory_path() / ("ElementFolderTest." + std::to_string(getpid()))) {
        fs::create_directory(m_path);
    }
    ~ElementFolderTest() override { fs::remove_all(m_path); }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
    }
    ElementFolder Load() {
        m_reports.clear();
        auto folder = ElementFolder::Read(m_path.string(),
                                          [this](const std::string& line) { m_reports.push_back(line); });
        EXPECT_TRUE(folder);
        return folder ? std::move(*folder) : ElementFolder();
    }

    const fs::path m_path;
    std::vector<std::string> m_reports;
};

} // namespace

TEST(ElementsTest, FieldsAreReadByTheirColumns) {
    const Elements e = Read(line1, line2);
    EXPECT_EQ(e.number, 25544U);
    EXPECT_NEAR(e.epochUtc, 46342.51782528, 1e-9);
    EXPECT_DOUBLE_EQ(e.inclination, 51.64 * radiansPerDegree);
    EXPECT_DOUBLE_EQ(e.node, 208.9163 * radiansPerDegree);
    EXPECT_DOUBLE_EQ(e.eccentricity, 0.0006703);
    EXPECT_DOUBLE_EQ(e.argumentOfPerigee, 69.9862 * radiansPerDegree);
    EXPECT_DOUBLE_EQ(e.meanAnomaly, 25.2906 * radiansPerDegree);
    EXPECT_DOUBLE_EQ(e.meanMotion, 15.49560532 * twoPi / 1440);
    EXPECT_DOUBLE_EQ(e.bstar, 0.30777e-3);
}

TEST(ElementsTest, ExponentFieldsAreReadInAllTheirForms) {
    const struct {
        std::string field;
        double value;
    } forms[] = {
        {" 28098-4", 0.28098e-4}, {"-28098-4", -0.28098e-4}, {"+28098-4", 0.28098e-4},
        {" 00000-0", 0},          {" 00000+0", 0},           {" 00000 0", 0},
        {"        ", 0},          {" 13519-0", 0.13519},     {" 13519+0", 0.13519},
        {" 13519 0", 0.13519},    {" 12345+1", 1.2345},      {".12345-3", 0.12345e-3},
        {"1234-10 ", 0.1234e-10}, {"  1234-3", 0.1234e-3},   {"00000000", 0},
    };
    for (const auto& form : forms)
        EXPECT_DOUBLE_EQ(Read(With(line1, 54, form.field), line2).bstar, form.value) << form.field;
    for (const char* field : {" 2809x-4", " 28098-x", " 28098*4", "-       ", " 28098- "})
        EXPECT_EQ(WhyNot(With(line1, 54, field), line2), "line 1, column 54: the drag term is no number")
            << field;
}

TEST(ElementsTest, EpochsGoFrom1957To2056) {
    EXPECT_EQ(Read(With(line1, 19, "57001.00000000"), line2).epochUtc, 20821);   // 1957-01-01
    EXPECT_EQ(Read(With(line1, 19, "56366.00000000"), line2).epochUtc, 57345);   // 2056-12-31
    EXPECT_EQ(Read(With(line1, 19, "00060.50000000"), line2).epochUtc, 36585.5); // 2000-02-29 12:00
    EXPECT_EQ(Read(With(line1, 19, "99365.00000000"), line2).epochUtc, 36525);   // 1999-12-31
    for (const char* epoch : {"26366.00000000", "26000.50000000", "26-01.00000000", "xx001.00000000"})
        EXPECT_EQ(WhyNot(With(line1, 19, epoch), line2), "line 1, column 19: the epoch is no date") << epoch;
}

TEST(ElementsTest, Alpha5NumbersAreReadAndIAndOAreNoLettersOfTheirs) {
    EXPECT_EQ(CatalogueNumber("A0000"), 100000U);
    EXPECT_EQ(CatalogueNumber("H9999"), 179999U);
    EXPECT_EQ(CatalogueNumber("J0000"), 180000U);
    EXPECT_EQ(CatalogueNumber("P0000"), 230000U);
    EXPECT_EQ(CatalogueNumber("Z9999"), 339999U);
    EXPECT_EQ(CatalogueNumber(" 00005 "), 5U);
    EXPECT_EQ(CatalogueNumber("999999999"), 999999999U);
    for (const char* text : {"I0000", "O0000", "a0000", "A000", "", " ", "1234567890", "12a", "-5"})
        EXPECT_FALSE(CatalogueNumber(text)) << text;
    EXPECT_EQ(Read(Numbered(line1, "T0417"), Numbered(line2, "T0417")).number, 270417U);
}

TEST(ElementsTest, DamagedSetsSayWhatIsWrongInWhichColumn) {
    std::string wrongSum = line1;
    wrongSum.back() = wrongSum.back() == '9' ? '0' : static_cast<char>(wrongSum.back() + 1);
    EXPECT_EQ(WhyNot(wrongSum, line2), "line 1, column 69: the checksum is wrong");
    EXPECT_EQ(WhyNot(line1.substr(0, 68) + "x", line2), "line 1, column 69: the checksum is no digit");
    EXPECT_EQ(WhyNot(line1.substr(0, 68), line2), "line 1, column 69: the line is too short");
    EXPECT_EQ(WhyNot(line1, line2 + "1"), "line 2, column 70: the line is too long");
    for (const std::size_t column : {2u, 9u, 18u, 33u, 44u, 53u, 62u, 64u})
        EXPECT_EQ(WhyNot(With(line1, column, "5"), line2),
                  "line 1, column " + std::to_string(column) +
                      ": the column between two fields is not blank");
    for (const std::size_t column : {2u, 8u, 17u, 26u, 34u, 43u, 52u})
        EXPECT_EQ(WhyNot(line1, With(line2, column, "5")),
                  "line 2, column " + std::to_string(column) +
                      ": the column between two fields is not blank");
    EXPECT_EQ(WhyNot(line2, line1), "line 1, column 1: the line does not begin with its number");
    EXPECT_EQ(WhyNot(With(line1, 10, "\x80"), line2), "line 1, column 10: a character that is no text");
    EXPECT_EQ(WhyNot(Numbered(line1, "2554x"), line2), "line 1, column 3: the catalogue number is none");
    EXPECT_EQ(WhyNot(line1, Numbered(line2, "25545")),
              "line 2, column 3: the catalogue number is not that of line 1");
    EXPECT_EQ(WhyNot(With(line1, 34, " .0001671x"), line2),
              "line 1, column 34: the first derivative is no number");
    EXPECT_EQ(WhyNot(With(line1, 45, " 0000x-0"), line2),
              "line 1, column 45: the second derivative is no number");
    EXPECT_EQ(WhyNot(With(line1, 63, "4"), line2), "line 1, column 63: elements of another theory (SGP4-XP)");
    EXPECT_EQ(WhyNot(line1, With(line2, 9, "180.0001")),
              "line 2, column 9: the inclination is no angle from 0 to 180 degrees");
    EXPECT_EQ(WhyNot(line1, With(line2, 18, "-10.0000")),
              "line 2, column 18: the ascending node is no angle from 0 to 360 degrees");
    EXPECT_EQ(WhyNot(line1, With(line2, 35, "360.0001")),
              "line 2, column 35: the argument of perigee is no angle from 0 to 360 degrees");
    EXPECT_EQ(WhyNot(line1, With(line2, 44, " 25.29x6")),
              "line 2, column 44: the mean anomaly is no angle from 0 to 360 degrees");
    EXPECT_EQ(WhyNot(line1, With(line2, 27, "00-6703")), "line 2, column 27: the eccentricity is no number");
    for (const char* revolutions : {" 0.00000000", "25.00000000"})
        EXPECT_EQ(WhyNot(line1, With(line2, 53, revolutions)),
                  "line 2, column 53: the mean motion is no number or cannot be");
}

TEST(ElementsTest, ExtremesThatCanBeAreGood) {
    EXPECT_EQ(Read(line1, With(line2, 9, "180.0000")).inclination, pi);
    EXPECT_EQ(Read(line1, With(line2, 9, "  0.0000")).inclination, 0);
    EXPECT_EQ(Read(line1, With(line2, 27, "0000000")).eccentricity, 0);
    EXPECT_EQ(Read(line1, With(line2, 27, "9999999")).eccentricity, 0.9999999);
}

TEST_F(ElementFolderTest, LineEndsBlankLinesBlanksAndNamePrefixesDoNotMatter) {
    Write("a.txt", "\xEF\xBB\xBF\r\n0 ISS (ZARYA)   \r\n\r\n" + line1 + "  \r\n\r\n" + line2 + " \t\r\n");
    Write("b.txt", "QIRAN\n" + Numbered(line1, "90417") + "\n" + Numbered(line2, "90417"));
    Write("c.txt", Numbered(line1, "00007") + "\n" + Numbered(line2, "00007") + "\n");
    const ElementFolder folder = Load();
    ASSERT_EQ(folder.Count(), 3U);
    ASSERT_NE(folder.Find("25544"), nullptr);
    EXPECT_EQ(folder.Find("25544")->name, "ISS (ZARYA)");
    EXPECT_EQ(folder.FileOf(*folder.Find("25544")), "a.txt");
    EXPECT_EQ(folder.Find("iss (zarya)"), folder.Find("25544"));
    EXPECT_EQ(folder.Find(" QIRAN "), folder.Find("90417"));
    EXPECT_EQ(folder.Find("7")->name, "");
    EXPECT_EQ(folder.Find("00007"), folder.Find("7"));
    EXPECT_EQ(folder.Find("8"), nullptr);
    EXPECT_EQ(folder.Find(""), nullptr);
    EXPECT_TRUE(m_reports.empty());
}

TEST_F(ElementFolderTest, TheNewestEpochIsUsedWhereverItStands) {
    const std::string older = With(line1, 19, "26300.00000000");
    Write("a.txt", "OLD\n" + older + "\n" + line2 + "\nNEW\n" + line1 + "\n" + line2 + "\n");
    Write("b.txt", "OLDER\n" + older + "\n" + line2 + "\n");
    const ElementFolder folder = Load();
    EXPECT_EQ(folder.Count(), 1U);
    EXPECT_EQ(folder.Find("25544")->name, "NEW");
    EXPECT_EQ(folder.FileOf(*folder.Find("25544")), "a.txt");
    EXPECT_NEAR(folder.Find("25544")->elements.epochUtc, 46342.51782528, 1e-9);
}

TEST_F(ElementFolderTest, DamagedSetsArePassedOverWithOneLineAFileAndHideNothing) {
    std::string wrong = line1;
    wrong[25] = wrong[25] == '9' ? '0' : '9';
    Write("bad.txt", "ISS\n" + wrong + "\n" + line2 + "\nISS\n" + line1.substr(0, 60) + "\n" + line2 + "\n" +
                         line1 + "\nQIRAN\n" + Numbered(line1, "90417") + "\n" + Numbered(line2, "90417") +
                         "\n" + line2 + "\n");
    Write("good.txt", "ISS\n" + line1 + "\n" + line2 + "\n");
    const ElementFolder folder = Load();
    ASSERT_EQ(m_reports.size(), 1U);
    EXPECT_EQ(
        m_reports[0],
        (m_path / "bad.txt").string() +
            ", line 2, column 69: the checksum is wrong; element set passed over, and 3 more in this file");
    ASSERT_NE(folder.Find("25544"), nullptr);
    EXPECT_EQ(folder.FileOf(*folder.Find("25544")), "good.txt");
    ASSERT_NE(folder.Find("90417"), nullptr);
    EXPECT_EQ(folder.Find("90417")->name, "QIRAN");
}

TEST_F(ElementFolderTest, TheCountIsThatOfTheOtherDamagedSetsInAFile) {
    const std::string damaged = With(line1, 9, "5") + "\n" + line2 + "\n";
    Write("a.txt", damaged);
    Write("b.txt", damaged + damaged);
    Load();
    const std::string fault = ", line 1, column 9: the column between two fields is not blank";
    ASSERT_EQ(m_reports.size(), 2U);
    EXPECT_EQ(m_reports[0], (m_path / "a.txt").string() + fault + "; element set passed over");
    EXPECT_EQ(m_reports[1],
              (m_path / "b.txt").string() + fault + "; element set passed over, and 1 more in this file");
}

TEST_F(ElementFolderTest, ATextThatCountsItsLinesIsNoDamageButItsPairsAreNoElements) {
    Write("readme.txt", "0 zero\n1 one\nand so on\n2 two\n");
    const ElementFolder folder = Load();
    EXPECT_EQ(folder.Count(), 0U);
    EXPECT_TRUE(m_reports.empty());
}

TEST_F(ElementFolderTest, BinaryFilesLinksToThemselvesAndFoldersDoNoHarm) {
    Write("iss.txt", "ISS\n" + line1 + "\n" + line2 + "\n");
    std::string binary(300000, '\0');
    for (std::size_t k = 0; k < binary.size(); ++k)
        binary[k] = static_cast<char>(k * 2654435761U >> 13);
    Write("binary", binary + "\n" + line1 + "\n"); // no half of a set
    Write("empty", "");
    Write("oneline", std::string(3000000, '1'));
    fs::create_symlink("loop", m_path / "loop");
    fs::create_symlink("nowhere", m_path / "dangling");
    fs::create_directory_symlink(".", m_path / "self");
    fs::create_directory(m_path / "folder.txt");
    ASSERT_EQ(mkfifo((m_path / "pipe").c_str(), 0600), 0); // nobody ever writes into it
    const ElementFolder folder = Load();
    EXPECT_EQ(folder.Count(), 1U);
    EXPECT_TRUE(m_reports.empty());
}

TEST_F(ElementFolderTest, BlanksAroundTheLinesOfASetDoNotMatter) {
    Write("a.txt", "  ISS (ZARYA)\n " + line1 + "\n\t" + line2 + "\n");
    const ElementFolder folder = Load();
    ASSERT_NE(folder.Find("25544"), nullptr);
    EXPECT_EQ(folder.Find("25544")->name, "ISS (ZARYA)");
    EXPECT_EQ(folder.Find("25544")->line, 2U);
    EXPECT_TRUE(m_reports.empty());
}

TEST_F(ElementFolderTest, HiddenFilesAreNotRead) {
    Write(".hidden.txt", line1 + "\n" + line2 + "\n");
    Write("seen", Numbered(line1, "90417") + "\n" + Numbered(line2, "90417") + "\n");
    const ElementFolder folder = Load();
    EXPECT_EQ(folder.Find("25544"), nullptr);
    EXPECT_NE(folder.Find("90417"), nullptr);
}

TEST_F(ElementFolderTest, OfAHugeFileTheBeginningIsReadAndAFolderOfThousandsIsReadWhole) {
    {
        std::ofstream huge(m_path / "huge.txt", std::ios::binary);
        huge << line1 << '\n' << line2 << '\n';
        const std::string line(4095, 'x');
        for (int k = 0; k < 64 * 256; ++k)
            huge << line << '\n';
        huge << Numbered(line1, "90417") << '\n' << Numbered(line2, "90417") << '\n';
    }
    for (int k = 0; k < 5000; ++k)
        Write(std::to_string(k), "note\n");
    const ElementFolder folder = Load();
    EXPECT_NE(folder.Find("25544"), nullptr);
    EXPECT_EQ(folder.Count(), 1U);
}

TEST_F(ElementFolderTest, AnEndlessLineIsNotKept) {
    {
        std::ofstream file(m_path / "line.txt", std::ios::binary);
        const std::string part(1 << 20, 'x');
        for (int k = 0; k < 48; ++k)
            file << part;
        file << '\n' << line1 << '\n' << line2 << '\n';
    }
    const auto mostKilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const long before = mostKilobytes();
    EXPECT_EQ(Load().Count(), 1U);
    EXPECT_LT(mostKilobytes() - before, 16 * 1024);
}

TEST_F(ElementFolderTest, AMissingFolderIsNone) {
    EXPECT_FALSE(ElementFolder::Read((m_path / "nowhere").string(), {}));
    EXPECT_FALSE(ElementFolder::Read("", {}));
    Write("file", "x");
    EXPECT_FALSE(ElementFolder::Read((m_path / "file").string(), {}));
}
