#include "report/page.h"

#include "report/data.h"
#include "report/escape.h"
#include "report/resources.h"

#include <map>

namespace tarnex::report
{

namespace
{

/** Writes the page with `body` and `script` and with `data`, which is made of a plan or two. */
void write(std::ostream &out, const std::string &title, std::string_view body,
           std::string_view script, const std::string &data)
{
    const std::string name = escaped(title);
    const std::string licence = escaped(resources::d3Licence);
    const std::map<std::string_view, std::string_view> pieces{{"title", name},
                                                              {"style", resources::style},
                                                              {"body", body},
                                                              {"licence", licence},
                                                              {"data", data},
                                                              {"d3", resources::d3},
                                                              {"common", resources::common},
                                                              {"script", script}};
    std::string_view rest = resources::page;
    for (std::size_t open = rest.find("{{"); open != std::string_view::npos;
         open = rest.find("{{")) {
        const std::size_t close = rest.find("}}", open);
        out << rest.substr(0, open) << pieces.at(rest.substr(open + 2, close - open - 2));
        rest = rest.substr(close + 2);
    }
    out << rest;
}

} // namespace

void writePage(std::ostream &out, const Plan &plan, const std::string &title)
{
    write(out, title, resources::reportBody, resources::reportScript, dataOf(plan));
}

void writeComparison(std::ostream &out, const NamedPlan &before, const NamedPlan &after,
                     const std::string &title)
{
    const std::string data = R"({"names":)" + textFor({before.name, after.name}) + R"(,"before":)" +
                             dataOf(before.plan) + R"(,"after":)" + dataOf(after.plan) +
                             R"(,"changes":)" + changesOf(before.plan, after.plan) + '}';
    write(out, title, resources::compareBody, resources::compareScript, data);
}

} // namespace tarnex::report
