#include "planning/child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnex::planning
{

namespace
{

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** Writes everything; the process ends when nobody reads it any more. */
void writeAll(int pipe, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(pipe, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            ::_exit(1);
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
}

/** The life of a child. */
[[noreturn]] void live(pid_t parent, int pipe, const std::function<void(const Child::Tell &)> &work)
{
    std::signal(SIGINT, SIG_IGN); // Ctrl-C reaches the parent as well, which ends both
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1); // it died before that
    try {
        work([pipe](std::string_view text) { writeAll(pipe, text); });
    } catch (...) {
        ::_exit(1);
    }
    ::_exit(0);
}

} // namespace

Child::Child(const std::function<void(const Tell &)> &work)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        fail("cannot make a pipe");
    const pid_t parent = ::getpid();
    process = ::fork();
    if (process == 0) {
        ::close(ends[0]);
        live(parent, ends[1], work);
    }
    const int problem = errno;
    ::close(ends[1]);
    pipe = ends[0];
    if (process > 0)
        return;
    ::close(pipe);
    errno = problem;
    fail("cannot start a process");
}

Child::~Child() { end(); }

Child::Child(Child &&other) noexcept
    : process(std::exchange(other.process, -1)), pipe(std::exchange(other.pipe, -1)),
      buffer(std::move(other.buffer))
{
}

Child &Child::operator=(Child &&other) noexcept
{
    std::swap(process, other.process);
    std::swap(pipe, other.pipe);
    std::swap(buffer, other.buffer);
    return *this;
}

void Child::end()
{
    if (pipe >= 0)
        ::close(std::exchange(pipe, -1));
    if (process <= 0)
        return;
    ::kill(process, SIGKILL);
    hasSucceeded();
}

bool Child::fill()
{
    std::array<char, 65536> block;
    ssize_t count = 0;
    do {
        count = ::read(pipe, block.data(), block.size());
    } while (count < 0 && errno == EINTR);
    if (count > 0)
        buffer.append(block.data(), static_cast<std::size_t>(count));
    return count > 0;
}

bool Child::readLine(std::string &line)
{
    std::size_t searched = 0;
    std::size_t end = buffer.find('\n');
    while (end == std::string::npos) {
        searched = buffer.size();
        if (!fill())
            return false;
        end = buffer.find('\n', searched);
    }
    line.assign(buffer, 0, end);
    buffer.erase(0, end + 1);
    return true;
}

std::string Child::readAll()
{
    while (fill()) {
    }
    return std::exchange(buffer, {});
}

bool Child::hasSucceeded()
{
    int status = 0;
    pid_t waited = 0;
    do {
        waited = ::waitpid(process, &status, 0);
    } while (waited < 0 && errno == EINTR);
    process = -1;
    return waited > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string inChild(const std::function<std::string()> &work)
{
    Child child{[&work](const Child::Tell &tell) { tell(work()); }};
    std::string result = child.readAll();
    if (!child.hasSucceeded())
        throw std::runtime_error("a process that was to try something out has failed");
    return result;
}

} // namespace tarnex::planning
