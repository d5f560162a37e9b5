#include "cli/part_file.h"

#include "cli/errors.h"
#include "formats/remarks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnex::cli
{

namespace
{

/** Brings a file's content to the disk; errno when that fails. */
bool isSynced(const std::filesystem::path &file)
{
    const int opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        return false;
    const int result = ::fsync(opened);
    const int problem = errno;
    ::close(opened);
    errno = problem;
    return result == 0;
}

[[noreturn]] void failToWrite(const std::filesystem::path &file)
{
    throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(),
                            "cannot write " + file.string());
}

/** Whether a descriptor is of the file that has the name now. */
bool isNamed(int opened, const std::filesystem::path &name)
{
    struct stat one {
    };
    struct stat other {
    };
    return ::fstat(opened, &one) == 0 && ::stat(name.c_str(), &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/** Opens a file and takes the lock on it; a descriptor, or nothing when another process has it. A
 * file system that knows no locks lets everybody have it. */
std::optional<int> openLocked(const std::filesystem::path &file)
{
    const int opened = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (opened < 0)
        failToWrite(file);
    const bool isFree = ::flock(opened, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    if (isFree && isNamed(opened, file))
        return opened;
    ::close(opened);
    return std::nullopt;
}

/** What a part is called while it is being written; UsageError. */
std::filesystem::path partialOf(const std::filesystem::path &name)
{
    std::error_code none;
    if (std::filesystem::exists(name, none) && !std::filesystem::is_regular_file(name, none))
        throw UsageError(fmt::format("--save {}: expected a regular file", name.string()));
    return name.string() + ".partial";
}

} // namespace

PartReader::PartReader(std::filesystem::path file, const Plan &ofPlan)
    : name(std::move(file)), plan(ofPlan), in(name, std::ios::binary)
{
    std::string line;
    if (!in)
        throw InputError(name.string(), 0, 0, std::generic_category().message(errno));
    if (!readLine(line))
        fail("expected the first line of a part");
    try {
        theHeader = planning::headerIn(line);
    } catch (const planning::LineError &error) {
        fail(error.what());
    }
}

/** A line with its end; one that the file breaks off in does not count. */
bool PartReader::readLine(std::string &line)
{
    if (!std::getline(in, line) || in.eof())
        return false;
    bytes += line.size() + 1;
    ++nbLines;
    return true;
}

bool PartReader::next(planning::TriedFailure &tried)
{
    std::string line;
    if (!readLine(line))
        return false;
    try {
        tried = planning::triedIn(line, plan);
    } catch (const planning::LineError &error) {
        fail(error.what());
    }
    if (tried.position != theHeader.shard[count] || tried.position >= theHeader.nbFailures)
        fail(fmt::format("expected failure {}, not {}", theHeader.shard[count], tried.position));
    ++count;
    return true;
}

void PartReader::fail(const std::string &problem) const
{
    throw InputError(name.string(), std::max<std::size_t>(nbLines, 1), 0, problem);
}

FileLock::FileLock(std::filesystem::path file) : name(std::move(file))
{
    using namespace std::chrono_literals;
    constexpr auto pause = 50ms;
    std::optional<int> opened = openLocked(name);
    // The processes of a run that was killed hold it until they are gone as well.
    for (auto waited = 0ms; !opened && waited < 1s; waited += pause) {
        std::this_thread::sleep_for(pause);
        opened = openLocked(name);
    }
    if (!opened)
        throw UsageError(fmt::format("{}: another process is writing it", name.string()));
    held = *opened;
}

FileLock::~FileLock()
{
    struct stat file {
    };
    if (::fstat(held, &file) == 0 && file.st_size == 0 && isNamed(held, name))
        ::unlink(name.c_str());
    ::close(held);
}

PartWriter::PartWriter(std::filesystem::path file, planning::PartHeader ofPart)
    : name(std::move(file)), unfinished(partialOf(name)), lock(unfinished),
      header(std::move(ofPart))
{
}

std::size_t PartWriter::resume(const Plan &plan, const planning::TakeTried &take)
{
    const bool hasName = std::filesystem::exists(name) && std::filesystem::is_empty(unfinished);
    const std::filesystem::path file = hasName ? name : unfinished;
    std::string line;
    if (std::ifstream head{file}; !std::getline(head, line) || head.eof())
        return 0; // broken off in the first line, or not there
    PartReader reader{file, plan};
    if (reader.header() != header)
        throw UsageError(fmt::format("{} belongs to another sweep: expected the plan, the sets and "
                                     "the options that it was begun with",
                                     file.string()));
    planning::TriedFailure tried;
    while (reader.next(tried))
        take(std::move(tried));
    isComplete = hasName && reader.nbRead() == header.shard.size(header.nbFailures);
    if (hasName && !isComplete) { // it was cut off later
        std::filesystem::copy_file(name, unfinished,
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::remove(name);
    }
    nbKept = reader.nbBytes();
    return reader.nbRead();
}

void PartWriter::begin()
{
    if (isComplete)
        return;
    if (nbKept > 0)
        std::filesystem::resize_file(unfinished, nbKept);
    out.open(unfinished, std::ios::binary | (nbKept > 0 ? std::ios::app : std::ios::trunc));
    if (nbKept == 0)
        out << planning::lineOf(header) << '\n';
    check();
}

void PartWriter::write(const planning::TriedFailure &tried)
{
    out << planning::lineOf(tried) << '\n';
    check();
}

void PartWriter::finish()
{
    if (isComplete)
        return;
    out.close();
    check();
    if (!isSynced(unfinished))
        failToWrite(unfinished);
    std::filesystem::rename(unfinished, name);
}

void PartWriter::check() const
{
    if (!out)
        failToWrite(unfinished);
}

} // namespace tarnex::cli
