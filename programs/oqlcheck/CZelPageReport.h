// What oqlcheck says about one cache file.
#pragma once

#include <string>

class CZelPageMap;

class CZelPageReport {
public:
    // Exit codes of the program; of several files the highest counts.
    enum Outcome : int { SOUND = 0, DAMAGE = 1, UNREADABLE = 2 };

    // Looks through the file, which is only read; the text is what is to be printed about it.
    Outcome check(const std::string &path);
    const std::string &text() const { return m_text; }

private:
    void tell(const CZelPageMap &map);
    void tellDamaged(const CZelPageMap &map);
    void line(const char *what, long count, const char *more = "");

    std::string m_text;
};
