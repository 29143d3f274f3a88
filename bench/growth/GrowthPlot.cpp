#include "bench/growth/GrowthPlot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <sstream>
#include <utility>

namespace {

constexpr const char *HEAD = "side,operation,rows,nanoseconds";

constexpr double LEFT = 70, TOP = 50, WIDTH = 330, HEIGHT = 400, LABELS = 155, LINE = 15;

// Colours that also differ for those who don't see all of them.
constexpr std::array<const char *, 8> COLOURS = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                                 "#7a5c00", "#56b4e9", "#000000", "#e69f00"};

std::string printed(const char *format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// The values of one text field in the order in which they first occur.
std::vector<std::string> valuesOf(const std::vector<GrowthPoint> &points, std::string GrowthPoint::*field) {
    std::vector<std::string> all;
    for (const GrowthPoint &point : points)
        if (std::find(all.begin(), all.end(), point.*field) == all.end())
            all.push_back(point.*field);
    return all;
}

// A logarithmic axis from `from` to `to` over `length` pixels.
struct Axis {
    double from, to, length;

    double at(double value) const { return std::log(value / from) / std::log(to / from) * length; }
};

// As long as the points are apart.
Axis rowsAxis(const std::vector<GrowthPoint> &points) {
    const auto [least, most] = std::minmax_element(
        points.begin(), points.end(), [](const GrowthPoint &a, const GrowthPoint &b) { return a.rows < b.rows; });
    const auto from = static_cast<double>(least->rows);
    return {from, std::max(from * 2, static_cast<double>(most->rows)), WIDTH};
}

// Whole decades.
Axis costAxis(const std::vector<GrowthPoint> &points) {
    const auto [least, most] =
        std::minmax_element(points.begin(), points.end(),
                            [](const GrowthPoint &a, const GrowthPoint &b) { return a.nanoseconds < b.nanoseconds; });
    const double from = std::pow(10, std::floor(std::log10(least->nanoseconds)));
    return {from, std::max(from * 10, std::pow(10, std::ceil(std::log10(most->nanoseconds)))), HEIGHT};
}

std::vector<long> sizesOf(const std::vector<GrowthPoint> &points) {
    std::vector<long> all;
    for (const GrowthPoint &point : points)
        all.push_back(point.rows);
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

std::string rowsText(double rows) {
    if (rows >= 1e6)
        return printed("%.0fM", rows / 1e6);
    return rows >= 1e3 ? printed("%.0fk", rows / 1e3) : printed("%.0f", rows);
}

std::string decadeText(double nanoseconds) {
    for (const auto &[unit, size] : {std::pair{" s", 1e9}, {" ms", 1e6}, {" us", 1e3}})
        if (nanoseconds >= size)
            return printed("%.0f", nanoseconds / size) + unit;
    return printed("%g", nanoseconds) + " ns";
}

// Draws one panel; places are pixels from its upper left corner.
class Panel {
public:
    Panel(std::ostream &out, const Axis &x, const Axis &y) : m_out(out), m_x(x), m_y(y) {}

    void drawAxes(const std::string &title, const std::vector<long> &sizes) {
        text(WIDTH / 2, -20, "middle", "#000000", title, "bold");
        text(WIDTH / 2, HEIGHT + 38, "middle", "#000000", "rows in the table");
        for (double cost = m_y.from; cost <= m_y.to * 1.001; cost *= 10) {
            line(0, HEIGHT - m_y.at(cost), WIDTH, HEIGHT - m_y.at(cost));
            text(-8, HEIGHT - m_y.at(cost) + 4, "end", "#333333", decadeText(cost));
        }
        for (const long size : sizes) {
            const auto rows = static_cast<double>(size);
            line(m_x.at(rows), 0, m_x.at(rows), HEIGHT);
            text(m_x.at(rows), HEIGHT + 18, "middle", "#333333", rowsText(rows));
        }
    }

    void drawLine(const std::vector<GrowthPoint> &points, const char *colour) {
        m_out << "<polyline fill=\"none\" stroke-width=\"2\" stroke=\"" << colour << "\" points=\"";
        for (const GrowthPoint &point : points)
            m_out << place(point) << " ";
        m_out << "\"/>\n";
        for (const GrowthPoint &point : points)
            m_out << "<circle r=\"3\" fill=\"" << colour << "\" cx=\"" << xOf(point) << "\" cy=\"" << yOf(point)
                  << "\"/>\n";
    }

    void drawLabel(double y, const char *colour, const std::string &label) {
        text(WIDTH + 8, y + 4, "start", colour, label);
    }

    double yOf(const GrowthPoint &point) const { return HEIGHT - m_y.at(point.nanoseconds); }

private:
    double xOf(const GrowthPoint &point) const { return m_x.at(static_cast<double>(point.rows)); }
    std::string place(const GrowthPoint &point) const {
        return printed("%.1f,", xOf(point)) + printed("%.1f", yOf(point));
    }

    void line(double x1, double y1, double x2, double y2) {
        m_out << "<line stroke=\"#dddddd\" x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2
              << "\"/>\n";
    }

    void text(double x, double y, const char *anchor, const char *colour, const std::string &what,
              const char *weight = "normal") {
        m_out << "<text x=\"" << x << "\" y=\"" << y << "\" text-anchor=\"" << anchor << "\" fill=\"" << colour
              << "\" font-weight=\"" << weight << "\">" << what << "</text>\n";
    }

    std::ostream &m_out;
    Axis m_x, m_y;
};

std::vector<GrowthPoint> pointsOf(const std::vector<GrowthPoint> &points, const std::string &side,
                                  const std::string &operation) {
    std::vector<GrowthPoint> all;
    std::copy_if(points.begin(), points.end(), std::back_inserter(all),
                 [&](const GrowthPoint &point) { return point.side == side && point.operation == operation; });
    return all;
}

void drawOperations(Panel &panel, const std::vector<GrowthPoint> &points, const std::string &side) {
    std::vector<std::string> names;
    std::vector<const char *> colours;
    std::vector<double> ends;
    const std::vector<std::string> operations = valuesOf(points, &GrowthPoint::operation);
    for (std::size_t i = 0; i < operations.size(); ++i) {
        const std::vector<GrowthPoint> line = pointsOf(points, side, operations[i]);
        if (line.empty())
            continue;
        panel.drawLine(line, COLOURS[i % COLOURS.size()]);
        names.push_back(operations[i]);
        colours.push_back(COLOURS[i % COLOURS.size()]);
        ends.push_back(panel.yOf(line.back()));
    }
    const std::vector<double> places = spreadLabels(ends, LINE, 0);
    for (std::size_t i = 0; i < names.size(); ++i)
        panel.drawLabel(places[i], colours[i], names[i]);
}

}  // namespace

std::string growthText(const std::vector<GrowthPoint> &points) {
    std::string text = std::string(HEAD) + "\n";
    for (const GrowthPoint &point : points)
        text += point.side + "," + point.operation + "," + std::to_string(point.rows) + "," +
                printed("%.1f", point.nanoseconds) + "\n";
    return text;
}

std::vector<GrowthPoint> growthPoints(const std::string &text) {
    std::vector<GrowthPoint> points;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        char side[64], operation[64];
        GrowthPoint point;
        if (std::sscanf(line.c_str(), "%63[^,],%63[^,],%ld,%lf", side, operation, &point.rows, &point.nanoseconds) != 4)
            continue;
        point.side = side;
        point.operation = operation;
        if (point.rows > 0 && point.nanoseconds > 0)
            points.push_back(point);
    }
    return points;
}

