/** The writers of other formats, one per format. What goes lost is said by noteLosses(). */
#ifndef TARNEX_FORMATS_WRITERS_H
#define TARNEX_FORMATS_WRITERS_H

#include "formats/network.h"
#include "formats/read.h"

#include <ostream>
#include <span>

namespace tarnex::formats
{

/** The directed links of a network, each with the sum of its capacities, and demands. */
void writeSndlib(std::ostream &out, const Network &network, std::span<const Demand> demands);

/** A network with its class types and levels. */
void writeGraphml(std::ostream &out, const Network &network);

/** A network with its class types, levels and hosts. */
void writeDot(std::ostream &out, const Network &network);

/** A network in kbit/s, each link with the sum of its capacities. */
void writeRepetitaGraph(std::ostream &out, const Network &network);
void writeRepetitaDemands(std::ostream &out, const Network &network,
                          std::span<const Demand> demands);

/** Remarks whatever a network with demands has that a format cannot hold. */
void noteLosses(Format format, const Network &network, std::span<const Demand> demands,
                Remarks &remarks);

} // namespace tarnex::formats

#endif
