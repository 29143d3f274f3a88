// How the cost of operations grows with the table: the figures as lines of text, and drawn.
#pragma once

#include <string>
#include <vector>

struct GrowthPoint {
    std::string side;  // who was measured
    std::string operation;
    long rows;           // in the table
    double nanoseconds;  // an item
};

// "side,operation,rows,nanoseconds" with a line for each point below a head. Lines that are no point are skipped when
// read.
std::string growthText(const std::vector<GrowthPoint> &points);
std::vector<GrowthPoint> growthPoints(const std::string &text);

// Adds points, in place of those that `all` holds of the same side, operation and number of rows; in the order of rows.
void mergeGrowth(std::vector<GrowthPoint> &all, const std::vector<GrowthPoint> &points);

// A panel for each side, with a line for each operation in it and the same logarithmic axes, as SVG.
std::string growthPlot(const std::vector<GrowthPoint> &points);

// Where labels stand that want to be at `wanted` from the top, when they must keep a distance: each at its place, or
// right below the one above it. None stands above `top`.
std::vector<double> spreadLabels(std::vector<double> wanted, double distance, double top);
