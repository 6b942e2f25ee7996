#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

/// GoogleTest's filter for the tests of one source file, the test class's; "" where there is no such file.
std::string TestsOfFile(const std::string& stem) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    std::string filter;
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            if (std::filesystem::path(test.file()).stem() == stem)
                filter.append(filter.empty() ? "" : ":").append(suite.name()).append(".").append(test.name());
        }
    }
    return filter;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1) {
        const std::string filter = TestsOfFile(argv[1]);
        if (filter.empty()) {
            std::fprintf(stderr, "No file of this program's tests is called %s.\n", argv[1]);
            return 2;
        }
        testing::FLAGS_gtest_filter = filter;
    }
    return RUN_ALL_TESTS();
}
