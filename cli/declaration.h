/**
 * What a command takes on its command line, as a table: the parser, the help pages, the man page
 * and the completion are all made from it.
 */
#ifndef TARNEX_CLI_DECLARATION_H
#define TARNEX_CLI_DECLARATION_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarnex::cli
{

/** What a shell may offer for a value. */
enum class Completes { nothing, files, choices };

/** An operand or an option. */
struct Parameter {
    std::string name{};      ///< "FILE", or "--retry"
    std::string letter{};    ///< of an option: "-o", which stands for it; empty when there is none
    std::string argument{};  ///< of an option: what stands for its value; empty for a flag
    std::string help{};      ///< for people, a sentence without a full stop
    bool isRequired = false; ///< of an operand
    bool repeats = false;    ///< whether it may be given several times
    Completes completes = Completes::nothing;
    std::vector<std::string> choices{}; ///< the values that there are
    /** Takes a value, of a flag an empty one; throws UsageError. */
    std::function<void(const std::string &)> take{};
};

/** Options under a heading. */
struct ParameterGroup {
    std::string title;
    std::vector<Parameter> options;
};

/** Collects the parameters of a command; the targets must outlive the parsing. */
class Declaration
{
public:
    /** The options that follow belong under this heading. */
    void group(std::string title);

    /** An operand that is a file. */
    void file(std::string name, std::string help, std::string &target, bool isRequired = true);
    /** An operand of any kind. */
    void operand(Parameter parameter);

    /** An option with a value. */
    void option(Parameter parameter);
    void flag(std::string name, std::string help, bool &target, bool value = true);
    void text(std::string name, std::string argument, std::string help, std::string &target,
              Completes completes = Completes::nothing);
    /** `-o FILE`, `--output FILE`: where the result goes. */
    void output(std::string help, std::string &target);
    /** A count from `least` on. */
    void count(std::string name, std::string argument, std::string help, std::size_t &target,
               std::size_t least = 0);
    /** One of several words. */
    template <class T>
    void choice(std::string name, std::string argument, std::string help,
                std::vector<std::pair<std::string, T>> values, T &target);

    const std::vector<Parameter> &operands() const { return theOperands; }
    const std::vector<ParameterGroup> &groups() const { return theGroups; }
    /** The names of all options. */
    std::vector<std::string> optionNames() const;

private:
    std::vector<Parameter> theOperands;
    std::vector<ParameterGroup> theGroups;
};

/** A whole number from `least` on that `what` takes, up to a thousand million; UsageError. */
std::size_t wholeNumberFrom(const std::string &text, const std::string &what,
                            std::size_t least = 0);

/** A number of 0 or more that `what` takes; UsageError when the text is none. */
double numberFrom(const std::string &text, const std::string &what);

/** The value that goes with a word; UsageError, which lists the words, when there is none. */
template <class T>
T chosen(const std::vector<std::pair<std::string, T>> &values, const std::string &word,
         const std::string &what);

/** Says that a value is not one of those that there are. */
[[noreturn]] void refuseWord(const std::string &word, const std::string &what,
                             const std::vector<std::string> &words);

template <class T>
std::vector<std::string> wordsOf(const std::vector<std::pair<std::string, T>> &values)
{
    std::vector<std::string> words;
    words.reserve(values.size());
    for (const auto &[word, value] : values)
        words.push_back(word);
    return words;
}

template <class T>
T chosen(const std::vector<std::pair<std::string, T>> &values, const std::string &word,
         const std::string &what)
{
    for (const auto &[name, value] : values)
        if (name == word)
            return value;
    refuseWord(word, what, wordsOf(values));
}

template <class T>
void Declaration::choice(std::string name, std::string argument, std::string help,
                         std::vector<std::pair<std::string, T>> values, T &target)
{
    std::vector<std::string> words = wordsOf(values);
    option({.name = name,
            .argument = std::move(argument),
            .help = std::move(help),
            .completes = Completes::choices,
            .choices = std::move(words),
            .take = [name, values = std::move(values), &target](const std::string &word) {
                target = chosen(values, word, name);
            }});
}

} // namespace tarnex::cli

#endif
