#include "formats/cursor.h"
#include "formats/number.h"
#include "formats/parsers.h"

#include <fmt/format.h>

#include <array>
#include <optional>
#include <utility>

namespace tarnex::formats
{

namespace
{

/** A character in UTF-8; nothing for what is no character. */
std::string utf8(std::size_t code)
{
    const auto byte = [](std::size_t bits) { return static_cast<char>(bits); };
    if (code < 0x80)
        return {byte(code)};
    if (code < 0x800)
        return {byte(0xc0 | (code >> 6)), byte(0x80 | (code & 0x3f))};
    if (code < 0x10000)
        return {byte(0xe0 | (code >> 12)), byte(0x80 | ((code >> 6) & 0x3f)),
                byte(0x80 | (code & 0x3f))};
    if (code < 0x110000)
        return {byte(0xf0 | (code >> 18)), byte(0x80 | ((code >> 12) & 0x3f)),
                byte(0x80 | ((code >> 6) & 0x3f)), byte(0x80 | (code & 0x3f))};
    return "";
}

/** What an entity such as "#233" or "amp" stands for; nothing when it is not known. */
std::optional<std::string> entity(std::string_view name)
{
    static constexpr std::array<std::pair<std::string_view, char>, 5> named{
        {{"amp", '&'}, {"quot", '"'}, {"lt", '<'}, {"gt", '>'}, {"apos", '\''}}};
    for (const auto &[known, character] : named)
        if (name == known)
            return std::string(1, character);
    if (!name.starts_with('#'))
        return std::nullopt;
    const auto code = positionIn(name.substr(1));
    return code ? std::optional(utf8(*code)) : std::nullopt;
}

std::string withoutEntities(std::string_view text)
{
    constexpr std::size_t longest = 8; // characters between & and ;
    std::string result;
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find('&'), text.size());
        result += text.substr(0, plain);
        text.remove_prefix(plain);
        const std::size_t end = text.substr(0, longest + 2).find(';');
        const auto character =
            end == std::string_view::npos ? std::nullopt : entity(text.substr(1, end - 1));
        if (character) {
            result += *character;
            text.remove_prefix(end + 1);
        } else if (!text.empty()) {
            result += '&';
            text.remove_prefix(1);
        }
    }
    return result;
}

class GmlParser
{
public:
    GmlParser(std::string_view text, const std::string &file) : cursor(text, file) {}

    Source parse()
    {
        source.isDirected = false;
        bool hasGraph = false;
        for (skipBlanks(); !cursor.isAtEnd(); skipBlanks()) {
            const std::string_view key = takeKey();
            if (!isKey(key, "graph"))
                skipValue();
            else if (!std::exchange(hasGraph, true))
                readList([&](std::string_view name) { readGraphEntry(name); });
            else
                cursor.fail("expected one graph only");
        }
        if (!hasGraph)
            cursor.fail("expected 'graph ['");
        settleCapacities();
        return std::move(source);
    }

private:
    static bool isMark(char c) { return c == '[' || c == ']' || c == '"'; }
    /** Keys differ in more than upper and lower case of the first letter. */
    static bool isKey(std::string_view key, std::string_view name)
    {
        return key.size() == name.size() && (key[0] | 0x20) == (name[0] | 0x20) &&
               key.substr(1) == name.substr(1);
    }

    void skipBlanks()
    {
        for (cursor.takeWhile(isBlank); cursor.peek() == '#'; cursor.takeWhile(isBlank))
            cursor.skipLine();
    }

    std::string_view takeKey()
    {
        skipBlanks();
        const std::string_view key =
            cursor.takeWhile([](char c) { return !isBlank(c) && !isMark(c); });
        if (key.empty())
            cursor.fail("expected a key or ']'");
        return key;
    }

    /** A string or a number, as text. */
    std::string takeText(std::string_view key)
    {
        skipBlanks();
        if (cursor.peek() != '"') {
            const std::string_view word =
                cursor.takeWhile([](char c) { return !isBlank(c) && !isMark(c); });
            if (word.empty())
                cursor.fail(fmt::format("expected a value of {}", key));
            return std::string(word);
        }
        const std::size_t start = cursor.at();
        cursor.skip();
        const std::string_view text = cursor.takeWhile([](char c) { return c != '"'; });
        if (cursor.isAtEnd())
            cursor.fail(start, "expected a '\"' that closes this string");
        cursor.skip();
        return withoutEntities(text);
    }

