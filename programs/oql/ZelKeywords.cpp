#include "programs/oql/ZelKeywords.h"

#include <strings.h>

#include <algorithm>
#include <cctype>

const std::vector<std::string_view> &ZelKeywords() {
    static const std::vector<std::string_view> words = {
        "all",    "and",      "any",       "array",    "asc",      "avg",      "between",   "by",      "char",
        "count",  "counter",  "character", "create",   "data",     "database", "databases", "default", "delete",
        "desc",   "distinct", "drop",      "escape",   "eval",     "exists",   "external",  "float",   "from",
        "group",  "having",   "in",        "index",    "insert",   "int",      "integer",   "into",    "ipaddress",
        "is",     "key",      "like",      "list",     "locator",  "long",     "long64",    "max",     "min",
        "next",   "not",      "null",      "object",   "off",      "on",       "or",        "order",   "primary",
        "select", "set",      "show",      "shutdown", "smallint", "some",     "sum",       "table",   "tables",
        "text",   "time",     "timestamp", "type",     "unique",   "update",   "values",    "varchar", "volatile",
        "where"};
    return words;
}

bool ZelIsName(std::string_view text) {
    if (text.empty() || std::isalpha(static_cast<unsigned char>(text[0])) == 0)
        return false;
    bool spelled = std::all_of(text.begin(), text.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '&';
    });
    return spelled && std::none_of(ZelKeywords().begin(), ZelKeywords().end(), [text](std::string_view word) {
               return word.size() == text.size() && strncasecmp(word.data(), text.data(), text.size()) == 0;
           });
}