void mergeGrowth(std::vector<GrowthPoint> &all, const std::vector<GrowthPoint> &points) {
    for (const GrowthPoint &point : points) {
        const auto same = std::find_if(all.begin(), all.end(), [&](const GrowthPoint &other) {
            return other.side == point.side && other.operation == point.operation && other.rows == point.rows;
        });
        if (same != all.end())
            *same = point;
        else
            all.push_back(point);
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const GrowthPoint &a, const GrowthPoint &b) { return a.rows < b.rows; });
}

std::string growthPlot(const std::vector<GrowthPoint> &points) {
    const std::vector<std::string> sides = valuesOf(points, &GrowthPoint::side);  // none without points
    const double panel = LEFT + WIDTH + LABELS;
    std::ostringstream out;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" font-family=\"sans-serif\" font-size=\"12\" width=\""
        << panel * static_cast<double>(sides.size()) << "\" height=\"" << TOP + HEIGHT + 50 << "\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    for (std::size_t i = 0; i < sides.size(); ++i) {
        out << "<g transform=\"translate(" << panel * static_cast<double>(i) + LEFT << "," << TOP << ")\">\n";
        Panel drawn(out, rowsAxis(points), costAxis(points));
        drawn.drawAxes(sides[i], sizesOf(points));
        drawOperations(drawn, points, sides[i]);
        out << "</g>\n";
    }
    out << "</svg>\n";
    return out.str();
}

std::vector<double> spreadLabels(std::vector<double> wanted, double distance, double top) {
    std::vector<std::size_t> order(wanted.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return wanted[a] < wanted[b]; });
    double free = top;
    for (const std::size_t i : order) {
        wanted[i] = std::max(wanted[i], free);
        free = wanted[i] + distance;
    }
    return wanted;
}
