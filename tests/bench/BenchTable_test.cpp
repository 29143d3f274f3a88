#include "bench/BenchTable.h"

#include <gtest/gtest.h>

namespace {

BenchLine timed(const char *name, double ours, std::vector<BenchFigure> peers) {
    return {name, "row", ours, std::move(peers)};
}

}  // namespace

TEST(BenchTableTest, MedianIsTheMiddleValueOrTheMeanOfTheMiddleTwo) {
    EXPECT_EQ(0, medianOf({}));
    EXPECT_EQ(2, medianOf({9, 1, 2}));
    EXPECT_EQ(3, medianOf({9, 1, 2, 4}));
    EXPECT_EQ(7, medianOf({100, 7, 7, 7, 1, 1, 90}));
}

TEST(BenchTableTest, TimesHaveTheUnitThatKeepsThemShort) {
    EXPECT_EQ("0.42 ns", timeText(0.42));
    EXPECT_EQ("999.0 ns", timeText(999));
    EXPECT_EQ("1.00 us", timeText(1000));
    EXPECT_EQ("999.00 us", timeText(999e3));
    EXPECT_EQ("12.35 ms", timeText(12.346e6));
    EXPECT_EQ("2.00 s", timeText(2e9));
}

TEST(BenchTableTest, RatioTellsHowOftenOursFitsIntoThePeers) {
    EXPECT_EQ(
        "| work | per | quintor |       a | ratio |\n"
        "|------|-----|--------:|--------:|------:|\n"
        "| x    | row | 10.0 ns | 25.0 ns |  2.50 |\n",
        benchTables({timed("x", 10, {{"a", 25}})}));
}

// Peers of later lines widen the table of all; a line without such a peer leaves its cells empty.
TEST(BenchTableTest, FurtherPeersAddColumnsAndAnotherFirstPeerBeginsATable) {
    EXPECT_EQ(
        "| work | per | quintor |       a | ratio |       b | ratio |\n"
        "|------|-----|--------:|--------:|------:|--------:|------:|\n"
        "| x    | row | 10.0 ns | 20.0 ns |  2.00 |         |       |\n"
        "| y    | row | 10.0 ns | 40.0 ns |  4.00 | 5.00 ns |  0.50 |\n"
        "\n"
        "| work | per | quintor |       b | ratio |\n"
        "|------|-----|--------:|--------:|------:|\n"
        "| z    | row | 20.0 ns | 20.0 ns |  1.00 |\n",
        benchTables({timed("x", 10, {{"a", 20}}), timed("y", 10, {{"a", 40}, {"b", 5}}), timed("z", 20, {{"b", 20}})}));
}

TEST(BenchTableTest, WhatWasNotMeasuredHasNoRatioAndWhatIsMissingSaysSo) {
    EXPECT_EQ(
        "| work | per | quintor |       a | ratio |       b | ratio |\n"
        "|------|-----|--------:|--------:|------:|--------:|------:|\n"
        "| x    | row | 10.0 ns |       - |     - | missing |     - |\n"
        "| y    | row |       - | 40.0 ns |     - | 5.00 ns |     - |\n",
        benchTables({timed("x", 10, {{"a", 0}, {"b", 0, true}}), timed("left out", 0, {{"a", 0}, {"b", 0, true}}),
                     timed("y", 0, {{"a", 40}, {"b", 5}})}));
}

TEST(BenchTableTest, SizesCarryNoUnitOfTimeAndLimitsStandInATableOfTheirOwn) {
    EXPECT_EQ(
        "| work   | per   | quintor |  a | ratio |\n"
        "|--------|-------|--------:|---:|------:|\n"
        "| memory | bytes |     521 | 99 |  0.19 |\n"
        "\n"
        "| limit of the machine | per  |    time |\n"
        "|----------------------|------|--------:|\n"
        "| system call          | call | 50.0 ns |\n",
        benchTables({{"memory", "bytes", 521, {{"a", 99}}, BenchLine::SIZE},
                     {"system call", "call", 50, {}, BenchLine::LIMIT}}));
}
