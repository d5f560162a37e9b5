#include "formats/bandwidth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>

namespace tarnex::formats
{

TEST(Bandwidth, IsReadAsItIsTyped)
{
    struct Row {
        const char *text, *unit;
        double value;
    };
    const Row rows[] = {
        {"2G", "Mbit/s", 2000.0},
        {"500M", "Mbit/s", 500.0},
        {"64k", "Mbit/s", 0.064},
        {"64k", "kbit/s", 64.0},
        {"1.1T", "Gbit/s", 1100.0},
        {"1k", "Tbit/s", 1e-9},
        {"0.3G", "bit/s", 300000000.0},
        {"1.5", "Mbit/s", 1.5},
        {"2e3", "Gbit/s", 2000.0},
        {"2e3k", "Mbit/s", 2.0},
        {"2E+3M", "Mbit/s", 2000.0},
        {"3e-1G", "Mbit/s", 300.0},
        {"2G", "", 2e9},
        {"7K", "circuits", 7000.0},
        {"0", "", 0.0},
        {"0T", "Mbit/s", 0.0},
        {"4.35k", "bit/s", 4350.0},
    };
    for (const Row &row : rows)
        EXPECT_EQ(parseBandwidth(row.text, row.unit), row.value) << row.text << " " << row.unit;
}

TEST(Bandwidth, WhatIsNoneIsRefused)
{
    for (const char *text : {"", "k", "G2", "2GB", "2 G", "-1", "-1k", "1,5", "nan", "inf", "1e999",
                             "1e308T", "2m", "0x10", "1e99999999999", "--1"})
        EXPECT_THROW(parseBandwidth(text, ""), BandwidthError) << text;
}

TEST(Bandwidth, IsPrintedInSixDigitsOrAllBeforeThePoint)
{
    const std::pair<double, const char *> rows[] = {
        {0.0, "0"},
        {1.0, "1"},
        {2000.0, "2000"},
        {1.5, "1.5"},
        {1.0 / 3, "0.333333"},
        {2e6 / 3, "666667"},
        {1234567, "1234567"},
        {999999.5, "1000000"},
        {100.25, "100.25"},
        {0.00012, "0.00012"},
        {0.00001, "1e-5"},
        {9953, "9953"},
        {1e12, "1000000000000"},
        {1.25e20, "1.25e20"},
        {-1.5, "-1.5"},
    };
    for (const auto &[value, text] : rows)
        EXPECT_EQ(formatBandwidth(value), text);
}

TEST(Bandwidth, WhatIsPrintedReadsBackWithinSixDigits)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> power(-12, 20);
    for (int i = 0; i < 10000; ++i) {
        const double value = std::pow(10.0, power(random));
        const std::string text = formatBandwidth(value);
        EXPECT_NEAR(parseBandwidth(text, ""), value, value * 5.000001e-6) << text;
        EXPECT_EQ(formatBandwidth(parseBandwidth(text, "")), text);
    }
}

} // namespace tarnex::formats
