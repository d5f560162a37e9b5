#include "formats/bandwidth.h"

#include "formats/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace tarnex::formats
{

namespace
{

constexpr int nbDigits = 6;

[[noreturn]] void fail(std::string_view text, const std::string &problem)
{
    throw BandwidthError("\"" + std::string(text) + "\" is no bandwidth: " + problem);
}

/** The power of ten that a suffix stands for. */
std::optional<int> powerOf(char suffix)
{
    switch (suffix) {
    case 'k':
    case 'K':
        return 3;
    case 'M':
        return 6;
    case 'G':
        return 9;
    case 'T':
        return 12;
    default:
        return std::nullopt;
    }
}

/** Moves the decimal point of a number as it is written: rounding happens once, when it is read. */
std::string shifted(std::string_view number, int power)
{
    const std::size_t mark = number.find_first_of("eE");
    if (mark == std::string_view::npos)
        return std::string(number) + "e" + std::to_string(power);
    std::string_view written = number.substr(mark + 1);
    if (written.starts_with('+'))
        written.remove_prefix(1);
    int exponent = 0;
    const auto [end, error] =
        std::from_chars(written.data(), written.data() + written.size(), exponent);
    if (error != std::errc{} || std::abs(std::int64_t{exponent}) > 10000)
        return std::string(number);
    return std::string(number.substr(0, mark)) + "e" + std::to_string(exponent + power);
}

/** The significant digits of a number, without zeros at the end, and the power of ten of the first.
 */
struct Decimal {
    std::string digits;
    int power = 0;
};

/** Six, or as many as there are before the point. */
int digitsFor(double value)
{
    return value >= 1e6 && value < 1e15 ? static_cast<int>(std::log10(value)) + 1 : nbDigits;
}

Decimal decimalOf(double value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::scientific, digitsFor(value) - 1)
                         .ptr;
    const std::string_view written(text.data(), static_cast<std::size_t>(end - text.data()));
    const std::size_t mark = written.find('e');
    Decimal decimal{std::string(written.substr(0, mark)),
                    std::stoi(std::string(written.substr(mark + 1)))};
    decimal.digits.erase(1, 1); // the point
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
    return decimal;
}

/** With a decimal point where it belongs. */
std::string laidOut(Decimal decimal)
{
    if (decimal.power < 0)
        return "0." + std::string(static_cast<std::size_t>(-1 - decimal.power), '0') +
               decimal.digits;
    const auto whole = static_cast<std::size_t>(decimal.power) + 1;
    if (decimal.digits.size() <= whole)
        return decimal.digits.append(whole - decimal.digits.size(), '0');
    return decimal.digits.insert(whole, 1, '.');
}

} // namespace

double parseBandwidth(std::string_view text, std::string_view unit)
{
    const auto power = text.empty() ? std::nullopt : powerOf(text.back());
    const std::string_view number = power ? text.substr(0, text.size() - 1) : text;
    const auto plain = numberIn(number);
    if (!plain)
        fail(text, "expected a number, or one with k, M, G or T at its end");
    if (*plain < 0.0)
        fail(text, "expected 0 or more");
    if (!power)
        return *plain;
    const auto bits = bitsPerSecond(unit);
    const int ofUnit = bits ? static_cast<int>(std::lround(std::log10(*bits))) : 0;
    const auto value = numberIn(shifted(number, *power - ofUnit));
    if (!value)
        fail(text, "it is too large");
    return *value;
}

std::string formatBandwidth(double bandwidth)
{
    if (bandwidth == 0.0)
        return "0";
    if (bandwidth < 0.0)
        return "-" + formatBandwidth(-bandwidth);
    const Decimal decimal = decimalOf(bandwidth);
    if (decimal.power >= -4 && decimal.power < 15)
        return laidOut(decimal);
    const Decimal mantissa{decimal.digits, 0};
    return laidOut(mantissa) + "e" + std::to_string(decimal.power);
}

} // namespace tarnex::formats
