/**
 * Networks as they are published. They are not in this repository: TARNEX_DATA names a folder that
 * has them in folders by collection.
 */
#include "formats/read.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace tarnex::formats
{
namespace
{

struct Published {
    const char *file;
    std::size_t nodes;
    std::size_t links;       ///< directed, parallel ones as one, without self-loops
    std::size_t demands = 0; ///< with those that are left out
    const char *demandsFile = nullptr;
};

const std::vector<Published> published{
    {"sndlib/native/abilene.txt", 12, 30, 132},
    {"sndlib/native/polska.txt", 12, 36, 66},
    {"sndlib/native/nobel-germany.txt", 17, 52, 121},
    {"sndlib/native/geant.txt", 22, 72, 462},
    {"sndlib/native/nobel-eu.txt", 28, 82, 378},
    {"sndlib/native/cost266.txt", 37, 114, 1332},
    {"sndlib/native/germany50.txt", 50, 176, 662},
    {"sndlib/native/ta2.txt", 65, 216, 1869},
    {"sndlib/native/brain.txt", 161, 332, 14311},
    {"sndlib/xml/abilene.xml", 12, 30, 132},
    {"sndlib/xml/polska.xml", 12, 36, 66},
    {"sndlib/xml/nobel-germany.xml", 17, 52, 121},
    {"sndlib/xml/geant.xml", 22, 72, 462},
    {"sndlib/xml/germany50.xml", 50, 176, 662},
    {"topology-zoo/Abilene.graphml", 11, 2 * 14},
    {"topology-zoo/Abilene.gml", 11, 2 * 14},
    {"topology-zoo/Sprint.graphml", 11, 2 * 18},
    {"topology-zoo/Nsfnet.graphml", 13, 2 * 15},
    {"topology-zoo/AttMpls.graphml", 25, 2 * (57 - 1)},
    {"topology-zoo/BtNorthAmerica.graphml", 36, 2 * 76},
    {"topology-zoo/DeutscheTelekom.graphml", 39, 2 * 62},
    {"topology-zoo/Geant2012.graphml", 40, 2 * 61},
    {"topology-zoo/Geant2012.gml", 40, 2 * 61},
    {"topology-zoo/Surfnet.graphml", 50, 2 * (73 - 5)},
    {"topology-zoo/Dfn.graphml", 58, 2 * 87},
    {"topology-zoo/Uninett2011.graphml", 69, 2 * (98 - 2)},
    {"topology-zoo/Interoute.graphml", 110, 2 * (158 - 10 - 2)},
    {"topology-zoo/Deltacom.graphml", 113, 2 * (183 - 22)},
    {"topology-zoo/TataNld.graphml", 145, 2 * (194 - 8)},
    {"topology-zoo/GtsCe.graphml", 149, 2 * 193},
    {"topology-zoo/Colt.graphml", 153, 2 * (191 - 14)},
    {"topology-zoo/UsCarrier.graphml", 158, 2 * 189},
    {"topology-zoo/Cogentco.graphml", 197, 2 * (245 - 2)},
    {"topology-zoo/Kdl.graphml", 754, 2 * (899 - 4)},
    {"repetita/Abilene.graph", 11, 28, 110, "repetita/Abilene.0000.demands"},
    {"repetita/Abilene.graph", 11, 28, 110, "repetita/Abilene.0004.demands"},
    {"repetita/AttMpls.graph", 25, 114 - 2, 600, "repetita/AttMpls.0000.demands"},
    {"repetita/Geant2012.graph", 40, 122, 1560, "repetita/Geant2012.0000.demands"},
    {"repetita/synth50_opt_hard.graph", 50, 276, 2449, "repetita/synth50_opt_hard.demands"},
    {"repetita/rf1221_real_hard.graph", 104, 302, 10695, "repetita/rf1221_real_hard.demands"},
    {"repetita/Cogentco.graph", 197, 490 - 4, 38612, "repetita/Cogentco.0000.demands"},
    {"topology-zoo/Cogentco.graphml", 197, 486, 38612, "repetita/Cogentco.0000.demands"},
    {"repetita/synth200_unary_hard.graph", 199, 1044, 37881,
     "repetita/synth200_unary_hard.demands"},
    {"repetita/rf1239_real_hard.graph", 315, 1944, 96057, "repetita/rf1239_real_hard.demands"},
    {"teal/B4.json", 12, 38},
    {"teal/UsCarrier.json", 158, 378},
    {"teal/Kdl.json", 754, 1790},
    {"yates/abilene.dot", 12, 30, 144, "yates/abilene.txt"},
    {"yates/b4.dot", 12, 38},
};

std::size_t nbLeftOut(const Remarks &remarks)
{
    std::size_t count = 0;
    for (const Remark &remark : remarks.all())
        if (remark.what.starts_with("demands"))
            count += remark.count;
    return count;
}

TEST(PublishedNetworks, HaveTheNodesLinksAndDemandsThatTheirSourcesState)
{
    const char *folder = std::getenv("TARNEX_DATA");
    if (!folder)
        GTEST_SKIP() << "TARNEX_DATA names no folder";
    for (const Published &expected : published) {
        SCOPED_TRACE(expected.demandsFile ? expected.demandsFile : expected.file);
        try {
            Input input = read(std::filesystem::path(folder) / expected.file, {});
            EXPECT_EQ(input.network.nodes.size(), expected.nodes);
            EXPECT_EQ(input.network.links.size(), expected.links);
            if (expected.demandsFile)
                input = readDemands(std::filesystem::path(folder) / expected.demandsFile,
                                    input.network, {});
            EXPECT_EQ(input.demands.size() + nbLeftOut(input.remarks), expected.demands);
        } catch (const InputError &error) {
            ADD_FAILURE() << error.what();
        }
    }
}

} // namespace
} // namespace tarnex::formats
