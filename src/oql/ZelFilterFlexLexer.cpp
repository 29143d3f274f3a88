#include "oql/ZelFilterFlexLexer.h"

#include "oql/CZelKeywordTableImpl.h"
#include "oql/CZelTextLexer_scan.h"
#include "oql/ZelFilter.tab.h"
#include "oql/ZelUnsupportedWordImpl.h"

namespace {

std::atomic<int> lineCounter{1};

constexpr int UNSUPPORTED = ZelScan::NO_TOKEN;

constexpr CZelKeywordTable KEYWORDS({
    {"all", __ZEL_ALL},
    {"and", __ZEL_AND},
    {"any", __ZEL_ANY},
    {"array", __ZEL_ARRAY},
    {"asc", __ZEL_ASC},
    {"avg", __ZEL_FUNC},
    {"between", __ZEL_BETWEEN},
    {"by", __ZEL_BY},
    {"char", __ZEL_CHARACTER},
    {"character", __ZEL_CHARACTER},
    {"count", UNSUPPORTED},
    {"data", __ZEL_DATA},
    {"desc", __ZEL_DESC},
    {"distinct", __ZEL_DISTINCT},
    {"escape", __ZEL_ESCAPE},
    {"eval", __ZEL_EVAL},
    {"exists", __ZEL_EXISTS},
    {"float", __ZEL_FLOAT},
    {"from", __ZEL_FROM},
    {"group", __ZEL_GROUP},
    {"having", __ZEL_HAVING},
    {"in", __ZEL_IN},
    {"int", __ZEL_INTEGER},
    {"integer", __ZEL_INTEGER},
    {"ipaddress", __ZEL_IPADDRESS},
    {"is", __ZEL_IS},
    {"like", __ZEL_LIKE},
    {"list", __ZEL_LIST},
    {"locator", __ZEL_LOCATOR},
    {"long", __ZEL_LONG},
    {"long64", __ZEL_LONGLONG},
    {"max", UNSUPPORTED},
    {"min", UNSUPPORTED},
    {"next", __ZEL_NEXT},
    {"none", __ZEL_NONE},
    {"not", __ZEL_NOT},
    {"null", __ZEL_NULLX},
    {"object", __ZEL_OBJECT},
    {"or", __ZEL_OR},
    {"order", __ZEL_ORDER},
    {"select", __ZEL_SELECT},
    {"smallint", __ZEL_SMALLINT},
    {"some", __ZEL_SOME},
    {"sum", UNSUPPORTED},
    {"text", __ZEL_TEXT},
    {"time", __ZEL_TIME},
    {"type", __ZEL_TYPE},
    {"varchar", __ZEL_VARCHAR},
    {"where", __ZEL_WHERE},
});

struct SRules {
    enum : int {
        IDENT = __ZEL_IDENT,
        STRING = __ZEL_STRING,
        APPROXNUM = __ZEL_APPROXNUM,
        OBJPOINTER = __ZEL_OBJPOINTER,
        EQ = __ZEL_EQ,
        NEQ = __ZEL_NEQ,
        LT = __ZEL_LT,
        GT = __ZEL_GT,
        LTE = __ZEL_LTE,
        GTE = __ZEL_GTE
    };
    static constexpr bool HAS_COMPARISONS = true;
    static constexpr unsigned char NAME_SIGNS = ZelScan::IN_NAME | ZelScan::AMPERSAND;

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
    static void Unterminated() {}
};

}  // namespace

ZelFilterFlexLexer::ZelFilterFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelFilterFlexLexer::yylex(UZelScanValue *value) {
    return scan<SRules>(value);
}

int ZelFilterFlexLexer::LineCount() {
    return lineCounter.load(std::memory_order_relaxed);
}

// Written only when it differs: most texts have one line, and threads share the counter.
void ZelFilterFlexLexer::ResetLineCount() {
    if (LineCount() != 1)
        lineCounter.store(1, std::memory_order_relaxed);
}
