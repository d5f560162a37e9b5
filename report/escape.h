/** Text in HTML, XML and SVG. */
#ifndef TARNEX_REPORT_ESCAPE_H
#define TARNEX_REPORT_ESCAPE_H

#include <string>
#include <string_view>

namespace tarnex::report
{

/** Text as it stands in an element or between double quotes. */
inline std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

} // namespace tarnex::report

#endif
