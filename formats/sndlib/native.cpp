#include "formats/cursor.h"
#include "formats/number.h"
#include "formats/parsers.h"
#include "formats/sndlib/sndlib.h"

#include <fmt/format.h>

namespace tarnex::formats
{

namespace
{

class NativeParser
{
public:
    NativeParser(std::string_view text, const std::string &file) : cursor(text, file) {}

    Source parse()
    {
        if (cursor.rest().starts_with("?SNDlib"))
            readHead();
        while (skipBlanks(), !cursor.isAtEnd())
            readSection();
        completeSndlib(source, saysDirected, nbLinksWithModules);
        return std::move(source);
    }

private:
    void readHead()
    {
        const std::string_view head = cursor.rest().substr(0, cursor.rest().find('\n'));
        if (head.find("type: network") == std::string_view::npos)
            cursor.fail("expected '?SNDlib native format; type: network; ...'");
        cursor.skipLine();
        if (cursor.rest().starts_with(networkComment)) {
            cursor.skip(networkComment.size());
            source.name = cursor.takeWhile([](char c) { return c != '\n'; });
        }
    }

    /** Skips blanks and comments, which begin where a word could. */
    void skipBlanks()
    {
        while (isBlank(cursor.peek()) || cursor.peek() == '#')
            if (cursor.peek() == '#')
                cursor.skipLine();
            else
                cursor.skip();
    }

    bool isNext(char mark)
    {
        skipBlanks();
        return cursor.peek() == mark;
    }

    void take(char mark)
    {
        if (!isNext(mark))
            cursor.fail(fmt::format("expected '{}'", mark));
        cursor.skip();
    }

    std::string_view takeWord(std::string_view what)
    {
        skipBlanks();
        const std::string_view word =
            cursor.takeWhile([](char c) { return !isBlank(c) && c != '(' && c != ')'; });
        if (word.empty())
            cursor.fail(fmt::format("expected {}", what));
        return word;
    }

    double takeNumber(std::string_view what)
    {
        skipBlanks();
        const std::size_t start = cursor.at();
        const std::string_view word = takeWord(what);
        const auto value = numberIn(word);
        if (!value)
            cursor.fail(start, fmt::format("expected {}, a number, not '{}'", what, word));
        return *value;
    }

    void readSection()
    {
        const std::string_view name = takeWord("the name of a section");
        take('(');
        if (name == "META") {
            readMeta();
            return;
        }
        const auto entry = name == "NODES"     ? &NativeParser::readNode
                           : name == "LINKS"   ? &NativeParser::readLink
                           : name == "DEMANDS" ? &NativeParser::readDemand
                                               : nullptr;
        if (!entry) {
            skipToClosing();
            return;
        }
        while (!isNext(')'))
            (this->*entry)();
        cursor.skip();
    }

    void skipToClosing()
    {
        const std::size_t start = cursor.at();
        for (std::size_t depth = 1; depth > 0; cursor.skip()) {
            skipBlanks();
            cursor.takeWhile([](char c) { return !isBlank(c) && c != '(' && c != ')'; });
            if (cursor.isAtEnd())
                cursor.fail(start, "expected a ')' that closes this section");
            if (cursor.peek() == '(')
                ++depth;
            else if (cursor.peek() == ')')
                --depth;
        }
    }

    /** Lines "attribute = anything". */
    void readMeta()
    {
        while (!isNext(')')) {
            const std::string_view attribute = takeWord("an attribute");
            take('=');
            std::string_view value = cursor.takeWhile([](char c) { return c != '\n'; });
            while (!value.empty() && isBlank(value.front()))
                value.remove_prefix(1);
            while (!value.empty() && isBlank(value.back()))
                value.remove_suffix(1);
            if (attribute == "unit")
                source.unit = unitFromSndlib(value);
            else if (attribute == "link_model")
                saysDirected = value == directedModel;
        }
        cursor.skip();
    }

    void readNode()
    {
        SourceNode node;
        node.key = takeWord("the id of a node");
        node.line = cursor.line();
        if (isNext('(')) {
            cursor.skip();
            const double longitude = takeNumber("the longitude");
            node.at = Coordinates{longitude, takeNumber("the latitude")};
            take(')');
        }
        source.nodes.push_back(std::move(node));
    }

    template <class Ends>
    void readEnds(Ends &ends)
    {
        take('(');
        ends.from = takeWord("the node at one end");
        ends.to = takeWord("the node at the other end");
        ends.line = cursor.line();
        take(')');
    }

    void readLink()
    {
        takeWord("the id of a link");
        SourceEdge edge;
        readEnds(edge);
        SndlibCapacity capacity;
        capacity.install(takeNumber("the pre-installed capacity"));
        takeNumber("the cost of the pre-installed capacity");
        takeNumber("the routing cost");
        takeNumber("the setup cost");
        take('(');
        while (!isNext(')')) {
            capacity.offerModule(takeNumber("the capacity of a module"));
            takeNumber("the cost of a module");
        }
        cursor.skip();
        nbLinksWithModules += capacity.hasModules() ? 1 : 0;
        edge.capacity = capacity.total();
        source.edges.push_back(std::move(edge));
    }

    void readDemand()
    {
        SourceDemand demand;
        demand.name = takeWord("the id of a demand");
        readEnds(demand);
        const double routingUnit = takeNumber("the routing unit");
        demand.bandwidth = routingUnit * takeNumber("the demand value");
        takeWord("the maximal path length");
        source.demands.push_back(std::move(demand));
    }

    Cursor cursor;
    Source source;
    bool saysDirected = false;
    std::size_t nbLinksWithModules = 0;
};

} // namespace

Source parseSndlibNative(std::string_view text, const std::string &file)
{
    return NativeParser(text, file).parse();
}

} // namespace tarnex::formats
