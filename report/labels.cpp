#include "report/labels.h"

#include <algorithm>
#include <array>

namespace tarnex::report
{

namespace
{

struct Box {
    double left;
    double top;
    double right;
    double bottom;

    bool overlaps(const Box &other) const
    {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

/** How wide a text is, about: letters are taken to be a little more than half as wide as high. */
double widthOf(const std::string &text, double size)
{
    const auto isFirstByte = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    };
    return 0.58 * size * static_cast<double>(std::ranges::count_if(text, isFirstByte));
}

} // namespace

std::vector<std::optional<Point>> placeLabels(std::span<const Point> nodes,
                                              std::span<const std::string> names,
                                              const LabelSizes &sizes)
{
    std::vector<Box> taken;
    for (const Point &node : nodes)
        taken.push_back({node.x - sizes.radius, node.y - sizes.radius, node.x + sizes.radius,
                         node.y + sizes.radius});
    std::vector<std::optional<Point>> places(nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const auto &[x, y] = nodes[i];
        const double width = widthOf(names[i], sizes.text);
        const double beside = 1.6 * sizes.radius;
        const std::array<Point, 4> choices{{{x + beside, y + 0.35 * sizes.text},
                                            {x - beside - width, y + 0.35 * sizes.text},
                                            {x - width / 2.0, y - sizes.radius - 0.3 * sizes.text},
                                            {x - width / 2.0, y + sizes.radius + sizes.text}}};
        const auto boxAt = [&](const Point &place) {
            return Box{place.x, place.y - 0.85 * sizes.text, place.x + width,
                       place.y + 0.2 * sizes.text};
        };
        const auto *const place = std::ranges::find_if(choices, [&](const Point &choice) {
            const Box box = boxAt(choice);
            return box.left >= 0.0 && box.right <= sizes.width &&
                   std::ranges::none_of(taken, [&](const Box &one) { return box.overlaps(one); });
        });
        if (place == choices.end())
            continue;
        places[i] = *place;
        taken.push_back(boxAt(*place));
    }
    return places;
}

} // namespace tarnex::report
