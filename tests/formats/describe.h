/** What was read, as text: a line per node, link, demand and remark. */
#ifndef TARNEX_TESTS_FORMATS_DESCRIBE_H
#define TARNEX_TESTS_FORMATS_DESCRIBE_H

#include "formats/parsers.h"
#include "formats/read.h"
#include "formats/source.h"

#include <string>
#include <string_view>

namespace tarnex::formats
{

std::string describe(const Network &network);
std::string describe(const Network &network, const std::vector<Demand> &demands);
std::string describe(const Remarks &remarks);

/** Parses and settles a text; remarks come along. */
Input settled(Format format, std::string_view text, const ReadOptions &options = {});

/** The text of the InputError that a function throws; "" when it throws none. */
template <class Function>
std::string errorOf(Function function)
{
    try {
        function();
    } catch (const InputError &error) {
        return error.what();
    }
    return "";
}

} // namespace tarnex::formats

#endif
