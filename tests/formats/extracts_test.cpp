/**
 * Small files with the oddities that published ones have. The format is to be found out, and what
 * is read, and remarked, is in the file with ".expected" at the end of its name.
 */
#include "formats/describe.h"
#include "formats/text_of_file.h"

#include <gtest/gtest.h>

namespace tarnex::formats
{
namespace
{

struct Extract {
    const char *file;
    Format format;
    const char *demandsFile = nullptr;
};

TEST(Extracts, AreReadWithEverythingOddRemarked)
{
    const std::filesystem::path folder = EXTRACTS;
    for (const auto &[file, format, demandsFile] :
         {Extract{"towns.graphml", Format::graphml},
          {"towns.gml", Format::gml},
          {"modules.sndlib", Format::sndlibNative},
          {"modules.xml", Format::sndlibXml},
          {"towns.graph", Format::repetita, "towns.demands"},
          {"hosts.dot", Format::dot, "hosts.matrix"},
          {"towns.network", Format::text}}) {
        SCOPED_TRACE(file);
        const Input input = read(folder / file, {});
        EXPECT_EQ(input.format, format);
        Network network = input.network;
        std::string text =
            describe(network) + describe(network, input.demands) + describe(input.remarks);
        if (demandsFile) {
            const Input added = readDemands(folder / demandsFile, network, {});
            text += describe(network, added.demands) + describe(added.remarks);
        }
        EXPECT_EQ(text, textOfFile(folder / (std::string(file) + ".expected")));
    }
}

} // namespace
} // namespace tarnex::formats
