#include "sentences.h"

#include <array>
#include <charconv>
#include <system_error>
#include <utility>

namespace tarnex::inside
{

namespace
{

std::string roundedDown(double number)
{
    constexpr int digits = 12;
    for (const double about : {number, number * (1.0 - 1e-12)}) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), about,
                                       std::chars_format::general, digits);
        double rounded = 0.0;
        if (std::from_chars(text.data(), end.ptr, rounded).ec == std::errc{} && rounded <= number)
            return textOf(rounded);
    }
    return textOf(number);
}

} // namespace

std::string node(Long id) { return "node " + std::to_string(id); }

std::string fromTo(Long from, Long to) { return "from " + node(from) + " to " + node(to); }

std::string textOf(double number)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

std::string whatFits(const std::optional<double> &largest)
{
    return largest ? "; " + roundedDown(*largest) + " would fit." : "; nothing would fit.";
}

Refusal refusal(Reason reason, std::string sentence)
{
    return {
        .reason = reason, .sentence = std::move(sentence), .largestBandwidth = 0.0, .inTheWay = {}};
}

} // namespace tarnex::inside
