/** Damaged input: every message says where the damage is and what was expected. */
#include "formats/describe.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarnex::formats
{
namespace
{

struct Damage {
    Format format;
    std::string text;
    const char *error;
};

const std::string graphml = "<graphml><key id='d0' for='edge' attr.name='LinkSpeedRaw'/>\n"
                            "<graph edgedefault='directed'><node id='a'/><node id='b'/>\n";
const std::string sndlibXml = "<network><networkStructure><nodes><node id='a'/></nodes>\n";
const std::string text = "classes a b\nnode 0 A\nnode 1 B\n";

const std::vector<Damage> damages{
    {Format::sndlibNative, "?SNDlib native format; type: model; version: 1.0\n",
     "input:1:1: expected '?SNDlib native format; type: network; ...'"},
    {Format::sndlibNative, "NODES (\n  A ( 1.0 x )\n)",
     "input:2:11: expected the latitude, a number, not 'x'"},
    {Format::sndlibNative, "NODES (\n  A\n", "input:3:1: expected the id of a node"},
    {Format::sndlibNative, "NODES ( A )\nLINKS (\n L ( A ) 0 0 0 0 ( )\n)",
     "input:3:8: expected the node at the other end"},
    {Format::sndlibNative, "META (\n  unit MBIT\n)", "input:2:8: expected '='"},
    {Format::sndlibNative, "PATHS (\n ( ( \n ) )",
     "input:1:8: expected a ')' that closes this section"},
    {Format::sndlibNative, "NODES ( A A )", "input:1: there are two nodes 'A'"},
    {Format::sndlibNative, "NODES ( A B )\nLINKS ( L ( A B ) -1 0 0 0 ( ) )",
     "input:2: the capacity of A > B is -1, not 0 to 1e+100"},
    {Format::sndlibXml, "<network>\n<networkStructure>\n</network>",
     "input:3:3: expected well-formed XML: Start-end tags mismatch"},
    {Format::sndlibXml, "<net/>", "input:1:2: expected the root element <network>"},
    {Format::sndlibXml,
     sndlibXml +
         "<links><link id='L'>\n<source>a</source></link></links></networkStructure></network>",
     "input:2:9: expected a <target> in <link>"},
    {Format::sndlibXml,
     sndlibXml + "</networkStructure><demands>\n<demand><source>a</source><target>b</target>"
                 "<demandValue>1e999</demandValue></demand></demands></network>",
     "input:3:46: expected demandValue, a number, not '1e999'"},
    {Format::graphml, "", "input: the file is empty"},
    {Format::graphml, "<graphml>\n </graphml>", "input:1:2: expected a <graph> in <graphml>"},
    {Format::graphml, "<graphml>\n <graph/></graphml>",
     "input:2:3: expected an attribute 'edgedefault' of <graph>"},
    {Format::graphml, graphml + "<edge source='a'/></graph></graphml>",
     "input:3:2: expected an attribute 'target' of <edge>"},
    {Format::graphml,
     graphml + "<edge source='a' target='b'><data key='d0'>fast</data></edge></graph></graphml>",
     "input:3:30: expected a capacity, a number, not 'fast'"},
    {Format::gml, "graph [\n node [ label \"a\" ]\n]", "input:2:6: expected an id of this node"},
    {Format::gml, "graph [\n node [ id 1 label \"a ]\n]",
     "input:2:20: expected a '\"' that closes this string"},
    {Format::gml, "graph [\n edge [ source 1 target 2 LinkSpeedRaw \"?\" ]\n]",
     "input:2:40: expected a number for LinkSpeedRaw, not '?'"},
    {Format::gml, "graph [\n other [ [ 1 ] ", "input:2:8: expected a ']' that closes this list"},
    {Format::gml, "Creator 1\n", "input:2:1: expected 'graph ['"},
    {Format::repetita, "NODES x\n",
     "input:1:7: expected the number of rows, an integer of 0 or more, not 'x'"},
    {Format::repetita, "NODES 2\nlabel x y\na 0 0\n", "input:4:1: expected 2 rows of NODES, not 1"},
    {Format::repetita, "NODES 1\nlabel x\na 0\n", "input:2:8: expected a column labelled 'y'"},
    {Format::repetita, "EDGES 1\nlabel src dest bw\ne 0 -1 5\n",
     "input:3:5: expected dest, an integer of 0 or more, not '-1'"},
    {Format::repetita, "NODES 0\nlabel x y\nLINKS 1",
     "input:3:1: expected NODES, EDGES or DEMANDS"},
    {Format::dot, "digraph {\n a -- b\n}", "input:2:4: expected '->' in a digraph"},
    {Format::dot, "graph {\n a [color=red\n",
     "input:3:1: expected the name of an attribute or ']'"},
    {Format::dot, "graph {\n a -- { b c }\n}", "input:2:7: expected a node"},
    {Format::dot, "graph {\n a -- b [capacity=fast]\n}",
     "input:2: expected a capacity such as 10 or 1Gbps, not 'fast'"},
    {Format::dot, "graph {\n /* a\n}", "input:2:2: expected a '*/' that closes this comment"},
    {Format::dot, "graph {" + std::string(64, '{'),
     "input:1:71: subgraphs are nested more than 64 deep"},
    {Format::text, text + "link 0 A B 1\n",
     "input:4:13: expected: link ID FROM TO and a capacity for each of the 2 classes"},
    {Format::text, text + "link 0 A B 1 2M\n",
     "input:4:14: expected a capacity, a number, not '2M'"},
    {Format::text, text + "node 1 C\n", "input:4:6: there is a node 1 already"},
    {Format::text, text + "node 2 C 5.5\n",
     "input:4:13: expected: node ID NAME [LONGITUDE LATITUDE]"},
    {Format::text, text + "levels 0 1 2 3 4 5 6 7 8\n", "input: 9 levels, at most 8 are possible"},
    {Format::text, text + "demand 1 A B c 0 5\n", "input:4: no class is called 'c' (a, b)"},
    {Format::text, text + "node 2 \"C D\nnode 3 E\"\n",
     "input:4:8: expected a \" that closes this one"},
    {Format::text, " \n", "input: the file is empty"},
    {Format::text, text + "nodes 1",
     "input:4:1: unknown statement 'nodes' (unit, classes, levels, node, link or demand)"},
};

TEST(DamagedInput, IsRefusedWithItsPlaceAndWhatWasExpected)
{
    for (const auto &[format, damaged, error] : damages)
        EXPECT_EQ(errorOf([&, f = format, &t = damaged] { settled(f, t); }), error) << damaged;
}

TEST(DamagedInput, IsRefusedWhereverItIsCutOff)
{
    for (const auto &file : std::filesystem::directory_iterator(EXTRACTS)) {
        std::ifstream in(file.path(), std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(in), {}};
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string_view cut = std::string_view(whole).substr(0, length);
            errorOf([&] { settled(detectFormat(cut, file.path().string()), cut); });
        }
    }
}

TEST(DamagedInput, OfAMatrixNamesTheNumber)
{
    const std::vector<std::string> names{"a", "b"};
    EXPECT_EQ(errorOf([&] { parseMatrix("1 2 3 4\n1 2 3\n", "input", 2, names); }),
              "input:2:6: expected 2 x 2 numbers, not 3");
    EXPECT_EQ(errorOf([&] { parseMatrix("1 2 3 4\n", "input", 2, names); }),
              "input:2:1: expected a matrix in line 2");
    EXPECT_EQ(errorOf([&] { parseMatrix("1 2 3 x\n", "input", 1, names); }),
              "input:1:7: expected a bandwidth, a number, not 'x'");
    EXPECT_EQ(errorOf([&] { parseHosts("h1\nh2 h3\n", "input"); }),
              "input:2:4: expected one name a line");
}

TEST(DamagedInput, InFilesThatAreNone)
{
    EXPECT_EQ(errorOf([] { read("/nowhere/at/all", {}); }),
              "/nowhere/at/all: No such file or directory");
    EXPECT_EQ(errorOf([] { read(EXTRACTS, {}); }), EXTRACTS ": Is a directory");
    const std::string folder = EXTRACTS "/";
    EXPECT_EQ(errorOf([&] { read(folder + "hosts.hosts", {}); }),
              folder + "hosts.hosts:1:1: the format is not known; name it with --format");
    EXPECT_EQ(errorOf([&] { read(folder + "towns.demands", {}); }),
              folder + "towns.demands: expected a network, not demands alone");
}

} // namespace
} // namespace tarnex::formats
