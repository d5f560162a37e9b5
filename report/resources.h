/** Files that are built into the command. */
#ifndef TARNEX_REPORT_RESOURCES_H
#define TARNEX_REPORT_RESOURCES_H

#include <string_view>

namespace tarnex::report::resources
{

extern const std::string_view page;          ///< page/page.html, with places for the others
extern const std::string_view style;         ///< page/style.css
extern const std::string_view common;        ///< scripts of every page, one after the other
extern const std::string_view reportBody;    ///< page/report.html, the inside of a plan's page
extern const std::string_view reportScript;  ///< what only a plan's page does
extern const std::string_view compareBody;   ///< page/compare.html, of a page with two plans
extern const std::string_view compareScript; ///< what only such a page does
extern const std::string_view d3;            ///< the library
extern const std::string_view d3Licence;     ///< its licence
extern const std::string_view borders;       ///< borders.txt

} // namespace tarnex::report::resources

#endif
