// What a word that is being typed may become: a keyword, or a name that is in the store now.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class CZelStore;

class CZelCompleter {
public:
    explicit CZelCompleter(const CZelStore &store) : m_store(store) {}

    // The part of the line's end that is completed: names with points, or a command of the shell.
    static std::string_view WordAtEnd(std::string_view line);

    // All that the word can become, sorted, each once. Behind "database." its tables. A keyword comes in
    // capitals if the word begins with one.
    std::vector<std::string> Candidates(std::string_view word) const;

    // What all of them begin with.
    static std::string CommonStart(const std::vector<std::string> &candidates);

private:
    const CZelStore &m_store;
};
