#include "oql/ZelAtomFlexLexer.h"

#include <cstdio>

#include "oql/CZelKeywordTableImpl.h"
#include "oql/CZelTextLexer_scan.h"
#include "oql/ZelAtom.tab.h"

namespace {

std::atomic<int> lineCounter{1};

constexpr CZelKeywordTable KEYWORDS({{"true", __ZEL_AP_TRUE}, {"false", __ZEL_AP_FALSE}});

struct SRules {
    enum : int { IDENT = __ZEL_AP_IDENT, STRING = __ZEL_AP_STRING, APPROXNUM = __ZEL_AP_APPROXNUM, EQ = __ZEL_AP_EQ };
    static constexpr bool HAS_COMPARISONS = false;
    static constexpr unsigned char NAME_SIGNS = ZelScan::IN_NAME;

    static int Word(std::string_view name, const char **, const char *) {
        const int token = KEYWORDS.Find(name);
        return token != 0 ? token : IDENT;
    }

    static int Whole(std::string_view lexeme, UZelScanValue *value) {
        value->m_int = ZelScan::wholeInt(lexeme);
        return __ZEL_AP_INTNUM;
    }

    static ZelScan::EBackslash Backslash() { return ZelScan::EBackslash::KEEPS_QUOTE; }
    static void Unterminated() { ZelAtomFlexLexer::Message("Unterminated string"); }
};

}  // namespace

ZelAtomFlexLexer::ZelAtomFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelAtomFlexLexer::yylex(UZelScanValue *value) {
    return scan<SRules>(value);
}

int ZelAtomFlexLexer::LineCount() {
    return lineCounter.load(std::memory_order_relaxed);
}

void ZelAtomFlexLexer::Message(const char *message) {
    std::fprintf(stderr, "ZelAtom %s at line %d\n", message, LineCount());
}
