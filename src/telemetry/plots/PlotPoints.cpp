#include "telemetry/plots/PlotPoints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace PlotPoints {
namespace {

// The places of readings from `from` to `to`, the second one past the last.
std::pair<std::size_t, std::size_t> Places(const HistoryColumns& readings, qint64 from, qint64 to) {
    const auto begin = readings.utc.begin();
    const auto first = std::lower_bound(begin, readings.utc.end(), from);
    const auto end = std::upper_bound(first, readings.utc.end(), to);
    return {static_cast<std::size_t>(first - begin), static_cast<std::size_t>(end - begin)};
}

// Collects points, and breaks their line.
class Line {
public:
    // `width`: of a column of pixels, milliseconds.
    Line(const HistoryColumns& readings, double width)
        : m_readings(readings)
        , m_halfColumn(width / 2000.0) {}

    // The readings from `first` to before `end`, which share a column of pixels.
    void AddColumn(std::size_t first, std::size_t end) {
        if (m_last && m_readings.utc[first] - *m_last > longestLine)
            Break();
        m_last = m_readings.utc[end - 1];
        const double* values = m_readings.value.data();
        std::size_t low = first;
        std::size_t high = first;
        double lowest = std::numeric_limits<double>::infinity();
        double highest = -lowest;
        for (std::size_t at = first; at < end; ++at) { // what is no number is neither lower nor higher
            const double value = values[at];
            if (value < lowest) {
                lowest = value;
                low = at;
            }
            if (value > highest) {
                highest = value;
                high = at;
            }
        }
        std::array places{first, std::min(low, high), std::max(low, high), end - 1};
        const auto rest = std::unique(places.begin(), places.end());
        for (auto place = places.begin(); place != rest; ++place)
            if (!std::isnan(values[*place])) {
                m_points.push_back({static_cast<double>(m_readings.utc[*place]) / 1000.0, values[*place]});
                ++m_joined;
            }
    }

    std::vector<Point> Points() && {
        EndRun();
        return std::move(m_points);
    }

private:
    void Break() {
        EndRun();
        if (!m_points.empty())
            m_points.push_back({m_points.back().seconds, std::numeric_limits<double>::quiet_NaN()});
    }

    // A reading that stands alone gets a line of half a column, to be seen.
    void EndRun() {
        if (m_joined == 1)
            m_points.push_back({m_points.back().seconds + m_halfColumn, m_points.back().value});
        m_joined = 0;
    }

    const HistoryColumns& m_readings;
    const double m_halfColumn; // seconds
    std::vector<Point> m_points;
    int m_joined = 0;             // points since the last break
    std::optional<qint64> m_last; // the time of the reading before
};

} // namespace

std::vector<Point> Visible(const HistoryColumns& readings, qint64 from, qint64 to, int pixels) {
    auto [at, end] = Places(readings, from, to);
    at -= at > 0 ? 1 : 0;
    end += end < readings.utc.size() ? 1 : 0;
    const double width = std::max(1.0, static_cast<double>(to - from) / std::max(pixels, 1));
    Line line(readings, width);
    while (at < end) {
        const double column = std::floor(static_cast<double>(readings.utc[at] - from) / width);
        const qint64 columnEnd = from + static_cast<qint64>(std::ceil((column + 1.0) * width));
        const auto begin = readings.utc.begin();
        const auto next =
            static_cast<std::size_t>(std::lower_bound(begin + static_cast<std::ptrdiff_t>(at) + 1,
                                                      begin + static_cast<std::ptrdiff_t>(end), columnEnd) -
                                     begin);
        line.AddColumn(at, next);
        at = next;
    }
    return std::move(line).Points();
}

std::optional<std::size_t> Nearest(const HistoryColumns& readings, qint64 utc) {
    if (readings.utc.empty())
        return std::nullopt;
    const auto after = std::ranges::lower_bound(readings.utc, utc);
    const auto place = static_cast<std::size_t>(after - readings.utc.begin());
    if (after == readings.utc.end() ||
        (place > 0 && utc - readings.utc[place - 1] <= readings.utc[place] - utc))
        return place - 1;
    return place;
}

std::vector<Place> InOrder(const std::vector<HistoryColumns>& readings, qint64 from, qint64 to,
                           std::size_t most) {
    std::vector<Place> places;
    for (std::size_t channel = 0; channel < readings.size(); ++channel) {
        const auto [first, end] = Places(readings[channel], from, to);
        for (std::size_t at = first; at < end && at - first < most; ++at)
            places.push_back({channel, at});
    }
    std::ranges::stable_sort(places, {},
                             [&](const Place& place) { return readings[place.channel].utc[place.at]; });
    if (places.size() > most)
        places.resize(most);
    return places;
}

std::optional<Place> LastUntil(const std::vector<HistoryColumns>& readings, qint64 utc) {
    std::optional<Place> last;
    for (std::size_t channel = 0; channel < readings.size(); ++channel) {
        const std::vector<qint64>& times = readings[channel].utc;
        const auto after = std::ranges::upper_bound(times, utc);
        if (after != times.begin() && (!last || *std::prev(after) > readings[last->channel].utc[last->at]))
            last = Place{channel, static_cast<std::size_t>(after - times.begin()) - 1};
    }
    return last;
}

std::optional<Place> FirstAfter(const std::vector<HistoryColumns>& readings, qint64 utc) {
    std::optional<Place> first;
    for (std::size_t channel = 0; channel < readings.size(); ++channel) {
        const std::vector<qint64>& times = readings[channel].utc;
        const auto after = std::ranges::upper_bound(times, utc);
        if (after != times.end() && (!first || *after < readings[first->channel].utc[first->at]))
            first = Place{channel, static_cast<std::size_t>(after - times.begin())};
    }
    return first;
}

} // namespace PlotPoints
