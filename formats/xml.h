/** XML documents with the places of their elements. */
#ifndef TARNEX_FORMATS_XML_H
#define TARNEX_FORMATS_XML_H

#include "formats/place.h"

#include <pugixml.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace tarnex::formats
{

/** A parsed document; lines are to be asked for in the order of the document. */
class XmlDocument
{
public:
    /** Parses a text, in UTF-8 or ISO 8859-1, whose root element is to have a certain name. */
    XmlDocument(std::string_view content, const std::string &fileName, const char *rootName);

    pugi::xml_node root() const { return document.document_element(); }
    std::size_t lineOf(pugi::xml_node element);

    /** The value of an attribute that must be there. */
    const char *attribute(pugi::xml_node element, const char *name) const;
    /** The text of an element, or of a child that must be there, which is to be a number. */
    double number(pugi::xml_node element, const char *what) const;
    double childNumber(pugi::xml_node element, const char *child) const;

    /** Throws an InputError about an element. */
    [[noreturn]] void fail(pugi::xml_node element, const std::string &problem) const;

private:
    std::string text; ///< in UTF-8, as offsets count
    std::string file;
    pugi::xml_document document;
    LineCounter lines;
};

} // namespace tarnex::formats

#endif
