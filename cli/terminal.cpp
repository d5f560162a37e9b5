#include "cli/terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace tarnex::cli
{

namespace
{

bool wantsColours()
{
    const char *const unwanted = std::getenv("NO_COLOR");
    const char *const kind = std::getenv("TERM");
    return (unwanted == nullptr || *unwanted == '\0') && kind != nullptr &&
           std::string_view{kind} != "dumb";
}

std::string_view codeOf(Tone tone)
{
    switch (tone) {
    case Tone::heading:
        return "\033[1m";
    case Tone::good:
        return "\033[32m";
    case Tone::bad:
        return "\033[31m";
    case Tone::plain:
        break;
    }
    return {};
}

} // namespace

Terminal::Terminal(int descriptor)
    : isOne(isatty(descriptor) == 1), hasColours(isOne && wantsColours()), columns(80)
{
    winsize size{};
    if (isOne && ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        columns = size.ws_col;
}

const Terminal &Terminal::output()
{
    static const Terminal terminal{STDOUT_FILENO};
    return terminal;
}

const Terminal &Terminal::errors()
{
    static const Terminal terminal{STDERR_FILENO};
    return terminal;
}

std::string Terminal::coloured(std::string_view text, Tone tone) const
{
    if (!hasColours || tone == Tone::plain || text.empty())
        return std::string{text};
    return fmt::format("{}{}\033[0m", codeOf(tone), text);
}

void print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
}

void remark(std::string_view line) { fmt::print(stderr, "{}\n", line); }

} // namespace tarnex::cli
