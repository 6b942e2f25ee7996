#include "orbit/service/KVRSatLib.h"

#include "TestElements.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <thread>
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

TEST_F(KVRSatLibTest, PassItemsBeginAtOrAfterTheStartAndSayWhatTheSearchFound) {
    const auto list = m_library.ListPasses("25544", now, 10, 3, 0, 0);
    const auto found = m_library.Passes("25544", now, 10, 3);
    ASSERT_TRUE(list && found);
    ASSERT_GT(found->passes.size(), 10U);
    std::istringstream items(*list);
    std::size_t k = 0;
    for (std::string item; std::getline(items, item, ','); ++k) {
        ASSERT_LT(k, found->passes.size());
        const orbitmath::Pass& pass = found->passes[k];
        ASSERT_EQ(item.front(), '(');
        ASSERT_EQ(item.back(), ')');
        std::istringstream fields(item.substr(1, item.size() - 2));
        std::string start;
        double rise = 0;
        double set = 0;
        double highest = 0;
        double duration = 0;
        fields >> start >> rise >> set >> highest >> duration;
        ASSERT_EQ(start.size(), 14U);
        const double second = 1.0 / 86400;
        const double startUtc = 46342 + std::stoi(start.substr(6, 2)) - 16 +
                                (std::stoi(start.substr(8, 2)) * 3600 + std::stoi(start.substr(10, 2)) * 60 +
                                 std::stoi(start.substr(12, 2))) *
                                    second;
        EXPECT_EQ(start.substr(0, 6), "202611");
        EXPECT_GE(startUtc, pass.riseUtc - 1e-10);
        EXPECT_LT(startUtc, pass.riseUtc + second);
        EXPECT_NEAR(rise, pass.riseAzimuth / orbitmath::radiansPerDegree, 0.0051);
        EXPECT_NEAR(set, pass.setAzimuth / orbitmath::radiansPerDegree, 0.0051);
        EXPECT_NEAR(highest, pass.maxElevation / orbitmath::radiansPerDegree, 0.0051);
        EXPECT_NEAR(startUtc + duration * second, pass.setUtc, 1.0001 * second);
    }
    EXPECT_EQ(k, found->passes.size());
}

TEST_F(KVRSatLibTest, APassIsListedUntilItBeginsAndNoLonger) {
    const double rise = m_library.Passes("25544", now, 10, 3)->passes.at(2).riseUtc;
    const double millisecond = 1.0 / 86400000;
    const auto before = m_library.Passes("25544", rise - millisecond, 10, 1);
    const auto after = m_library.Passes("25544", rise + millisecond, 10, 1);
    EXPECT_NEAR(before->passes.at(0).riseUtc, rise, 1e-9);
    EXPECT_GT(after->passes.at(0).riseUtc, rise + 0.01);
}

TEST_F(KVRSatLibTest, CountsBoundThePassesADayTimesTheDays) {
    EXPECT_EQ(m_library.Passes("25544", now, 1, 3)->passes.size(), 3U);
    EXPECT_EQ(m_library.ListPasses("25544", now, 0, 3, 0, 0), "");
    EXPECT_EQ(m_library.ListPasses("25544", now, 10, 0, 0, 0), "");
    EXPECT_EQ(m_library.ListPasses("25544", now, -1, -3, 0, 0), "");
    EXPECT_EQ(m_library.ListPasses("25544", now, -1, 3, 0, 0), "");
    EXPECT_EQ(m_library.ListPasses("25544", now, 10, -3, 0, 0), "");
    EXPECT_TRUE(m_library.ListPasses("25544", now, 2147483647, 2, 0, 0));
}

TEST_F(KVRSatLibTest, TheNextPassIsStillListedInTheEveningAtSeventyNorth) {
    ASSERT_TRUE(m_library.SetObserverLatitude(70));
    std::ofstream(m_folder / "polar.txt")
        << "POLAR\n"
        << WithChecksum("1 90417U 26001A   26320.00000000  .00000000  00000-0  00000-0 0  999") << "\n"
        << WithChecksum("2 90417  98.2000 100.0000 0001000   0.0000   0.0000 14.80000000    1") << "\n";
    ASSERT_TRUE(m_library.SetElementFolder(m_folder.string()));
    const auto found = m_library.Passes("90417", std::floor(now), 10, 2);
    ASSERT_EQ(found->passes.size(), 20U);
    EXPECT_GT(found->passes.back().riseUtc, std::floor(now) + 1);
}

