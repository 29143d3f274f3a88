// What a scanner makes of a text, as a text: "IDENT(a) EQ INT(1)".
#pragma once

#include <map>
#include <string>

#include "foundations/base/ZelMalloc.h"
#include "oql/CZelTextLexer.h"

struct SZelTokenName {
    std::string m_name;
    char m_value = '\0';  // t text, i int, l long64, d double
};

class TokenList {
public:
    explicit TokenList(std::map<int, SZelTokenName> names) : m_names(std::move(names)) {}

    template <class Scanner>
    std::string Of(const std::string &text) const {
        Scanner scanner(text.data(), static_cast<unsigned int>(text.size()));
        std::string all;
        UZelScanValue value;
        for (int token = scanner.yylex(&value); token != 0; token = scanner.yylex(&value))
            all += (all.empty() ? "" : " ") + one(scanner, token, value);
        return all;
    }

private:
    std::string one(const CZelTextLexer &scanner, int token, const UZelScanValue &value) const {
        if (token < 127)
            return std::string(1, static_cast<char>(token));
        const auto found = m_names.find(token);
        if (found == m_names.end())
            return "#" + std::to_string(token);
        const std::string text = valueText(scanner, found->second.m_value, value);
        return found->second.m_name + (found->second.m_value == '\0' ? "" : "(" + text + ")");
    }

    static std::string valueText(const CZelTextLexer &scanner, char kind, const UZelScanValue &value) {
        switch (kind) {
            case 't':
                return CZelMallocText(scanner.SliceCopy(value.m_slice)).get();
            case 'i':
                return std::to_string(value.m_int);
            case 'l':
                return std::to_string(value.m_longLong);
            case 'd':
                return number(value.m_double);
            default:
                return "";
        }
    }

    static std::string number(double real) {
        char text[40];
        std::snprintf(text, sizeof text, "%.12g", real);
        return text;
    }

    std::map<int, SZelTokenName> m_names;
};
