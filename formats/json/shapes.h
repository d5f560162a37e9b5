/** The shapes of our documents: what their members are, and where they go in a Draft. */
#ifndef TARNEX_FORMATS_JSON_SHAPES_H
#define TARNEX_FORMATS_JSON_SHAPES_H

#include "formats/json/draft.h"
#include "formats/json/shape.h"

namespace tarnex::formats::json
{

/** The name of a node that is an end of something. */
template <NodeId Draft::*end>
inline constexpr Shape<Draft> endName{.what = "the name of a node",
                                      .text = [](Draft &draft, std::string &name) {
                                          Draft::setEnd(draft.*end, draft.nodeNamed(name));
                                      }};

/** Its id. */
template <NodeId Draft::*end>
inline constexpr Shape<Draft> endId{
    .what = "the id of a node",
    .integer = [](Draft &draft, std::int64_t id) { Draft::setEnd(draft.*end, draft.nodeId(id)); }};

// Of a network, in network_shapes.cpp.
extern const Shape<Draft> networkName;
extern const Shape<Draft> unitName;
extern const Shape<Draft> classNames;
extern const Shape<Draft> levelNames;
extern const Shape<Draft> nodeList;
extern const Shape<Draft> linkList;
/** A network within a plan. */
extern const Shape<Draft> networkObject;

// Of a plan, in plan_shapes.cpp.
extern const Shape<Draft> planOptions;
extern const Shape<Draft> useList;
extern const Shape<Draft> setUpList;

// Demands in the three kinds of documents, in demand_shapes.cpp.
extern const Shape<Draft> namedDemands;   ///< by the names of nodes
extern const Shape<Draft> networkDemands; ///< with ids as well
extern const Shape<Draft> plannedDemands; ///< with what became of them

} // namespace tarnex::formats::json

#endif
