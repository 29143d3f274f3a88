#include "bench/BenchTable.h"

#include <algorithm>
#include <cstdio>

namespace {

using Cells = std::vector<std::string>;

std::string printed(const char *format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

bool hasFigure(const BenchLine &line) {
    return line.ours > 0 ||
           std::any_of(line.peers.begin(), line.peers.end(), [](const BenchFigure &peer) { return peer.value > 0; });
}

bool isSameTable(const BenchLine &a, const BenchLine &b) {
    if ((a.kind == BenchLine::LIMIT) != (b.kind == BenchLine::LIMIT) || a.peers.empty() != b.peers.empty())
        return false;
    return a.peers.empty() || a.peers.front().peer == b.peers.front().peer;
}

const BenchFigure *figureOf(const BenchLine &line, const std::string &peer) {
    for (const BenchFigure &figure : line.peers)
        if (figure.peer == peer)
            return &figure;
    return nullptr;
}

Cells peersOf(const std::vector<BenchLine> &lines) {
    Cells all;
    for (const BenchLine &line : lines)
        for (const BenchFigure &figure : line.peers)
            if (std::find(all.begin(), all.end(), figure.peer) == all.end())
                all.push_back(figure.peer);
    return all;
}

std::string valueText(const BenchLine &line, double value) {
    if (value <= 0)
        return "-";
    return line.kind != BenchLine::SIZE ? timeText(value) : printed("%.0f", value);
}

void addPeer(const BenchLine &line, const std::string &peer, Cells &cells) {
    const BenchFigure *figure = figureOf(line, peer);
    if (figure == nullptr)
        cells.insert(cells.end(), {"", ""});
    else if (figure->isMissing)
        cells.insert(cells.end(), {"missing", "-"});
    else
        cells.insert(cells.end(),
                     {valueText(line, figure->value),
                      line.ours > 0 && figure->value > 0 ? printed("%.2f", figure->value / line.ours) : "-"});
}

Cells headOf(const BenchLine &first, const Cells &peers) {
    if (first.kind == BenchLine::LIMIT)
        return {"limit of the machine", "per", "time"};
    Cells head{"work", "per", "quintor"};
    for (const std::string &peer : peers)
        head.insert(head.end(), {peer, "ratio"});
    return head;
}

std::string tableOf(const std::vector<BenchLine> &lines) {
    const Cells peers = peersOf(lines);
    std::vector<Cells> rows{headOf(lines.front(), peers)};
    for (const BenchLine &line : lines) {
        Cells &cells = rows.emplace_back(Cells{line.name, line.unit, valueText(line, line.ours)});
        for (const std::string &peer : peers)
            addPeer(line, peer, cells);
    }
    return markdownTable(rows, 2);
}

std::vector<std::size_t> widthsOf(const std::vector<Cells> &rows) {
    std::vector<std::size_t> widths;
    for (const Cells &row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 1);
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    return widths;
}

std::string lineOf(const Cells &row, const std::vector<std::size_t> &widths, std::size_t textColumns) {
    std::string line = "|";
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const std::string cell = i < row.size() ? row[i] : "";
        const std::string blanks(widths[i] - cell.size(), ' ');
        line += i < textColumns ? " " + cell + blanks + " |" : " " + blanks + cell + " |";
    }
    return line + "\n";
}

std::string ruleOf(const std::vector<std::size_t> &widths, std::size_t textColumns) {
    std::string line = "|";
    for (std::size_t i = 0; i < widths.size(); ++i)
        line += std::string(widths[i] + 1, '-') + (i < textColumns ? "-|" : ":|");
    return line + "\n";
}

}  // namespace

double medianOf(std::vector<double> values) {
    const std::size_t middle = values.size() / 2;
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string timeText(double nanoseconds) {
    if (nanoseconds >= 1e9)
        return printed("%.2f s", nanoseconds / 1e9);
    if (nanoseconds >= 1e6)
        return printed("%.2f ms", nanoseconds / 1e6);
    if (nanoseconds >= 1e3)
        return printed("%.2f us", nanoseconds / 1e3);
    return printed(nanoseconds < 10 ? "%.2f ns" : "%.1f ns", nanoseconds);
}

std::string benchTables(const std::vector<BenchLine> &lines) {
    std::vector<BenchLine> shown;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(shown), hasFigure);
    std::string tables;
    for (auto begin = shown.begin(); begin != shown.end();) {
        const auto end =
            std::find_if(begin, shown.end(), [&](const BenchLine &line) { return !isSameTable(line, *begin); });
        tables += (tables.empty() ? "" : "\n") + tableOf({begin, end});
        begin = end;
    }
    return tables;
}

std::string markdownTable(const std::vector<Cells> &rows, std::size_t textColumns) {
    const std::vector<std::size_t> widths = widthsOf(rows);
    std::string table;
    for (const Cells &row : rows) {
        table += lineOf(row, widths, textColumns);
        if (&row == &rows.front())
            table += ruleOf(widths, textColumns);
    }
    return table;
}
