#include "oql/ZelFilterFlexLexer.h"

#include "oql/ZelFilter.tab.h"
#include "oql/ZelUnsupportedWordImpl.h"

#include "oql/ZelCondition_rules.h"  // behind the tokens

namespace {

std::atomic<int> lineCounter{1};

constexpr CZelKeywordTable KEYWORDS(CONDITION_WORDS, {{"none", __ZEL_NONE}});

struct SRules : SConditionRules {
    static int Word(std::string_view name, const char **, const char *) {
        const int token = KEYWORDS.Find(name);
        if (token == 0)
            return IDENT;
        if (token == UNSUPPORTED)
            ZelReportUnsupportedWord(name);
        return token;
    }

    static int Whole(std::string_view lexeme, UZelScanValue *value) {
        value->m_int = ZelScan::wholeInt(lexeme);
        return __ZEL_INTNUM;
    }

    static ZelScan::EBackslash Backslash() { return ZelScan::EBackslash::KEEPS_QUOTE; }
};

}  // namespace

ZelFilterFlexLexer::ZelFilterFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelFilterFlexLexer::yylex(UZelScanValue *value) {
    return scan<SRules>(value);
}

int ZelFilterFlexLexer::LineCount() {
    return lineCounter.load(std::memory_order_relaxed);
}

void ZelFilterFlexLexer::ResetLineCount() {
    startLines(lineCounter);
}
