/**
 * Documents described by tables: a Shape says what a value may be and what becomes of it, and a
 * ShapeReader holds a document against one while it is being read. What it makes of it is a Draft,
 * to which the functions in the tables add piece by piece; they throw Problem at a piece that is
 * wrong.
 */
#ifndef TARNEX_FORMATS_JSON_SHAPE_H
#define TARNEX_FORMATS_JSON_SHAPE_H

#include "formats/json/events.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats::json
{

template <class Draft>
struct Shape;

/** A member of an object. */
template <class Draft>
struct Member {
    std::string_view name;
    const Shape<Draft> *shape = nullptr;
    bool isRequired = true;
};

/** What a value may be: whatever it has a function, members or an element for. */
template <class Draft>
struct Shape {
    std::string_view what; ///< for messages: "a node", "a number of 0 or more"
    void (*text)(Draft &, std::string &) = nullptr;
    void (*number)(Draft &, double) = nullptr; ///< integers too, if `integer` is not given
    void (*integer)(Draft &, std::int64_t) = nullptr;
    void (*flag)(Draft &, bool) = nullptr;
    std::span<const Member<Draft>> members = {}; ///< others are skipped; 32 at most
    const Shape *element = nullptr;              ///< of an array
    void (*begin)(Draft &) = nullptr;            ///< of an object or array
    void (*end)(Draft &) = nullptr;
    /** The shape that takes this one's place as soon as it is not null; it begins with the same
     * members. */
    const Shape *(*rest)(const Draft &) = nullptr;
    bool skipsOthers = true; ///< false: no other members than those given
    bool takesNull = false;  ///< a null is as good as no value
};

/** Reads a document of a shape into a draft. */
template <class Draft>
class ShapeReader : public Events
{
public:
    ShapeReader(const Shape<Draft> &document, Draft &result) : expected(&document), draft(result) {}

    void beginObject() override
    {
        if (expected != nullptr && expected->members.empty())
            mismatch();
        open();
    }

    void key(const std::string &name) override
    {
        Frame &frame = resolved();
        expected = nullptr;
        if (frame.shape == nullptr)
            return;
        for (std::size_t i = 0; i < frame.shape->members.size(); ++i)
            if (frame.shape->members[i].name == name)
                return enter(frame, i);
        if (!frame.shape->skipsOthers)
            missing(frame.shape->members.front().name, *frame.shape);
    }

    void endObject() override
    {
        const Frame &frame = resolved();
        if (frame.shape != nullptr)
            for (std::size_t i = 0; i < frame.shape->members.size(); ++i)
                if (frame.shape->members[i].isRequired && (frame.seen >> i & 1U) == 0)
                    missing(frame.shape->members[i].name, *frame.shape);
        close();
    }

    void beginArray() override
    {
        if (expected != nullptr && expected->element == nullptr)
            mismatch();
        open();
    }

    void endArray() override { close(); }

    void text(std::string &value) override { take(&Shape<Draft>::text, value); }
    void number(double value) override { take(&Shape<Draft>::number, value); }
    void flag(bool value) override { take(&Shape<Draft>::flag, value); }
    void integer(std::int64_t value) override
    {
        if (expected != nullptr && expected->integer == nullptr)
            number(static_cast<double>(value));
        else
            take(&Shape<Draft>::integer, value);
    }
    void null() override
    {
        if (expected != nullptr && !expected->takesNull)
            mismatch();
        expectNext();
    }

private:
    /** An object or array that is not closed yet. */
    struct Frame {
        const Shape<Draft> *shape; // null: skipped
        std::uint32_t seen = 0;    // a bit per member
    };

    static constexpr std::size_t maxDepth = 64;

    /** The object that is open, with its final shape if that is known by now. */
    Frame &resolved()
    {
        Frame &frame = frames.back();
        if (frame.shape != nullptr && frame.shape->rest != nullptr)
            if (const Shape<Draft> *rest = frame.shape->rest(draft))
                frame.shape = rest;
        return frame;
    }

    void enter(Frame &frame, std::size_t member)
    {
        const std::uint32_t bit = std::uint32_t{1} << member;
        const Member<Draft> &found = frame.shape->members[member];
        if ((frame.seen & bit) != 0)
            throw Problem("a second \"" + std::string(found.name) + "\" in " +
                          std::string(frame.shape->what));
        frame.seen |= bit;
        expected = found.shape;
    }

    void open()
    {
        if (frames.size() == maxDepth)
            throw Problem("nested more than " + std::to_string(maxDepth) + " deep");
        frames.push_back({expected});
        if (expected == nullptr)
            return;
        if (expected->begin != nullptr)
            expected->begin(draft);
        expected = expected->element;
    }

    void close()
    {
        if (const Shape<Draft> *shape = frames.back().shape;
            shape != nullptr && shape->end != nullptr)
            shape->end(draft);
        frames.pop_back();
        expectNext();
    }

    template <class Taker, class Value>
    void take(Taker taker, Value &value)
    {
        if (expected != nullptr) {
            if (expected->*taker == nullptr)
                mismatch();
            (expected->*taker)(draft, value);
        }
        expectNext();
    }

    /** In an array there may be one more of the same. */
    void expectNext()
    {
        if (!frames.empty())
            expected = frames.back().shape != nullptr ? frames.back().shape->element : nullptr;
    }

    [[noreturn]] void mismatch() const { throw Problem("expected " + std::string(expected->what)); }

    [[noreturn]] static void missing(std::string_view member, const Shape<Draft> &in)
    {
        throw Problem("expected \"" + std::string(member) + "\" in " + std::string(in.what));
    }

    const Shape<Draft> *expected; // of the next value; null: it is skipped
    Draft &draft;
    std::vector<Frame> frames;
};

} // namespace tarnex::formats::json

#endif
