/** Files that are built into the command. */
#ifndef TARNEX_REPORT_RESOURCES_H
#define TARNEX_REPORT_RESOURCES_H

#include <string_view>

namespace tarnex::report::resources
{

extern const std::string_view page;      ///< page/page.html, with places for the others
extern const std::string_view style;     ///< page/style.css
extern const std::string_view script;    ///< page/*.js, one after the other
extern const std::string_view d3;        ///< the library
extern const std::string_view d3Licence; ///< its licence
extern const std::string_view borders;   ///< borders.txt

} // namespace tarnex::report::resources

#endif
