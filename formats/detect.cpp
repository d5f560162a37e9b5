#include "formats/cursor.h"
#include "formats/number.h"
#include "formats/parsers.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <utility>

namespace tarnex::formats
{

namespace
{

/** The first words of a text, with braces, brackets and parentheses as words of their own. */
class FirstWords
{
public:
    explicit FirstWords(std::string_view text) : cursor(text, "") {}

    std::string_view next()
    {
        skipComments();
        const auto isMark = [](char c) { return std::string_view("{}[]()<>\"").find(c) < 9; };
        const std::string_view here = cursor.rest();
        if (isMark(cursor.peek()) && !here.empty()) {
            cursor.skip();
            return here.substr(0, 1);
        }
        return cursor.takeWhile([&](char c) { return !isBlank(c) && !isMark(c); });
    }

private:
    void skipComments()
    {
        while (true) {
            cursor.takeWhile(isBlank);
            if (cursor.peek() == '#' || cursor.rest().starts_with("//"))
                cursor.skipLine();
            else if (cursor.rest().starts_with("/*"))
                cursor.skipPast("*/");
            else
                return;
        }
    }

    Cursor cursor;
};

std::optional<Format> fromXml(std::string_view text)
{
    for (std::size_t open = text.find('<'); open != std::string_view::npos;
         open = text.find('<', open + 1)) {
        std::string_view name = text.substr(open + 1);
        if (name.starts_with("!--")) {
            open = text.find("-->", open);
            if (open == std::string_view::npos)
                break;
            continue;
        }
        if (name.starts_with('?') || name.starts_with('!'))
            continue;
        name = name.substr(0, std::min(name.find_first_of(" \t\r\n/>"), name.size()));
        if (name == "graphml")
            return Format::graphml;
        if (name == "network")
            return Format::sndlibXml;
        break;
    }
    return std::nullopt;
}

/** JSON: ours says so at its head; a graph that does not is node-link. */
Format fromJson(std::string_view text)
{
    const auto has = [&](std::string_view key) { return text.find(key) != std::string_view::npos; };
    const bool isGraph = has("\"nodes\"") || has("\"directed\"") || has("\"multigraph\"");
    return isGraph && !has("\"tarnex-") ? Format::nodeLink : Format::json;
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::optional<Format> fromContent(std::string_view text)
{
    FirstWords words(text);
    const std::string_view first = words.next();
    const std::string_view second = words.next();
    if (first == "?SNDlib")
        return Format::sndlibNative;
    if (first == "<")
        return fromXml(text);
    if (first == "{" || (first == "[" && isOneOf(second, {"{", "]"})))
        return fromJson(text);
    if (isOneOf(first, {"META", "NODES", "LINKS", "DEMANDS"}) && second == "(")
        return Format::sndlibNative;
    if (isOneOf(first, {"NODES", "EDGES", "DEMANDS"}))
        return Format::repetita;
    if (isOneOf(first, {"graph", "Graph"}) && second == "[")
        return Format::gml;
    if (isOneOf(first, {"strict", "graph", "digraph", "Graph", "Digraph"}))
        return Format::dot;
    if (isOneOf(first, {"Creator", "Version"}) && !second.empty())
        return Format::gml;
    if (isOneOf(first, {"unit", "classes", "levels", "node", "link", "demand"}))
        return Format::text;
    if (numberIn(first))
        return Format::matrix;
    return std::nullopt;
}

std::optional<Format> fromSuffix(const std::string &file)
{
    static constexpr std::array<std::pair<std::string_view, Format>, 9> suffixes{
        {{".graphml", Format::graphml},
         {".gml", Format::gml},
         {".graph", Format::repetita},
         {".demands", Format::repetita},
         {".dot", Format::dot},
         {".gv", Format::dot},
         {".json", Format::json},
         {".xml", Format::sndlibXml},
         {".network", Format::text}}};
    const std::string suffix = std::filesystem::path(file).extension().string();
    for (const auto &[known, format] : suffixes)
        if (suffix == known)
            return format;
    return std::nullopt;
}

} // namespace

Format detectFormat(std::string_view text, const std::string &file)
{
    auto format = fromContent(text);
    if (!format)
        format = fromSuffix(file);
    if (!format)
        failAt(file, text, 0, "the format is not known; name it with --format");
    return *format;
}

} // namespace tarnex::formats
