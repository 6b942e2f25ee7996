#pragma once

#include "orbit/service/OrbitLibrary.h"

#include <functional>
#include <numbers>
#include <string>
#include <vector>

constexpr double radian = std::numbers::pi / 180.0;

/// An orbit library that answers what a test tells it, and notes what it was asked. Library time is the
/// date-time plus 1000.
class FakeLibrary : public OrbitLibrary {
public:
    struct ListCall {
        std::string object;
        double startUtc;
        int passesPerDay;
        int days;
        std::int32_t reserved1;
        std::int32_t reserved2;
    };

    static constexpr double timeOffset = 1000.0;

    std::string folder;
    double latitude = 0;
    double longitude = 0;
    mutable std::vector<ListCall> listCalls;
    mutable int positionCalls = 0;
    mutable double threshold = -1;
    std::optional<std::string> passes = std::string();
    std::function<std::optional<LibraryPosition>(const std::string&, double utc)> position =
        [](const std::string&, double) { return LibraryPosition{}; };
    bool convertsTime = true;
    bool succeeds = true;
    std::optional<ElementSource> source;
    std::string whyNoPosition;

    bool SetElementFolder(const std::string& path) override {
        folder = path;
        return succeeds;
    }
    bool SetObserverLatitude(double degrees) override {
        latitude = degrees;
        return succeeds;
    }
    bool SetObserverLongitude(double degreesEast) override {
        longitude = degreesEast;
        return succeeds;
    }
    std::optional<std::string> ListPasses(const std::string& object, double startUtc, int passesPerDay,
                                          int days, std::int32_t reserved1,
                                          std::int32_t reserved2) const override {
        listCalls.push_back({object, startUtc, passesPerDay, days, reserved1, reserved2});
        return passes;
    }
    std::optional<LibraryPosition> Position(const std::string& object, double libraryTime,
                                            double thresholdDegrees) const override {
        ++positionCalls;
        threshold = thresholdDegrees;
        return position(object, libraryTime - timeOffset);
    }
    std::optional<double> ConvertTime(double utc) const override {
        return convertsTime ? std::optional(utc + timeOffset) : std::nullopt;
    }
    std::optional<ElementSource> ElementsOf(const std::string&) const override { return source; }
    SatPasses PassesOf(const PassQuery&) const override { return {}; }
    std::string WhyNoPosition(const std::string&, double) const override { return whyNoPosition; }
    std::string ElementTextOf(const std::string& /*object*/) const override { return {}; }
    bool ForEachElementSet(const TakeSource& take) const override {
        if (source)
            take(*source);
        return succeeds;
    }
};
