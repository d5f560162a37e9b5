#include "report/layout.h"

#include "report/geography.h"
#include "report/stress.h"

#include <algorithm>
#include <limits>

namespace tarnex::report
{

namespace
{

constexpr double margin = 0.04; ///< of the width, on each side

/** A box around points. */
struct Box {
    Point low{std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
    Point high{-std::numeric_limits<double>::max(), -std::numeric_limits<double>::max()};

    void take(const Point &point)
    {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
};

/** How plane coordinates become those of the drawing. */
class Frame
{
public:
    explicit Frame(const std::vector<Point> &points)
    {
        for (const Point &point : points)
            box.take(point);
        const double across = std::max(box.high.x - box.low.x, 1e-9);
        const double down = std::max(box.high.y - box.low.y, 1e-9);
        // A network in a line is given some room beside it.
        const double most = std::max(across, down / 1.2);
        scale = Layout::width * (1.0 - 2.0 * margin) / most;
        offset = {(Layout::width - scale * across) / 2.0, Layout::width * margin};
        theHeight = std::max(scale * down, Layout::width * 0.25) + 2.0 * offset.y;
        offset.y = (theHeight - scale * down) / 2.0;
    }

    double height() const { return theHeight; }
    Point operator()(const Point &point) const
    {
        return {rounded(offset.x + scale * (point.x - box.low.x)),
                rounded(offset.y + scale * (point.y - box.low.y))};
    }
    bool isNear(const Point &point) const
    {
        constexpr double around = 0.5; // of the drawing, outside it
        return point.x > -around * Layout::width && point.x < (1.0 + around) * Layout::width &&
               point.y > -around * theHeight && point.y < (1.0 + around) * theHeight;
    }

private:
    static double rounded(double value)
    {
        return static_cast<double>(static_cast<long>(value * 100.0 + (value < 0.0 ? -0.5 : 0.5))) /
               100.0;
    }

    Box box;
    double scale = 1.0;
    Point offset;
    double theHeight = 0.0;
};

Point middleOf(const std::vector<Point> &points)
{
    Point sum;
    for (const Point &point : points)
        sum = {sum.x + point.x, sum.y + point.y};
    const auto count = static_cast<double>(points.size());
    return {sum.x / count, sum.y / count};
}

/** Puts nodes without a place at the middle of their neighbours, or of everything. */
std::vector<Point> completed(const Network &network,
                             const std::vector<std::optional<Point>> &places)
{
    std::vector<std::vector<Point>> around(places.size());
    std::vector<Point> all;
    for (const Link &link : network.links) {
        if (const auto &place = places[link.to.index()])
            around[link.from.index()].push_back(*place);
        if (const auto &place = places[link.from.index()])
            around[link.to.index()].push_back(*place);
    }
    for (const auto &place : places)
        if (place)
            all.push_back(*place);
    std::vector<Point> points;
    for (std::size_t node = 0; node < places.size(); ++node)
        points.push_back(places[node] ? *places[node]
                                      : middleOf(around[node].empty() ? all : around[node]));
    return points;
}

} // namespace

Layout layoutOf(const Network &network)
{
    Layout layout;
    const bool isOnMap =
        std::ranges::any_of(network.nodes, [](const Node &node) { return node.at.has_value(); });
    if (!isOnMap) {
        const std::vector<Point> points = placedByStress(network);
        const Frame frame{points};
        for (const Point &point : points)
            layout.nodes.push_back(frame(point));
        layout.height = frame.height();
        return layout;
    }
    const Projection projection{network};
    std::vector<std::optional<Point>> places;
    for (const Node &node : network.nodes)
        places.push_back(node.at ? std::optional{projection(*node.at)} : std::nullopt);
    const std::vector<Point> points = completed(network, places);
    const Frame frame{points};
    for (const Point &point : points)
        layout.nodes.push_back(frame(point));
    layout.height = frame.height();
    for (MapLine &line : landLines(projection)) {
        for (Point &point : line.points)
            point = frame(point);
        if (std::ranges::any_of(line.points, [&](const Point &p) { return frame.isNear(p); }))
            layout.land.push_back(std::move(line));
    }
    return layout;
}

} // namespace tarnex::report
