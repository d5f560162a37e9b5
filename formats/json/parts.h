/** Parts that our documents have in common, as they are written. */
#ifndef TARNEX_FORMATS_JSON_PARTS_H
#define TARNEX_FORMATS_JSON_PARTS_H

#include "formats/json/output.h"
#include "formats/network.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats::json
{

void writeNames(Output &out, const std::vector<std::string> &names);

/** Opens a document with the name and version of its schema. */
void beginDocument(Output &out, std::string_view schema);

/** Everything of a network, without the braces. */
void writeNetworkMembers(Output &out, const Network &network);

/** What a demand asks for, without the braces. */
void writeDemandMembers(Output &out, const Network &network, const Demand &demand, std::size_t id);

} // namespace tarnex::formats::json

#endif
