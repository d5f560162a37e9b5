/** Writing networks, demands and plans. */
#ifndef TARNEX_FORMATS_WRITE_H
#define TARNEX_FORMATS_WRITE_H

#include "formats/plan.h"
#include "formats/read.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <span>
#include <vector>

namespace tarnex::formats
{

/** A file that is to be written, and what writes its content. */
struct FileToWrite {
    std::filesystem::path file;
    std::function<void(std::ostream &)> write;
};

/** Writes files through neighbours of them that are renamed when all are complete: a stop in the
 * middle leaves what was there. std::system_error when that is not possible. */
void replaceFiles(std::span<const FileToWrite> files);

/** The formats that are written: sndlibNative, graphml, repetita, dot, json. */
bool canWrite(Format format);

/**
 * The files that hold a network with demands: one, or for repetita another with suffix `.demands`
 * for the demands. What the format cannot hold is remarked. Network and demands are needed until
 * the files are written.
 */
std::vector<FileToWrite> filesFor(const std::filesystem::path &file, Format format,
                                  const Network &network, std::span<const Demand> demands,
                                  Remarks &remarks);

/** Writes a plan, as our JSON, demand by demand. */
void writePlan(std::ostream &out, const Plan &plan);

} // namespace tarnex::formats

#endif
