/** Writing networks, demands and plans. */
#ifndef TARNEX_FORMATS_WRITE_H
#define TARNEX_FORMATS_WRITE_H

#include "formats/plan.h"
#include "formats/read.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <span>

namespace tarnex::formats
{

/** Writes a file through a neighbour of it that is renamed at the end: a stop in the middle leaves
 * what was there. std::system_error when that is not possible. */
void replaceFile(const std::filesystem::path &file,
                 const std::function<void(std::ostream &)> &write);

/** The formats that are written: sndlibNative, graphml, repetita, dot, json. */
bool canWrite(Format format);

/**
 * Writes a network with demands; for repetita the demands go to a file of their own with suffix
 * `.demands`. What the format cannot hold is remarked.
 */
void write(const std::filesystem::path &file, Format format, const Network &network,
           std::span<const Demand> demands, Remarks &remarks);

/** Writes a plan, as our JSON, demand by demand. */
void writePlan(std::ostream &out, const Plan &plan);

} // namespace tarnex::formats

#endif
