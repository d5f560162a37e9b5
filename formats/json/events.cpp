#include "formats/json/events.h"

#include "formats/remarks.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace tarnex::formats::json
{

namespace
{

/** Passes the library's events on and keeps in mind where the last one ended. */
class Adapter
{
public:
    Adapter(TextStream &stream, Events &taker) : text(stream), events(taker) {}

    bool null() { return passed(&Events::null); }
    bool boolean(bool value) { return passed(&Events::flag, value); }
    bool number_integer(std::int64_t value) { return passedNumber(&Events::integer, value); }
    bool number_unsigned(std::uint64_t value)
    {
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return passedNumber(&Events::integer, static_cast<std::int64_t>(value));
        return passedNumber(&Events::number, static_cast<double>(value));
    }
    bool number_float(double value, const std::string & /*written*/)
    {
        return passedNumber(&Events::number, value);
    }
    bool string(std::string &value) { return passed(&Events::text, value); }
    static bool binary(nlohmann::json::binary_t & /*value*/) { return false; }
    bool start_object(std::size_t /*size*/) { return passed(&Events::beginObject); }
    bool key(std::string &name) { return passed(&Events::key, name); }
    bool end_object() { return passed(&Events::endObject); }
    bool start_array(std::size_t /*size*/) { return passed(&Events::beginArray); }
    bool end_array() { return passed(&Events::endArray); }

    /** Throws what the library says is wrong at its last character, the `count`-th. */
    bool parse_error(std::size_t count, const std::string & /*token*/,
                     const nlohmann::json::exception &error)
    {
        endOfLast = std::min(count, text.offset() + 1) - 1;
        throw Problem(shortened(error.what()));
    }

    /** Where the token is that the taker did not like. */
    Place place() const { return text.placeOf(text.tokenFrom(endOfLast)); }

private:
    template <class... Parameters, class... Arguments>
    bool passed(void (Events::*event)(Parameters...), Arguments &&...arguments)
    {
        (events.*event)(arguments...);
        endOfLast = text.offset();
        return true;
    }

    /** The end of a number is known from the character behind it, which has been read. */
    template <class Number>
    bool passedNumber(void (Events::*event)(Number), Number value)
    {
        passed(event, value);
        endOfLast -= 1;
        return true;
    }

    /** Without the library's own number and position. */
    static std::string shortened(std::string what)
    {
        for (const std::string_view mark : {"] ", "column "})
            if (const std::size_t found = what.find(mark); found != std::string::npos)
                what.erase(0, found + mark.size());
        if (const std::size_t colon = what.find_first_not_of("0123456789");
            colon != 0 && what.compare(colon, 2, ": ") == 0)
            what.erase(0, colon + 2);
        return what;
    }

    TextStream &text;
    Events &events;
    std::size_t endOfLast = 0;
};

} // namespace

void parse(TextStream &text, const std::string &file, Events &events)
{
    Adapter adapter(text, events);
    try {
        nlohmann::json::sax_parse(TextIterator(text), TextIterator(), &adapter);
    } catch (const Problem &problem) {
        const Place at = adapter.place();
        throw InputError(file, at.line, at.column, problem.what());
    }
}

} // namespace tarnex::formats::json
