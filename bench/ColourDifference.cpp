#include "bench/ColourDifference.h"

#include <cmath>
#include <numbers>

namespace
{
constexpr double Degree = std::numbers::pi / 180;

double Power7Share(double chroma)
{
    const double power = std::pow(chroma, 7);
    return std::sqrt(power / (power + std::pow(25.0, 7)));
}

double HueOf(double a, double b)
{
    const double hue = a == 0 && b == 0 ? 0 : std::atan2(b, a) / Degree;
    return hue < 0 ? hue + 360 : hue;
}
} // namespace

double DeltaE2000(const LabColour &one, const LabColour &other)
{
    const double stretch = 1.5 - 0.5 * Power7Share((std::hypot(one.a, one.b) + std::hypot(other.a, other.b)) / 2);
    const double a1 = one.a * stretch;
    const double a2 = other.a * stretch;
    const double c1 = std::hypot(a1, one.b);
    const double c2 = std::hypot(a2, other.b);
    const double h1 = HueOf(a1, one.b);
    const double h2 = HueOf(a2, other.b);

    double turn = c1 * c2 == 0 ? 0 : h2 - h1;
    turn -= turn > 180 ? 360 : turn < -180 ? -360 : 0;
    const double lightness = other.L - one.L;
    const double chroma = c2 - c1;
    const double hue = 2 * std::sqrt(c1 * c2) * std::sin(turn / 2 * Degree);

    const double meanL = (one.L + other.L) / 2;
    const double meanC = (c1 + c2) / 2;
    double meanH = h1 + h2;
    if (c1 * c2 != 0)
    {
        meanH = std::abs(h1 - h2) <= 180 ? meanH / 2 : (meanH + (meanH < 360 ? 360 : -360)) / 2;
    }
    const auto cosine = [&](double times, double from) { return std::cos((times * meanH - from) * Degree); };
    const double t = 1 - 0.17 * cosine(1, 30) + 0.24 * cosine(2, 0) + 0.32 * cosine(3, -6) - 0.20 * cosine(4, 63);
    const double middle = (meanL - 50) * (meanL - 50);
    const double bend = 30 * std::exp(-std::pow((meanH - 275) / 25, 2));
    const double dl = lightness / (1 + 0.015 * middle / std::sqrt(20 + middle));
    const double dc = chroma / (1 + 0.045 * meanC);
    const double dh = hue / (1 + 0.015 * meanC * t);
    const double rotation = -2 * Power7Share(meanC) * std::sin(2 * bend * Degree);
    return std::sqrt(dl * dl + dc * dc + dh * dh + rotation * dc * dh);
}
