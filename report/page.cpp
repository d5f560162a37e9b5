#include "report/page.h"

#include "report/data.h"
#include "report/escape.h"
#include "report/resources.h"

#include <map>

namespace tarnex::report
{

void writePage(std::ostream &out, const Plan &plan, const std::string &title)
{
    const std::string name = escaped(title);
    const std::string licence = escaped(resources::d3Licence);
    const std::string data = dataOf(plan, title);
    const std::map<std::string_view, std::string_view> pieces{
        {"title", name},      {"style", resources::style},   {"d3", resources::d3},
        {"licence", licence}, {"script", resources::script}, {"data", data}};
    std::string_view rest = resources::page;
    for (std::size_t open = rest.find("{{"); open != std::string_view::npos;
         open = rest.find("{{")) {
        const std::size_t close = rest.find("}}", open);
        out << rest.substr(0, open) << pieces.at(rest.substr(open + 2, close - open - 2));
        rest = rest.substr(close + 2);
    }
    out << rest;
}

} // namespace tarnex::report
