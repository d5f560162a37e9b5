#include "report/drawing.h"

#include "planning/reservations.h"
#include "report/escape.h"
#include "report/labels.h"
#include "report/layout.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace tarnex::report
{

namespace
{

/** Colours for use up to 20 %, 40 % and so on, and for more than all; those of page/style.css. */
struct Step {
    double upTo;
    const char *colour;
    const char *text;
};
constexpr std::array<Step, 6> steps{
    {{0.2, "#c3ccd6", "to 20 %"},
     {0.4, "#92b4d8", "20 to 40 %"},
     {0.6, "#4f8fca", "40 to 60 %"},
     {0.8, "#e3a23c", "60 to 80 %"},
     {1.0 + 1e-9, "#c4551a", "80 to 100 %"},
     {std::numeric_limits<double>::infinity(), "#6d0f12", "over 100 %"}}};

/** By link: the largest share of a capacity that is reserved in a class type. */
std::vector<double> sharesOf(const Plan &plan)
{
    std::vector<double> shares;
    const std::vector<PlannedUse> uses = planning::usesOf(plan);
    for (std::size_t i = 0; i < uses.size(); ++i) {
        double &share = shares.emplace_back(0.0);
        for (std::size_t c = 0; c < plan.network.classes.size(); ++c) {
            const auto &levels = uses[i].total[c];
            const double total = std::accumulate(levels.begin(), levels.end(), 0.0);
            const double capacity = plan.network.links[i].capacity[c];
            if (total > 0.0)
                share = std::max(share, capacity > 0.0 ? total / capacity
                                                       : std::numeric_limits<double>::infinity());
        }
    }
    return shares;
}

const char *colourOf(double share)
{
    return std::ranges::find_if(steps, [share](const Step &step) { return share <= step.upTo; })
        ->colour;
}

/** A link from one point to another, on its right-hand side and wide where it begins. */
std::string shapeOf(const Point &from, const Point &to, double unit)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = std::max(std::sqrt(dx * dx + dy * dy), 1e-9);
    const auto beside = [&](const Point &point, double side) {
        return fmt::format("{:.2f},{:.2f}", point.x - dy / length * side,
                           point.y + dx / length * side);
    };
    return fmt::format("M{}L{}L{}L{}Z", beside(from, 0.5 * unit), beside(from, 4.1 * unit),
                       beside(to, 1.7 * unit), beside(to, 0.5 * unit));
}

void writeLand(std::ostream &out, const Layout &layout)
{
    for (const MapLine &line : layout.land) {
        fmt::print(out, "<path class=\"{}\" d=\"", line.kind);
        char command = 'M';
        for (const Point &point : line.points)
            fmt::print(out, "{}{:.1f},{:.1f}", std::exchange(command, 'L'), point.x, point.y);
        out << "\"/>\n";
    }
}

void writeNodes(std::ostream &out, const Network &network, const Layout &layout,
                const LabelSizes &sizes)
{
    for (const Point &node : layout.nodes)
        fmt::print(out, "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"{:.1f}\" fill=\"#22262b\"/>\n",
                   node.x, node.y, sizes.radius);
    std::vector<std::string> names;
    for (const Node &node : network.nodes)
        names.push_back(node.name);
    const auto places = placeLabels(layout.nodes, names, sizes);
    for (std::size_t i = 0; i < names.size(); ++i)
        if (places[i])
            fmt::print(out, "<text class=\"name\" x=\"{:.1f}\" y=\"{:.1f}\">{}</text>\n",
                       places[i]->x, places[i]->y, escaped(names[i]));
}

void writeLegend(std::ostream &out, double y)
{
    double x = 20.0;
    for (const Step &step : steps) {
        fmt::print(out,
                   "<rect x=\"{0}\" y=\"{1:.1f}\" width=\"24\" height=\"10\" fill=\"{2}\"/>"
                   "<text x=\"{3}\" y=\"{4:.1f}\">{5}</text>\n",
                   x, y, step.colour, x + 30.0, y + 10.0, step.text);
        x += (Layout::width - 20.0) / static_cast<double>(steps.size());
    }
}

} // namespace

void writeSvg(std::ostream &out, const Plan &plan)
{
    constexpr double legend = 40.0;
    const Network &network = plan.network;
    const Layout layout = layoutOf(network);
    const std::vector<double> shares = sharesOf(plan);
    const double unit =
        std::clamp(14.0 / std::sqrt(static_cast<double>(network.nodes.size()) + 1.0), 0.5, 1.5);
    const double text = 13.0 * std::max(unit, 0.6);
    fmt::print(out,
               "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {0} {1:.1f}\" "
               "width=\"{0}\" height=\"{1:.1f}\">\n"
               "<style>text{{font:13px "
               "sans-serif}}.name{{font-size:{2:.1f}px;stroke:#fff;stroke-width:3px;"
               "paint-order:stroke}}path{{stroke-width:.8}}.coast,.border{{fill:none;"
               "stroke:#b9b3a4}}.border{{stroke-dasharray:4 3}}.state{{fill:none;stroke:#dedacd}}"
               "</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
               Layout::width, layout.height + legend, text);
    writeLand(out, layout);
    for (std::size_t i = 0; i < network.links.size(); ++i)
        fmt::print(out, "<path fill=\"{}\" d=\"{}\"/>\n", colourOf(shares[i]),
                   shapeOf(layout.nodes[network.links[i].from.index()],
                           layout.nodes[network.links[i].to.index()], unit));
    writeNodes(out, network, layout, {.text = text, .radius = 4.0 * unit, .width = Layout::width});
    writeLegend(out, layout.height + 10.0);
    out << "</svg>\n";
}

void writePlacedDot(std::ostream &out, const Plan &plan)
{
    const Network &network = plan.network;
    const Layout layout = layoutOf(network);
    const std::vector<double> shares = sharesOf(plan);
    const auto quoted = [&](NodeId node) {
        std::string name = "\"";
        for (const char c : network.nameOf(node))
            name += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
        return name + '"';
    };
    out << "digraph plan {\nnode [shape=point, width=0.08];\nedge [arrowsize=0.5, penwidth=1.5];\n";
    for (std::size_t i = 0; i < network.nodes.size(); ++i) {
        const NodeId node{static_cast<std::int32_t>(i)};
        fmt::print(out, "{0} [xlabel={0}, pos=\"{1},{2}\"];\n", quoted(node), layout.nodes[i].x,
                   layout.height - layout.nodes[i].y);
    }
    for (std::size_t i = 0; i < network.links.size(); ++i)
        fmt::print(out, "{} -> {} [color=\"{}\"];\n", quoted(network.links[i].from),
                   quoted(network.links[i].to), colourOf(shares[i]));
    out << "}\n";
}

} // namespace tarnex::report
