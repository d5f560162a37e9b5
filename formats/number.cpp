#include "formats/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace tarnex::formats
{

namespace
{

template <class Number>
std::optional<Number> wholly(std::string_view text)
{
    Number value{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

} // namespace

std::optional<double> numberIn(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    const auto value = wholly<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::size_t> positionIn(std::string_view text) { return wholly<std::size_t>(text); }

std::optional<double> bitsPerSecond(std::string_view unit)
{
    static constexpr std::array<std::pair<std::string_view, double>, 5> units{
        {{"bit/s", 1e0}, {"kbit/s", 1e3}, {"Mbit/s", 1e6}, {"Gbit/s", 1e9}, {"Tbit/s", 1e12}}};
    for (const auto &[name, bits] : units)
        if (unit == name)
            return bits;
    return std::nullopt;
}

} // namespace tarnex::formats
