#include "report/geography.h"

#include "report/resources.h"

#include <algorithm>
#include <sstream>

namespace tarnex::report
{

namespace
{

constexpr double degreesPerUnit = 0.02;

/** The cosine of an angle of up to 90 degrees, by its series: libraries differ in the last bit. */
double cosineOf(double degrees)
{
    const double angle = degrees * 3.14159265358979323846 / 180.0;
    double term = 1.0;
    double sum = 1.0;
    for (int n = 2; n <= 24; n += 2) {
        term *= -angle * angle / static_cast<double>(n * (n - 1));
        sum += term;
    }
    return sum;
}

} // namespace

Projection::Projection(const Network &network) : narrowing(1.0)
{
    double low = 90.0;
    double high = -90.0;
    for (const Node &node : network.nodes)
        if (node.at) {
            low = std::min(low, node.at->latitude);
            high = std::max(high, node.at->latitude);
        }
    const double middle = std::clamp((low + high) / 2.0, -80.0, 80.0);
    narrowing = cosineOf(middle);
}

std::vector<MapLine> landLines(const Projection &projection)
{
    std::vector<MapLine> lines;
    std::istringstream text{std::string{resources::borders}};
    for (std::string row; std::getline(text, row);) {
        std::istringstream words{row};
        MapLine &line = lines.emplace_back();
        words >> line.kind;
        double x = 0.0;
        double y = 0.0;
        for (double dx = 0.0, dy = 0.0; words >> dx >> dy;) {
            x += dx;
            y += dy;
            line.points.push_back(projection({x * degreesPerUnit, y * degreesPerUnit}));
        }
    }
    return lines;
}

} // namespace tarnex::report
