#include "orbit/math/Propagator.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace orbitmath;

namespace {

struct GoldenState {
    double minutes = 0;
    int error = 0;
    Vector3 position;
    Vector3 velocity;
};

struct GoldenSet {
    std::string line1;
    std::string line2;
    std::vector<GoldenState> states;
};

std::vector<GoldenSet> ReadGolden() {
    std::ifstream file(ORBIT_GOLDEN "/states.txt");
    std::vector<GoldenSet> sets;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        if (line.starts_with("set ")) {
            sets.push_back({line.substr(4), {}, {}});
            std::getline(file, sets.back().line2);
            continue;
        }
        std::istringstream words(line);
        GoldenState state;
        std::string word;
        words >> state.minutes >> word;
        if (word == "error") {
            words >> state.error;
        } else {
            state.position.x = std::stod(word);
            words >> state.position.y >> state.position.z;
            words >> state.velocity.x >> state.velocity.y >> state.velocity.z;
        }
        EXPECT_TRUE(words) << line;
        sets.back().states.push_back(state);
    }
    return sets;
}

Elements ElementsOf(const GoldenSet& set) {
    const auto read = ReadElements(set.line1, set.line2);
    const auto* elements = std::get_if<Elements>(&read);
    EXPECT_NE(elements, nullptr) << std::get<std::string_view>(read) << "\n"
                                 << set.line1 << "\n"
                                 << set.line2;
    return elements ? *elements : Elements{};
}

} // namespace

TEST(PropagatorTest, AgreesWithTheOracleOnEverySetToAMillimetreAndGivesTheSameErrors) {
    const std::vector<GoldenSet> sets = ReadGolden();
    ASSERT_GE(sets.size(), 33U + 200U);
    double worstPosition = 0;
    double worstVelocity = 0;
    int states = 0;
    for (const GoldenSet& set : sets) {
        const Propagator propagator(ElementsOf(set));
        for (const GoldenState& golden : set.states) {
            const Propagation found = propagator.At(golden.minutes);
            const std::string where = set.line1 + "\n" + set.line2 + "\nat " + std::to_string(golden.minutes);
            ASSERT_EQ(static_cast<int>(found.error), golden.error) << where;
            const double position = Length(found.state.position - golden.position);
            const double velocity = Length(found.state.velocity - golden.velocity);
            EXPECT_LT(position, 1e-6) << where;
            EXPECT_LT(velocity, 1e-9) << where;
            worstPosition = std::max(worstPosition, position);
            worstVelocity = std::max(worstVelocity, velocity);
            ++states;
        }
    }
    EXPECT_GT(states, 2000);
    RecordProperty("worstPositionKm", std::to_string(worstPosition));
}
