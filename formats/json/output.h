/** Writing JSON text through a buffer. */
#ifndef TARNEX_FORMATS_JSON_OUTPUT_H
#define TARNEX_FORMATS_JSON_OUTPUT_H

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace tarnex::formats::json
{

/** Puts pieces of JSON together. What is left in the buffer goes out with finish(). */
class Output
{
public:
    explicit Output(std::ostream &stream) : out(stream) {}

    /** JSON as it is. */
    Output &raw(std::string_view json);
    /** A text; bytes that are no UTF-8 are taken as Latin-1. */
    Output &text(std::string_view value);
    /** In the shortest form that reads back as the same; std::invalid_argument if not finite. */
    Output &number(double value);
    template <std::integral Integer>
    Output &integer(Integer value)
    {
        std::array<char, 24> digits{};
        const char *end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        return raw({digits.data(), static_cast<std::size_t>(end - digits.data())});
    }
    Output &flag(bool value) { return raw(value ? "true" : "false"); }

    /** An array with what `writeOne` makes of each of the values, between and behind which stands
     * `separator`, e.g. a line feed. */
    template <class Values, class WriteOne>
    Output &list(const Values &values, WriteOne writeOne, std::string_view separator = "")
    {
        raw("[").raw(separator);
        bool isFirst = true;
        for (const auto &value : values) {
            if (!isFirst)
                raw(",").raw(separator);
            isFirst = false;
            writeOne(value);
        }
        return raw(isFirst ? "" : separator).raw("]");
    }

    /** Sends out what is left. */
    void finish();

private:
    std::ostream &out;
    std::string buffer;
};

} // namespace tarnex::formats::json

#endif
