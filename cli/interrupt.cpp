#include "cli/interrupt.h"

#include "cli/errors.h"
#include "cli/exit_status.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <deque>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <ostream>
#include <streambuf>
#include <unistd.h>

namespace tarnex::cli
{

namespace
{

std::atomic<const char *> doing{"starting"};
std::atomic<const char *> wasDone{"; no file was touched\n"};
std::atomic<bool> isStoppable{false};
std::atomic<bool> wasPressed{false};

void say(const char *text)
{
    // Nothing can be done about a standard error that takes no more.
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

extern "C" void onInterrupt(int)
{
    if (isStoppable && !wasPressed.exchange(true))
        return;
    say("\ntarnex: stopped while ");
    say(doing);
    say(wasDone);
    _exit(static_cast<int>(ExitStatus::interrupted));
}

/** Hands everything on, until Ctrl-C is pressed. */
class StoppableBuffer : public std::streambuf
{
public:
    explicit StoppableBuffer(std::streambuf &buffer) : target(buffer) {}

protected:
    int_type overflow(int_type byte) override
    {
        stopIfAsked();
        return byte == traits_type::eof() ? traits_type::not_eof(byte)
                                          : target.sputc(traits_type::to_char_type(byte));
    }
    std::streamsize xsputn(const char *text, std::streamsize length) override
    {
        stopIfAsked();
        return target.sputn(text, length);
    }
    int sync() override { return target.pubsync(); }

private:
    static void stopIfAsked()
    {
        if (isInterrupted())
            throw Interrupted("stopped while writing");
    }

    std::streambuf &target;
};

} // namespace

void handleInterrupts()
{
    struct sigaction action {
    };
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

void nowDoing(const char *what) { doing = what; }

bool isInterrupted() { return wasPressed; }

Stoppable::Stoppable() { isStoppable = true; }

Stoppable::~Stoppable() { isStoppable = false; }

void replaceFiles(std::vector<formats::FileToWrite> files)
{
    nowDoing("writing");
    const Stoppable stoppable;
    std::vector<std::string> names;
    for (formats::FileToWrite &file : files) {
        names.push_back(file.file.string());
        file.write = [write = std::move(file.write)](std::ostream &out) {
            StoppableBuffer buffer{*out.rdbuf()};
            std::ostream guarded{&buffer};
            guarded.exceptions(std::ios::badbit);
            write(guarded);
        };
    }
    const std::string all = fmt::format("{}", fmt::join(names, " and "));
    try {
        formats::replaceFiles(files);
    } catch (const Interrupted &stopped) {
        throw Interrupted(fmt::format("{}; {} {} left as before", stopped.what(), all,
                                      names.size() == 1 ? "was" : "were"));
    }
    static std::deque<std::string> sentences; // they last: the handler may look at any time
    wasDone = sentences.emplace_back(fmt::format("; {} had been written\n", all)).c_str();
    nowDoing("printing");
    if (isInterrupted())
        throw Interrupted(fmt::format("stopped after {} had been written", all));
}

} // namespace tarnex::cli
