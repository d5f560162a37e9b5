/** Choices that a file leaves open, made by options, and what strict reading refuses. */
#include "formats/describe.h"
#include "formats/shares.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarnex::formats
{
namespace
{

const char *const file =
    "unit Mbit/s\nnode 0 A\nnode 1 B\nlink 0 A B 10\nlink 1 A B 5\nlink 2 B A\n"
    "demand 1 A B 2\ndemand 2 B A 4\n";

const std::vector<Share> divided{{"voice", 0.25}, {"data", 0.75}};
const std::vector<Share> mixed{{"gold", 0.5}, {"bronze", 0.5}};

struct Choice {
    const char *name;
    ReadOptions options;
    const char *links;
    const char *demands; ///< or the error
};

ReadOptions with(void (*choose)(ReadOptions &))
{
    ReadOptions options;
    choose(options);
    return options;
}

TEST(Choices, AreMadeAsTheOptionsSay)
{
    const std::vector<Choice> choices{
        {"none",
         {},
         "A > B: 15\nB > A: 1\n",
         "[1] A > B class0/level0 2\n[2] B > A class0/level0 4\n"},
        {"first", with([](auto &o) { o.parallel = ParallelLinks::first; }), "A > B: 10\nB > A: 1\n",
         "[1] A > B class0/level0 2\n[2] B > A class0/level0 4\n"},
        {"capacity", with([](auto &o) { o.capacity = "7.5"; }), "A > B: 15\nB > A: 7.5\n",
         "[1] A > B class0/level0 2\n[2] B > A class0/level0 4\n"},
        {"capacity in bit/s", with([](auto &o) { o.capacity = "2G"; }), "A > B: 15\nB > A: 2000\n",
         "[1] A > B class0/level0 2\n[2] B > A class0/level0 4\n"},
        {"classes", with([](auto &o) { o.classes = divided; }),
         "A > B: 3.75 11.25\nB > A: 0.25 0.75\n",
         "[1] A > B voice/level0 2\n[2] B > A voice/level0 4\n"},
        {"class of demands", with([](auto &o) {
             o.classes = divided;
             o.className = "data";
             o.level = "gold";
         }),
         "A > B: 3.75 11.25\nB > A: 0.25 0.75\n", "[1] A > B data/gold 2\n[2] B > A data/gold 4\n"},
        {"mix and scale", with([](auto &o) {
             o.mix = mixed;
             o.scale = 0.5;
         }),
         "A > B: 15\nB > A: 1\n", "[1] A > B class0/gold 1\n[2] B > A class0/bronze 2\n"},
        {"parallel error", with([](auto &o) { o.parallel = ParallelLinks::error; }), "",
         "input:5: parallel links: A > B"},
        {"strict", with([](auto &o) { o.isStrict = true; }), "", "input:5: parallel links: A > B"},
        {"no such class", with([](auto &o) {
             o.classes = divided;
             o.className = "video";
         }),
         "", "input:7: no class is called 'video' (voice, data)"},
        {"shares", with([](auto &o) {
             o.classes = {{"a", 0.7}, {"b", 0.4}};
         }),
         "", "--classes: the shares add up to 110 %, not to 100 %"},
        {"incomplete mix", with([](auto &o) {
             o.mix = {{"a", 0.7}};
         }),
         "", "--mix: the shares add up to 70 %, not to 100 %"},
        {"equal names", with([](auto &o) {
             o.mix = {{"a", 0.5}, {"a", 0.5}};
         }),
         "", "--mix: expected different names, not 'a' again"},
        {"no share", with([](auto &o) {
             o.mix = {{"a", std::nan("")}};
         }),
         "", "--mix: the share of a is nan %, not above 0 and up to 100 %"},
        {"scale", with([](auto &o) { o.scale = -1; }), "",
         "--scale: expected a number of 0 or more"},
    };
    for (const auto &[name, options, links, demands] : choices) {
        SCOPED_TRACE(name);
        std::string found;
        const std::string error = errorOf([&, &chosen = options] {
            const Input input = settled(Format::text, file, chosen);
            const std::string network = describe(input.network);
            found = network.substr(network.find("A > B")) + describe(input.network, input.demands);
        });
        EXPECT_EQ(error + found, std::string(links) + demands);
    }
}

TEST(Choices, DoNotDivideWhatTheFileDivides)
{
    ReadOptions options;
    options.classes = divided;
    EXPECT_EQ(errorOf([&] { settled(Format::text, "classes a b\nnode 0 A\n", options); }),
              "input: the file has classes; only a single capacity can be divided");
}

TEST(Choices, OfStrictReadingRefuseEveryOddity)
{
    const std::string head = "node 0 A\nnode 1 B\n";
    ReadOptions strict;
    strict.isStrict = true;
    for (const auto &[line, error] : std::vector<std::pair<std::string, std::string>>{
             {"link 0 A A 1", "self-loops: A"},
             {"link 0 A C 1", "links to unknown nodes: A > C"},
             {"link 0 A B", "links without capacity: A > B"},
             {"demand d A A 1", "demands from a node to itself: d"},
             {"demand d A B 0", "demands without bandwidth: d"},
             {"demand d A C 1", "demands with unknown nodes: d"}}) {
        EXPECT_EQ(errorOf([&, &l = line] { settled(Format::text, head + l, strict); }),
                  "input:3: " + error);
        const Input lenient = settled(Format::text, head + line);
        EXPECT_TRUE(lenient.remarks.hasErrors()) << line;
    }
}

TEST(Demands, BringClassesLevelsAndUnitsWhereTheNetworkHasNone)
{
    struct Case {
        const char *network;
        const char *demands;
        const char *expected;
    };
    for (const auto &[given, brought, expected] : std::vector<Case>{
             {"link 0 A B 1", "demand 1 A B data low 1\ndemand 2 A B data high 1",
              "[1] A > B data/low 1\n[2] A > B data/high 1\n"},
             {"link 0 A B 1", "levels high low\ndemand 1 A B data low 1", "[1] A > B data/low 1\n"},
             {"link 0 A B 1", "demand 1 A B data low 1\ndemand 2 A B voice low 1",
              "input:2: 'voice' is a second class, but the network has one capacity for all: "
              "divide it "
              "with --classes"},
             {"levels high low", "demand 1 A B data middle 1",
              "input:1: no level is called 'middle' (high, low)"},
             {"unit Gbit/s", "unit kbit/s\ndemand 1 A B 500000", "[1] A > B class0/level0 0.5\n"},
             {"", "unit kbit/s\ndemand 1 A B 5", "[1] A > B class0/level0 5\n"}}) {
        std::string found;
        const std::string error = errorOf([&, &network = given, &demands = brought] {
            Input input = settled(Format::text, std::string("node 0 A\nnode 1 B\n") + network);
            Source source = parseText(demands, "input");
            source.file = "input";
            input.demands = settleDemands(source, input.network, {}, input.remarks);
            found = describe(input.network, input.demands);
        });
        EXPECT_EQ(error + found, expected) << brought;
    }
}

TEST(Demands, OfAFileThatListsNodesItselfGoByTheirNames)
{
    struct Case {
        Format format;
        const char *brought;
        const char *expected;
    };
    const char *const ofB = "[d] B > C class0/level0 5\n";
    for (const auto &[format, brought, expected] : std::vector<Case>{
             {Format::text, "node 0 C\nnode 1 B\ndemand d B C 5", ofB},
             {Format::sndlibNative, "NODES ( C B )\nDEMANDS ( d ( B C ) 1 5 UNLIMITED )", ofB},
             {Format::sndlibXml,
              "<network><networkStructure><nodes><node id='C'/><node id='B'/></nodes>"
              "</networkStructure><demands><demand id='d'><source>B</source><target>C</target>"
              "<demandValue>5</demandValue></demand></demands></network>",
              ofB},
             {Format::repetita,
              "NODES 2\nlabel x y\nC 0 0\nB 0 0\nDEMANDS 1\nlabel src dest bw\nd 1 0 5", ofB},
             {Format::repetita, "DEMANDS 1\nlabel src dest bw\nd 1 2 5", ofB},
             {Format::repetita, "DEMANDS 1\nlabel src dest bw\nd 1 3 5",
              "input:3: the nodes of d are 1 and 3, but there are 3, counted from 0"},
             {Format::text, "node 0 C\nnode 1 X\ndemand d X C 5", ""}}) {
        std::string found;
        const std::string error = errorOf([&, how = format, &demands = brought] {
            Input input = settled(Format::text, "node 0 A\nnode 1 B\nnode 2 C\n");
            Source source = parseSource(how, demands, "input");
            source.file = "input";
            found =
                describe(input.network, settleDemands(source, input.network, {}, input.remarks));
        });
        EXPECT_EQ(error + found, expected) << brought;
    }
}

TEST(Turns, GiveEachItsShareOfEveryPrefix)
{
    for (const std::vector<Share> &shares :
         std::vector<std::vector<Share>>{{{"gold", 0.1}, {"silver", 0.3}, {"bronze", 0.6}},
                                         {{"a", 1.0}},
                                         {{"a", 0.01}, {"b", 0.49}, {"c", 0.25}, {"d", 0.25}}}) {
        Turns turns(shares);
        std::vector<double> taken(shares.size(), 0.0);
        for (int turn = 1; turn <= 1000; ++turn) {
            taken[turns.next()] += 1.0;
            for (std::size_t i = 0; i < shares.size(); ++i)
                EXPECT_LE(std::abs(taken[i] - shares[i].share * turn), 1.0) << i << " of " << turn;
        }
    }
}

} // namespace
} // namespace tarnex::formats