TEST_F(KVRSatLibTest, WhatCannotBeAnsweredIsAFailure) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const double time = m_library.ConvertTime(now).value();
    EXPECT_FALSE(m_library.ListPasses("1", now, 10, 3, 0, 0));
    EXPECT_FALSE(m_library.ElementsOf("1"));
    for (const double bad : {nan, infinity, -infinity, 1e300}) {
        EXPECT_FALSE(m_library.Position("25544", bad, 0)) << bad;
        EXPECT_FALSE(m_library.ListPasses("25544", bad, 10, 3, 0, 0)) << bad;
        EXPECT_FALSE(m_library.ConvertTime(bad)) << bad;
        EXPECT_FALSE(m_library.SetObserverLatitude(bad)) << bad;
        EXPECT_FALSE(m_library.SetObserverLongitude(bad)) << bad;
    }
    EXPECT_FALSE(m_library.Position("25544", time, nan));
    EXPECT_FALSE(m_library.SetObserverLatitude(90.1));
    EXPECT_FALSE(m_library.SetObserverLongitude(-1));
    EXPECT_FALSE(m_library.SetElementFolder((m_folder / "nowhere").string()));
    EXPECT_TRUE(m_library.Position("25544", time, 0)) << "a failing call changes nothing";
}

TEST_F(KVRSatLibTest, LibraryTimeIsTheJulianDateAndLosesLessThanATenthOfAMillisecond) {
    EXPECT_EQ(m_library.ConvertTime(34981.5), 2450000.0); // 1995-10-09 12:00
    EXPECT_EQ(m_library.ConvertTime(36526.5), 2451545.0); // 2000-01-01 12:00
    for (int k = 0; k < 1000; ++k) {
        const double utc = now + k * 0.001234567;
        EXPECT_LT(std::abs(m_library.ConvertTime(utc).value() - 2415018.5 - utc) * 86400e3, 0.1);
    }
}

TEST_F(KVRSatLibTest, InViewIsAnElevationGreaterThanTheThreshold) {
    const auto found = m_library.Passes("25544", now, 10, 1);
    const double top = m_library.ConvertTime(found->passes.at(0).highestUtc).value();
    const auto position = m_library.Position("25544", top, 0);
    const double degrees = position->elevation / orbitmath::radiansPerDegree;
    EXPECT_TRUE(position->visible);
    EXPECT_FALSE(m_library.Position("25544", top, degrees + 0.001)->visible);
    EXPECT_TRUE(m_library.Position("25544", top, degrees - 0.001)->visible);
}

TEST_F(KVRSatLibTest, ValuesLieInTheirRangesAllTheWayRound) {
    for (int k = 0; k < 2000; ++k) {
        const auto p = m_library.Position("25544", m_library.ConvertTime(now + k * 0.0007).value(), 0);
        ASSERT_TRUE(p);
        EXPECT_TRUE(p->azimuth >= 0 && p->azimuth < orbitmath::twoPi);
        EXPECT_TRUE(std::abs(p->elevation) <= orbitmath::pi / 2);
        EXPECT_TRUE(p->phase >= 0 && p->phase < 256) << p->phase;
        EXPECT_EQ(p->south, p->latitude < 0);
        EXPECT_LT(std::abs(p->latitude), 52 * orbitmath::radiansPerDegree);
        EXPECT_NEAR(p->altitude, 420, 30);
        EXPECT_GT(p->range, p->altitude - 1);
    }
}

TEST_F(KVRSatLibTest, TheRangeRateIsTheChangeOfTheRange) {
    const double second = 1.0 / 86400;
    for (int k = 0; k < 50; ++k) {
        const double time = m_library.ConvertTime(now + k * 0.013).value();
        const double later = time + 2 * second;
        const double earlier = time - 2 * second;
        const double slope =
            (m_library.Position("25544", later, 0)->range - m_library.Position("25544", earlier, 0)->range) /
            ((later - earlier) * 86400);
        EXPECT_NEAR(m_library.Position("25544", time, 0)->rangeRate, slope, 0.001);
    }
}

TEST_F(KVRSatLibTest, AnObserverUnderTheTrackSeesItOverhead) {
    const double time = m_library.ConvertTime(now + 0.02).value();
    const auto over = m_library.Position("25544", time, 0);
    const double degree = orbitmath::radiansPerDegree;
    ASSERT_TRUE(m_library.SetObserverLatitude(over->latitude / degree));
    ASSERT_TRUE(m_library.SetObserverLongitude(orbitmath::Turned(over->longitude) / degree));
    const auto seen = m_library.Position("25544", time, 0);
    EXPECT_NEAR(seen->elevation / degree, 90, 1e-5);
    EXPECT_NEAR(seen->range, seen->altitude, 1e-6);
}

