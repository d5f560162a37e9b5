#include "formats/write.h"

#include "formats/json/json.h"
#include "formats/writers.h"

#include <stdexcept>

namespace tarnex::formats
{

namespace
{

/** The network goes to a `.graph` file, demands to a `.demands` file beside it. */
std::vector<FileToWrite> repetitaFiles(const std::filesystem::path &file, const Network &network,
                                       std::span<const Demand> demands)
{
    std::filesystem::path graph = file;
    if (graph.extension() == ".demands")
        graph.replace_extension(".graph");
    std::vector<FileToWrite> files{
        {graph, [&network](std::ostream &out) { writeRepetitaGraph(out, network); }}};
    std::filesystem::path matrix = file;
    matrix.replace_extension(".demands");
    if (!demands.empty())
        files.push_back({matrix, [&network, demands](std::ostream &out) {
                             writeRepetitaDemands(out, network, demands);
                         }});
    return files;
}

} // namespace

bool canWrite(Format format)
{
    switch (format) {
    case Format::sndlibNative:
    case Format::graphml:
    case Format::repetita:
    case Format::dot:
    case Format::json:
        return true;
    default:
        return false;
    }
}

std::vector<FileToWrite> filesFor(const std::filesystem::path &file, Format format,
                                  const Network &network, std::span<const Demand> demands,
                                  Remarks &remarks)
{
    if (!canWrite(format))
        throw std::invalid_argument(std::string(nameOf(format)) + " is a format that is read only");
    noteLosses(format, network, demands, remarks);
    if (format == Format::repetita)
        return repetitaFiles(file, network, demands);
    return {{file, [format, &network, demands](std::ostream &out) {
                 if (format == Format::sndlibNative)
                     writeSndlib(out, network, demands);
                 else if (format == Format::graphml)
                     writeGraphml(out, network);
                 else if (format == Format::dot)
                     writeDot(out, network);
                 else
                     writeNetwork(out, network, demands);
             }}};
}

} // namespace tarnex::formats
