/**
 * Files that hold a part of a sweep: a header, then a line per failure in order. While one is being
 * written it is called FILE.partial; what is called FILE is complete.
 */
#ifndef TARNEX_CLI_PART_FILE_H
#define TARNEX_CLI_PART_FILE_H

#include "planning/failure_lines.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace tarnex::cli
{

/** Reads a part line by line. */
class PartReader
{
public:
    /** Reads the header; InputError. Both outlive the reader. */
    PartReader(std::filesystem::path file, const Plan &plan);

    const std::filesystem::path &file() const { return name; }
    const planning::PartHeader &header() const { return theHeader; }
    /** The next failure; false after the last one that is there in full. InputError when it is
     * damaged or not the one whose turn it is. */
    bool next(planning::TriedFailure &tried);
    /** How many failures have been read. */
    std::size_t nbRead() const { return count; }
    /** How many bytes they and the header take. */
    std::uintmax_t nbBytes() const { return bytes; }

private:
    bool readLine(std::string &line);
    [[noreturn]] void fail(const std::string &problem) const;

    std::filesystem::path name;
    const Plan &plan;
    std::ifstream in;
    planning::PartHeader theHeader;
    std::size_t nbLines = 0;
    std::size_t count = 0; ///< of failures
    std::uintmax_t bytes = 0;
};

/** Holds a file for one process at a time. */
class FileLock
{
public:
    /** Makes the file if there is none; UsageError when another process holds it. */
    explicit FileLock(std::filesystem::path file);
    /** An empty file goes. */
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

private:
    std::filesystem::path name;
    int held; ///< file descriptor
};

/** Writes a part, or goes on with one. */
class PartWriter
{
public:
    /** UsageError when the file is a directory or a device, which cannot be replaced, or another
     * process writes it. */
    PartWriter(std::filesystem::path file, planning::PartHeader header);

    /**
     * Takes up what an earlier run has left and hands its failures on.
     *
     * @return how many there are
     * @throws InputError when it is damaged, UsageError when it belongs to another sweep
     */
    std::size_t resume(const Plan &plan, const planning::TakeTried &take);
    /** Begins to write, behind what has been taken up; std::system_error. */
    void begin();
    void write(const planning::TriedFailure &tried);
    /** Gives the file its name. */
    void finish();

    /** What the file is called until then. */
    const std::filesystem::path &partial() const { return unfinished; }

private:
    void check() const;

    std::filesystem::path name;
    std::filesystem::path unfinished;
    FileLock lock; ///< on `unfinished`
    planning::PartHeader header;
    std::ofstream out;
    bool isComplete = false;
    std::uintmax_t nbKept = 0; ///< bytes
};

} // namespace tarnex::cli

#endif
