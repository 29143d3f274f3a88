#include "programs/oql/CZelCompleter.h"

#include <algorithm>
#include <cctype>
#include <memory>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelTreeList.h"
#include "programs/oql/CZelShell.h"
#include "programs/oql/ZelEach.h"
#include "programs/oql/ZelKeywords.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '&' || c == '.';
}

// The candidates for one word, in no order.
class Collection {
public:
    explicit Collection(std::string_view word) : m_word(word) {}

    void offer(std::string_view candidate) {
        if (candidate.size() >= m_word.size() && candidate.substr(0, m_word.size()) == m_word)
            m_found.emplace_back(candidate);
    }

    void offerKeywords() {
        bool capitals = !m_word.empty() && std::isupper(static_cast<unsigned char>(m_word[0])) != 0;
        for (std::string_view keyword : ZelKeywords()) {
            std::string word(keyword);
            if (capitals)
                std::transform(word.begin(), word.end(), word.begin(), [](unsigned char c) { return std::toupper(c); });
            offer(word);
        }
    }

    void offerTables(const CZelDatabase &database) {
        std::string start = std::string(database.RDName()->RATextView()) + ".";
        ZelEach<CZelTable>(database.RDTableIterator(),
                           [&](const CZelTable &table) { offer(start + std::string(table.RTName()->RATextView())); });
    }

    void offerColumns(const CZelDatabase &database) {
        ZelEach<CZelTable>(database.RDTableIterator(), [&](const CZelTable &table) {
            ZelEach<CZelColDef>(table.RTColumns()->RTLIterator(),
                                [&](const CZelColDef &column) { offer(column.RCDName()->RATextView()); });
        });
    }

    void offerNames(const CZelStore &store, bool qualified) {
        std::unique_ptr<CZelAtomVector> names(store.RSDatabaseNames());
        for (unsigned int i = 0; i < names->RAVSize(); ++i) {
            const CZelDatabase &database = *store.RSDatabase(names->RAVGetValue(i));
            if (qualified) {
                offerTables(database);
                continue;
            }
            offer(database.RDName()->RATextView());
            offerColumns(database);
        }
    }

    std::vector<std::string> sorted() {
        std::sort(m_found.begin(), m_found.end());
        m_found.erase(std::unique(m_found.begin(), m_found.end()), m_found.end());
        return m_found;
    }

private:
    std::string_view m_word;
    std::vector<std::string> m_found;
};

}  // namespace

std::string_view CZelCompleter::WordAtEnd(std::string_view line) {
    std::size_t begin = line.size();
    while (begin > 0 && isWordCharacter(line[begin - 1]))
        --begin;
    return line.substr(begin);
}

std::vector<std::string> CZelCompleter::Candidates(std::string_view word) const {
    Collection collection(word);
    if (!word.empty() && word[0] == '.') {
        for (std::string_view command : CZelShell::CommandNames())
            collection.offer(command);
        return collection.sorted();
    }
    bool qualified = word.find('.') != std::string_view::npos;
    if (!qualified)
        collection.offerKeywords();
    collection.offerNames(m_store, qualified);
    return collection.sorted();
}

std::string CZelCompleter::CommonStart(const std::vector<std::string> &candidates) {
    std::string start = candidates.empty() ? std::string() : candidates.front();
    for (const std::string &candidate : candidates) {
        auto differs = std::mismatch(start.begin(), start.end(), candidate.begin(), candidate.end());
        start.erase(differs.first, start.end());
    }
    return start;
}
