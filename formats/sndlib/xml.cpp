#include "formats/xml.h"

#include "formats/parsers.h"
#include "formats/sndlib/sndlib.h"

#include <fmt/format.h>

namespace tarnex::formats
{

namespace
{

class XmlParser
{
public:
    XmlParser(std::string_view text, const std::string &file) : document(text, file, "network") {}

    Source parse()
    {
        const pugi::xml_node root = document.root();
        source.unit = unitFromSndlib(root.child("meta").child("unit").child_value());
        const pugi::xml_node structure = root.child("networkStructure");
        if (!structure)
            document.fail(root, "expected <networkStructure> in <network>");
        for (const pugi::xml_node node : structure.child("nodes").children("node"))
            readNode(node);
        for (const pugi::xml_node link : structure.child("links").children("link"))
            readLink(link);
        for (const pugi::xml_node demand : root.child("demands").children("demand"))
            readDemand(demand);
        completeSndlib(source, false, nbLinksWithModules);
        return std::move(source);
    }

private:
    void readNode(pugi::xml_node element)
    {
        SourceNode node;
        node.key = document.attribute(element, "id");
        node.line = document.lineOf(element);
        if (const pugi::xml_node at = element.child("coordinates"))
            node.at = Coordinates{document.childNumber(at, "x"), document.childNumber(at, "y")};
        source.nodes.push_back(std::move(node));
    }

    template <class Ends>
    Ends ends(pugi::xml_node element)
    {
        Ends result;
        result.line = document.lineOf(element);
        result.from = end(element, "source");
        result.to = end(element, "target");
        return result;
    }

    std::string end(pugi::xml_node element, const char *which) const
    {
        const char *key = element.child_value(which);
        if (*key == '\0')
            document.fail(element, fmt::format("expected a <{}> in <{}>", which, element.name()));
        return key;
    }

    void readLink(pugi::xml_node element)
    {
        auto edge = ends<SourceEdge>(element);
        SndlibCapacity capacity;
        if (const pugi::xml_node installed = element.child("preInstalledModule"))
            capacity.install(document.childNumber(installed, "capacity"));
        for (const pugi::xml_node module : element.child("additionalModules").children("addModule"))
            capacity.offerModule(document.childNumber(module, "capacity"));
        nbLinksWithModules += capacity.hasModules() ? 1 : 0;
        edge.capacity = capacity.total();
        source.edges.push_back(std::move(edge));
    }

    void readDemand(pugi::xml_node element)
    {
        auto demand = ends<SourceDemand>(element);
        demand.name = element.attribute("id").value();
        const double routingUnit =
            element.child("routingUnit") ? document.childNumber(element, "routingUnit") : 1.0;
        demand.bandwidth = routingUnit * document.childNumber(element, "demandValue");
        source.demands.push_back(std::move(demand));
    }

    XmlDocument document;
    Source source;
    std::size_t nbLinksWithModules = 0;
};

} // namespace

Source parseSndlibXml(std::string_view text, const std::string &file)
{
    return XmlParser(text, file).parse();
}

} // namespace tarnex::formats
