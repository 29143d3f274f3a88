// The lines of a small text file of settings, for the registry and the catalogue.
#pragma once

#include <fstream>
#include <string>

// Gives the lines that count, without blanks at their ends: not the empty ones, nor comments.
class CZelConfigLines {
public:
    // `comments` are the characters that begin a comment line.
    CZelConfigLines(const char *path, const char *comments) : m_path(path), m_comments(comments), m_file(path) {}

    bool IsOpen() const { return m_file.is_open(); }
    bool Next(std::string &line);

    // Reports E_RCBadValue with the place of the line given last.
    void ReportLine(const char *problem) const;

private:
    std::string m_path;
    std::string m_comments;
    std::ifstream m_file;
    int m_number = 0;
};

// Without blanks, tabs and carriage returns at both ends.
std::string ZelTrimmed(const std::string &text);
