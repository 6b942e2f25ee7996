#include "orbit/sgp4/Propagator.h"

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
    EXPECT_NE(elements, nullptr) << std::get<ElementFault>(read).what << "\n"
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

TEST(PropagatorTest, AnyOrderOfTimesGivesTheSameBits) {
    for (const GoldenSet& set : ReadGolden()) {
        const Propagator propagator(ElementsOf(set));
        std::vector<Propagation> forwards;
        for (const GoldenState& golden : set.states)
            forwards.push_back(propagator.At(golden.minutes));
        for (std::size_t k = set.states.size(); k-- > 0;) {
            const Propagation alone = Propagator(ElementsOf(set)).At(set.states[k].minutes);
            const Propagation backwards = propagator.At(set.states[k].minutes);
            ASSERT_EQ(alone.state.position, forwards[k].state.position);
            ASSERT_EQ(backwards.state.position, forwards[k].state.position);
            ASSERT_EQ(backwards.state.velocity, forwards[k].state.velocity);
        }
    }
}

TEST(PropagatorTest, HowFarItIsReadyDoesNotChangeAResonantOrbit) {
    for (const GoldenSet& set : ReadGolden()) {
        const Propagator ready(ElementsOf(set), 400 * 1440.0);
        const Propagator unready(ElementsOf(set), 0);
        for (const double minutes : {-500000.0, -720.0, -719.9, 0.0, 719.9, 720.0, 12345.6, 500000.0})
            ASSERT_EQ(ready.At(minutes).state.position, unready.At(minutes).state.position) << set.line2;
    }
}

TEST(PropagatorTest, WhatIsNoNumberIsAnErrorAndNeverPassedOn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const Elements good = ElementsOf(ReadGolden().front());
    for (const double bad : {nan, infinity, -infinity, 1e9})
        EXPECT_EQ(Propagator(good).At(bad).error, PropagationError::OutOfRange);
    for (double Elements::*field :
         {&Elements::epochUtc, &Elements::inclination, &Elements::node, &Elements::eccentricity,
          &Elements::argumentOfPerigee, &Elements::meanAnomaly, &Elements::meanMotion, &Elements::bstar}) {
        Elements elements = good;
        elements.*field = nan;
        EXPECT_EQ(Propagator(elements).At(0).error, PropagationError::OutOfRange);
    }
    Elements still = good;
    still.meanMotion = 0;
    EXPECT_EQ(Propagator(still).At(0).error, PropagationError::OutOfRange);
}

TEST(PropagatorTest, RandomElementsGiveFiniteStatesOrErrors) {
    std::mt19937 chance(7);
    const auto between = [&](double a, double b) {
        return std::uniform_real_distribution<double>(a, b)(chance);
    };
    for (int k = 0; k < 20000; ++k) {
        Elements elements;
        elements.epochUtc = between(20000, 57000);
        elements.inclination = between(0, pi);
        elements.node = between(0, twoPi);
        elements.eccentricity = std::pow(between(0, 1), 3) * 0.9999999;
        elements.argumentOfPerigee = between(0, twoPi);
        elements.meanAnomaly = between(0, twoPi);
        elements.meanMotion = between(1e-8, 20) * twoPi / 1440;
        elements.bstar = between(-1, 1) * std::pow(10, between(-6, 1));
        const Propagation found = Propagator(elements, 0).At(between(-1e5, 1e5));
        const double sum = Dot(found.state.position, found.state.velocity) + found.state.meanAnomaly;
        ASSERT_TRUE(std::isfinite(sum));
        ASSERT_TRUE(found || found.state.position == Vector3{});
    }
}
