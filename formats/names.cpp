#include "formats/names.h"

#include "formats/cursor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace tarnex::formats
{

namespace
{

using Byte = unsigned char;

/** Length of the UTF-8 character at the start of a text; 0 when it is not well formed. */
std::size_t characterLength(std::string_view text)
{
    const Byte lead = static_cast<Byte>(text[0]);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length)
        return 0;
    const auto byteAt = [&](std::size_t i) { return static_cast<Byte>(text[i]); };
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(i) & 0xc0U) != 0x80)
            return 0;
    const bool isOverlong =
        (lead == 0xe0 && byteAt(1) < 0xa0) || (lead == 0xf0 && byteAt(1) < 0x90);
    const bool isSurrogate = lead == 0xed && byteAt(1) >= 0xa0;
    const bool isTooLarge = lead == 0xf4 && byteAt(1) >= 0x90;
    return isOverlong || isSurrogate || isTooLarge ? 0 : length;
}

} // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string fromLatin1(std::string_view text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    for (const char c : text) {
        const Byte byte = static_cast<Byte>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xc0U | (byte >> 6U));
            result += static_cast<char>(0x80U | (byte & 0x3fU));
        }
    }
    return result;
}

std::string cleanName(std::string_view name)
{
    while (!name.empty() && isBlank(name.front()))
        name.remove_prefix(1);
    while (!name.empty() && isBlank(name.back()))
        name.remove_suffix(1);
    std::string result(name);
    const bool isAscii = !isUtf8(name);
    for (char &c : result) {
        const Byte byte = static_cast<Byte>(c);
        if (byte < 0x20 || byte == 0x7f || (isAscii && byte >= 0x80))
            c = '_';
    }
    return result;
}

std::vector<std::string> cleanNames(const std::vector<std::string> &names)
{
    std::vector<std::string> result;
    for (const std::string &name : names)
        result.push_back(cleanName(name));
    return result;
}

std::string wordOf(std::string_view name, std::string_view marks)
{
    std::string word(name.empty() ? "_" : name);
    std::replace_if(
        word.begin(), word.end(),
        [&](char c) { return isBlank(c) || marks.find(c) != std::string_view::npos; }, '_');
    return word;
}

std::size_t tellApart(std::vector<std::string> &names)
{
    std::unordered_set<std::string> taken(names.begin(), names.end());
    if (taken.size() == names.size())
        return 0;
    std::unordered_map<std::string, std::size_t> nbSeen;
    std::size_t changed = 0;
    for (std::string &name : names) {
        std::size_t &seen = nbSeen[name];
        if (++seen == 1)
            continue;
        std::string other = fmt::format("{}#{}", name, seen);
        while (!taken.insert(other).second)
            other = fmt::format("{}#{}", name, ++seen);
        name = std::move(other);
        ++changed;
    }
    return changed;
}

} // namespace tarnex::formats