TEST_F(KVRSatLibTest, ElementsSayTheirNameFileEpochAndMeanMotion) {
    const auto source = m_library.ElementsOf("25544");
    ASSERT_TRUE(source);
    EXPECT_EQ(source->name, "ISS (ZARYA)");
    EXPECT_EQ(source->file, "iss.txt");
    EXPECT_NEAR(source->epochUtc, 46342.51782528, 1e-9);
    EXPECT_NEAR(source->meanMotion, 15.49560532, 1e-9);
}

TEST_F(KVRSatLibTest, TypedPassesAreThoseOfTheSearchOverAnyObserver) {
    const auto found = m_library.Passes("25544", now, 10, 3);
    const PassQuery here{
        .object = "25544", .latitude = 52.5, .longitude = 13.4, .startUtc = now, .days = 3, .most = 30};
    const SatPasses typed = m_library.PassesOf(here);
    ASSERT_EQ(typed.fault, SatPasses::Fault::None);
    ASSERT_EQ(typed.passes.size(), found->passes.size());
    for (std::size_t k = 0; k < typed.passes.size(); ++k) {
        const SatPass& pass = typed.passes[k];
        const orbitmath::Pass& truth = found->passes[k];
        EXPECT_EQ(pass.riseUtc, truth.riseUtc);
        EXPECT_EQ(pass.culminationUtc, truth.highestUtc);
        EXPECT_EQ(pass.setUtc, truth.setUtc);
        EXPECT_DOUBLE_EQ(pass.riseAzimuth, truth.riseAzimuth * 180 / orbitmath::pi);
        EXPECT_DOUBLE_EQ(pass.setAzimuth, truth.setAzimuth * 180 / orbitmath::pi);
        EXPECT_DOUBLE_EQ(pass.maxElevation, truth.maxElevation * 180 / orbitmath::pi);
        EXPECT_NEAR(pass.durationSeconds, (truth.setUtc - truth.riseUtc) * 86400, 1e-6);
        EXPECT_TRUE(pass.sets);
    }
    // West of Greenwich either way, and what the library's own observer is does not matter.
    PassQuery there = here;
    there.latitude = -33;
    there.longitude = -70;
    const SatPasses west = m_library.PassesOf(there);
    ASSERT_TRUE(m_library.SetObserverLatitude(-33) && m_library.SetObserverLongitude(290));
    const auto moved = m_library.Passes("25544", now, 10, 3);
    ASSERT_EQ(west.passes.size(), moved->passes.size());
    EXPECT_NEAR(west.passes.at(0).riseUtc, moved->passes.at(0).riseUtc, 1e-9);
    there.most = 2;
    EXPECT_EQ(m_library.PassesOf(there).passes.size(), 2U);
}

TEST_F(KVRSatLibTest, TypedPassesThatCannotBeSayWhy) {
    using Fault = SatPasses::Fault;
    const PassQuery good{
        .object = "25544", .latitude = 52, .longitude = 13, .startUtc = now, .days = 1, .most = 9};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto faultOf = [&](auto change) {
        PassQuery query = good;
        change(query);
        return m_library.PassesOf(query).fault;
    };
    EXPECT_EQ(faultOf([](PassQuery&) {}), Fault::None);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.object = "1"; }), Fault::UnknownObject);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.latitude = 90.1; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.longitude = -181; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.longitude = 361; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([&](PassQuery& q) { q.longitude = nan; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([&](PassQuery& q) { q.startUtc = nan; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.days = 367; }), Fault::NoPlace);
    EXPECT_EQ(faultOf([](PassQuery& q) { q.startUtc = 1e9; }), Fault::NoPosition);
}

TEST_F(KVRSatLibTest, EverySetOfTheFolderIsListedWithItsFileAndLine) {
    std::ofstream(m_folder / "older.txt")
        << "\n\n"
        << issName << "\n"
        << WithChecksum("1 25544U 98067A   26300.51782528  .00016717  00000-0  30777-3 0  999") << "\n"
        << WithChecksum(issLine2.substr(0, 68)) << "\n"
        << "1 25544U damaged\n2 25544 too\n";
    std::vector<ElementSource> listed;
    ASSERT_TRUE(m_library.ForEachElementSet([&](const ElementSource& source) { listed.push_back(source); }));
    ASSERT_EQ(listed.size(), 2U);
    std::sort(listed.begin(), listed.end(), [](const auto& a, const auto& b) { return a.file < b.file; });
    EXPECT_EQ(listed[0].file, "iss.txt");
    EXPECT_EQ(listed[0].line, 2U);
    EXPECT_EQ(listed[1].file, "older.txt");
    EXPECT_EQ(listed[1].line, 4U);
    EXPECT_NEAR(listed[1].epochUtc, 46322.51782528, 1e-9);
    for (const ElementSource& source : listed) {
        EXPECT_EQ(source.name, issName);
        EXPECT_EQ(source.number, 25544U);
        EXPECT_EQ(source.format, "TLE");
        EXPECT_NEAR(source.meanMotion, 15.49560532, 1e-9);
    }
    fs::remove_all(m_folder);
    EXPECT_FALSE(m_library.ForEachElementSet([](const ElementSource&) { ADD_FAILURE(); }));
}

