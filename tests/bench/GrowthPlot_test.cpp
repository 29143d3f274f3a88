#include "bench/growth/GrowthPlot.h"

#include <gtest/gtest.h>

namespace {

int countOf(const std::string &text, const std::string &part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

}  // namespace

TEST(GrowthPlotTest, FiguresAreReadAsTheyWereWrittenAndOtherLinesSkipped) {
    const std::string text =
        "side,operation,rows,nanoseconds\nquintor,point select,10000,812.5\nsqlite,scan, a row,5,1.0\n"
        "sqlite,insert,50000,3000.0\nnonsense\nsqlite,insert,0,1.0\nsqlite,insert,10,0.0\n";
    EXPECT_EQ("side,operation,rows,nanoseconds\nquintor,point select,10000,812.5\nsqlite,insert,50000,3000.0\n",
              growthText(growthPoints(text)));
}

TEST(GrowthPlotTest, NewFiguresTakeThePlaceOfOldOnesAndAllStandInTheOrderOfRows) {
    std::vector<GrowthPoint> all = {{"a", "insert", 10, 1}, {"b", "insert", 10, 2}, {"a", "insert", 1000, 3}};
    mergeGrowth(all, {{"a", "insert", 100, 4}, {"b", "insert", 10, 5}, {"a", "delete", 10, 6}});
    EXPECT_EQ(
        "side,operation,rows,nanoseconds\na,insert,10,1.0\nb,insert,10,5.0\na,delete,10,6.0\na,insert,100,4.0\n"
        "a,insert,1000,3.0\n",
        growthText(all));
}

// From 10 to 1,000 rows and from 100 ns to 10 us, each axis has its middle at the geometric mean.
TEST(GrowthPlotTest, BothAxesAreLogarithmicAndCostsAreWholeDecades) {
    const std::string plot =
        growthPlot({{"a", "insert", 10, 100}, {"a", "insert", 100, 1000}, {"a", "insert", 1000, 9999}});
    EXPECT_NE(std::string::npos, plot.find("points=\"0.0,400.0 165.0,200.0 330.0,0.0 \"")) << plot;
    for (const char *label : {">100 ns<", ">1 us<", ">10 us<", ">10<", ">1k<"})
        EXPECT_EQ(1, countOf(plot, label)) << label;
}

TEST(GrowthPlotTest, EachSideHasAPanelWithTheSameColourForAnOperation) {
    const std::string plot = growthPlot(
        {{"a", "insert", 10, 100}, {"a", "delete", 10, 200}, {"b", "delete", 10, 300}, {"b", "delete", 1000, 400}});
    EXPECT_EQ(2, countOf(plot, "<g transform"));
    EXPECT_EQ(3, countOf(plot, "<polyline"));
    EXPECT_EQ(2, countOf(plot, "stroke=\"#d55e00\" points"));
    EXPECT_EQ(1, countOf(plot, "stroke=\"#0072b2\" points"));
    EXPECT_EQ(0, countOf(plot, "nan"));
}

// One size and one cost make axes of no length, and no figures no panel.
TEST(GrowthPlotTest, FewFiguresStillMakeADrawing) {
    EXPECT_EQ(0, countOf(growthPlot({{"a", "insert", 1000, 100}}), "nan"));
    EXPECT_EQ(0, countOf(growthPlot({}), "<g "));
    EXPECT_EQ(1, countOf(growthPlot({}), "</svg>"));
}

TEST(GrowthPlotTest, LabelsKeepTheirOrderAndADistance) {
    EXPECT_EQ((std::vector<double>{10, 50}), spreadLabels({10, 50}, 15, 0));
    EXPECT_EQ((std::vector<double>{25, 10, 40}), spreadLabels({12, 10, 12.5}, 15, 0));
    EXPECT_EQ((std::vector<double>{0, 15}), spreadLabels({-5, -5}, 15, 0));
}
