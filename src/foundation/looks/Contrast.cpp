#include "foundation/looks/Contrast.h"

#include <algorithm>
#include <cmath>

namespace Contrast {
namespace {

constexpr int steps = 64;

// Of one channel, 0 to 1, to linear light.
double Linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
    return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) +
           0.0722 * Linear(colour.blueF());
}

QColor Mixed(const QColor& from, const QColor& to, int step) {
    const auto channel = [step](int a, int b) { return a + (b - a) * step / steps; };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()),
            channel(from.blue(), to.blue())};
}

} // namespace

double Between(const QColor& text, const QColor& ground) {
    const double a = Luminance(text);
    const double b = Luminance(ground);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor Legible(const QColor& wanted, const QColor& ground) {
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    const QColor end = Between(black, ground) > Between(white, ground) ? black : white;
    int step = 0;
    while (step < steps && Between(Mixed(wanted, end, step), ground) < least)
        ++step;
    return step == 0 ? wanted : Mixed(wanted, end, step);
}

QColor Dimmed(const QColor& text, const QColor& ground) {
    int step = steps;
    while (step > 0 && Between(Mixed(text, ground, step), ground) < least)
        --step;
    return step == 0 ? Legible(text, ground) : Mixed(text, ground, step);
}

} // namespace Contrast
