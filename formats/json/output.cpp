#include "formats/json/output.h"

#include "formats/names.h"

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace tarnex::formats::json
{

namespace
{

constexpr std::size_t bufferSize = std::size_t{1} << 16U;

/** Appends a character as it stands in a JSON text. */
void appendCharacter(std::string &to, char character)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20) {
        to.append("\\u00");
        to.push_back(digits[code >> 4U]);
        to.push_back(digits[code & 0xFU]);
        return;
    }
    if (character == '"' || character == '\\')
        to.push_back('\\');
    to.push_back(character);
}

} // namespace

Output &Output::raw(std::string_view json)
{
    buffer.append(json);
    if (buffer.size() > bufferSize)
        finish();
    return *this;
}

Output &Output::text(std::string_view value)
{
    if (!isUtf8(value))
        return text(fromLatin1(value));
    buffer.push_back('"');
    for (const char character : value)
        appendCharacter(buffer, character);
    return raw("\"");
}

Output &Output::number(double value)
{
    if (!std::isfinite(value))
        throw std::invalid_argument("JSON has no number for " + std::to_string(value));
    if (value == 0.0 && std::signbit(value))
        return raw("-0.0"); // an integer would lose its sign
    std::array<char, 32> digits{};
    const char *end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return raw({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

void Output::finish()
{
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    buffer.clear();
}

} // namespace tarnex::formats::json
