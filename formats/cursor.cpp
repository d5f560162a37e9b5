#include "formats/cursor.h"

namespace tarnex::formats
{

bool Cursor::skipPast(std::string_view mark)
{
    const std::size_t found = text.find(mark, offset);
    offset = found == std::string_view::npos ? text.size() : found + mark.size();
    return found != std::string_view::npos;
}

} // namespace tarnex::formats
