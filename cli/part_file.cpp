#include "cli/part_file.h"

#include "cli/errors.h"
#include "formats/remarks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
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

PartWriter::PartWriter(std::filesystem::path file, planning::PartHeader ofPart)
    : name(std::move(file)), header(std::move(ofPart))
{
    std::error_code none;
    if (std::filesystem::exists(name, none) && !std::filesystem::is_regular_file(name, none))
        throw UsageError(fmt::format("--save {}: expected a regular file", name.string()));
}

std::filesystem::path PartWriter::partial() const { return name.string() + ".partial"; }

std::size_t PartWriter::resume(const Plan &plan, const planning::TakeTried &take)
{
    std::error_code none;
    const bool hasName =
        std::filesystem::exists(name, none) && !std::filesystem::exists(partial(), none);
    const std::filesystem::path file = hasName ? name : partial();
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
    if (hasName && !isComplete)
        std::filesystem::rename(name, partial()); // it was cut off later
    nbKept = reader.nbBytes();
    return reader.nbRead();
}

void PartWriter::begin()
{
    if (isComplete)
        return;
    if (nbKept > 0)
        std::filesystem::resize_file(partial(), nbKept);
    out.open(partial(), std::ios::binary | (nbKept > 0 ? std::ios::app : std::ios::trunc));
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
    if (!isSynced(partial()))
        fail();
    std::filesystem::rename(partial(), name);
}

void PartWriter::check() const
{
    if (!out)
        fail();
}

void PartWriter::fail() const
{
    throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(),
                            "cannot write " + partial().string());
}

} // namespace tarnex::cli