    double takeNumber(std::string_view key)
    {
        skipBlanks();
        const std::size_t start = cursor.at();
        const std::string text = takeText(key);
        const auto value = numberIn(text);
        if (!value)
            cursor.fail(start, fmt::format("expected a number for {}, not '{}'", key, text));
        return *value;
    }

    /** Hands each key of a list to a function that takes its value. */
    template <class Entry>
    void readList(Entry entry)
    {
        skipBlanks();
        if (cursor.peek() != '[')
            cursor.fail("expected '['");
        cursor.skip();
        for (skipBlanks(); cursor.peek() != ']'; skipBlanks()) {
            if (cursor.isAtEnd())
                cursor.fail("expected a key or ']'");
            entry(takeKey());
        }
        cursor.skip();
    }

    /** Skips a value, with all that is in it if it is a list. */
    void skipValue()
    {
        skipBlanks();
        if (cursor.peek() != '[') {
            takeText("this key");
            return;
        }
        const std::size_t start = cursor.at();
        std::size_t depth = 0;
        do {
            skipBlanks();
            if (cursor.isAtEnd())
                cursor.fail(start, "expected a ']' that closes this list");
            if (cursor.peek() == '[')
                ++depth;
            else if (cursor.peek() == ']')
                --depth;
            if (cursor.peek() == '[' || cursor.peek() == ']')
                cursor.skip();
            else
                takeText("this key");
        } while (depth > 0);
    }

    void readGraphEntry(std::string_view key)
    {
        if (isKey(key, "node"))
            readNode();
        else if (isKey(key, "edge"))
            readEdge();
        else if (isKey(key, "directed"))
            source.isDirected = takeNumber(key) != 0.0;
        else if (isKey(key, "label") || (isKey(key, "name") && source.name.empty()))
            source.name = takeText(key);
        else
            skipValue();
    }

    void readNode()
    {
        SourceNode node;
        node.line = cursor.line();
        const std::size_t start = cursor.at();
        std::optional<double> longitude;
        std::optional<double> latitude;
        readList([&](std::string_view key) {
            if (isKey(key, "id"))
                node.key = takeText(key);
            else if (isKey(key, "label"))
                node.name = takeText(key);
            else if (isKey(key, "longitude"))
                longitude = takeNumber(key);
            else if (isKey(key, "latitude"))
                latitude = takeNumber(key);
            else
                skipValue();
        });
        if (node.key.empty())
            cursor.fail(start, "expected an id of this node");
        if (longitude && latitude)
            node.at = Coordinates{*longitude, *latitude};
        source.nodes.push_back(std::move(node));
    }

    void readEdge()
    {
        SourceEdge edge;
        edge.line = cursor.line();
        const std::size_t start = cursor.at();
        std::optional<double> speed;
        readList([&](std::string_view key) {
            if (isKey(key, "source"))
                edge.from = takeText(key);
            else if (isKey(key, "target"))
                edge.to = takeText(key);
            else if (isKey(key, "capacity"))
                edge.capacity = {takeNumber(key)};
            else if (isKey(key, "linkSpeedRaw"))
                speed = takeNumber(key);
            else
                skipValue();
        });
        if (edge.from.empty() || edge.to.empty())
            cursor.fail(start, "expected a source and a target of this edge");
        hasCapacity = hasCapacity || !edge.capacity.empty();
        source.edges.push_back(std::move(edge));
        speeds.push_back(speed);
    }

    /** Without capacities, raw speeds are the capacities. */
    void settleCapacities()
    {
        if (hasCapacity)
            return;
        for (std::size_t i = 0; i < speeds.size(); ++i)
            if (speeds[i]) {
                source.unit = "bit/s";
                source.edges[i].capacity = {*speeds[i]};
            }
    }

    Cursor cursor;
    Source source;
    bool hasCapacity = false;
    std::vector<std::optional<double>> speeds; ///< by edge
};

} // namespace

Source parseGml(std::string_view text, const std::string &file)
{
    return GmlParser(text, file).parse();
}

} // namespace tarnex::formats
