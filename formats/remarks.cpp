#include "formats/remarks.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tarnex
{

namespace
{

constexpr std::size_t nbNamed = 5; ///< of a kind

std::string located(const std::string &file, std::size_t line, std::size_t column,
                    const std::string &problem)
{
    if (line == 0)
        return fmt::format("{}: {}", file, problem);
    if (column == 0)
        return fmt::format("{}:{}: {}", file, line, problem);
    return fmt::format("{}:{}:{}: {}", file, line, column, problem);
}

} // namespace

void Remarks::note(const std::string &what, const std::string &done, const std::string &name,
                   bool isError)
{
    auto kind = std::find_if(remarks.begin(), remarks.end(), [&](const Remark &remark) {
        return remark.what == what && remark.done == done;
    });
    if (kind == remarks.end())
        kind = remarks.insert(remarks.end(), Remark{what, done, 0, {}, isError});
    kind->count += 1;
    if (kind->first.size() < nbNamed)
        kind->first.push_back(name);
}

void Remarks::choose(const std::string &what, const std::string &done)
{
    remarks.push_back(Remark{what, done, 0, {}, false});
}

void Remarks::append(const Remarks &others)
{
    remarks.insert(remarks.end(), others.remarks.begin(), others.remarks.end());
}

const Remark *Remarks::firstError() const
{
    const auto error = std::find_if(remarks.begin(), remarks.end(),
                                    [](const Remark &remark) { return remark.isError; });
    return error == remarks.end() ? nullptr : &*error;
}

std::string counted(std::size_t count, const std::string &noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string textOf(const Remark &remark)
{
    if (remark.count == 0)
        return fmt::format("{} {}", remark.what, remark.done);
    return fmt::format("{} {}: {} ({}{})", remark.what, remark.done, remark.count,
                       fmt::join(remark.first, ", "),
                       remark.count > remark.first.size() ? ", ..." : "");
}

InputError::InputError(const std::string &file, std::size_t atLine, std::size_t atColumn,
                       const std::string &problem)
    : std::runtime_error(located(file, atLine, atColumn, problem)), line(atLine), column(atColumn)
{
}

} // namespace tarnex