TEST_F(KVRSatLibTest, WhyThereIsNoPositionIsToldWithFileAndLine) {
    std::ofstream(m_folder / "falling.txt")
        << "FALLING\n"
        << WithChecksum("1 40002U 14002A   26320.00000000  .00000000  00000+0  20000-0 0  999") << "\n"
        << WithChecksum("2 40002  51.6000 208.0000 0005000  70.0000  25.0000 16.20000000    1") << "\n";
    ASSERT_TRUE(m_library.SetElementFolder(m_folder.string()));
    EXPECT_EQ(m_library.WhyNoPosition("40002", 46342.01), "");
    EXPECT_TRUE(m_library.WhyNoPosition("40002", 46343).starts_with("falling.txt, line 2: "))
        << m_library.WhyNoPosition("40002", 46343);
    EXPECT_EQ(m_library.WhyNoPosition("1", now), "");
}

TEST_F(KVRSatLibTest, SeveralThreadsMayAskAtATime) {
    constexpr int objects = 500;
    constexpr int rounds = 40;
    constexpr int threadCount = 4;
    const auto nameOf = [](int k) { return std::to_string(40000 + k); };
    {
        std::ofstream file(m_folder / "many");
        for (int k = 0; k < objects; ++k) {
            const std::string node = std::to_string(100 + k % 200) + '.' + std::to_string(1000 + k);
            file << WithChecksum("1 " + nameOf(k) + issLine1.substr(7, 61)) << "\n"
                 << WithChecksum("2 " + nameOf(k) + issLine2.substr(7, 10) + node + issLine2.substr(25, 43))
                 << "\n";
        }
    }
    KVRSatLib alone([](const std::string&) {});
    ASSERT_TRUE(alone.SetElementFolder(m_folder.string()) && m_library.SetElementFolder(m_folder.string()));
    ASSERT_TRUE(alone.SetObserverLatitude(52.5) && alone.SetObserverLongitude(13.4));
    const KVRSatLib& library = m_library;
    const double time = library.ConvertTime(now).value();
    std::vector<double> ranges;
    for (int k = 0; k < objects; ++k)
        ranges.push_back(alone.Position(nameOf(k), time, 0).value().range);
    std::barrier together(threadCount);
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            together.arrive_and_wait();
            for (int k = 0; k < objects * rounds; ++k) {
                const int object = (k * 7 + thread) % objects;
                const auto position = library.Position(nameOf(object), time, 0);
                wrong += !position || position->range != ranges[static_cast<std::size_t>(object)] ? 1 : 0;
                if (k % 5000 == 0)
                    wrong += library.PassesOf({nameOf(object), 52.5, 13.4, now, 1, 9}).passes.empty() ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(KVRSatLibTest, TheSetThatIsTrackedIsGivenAsItCame) {
    const std::string lines = issName + "\n" + WithChecksum(issLine1.substr(0, 68)) + "\n" +
                              WithChecksum(issLine2.substr(0, 68)) + "\n";
    EXPECT_EQ(m_library.ElementTextOf("25544"), lines);
    EXPECT_EQ(m_library.ElementTextOf("1"), "");
    const std::string header = "NORAD_CAT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,"
                               "ARG_OF_PERICENTER,MEAN_ANOMALY,BSTAR\n";
    const std::string newer = "25544,2026-11-18T00:00:00,15.5,0,51.6,1,2,3,0\n";
    std::ofstream(m_folder / "new.csv")
        << header << "5" << newer << "25544,2026-11-17T00:00:00,15.5,0,51.6,1,2,3,0\n"
        << newer;
    ASSERT_TRUE(m_library.SetElementFolder(m_folder.string()));
    EXPECT_EQ(m_library.ElementTextOf("25544"), header + newer);
    EXPECT_EQ(m_library.ElementsOf("25544")->format, "CSV");
    EXPECT_EQ(m_library.ElementsOf("25544")->line, 4U);
    fs::remove(m_folder / "new.csv");
    EXPECT_EQ(m_library.ElementTextOf("25544"), "");
}
