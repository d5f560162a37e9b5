#include "cli/interrupt.h"

#include "cli/errors.h"
#include "cli/exit_status.h"
#include "formats/write.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <streambuf>
#include <unistd.h>

namespace tarnex::cli
{

namespace
{

std::atomic<const char *> doing{"starting"};
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
    say("; no file was touched\n");
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

void replaceFile(const std::string &file, const std::function<void(std::ostream &)> &write)
{
    nowDoing("writing");
    const Stoppable stoppable;
    try {
        formats::replaceFile(file, [&write](std::ostream &out) {
            StoppableBuffer buffer{*out.rdbuf()};
            std::ostream guarded{&buffer};
            guarded.exceptions(std::ios::badbit);
            write(guarded);
        });
    } catch (const Interrupted &stopped) {
        throw Interrupted(fmt::format("{}; {} is as it was", stopped.what(), file));
    }
}

} // namespace tarnex::cli
