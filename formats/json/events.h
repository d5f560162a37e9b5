/** JSON as a sequence of events. */
#ifndef TARNEX_FORMATS_JSON_EVENTS_H
#define TARNEX_FORMATS_JSON_EVENTS_H

#include "formats/json/text_stream.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tarnex::formats::json
{

/** What a taker of events throws at one that it has not expected. */
class Problem : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** Takes a document piece by piece; texts may be moved from. */
class Events
{
public:
    Events() = default;
    Events(const Events &) = delete;
    Events &operator=(const Events &) = delete;
    virtual ~Events() = default;

    virtual void beginObject() = 0;
    virtual void key(const std::string &name) = 0;
    virtual void endObject() = 0;
    virtual void beginArray() = 0;
    virtual void endArray() = 0;
    virtual void text(std::string &value) = 0;
    virtual void number(double value) = 0; ///< finite
    virtual void integer(std::int64_t value) = 0;
    virtual void flag(bool value) = 0;
    virtual void null() = 0;
};

/** Sends the events of a document. What is no JSON and every Problem of the taker become an
 * InputError with the line and column in `file`. */
void parse(TextStream &text, const std::string &file, Events &events);

} // namespace tarnex::formats::json

#endif
