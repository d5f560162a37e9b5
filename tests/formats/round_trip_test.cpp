/** What is written is read back as the same, in every format, as far as the format can hold it. */
#include "formats/describe.h"
#include "formats/write.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace tarnex::formats
{
namespace
{

void write(const std::filesystem::path &file, Format format, const Network &network,
           const std::vector<Demand> &demands, Remarks &remarks)
{
    replaceFiles(filesFor(file, format, network, demands, remarks));
}

class RandomNetwork
{
public:
    explicit RandomNetwork(unsigned seed) : random(seed) {}

    /** `isPlain`: with single words as names, one class and one level. */
    Input draw(bool isPlain, const std::string &unit)
    {
        Input input;
        Network &network = input.network;
        network.unit = unit;
        network.name = isPlain ? "" : "the \"best\" <net> & \\more";
        network.classes = isPlain ? std::vector<std::string>{defaultClass}
                                  : std::vector<std::string>{"voice & video", "\"data\"", "x\\"};
        network.levels = isPlain ? std::vector<std::string>{defaultLevel}
                                 : std::vector<std::string>{"high", "l o w"};
        const std::size_t nbNodes = 2 + below(12);
        for (std::size_t i = 0; i < nbNodes; ++i)
            network.nodes.push_back(node(i, isPlain));
        for (std::size_t from = 0; from < nbNodes; ++from)
            for (std::size_t to = 0; to < nbNodes; ++to)
                if (from != to && below(3) == 0)
                    network.links.push_back(
                        {idOf(from), idOf(to), capacities(network.classes.size())});
        for (std::size_t i = below(20); i > 0; --i) {
            const std::size_t from = below(nbNodes);
            const std::size_t to = (from + 1 + below(nbNodes - 1)) % nbNodes;
            input.demands.push_back(
                {"d" + std::to_string(i), idOf(from), idOf(to), 0, 0, number() + 0.1});
        }
        return input;
    }

private:
    static NodeId idOf(std::size_t i) { return NodeId(static_cast<std::int32_t>(i)); }
    std::size_t below(std::size_t limit) { return random() % limit; }

    /** Often 0, often whole, sometimes with all its digits. */
    double number()
    {
        const double value = static_cast<double>(below(4) * below(10000));
        return below(3) == 0 ? value / 7.0 : value;
    }

    std::vector<double> capacities(std::size_t count)
    {
        std::vector<double> values(count);
        for (double &value : values)
            value = number();
        return values;
    }

    Node node(std::size_t i, bool isPlain)
    {
        static const std::vector<std::string> odd{"Zürich HB", "a \"b\"",   "<c>&amp;",
                                                  "d\\",       "{e}; f->g", "#h"};
        Node made{(isPlain ? "n" : odd[i % odd.size()]) + std::to_string(i), {}};
        if (below(2) == 0)
            made.at = Coordinates{number() / 300.0 + 0.5, -number() / 1000.0};
        return made;
    }

    std::mt19937 random;
};

struct Target {
    Format format;
    const char *suffix;
    bool isPlain; ///< it holds no more than that
    bool holdsDemands;
};

class RoundTrips : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = std::filesystem::temp_directory_path() /
                 ("tarnex-round-trips-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directory(folder);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::filesystem::path folder;
};

TEST_F(RoundTrips, GiveTheSameNetworkAndDemands)
{
    for (const auto &[format, suffix, isPlain, holdsDemands] :
         {Target{Format::sndlibNative, ".txt", true, true},
          {Format::repetita, ".graph", true, true},
          {Format::graphml, ".graphml", false, false},
          {Format::dot, ".dot", false, false},
          {Format::json, ".json", false, true}})
        for (unsigned seed = 0; seed < 40; ++seed) {
            SCOPED_TRACE(std::string(suffix) + ", seed " + std::to_string(seed));
            Input before = RandomNetwork(seed).draw(isPlain, "kbit/s");
            if (!holdsDemands)
                before.demands.clear();
            const auto file = folder / (std::to_string(seed) + suffix);
            Remarks remarks;
            write(file, format, before.network, before.demands, remarks);
            Input after = read(file, {});
            EXPECT_EQ(after.format, format);
            if (format == Format::repetita && !before.demands.empty())
                after.demands =
                    readDemands(folder / (std::to_string(seed) + ".demands"), after.network, {})
                        .demands;
            EXPECT_EQ(describe(after.network), describe(before.network));
            EXPECT_EQ(after.network, before.network);
            EXPECT_EQ(after.demands, before.demands);
        }
}

TEST_F(RoundTrips, SayWhatGoesLost)
{
    Input input = RandomNetwork(1).draw(false, "Mbit/s");
    input.network.nodes[0].hosts = {"h1"};
    input.network.nodes.resize(2);
    input.network.links = {{NodeId(0), NodeId(1), {1, 2.5, 3}}};
    input.demands = {{"a b", NodeId(0), NodeId(1), 1, 1, 5}};
    for (const auto &[format, expected] : std::vector<std::pair<Format, const char *>>{
             {Format::sndlibNative,
              "- 3 class types left out; a link gets the sum of their capacities\n"
              "- 2 levels left out\n- hosts left out\n"
              "- names of nodes written as single words: 2 (Zürich HB0, a \"b\"1)\n"
              "- names of demands written as single words: 1 (a b)\n"},
             {Format::graphml, "- 1 demand left out\n- hosts left out\n"},
             {Format::repetita,
              "- name of the network left out\n"
              "- 3 class types left out; a link gets the sum of their capacities\n"
              "- 2 levels left out\n- hosts left out\n"
              "- names of nodes written as single words: 2 (Zürich HB0, a \"b\"1)\n"
              "- names of demands written as single words: 1 (a b)\n"
              "- bandwidths in Mbit/s converted to kbit/s\n"
              "- weights and delays written as 1 and 0\n"},
             {Format::dot, "- 1 demand left out\n"},
             {Format::json, ""}}) {
        Remarks remarks;
        write(folder / "network.graph", format, input.network, input.demands, remarks);
        EXPECT_EQ(describe(remarks), expected);
    }
    EXPECT_THROW(
        {
            Remarks remarks;
            write(folder / "network.gml", Format::gml, input.network, {}, remarks);
        },
        std::invalid_argument);
}

TEST_F(RoundTrips, OfNamesThatBecomeEqualKeepThemApart)
{
    Network network{"", "", {defaultClass}, {defaultLevel}, {{"a b", {}}, {"a_b", {}}, {"a(b", {}}},
                    {}};
    network.links = {{NodeId(2), NodeId(0), {4}}};
    Remarks remarks;
    write(folder / "n.txt", Format::sndlibNative, network, {}, remarks);
    EXPECT_EQ(
        describe(read(folder / "n.txt", {}).network),
        "network '' unit '' classes class0 levels level0\na_b\na_b#2\na_b#3\na_b#3 > a_b: 4\n");
}

TEST_F(RoundTrips, ConvertMegabitsForFormatsInKilobits)
{
    Input input = RandomNetwork(3).draw(true, "Mbit/s");
    input.network.links[0].capacity = {2.5};
    Remarks remarks;
    write(folder / "n.graph", Format::repetita, input.network, input.demands, remarks);
    EXPECT_EQ(read(folder / "n.graph", {}).network.links[0].capacity, std::vector<double>{2500.0});
    // Onto a network in Mbit/s they come back in Mbit/s.
    const auto demands = readDemands(folder / "n.demands", input.network, {}).demands;
    ASSERT_EQ(demands.size(), input.demands.size());
    for (std::size_t i = 0; i < demands.size(); ++i)
        EXPECT_DOUBLE_EQ(demands[i].bandwidth, input.demands[i].bandwidth);
}

} // namespace
} // namespace tarnex::formats
