#include "orbit/math/KVRSatLib.h"

#include "TestElements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <unistd.h>

using namespace testelements;
namespace fs = std::filesystem;

namespace {

constexpr double now = 46342.5; // 2026-11-16 12:00

/// A library over a folder of its own that holds the space station's elements.
class KVRSatLibTest : public testing::Test {
protected:
    KVRSatLibTest()
        : m_folder(fs::temp_directory_path() / ("KVRSatLibTest." + std::to_string(getpid()))) {
        fs::create_directory(m_folder);
        std::ofstream(m_folder / "iss.txt") << issName << "\r\n"
                                            << WithChecksum(issLine1.substr(0, 68)) << "\r\n"
                                            << WithChecksum(issLine2.substr(0, 68)) << "\r\n";
        EXPECT_TRUE(m_library.SetElementFolder(m_folder.string()));
        EXPECT_TRUE(m_library.SetObserverLatitude(52.5));
        EXPECT_TRUE(m_library.SetObserverLongitude(13.4));
    }
    ~KVRSatLibTest() override { fs::remove_all(m_folder); }

    fs::path m_folder;
    std::vector<std::string> m_reports;
    KVRSatLib m_library{[this](const std::string& line) { m_reports.push_back(line); }};
};

} // namespace

TEST_F(KVRSatLibTest, PositionAnswersByNumberAndByNameLine) {
    const double time = m_library.ConvertTime(now).value();
    const auto byNumber = m_library.Position("25544", time, 0);
    const auto byName = m_library.Position("ISS (ZARYA)", time, 0);
    ASSERT_TRUE(byNumber && byName);
    EXPECT_EQ(byNumber->range, byName->range);
    EXPECT_NEAR(byNumber->altitude, 420, 30);
    EXPECT_FALSE(m_library.Position("25545", time, 0));
}

TEST_F(KVRSatLibTest, ListPassesGivesItemsInTheirShape) {
    const auto list = m_library.ListPasses("25544", now, 10, 3, 0, 0);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->front(), '(');
    EXPECT_EQ(list->back(), ')');
}
