#include "cli/progress.h"

#include "cli/terminal.h"

#include <cstdio>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

using namespace std::chrono_literals;

constexpr auto firstAfter = 1s;
constexpr auto nextAfter = 100ms;

const char *textOf(planning::Phase phase)
{
    switch (phase) {
    case planning::Phase::placing:
        return "placing";
    case planning::Phase::placingAgain:
        return "placing again";
    case planning::Phase::protecting:
        return "protecting";
    case planning::Phase::settingUp:
        return "setting up";
    case planning::Phase::failing:
        return "failing";
    }
    return "";
}

} // namespace

TerminalProgress::TerminalProgress() : next(Clock::now() + firstAfter) {}

TerminalProgress::~TerminalProgress()
{
    if (isShown)
        std::fputs("\r\033[K", stderr);
}

void TerminalProgress::at(planning::Phase phase, std::size_t done, std::size_t all)
{
    if (!Terminal::errors().isTerminal() || Clock::now() < next)
        return;
    fmt::print(stderr, "\r\033[K{}: {} of {}", textOf(phase), done, all);
    isShown = true;
    next = Clock::now() + nextAfter;
}

} // namespace tarnex::cli
