#include "formats/xml.h"

#include "formats/cursor.h"
#include "formats/names.h"
#include "formats/number.h"

#include <fmt/format.h>

#include <cstring>

namespace tarnex::formats
{

namespace
{

/** The text in UTF-8; one that says it is ISO 8859-1, or is no UTF-8, is taken as that. */
std::string asUtf8(std::string_view text)
{
    const std::string_view prolog = text.substr(0, std::min(text.find("?>"), text.size()));
    const bool isLatin1 = prolog.starts_with("<?xml") &&
                          (prolog.find("8859-1") != std::string_view::npos || !isUtf8(text));
    return isLatin1 ? fromLatin1(text) : std::string(text);
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

XmlDocument::XmlDocument(std::string_view content, const std::string &fileName,
                         const char *rootName)
    : text(asUtf8(content)), file(fileName), lines(text)
{
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        failAt(file, text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)),
               fmt::format("expected well-formed XML: {}", result.description()));
    if (std::strcmp(root().name(), rootName) != 0)
        fail(root(), fmt::format("expected the root element <{}>", rootName));
}

std::size_t XmlDocument::lineOf(pugi::xml_node element)
{
    return lines.lineOf(
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(element.offset_debug(), 0)));
}

const char *XmlDocument::attribute(pugi::xml_node element, const char *name) const
{
    const pugi::xml_attribute found = element.attribute(name);
    if (!found)
        fail(element, fmt::format("expected an attribute '{}' of <{}>", name, element.name()));
    return found.value();
}

double XmlDocument::number(pugi::xml_node element, const char *what) const
{
    const auto value = numberIn(trimmed(element.child_value()));
    if (!value)
        fail(element, fmt::format("expected {}, a number, not '{}'", what, element.child_value()));
    return *value;
}

double XmlDocument::childNumber(pugi::xml_node element, const char *child) const
{
    const pugi::xml_node found = element.child(child);
    if (!found)
        fail(element, fmt::format("expected <{}> in <{}>", child, element.name()));
    return number(found, child);
}

void XmlDocument::fail(pugi::xml_node element, const std::string &problem) const
{
    failAt(file, text,
           static_cast<std::size_t>(std::max<std::ptrdiff_t>(element.offset_debug(), 0)), problem);
}

} // namespace tarnex::formats
