#include "formats/json/schemas.h"

#include "formats/json/events.h"

#include <algorithm>
#include <array>
#include <span>

namespace tarnex::formats::json
{

namespace
{

constexpr std::array orders{Order::given, Order::level, Order::largest, Order::smallest};
constexpr std::array<LevelScheme, 4> schemes{std::nullopt, Scheme::local, Scheme::global,
                                             Scheme::localOrGlobal};
constexpr std::array backupKinds{LspKind::localBackup, LspKind::globalBackup};
constexpr std::array reasons{Reason::noSuchNode,     Reason::sameEnds,
                             Reason::notConnected,   Reason::noRoom,
                             Reason::noDisjointPath, Reason::noRoomForDisjointPath};

/** The value whose word this is. */
template <class Values, class WordOf>
auto valueFor(const std::string &word, const Values &values, WordOf wordOf)
{
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const auto &value) { return wordOf(value) == word; });
    if (found != values.end())
        return *found;
    std::string expected;
    for (const auto &value : values)
        expected += (expected.empty() ? "\"" : ", \"") + std::string(wordOf(value)) + "\"";
    throw Problem("unknown word \"" + word + "\", expected one of " + expected);
}

} // namespace

std::string_view wordFor(Order order)
{
    constexpr std::array<std::string_view, 4> words{"given", "level", "largest", "smallest"};
    return words.at(static_cast<std::size_t>(order));
}

std::string_view wordFor(const LevelScheme &scheme)
{
    constexpr std::array<std::string_view, 3> words{"local", "global", "local-or-global"};
    return scheme ? words.at(static_cast<std::size_t>(*scheme)) : "none";
}

std::string_view wordFor(LspKind kind)
{
    return kind == LspKind::globalBackup ? "global" : "local";
}

Order orderFor(const std::string &word)
{
    return valueFor(word, orders, [](Order order) { return wordFor(order); });
}

LevelScheme schemeFor(const std::string &word)
{
    return valueFor(word, schemes, [](const LevelScheme &scheme) { return wordFor(scheme); });
}

LspKind backupKindFor(const std::string &word)
{
    return valueFor(word, backupKinds, [](LspKind kind) { return wordFor(kind); });
}

Reason reasonFor(const std::string &text)
{
    return valueFor(text, reasons, [](Reason reason) { return textOf(reason); });
}

} // namespace tarnex::formats::json
