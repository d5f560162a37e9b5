#include "formats/read.h"

#include "formats/cursor.h"
#include "formats/json/json.h"
#include "formats/names.h"
#include "formats/parsers.h"
#include "formats/source.h"
#include "formats/text_of_file.h"

#include <algorithm>
#include <array>

namespace tarnex::formats
{

namespace
{

constexpr std::array<std::pair<std::string_view, Format>, 10> formatNames{
    {{"sndlib", Format::sndlibNative},
     {"sndlib-xml", Format::sndlibXml},
     {"graphml", Format::graphml},
     {"gml", Format::gml},
     {"repetita", Format::repetita},
     {"node-link", Format::nodeLink},
     {"dot", Format::dot},
     {"matrix", Format::matrix},
     {"json", Format::json},
     {"text", Format::text}}};

/** A file that is about to be read, once: a pipe has its text for the first who asks. */
struct Opened {
    Format format = Format::json;
    std::optional<std::string> text; ///< without: to be read front to back, as it is large
};

Opened open(const std::filesystem::path &file, const ReadOptions &options)
{
    constexpr std::size_t headSize = 1 << 16;
    const auto formatOf = [&](const std::string &head) {
        return options.format ? *options.format : detectFormat(head, file.string());
    };
    std::error_code unknown;
    if (std::filesystem::is_regular_file(file, unknown)) {
        const Format format = formatOf(textOfFile(file, headSize));
        return {format, format == Format::json ? std::nullopt : std::optional(textOfFile(file))};
    }
    std::string text = textOfFile(file);
    const Format format = formatOf(text.substr(0, headSize));
    return {format, std::move(text)};
}

/** A text in UTF-8; XML documents say themselves what they are in. */
std::string inUtf8(std::string text, Format format, Remarks &remarks)
{
    if (format == Format::graphml || format == Format::sndlibXml || isUtf8(text))
        return text;
    remarks.choose("text that is not UTF-8", "taken as ISO 8859-1");
    return fromLatin1(text);
}

/** Names of the rows of a matrix: those of its hosts file, else of the network's nodes. */
std::vector<std::string> matrixNames(const std::filesystem::path &file, const Network &network,
                                     const ReadOptions &options, Remarks &remarks)
{
    std::filesystem::path hosts = options.hosts.value_or(std::filesystem::path(file));
    if (!options.hosts)
        hosts.replace_extension(".hosts");
    if (options.hosts || std::filesystem::is_regular_file(hosts)) {
        remarks.choose("rows of the matrix", "named as in " + hosts.filename().string());
        return parseHosts(textOfFile(hosts), hosts.string());
    }
    remarks.choose("rows of the matrix", "taken in the order of the nodes");
    std::vector<std::string> names;
    for (const Node &node : network.nodes)
        names.push_back(node.name);
    return names;
}

/** What a file says; a matrix is between the nodes of a network. */
Source sourceIn(const std::filesystem::path &file, Opened opened, const Network &network,
                const ReadOptions &options)
{
    const Format format = opened.format;
    Remarks remarks;
    Source source;
    if (format == Format::json) {
        source = opened.text ? readJsonDemands(*opened.text, file.string()) : readJsonDemands(file);
    } else {
        const std::string text = inUtf8(std::move(*opened.text), format, remarks);
        if (format == Format::matrix)
            source = parseMatrix(text, file.string(), options.matrixLine,
                                 matrixNames(file, network, options, remarks));
        else
            source = parseSource(format, text, file.string());
    }
    source.file = file.string();
    source.remarks.append(remarks);
    if (options.isStrict && source.remarks.hasErrors())
        throw InputError(source.file, 0, 0, textOf(*source.remarks.firstError()));
    return source;
}

} // namespace

std::string_view nameOf(Format format)
{
    for (const auto &[name, known] : formatNames)
        if (known == format)
            return name;
    return "";
}

std::optional<Format> formatNamed(std::string_view name)
{
    for (const auto &[known, format] : formatNames)
        if (known == name)
            return format;
    return std::nullopt;
}

Source parseSource(Format format, std::string_view text, const std::string &file)
{
    if (std::all_of(text.begin(), text.end(), isBlank))
        throw InputError(file, 0, 0, "the file is empty");
    switch (format) {
    case Format::sndlibNative:
        return parseSndlibNative(text, file);
    case Format::sndlibXml:
        return parseSndlibXml(text, file);
    case Format::graphml:
        return parseGraphml(text, file);
    case Format::gml:
        return parseGml(text, file);
    case Format::repetita:
        return parseRepetita(text, file);
    case Format::nodeLink:
        return parseNodeLink(text, file);
    case Format::dot:
        return parseDot(text, file);
    case Format::text:
        return parseText(text, file);
    case Format::matrix:
    case Format::json:
        break;
    }
    throw InputError(file, 0, 0, "expected a file that describes a network");
}

Input read(const std::filesystem::path &file, const ReadOptions &options)
{
    Opened opened = open(file, options);
    const Format format = opened.format;
    if (format == Format::json)
        return opened.text ? readJson(*opened.text, file.string(), options)
                           : readJson(file, options);
    if (format == Format::matrix)
        throw InputError(file.string(), 0, 0, "expected a network, not a matrix of demands");
    const Source source = sourceIn(file, std::move(opened), {}, options);
    if (source.nodes.empty() && !source.demands.empty())
        throw InputError(file.string(), 0, 0, "expected a network, not demands alone");
    Remarks remarks = source.remarks;
    Input input = settle(source, options, remarks);
    input.format = format;
    input.remarks = std::move(remarks);
    return input;
}

Input readDemands(const std::filesystem::path &file, Network &network, const ReadOptions &options)
{
    Opened opened = open(file, options);
    Input input;
    input.format = opened.format;
    const Source source = sourceIn(file, std::move(opened), network, options);
    input.remarks = source.remarks;
    input.demands = settleDemands(source, network, options, input.remarks);
    return input;
}

} // namespace tarnex::formats
