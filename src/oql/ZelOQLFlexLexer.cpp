#include "oql/ZelOQLFlexLexer.h"

#include "foundations/base/CZelString.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelKeywordTableImpl.h"
#include "oql/CZelTextLexer_scan.h"
#include "oql/ZelOQL.tab.h"
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
    {"counter", __ZEL_COUNTER},
    {"create", __ZEL_CREATE},
    {"data", __ZEL_DATA},
    {"database", __ZEL_DATABASE},
    {"databases", __ZEL_DATABASES},
    {"default", __ZEL_DEFAULT},
    {"delete", __ZEL_DELETE},
    {"desc", __ZEL_DESC},
    {"distinct", __ZEL_DISTINCT},
    {"drop", __ZEL_DROP},
    {"escape", __ZEL_ESCAPE},
    {"eval", __ZEL_EVAL},
    {"exists", __ZEL_EXISTS},
    {"external", __ZEL_EXTERNAL},
    {"float", __ZEL_FLOAT},
    {"from", __ZEL_FROM},
    {"group", __ZEL_GROUP},
    {"having", __ZEL_HAVING},
    {"in", __ZEL_IN},
    {"index", __ZEL_INDEX},
    {"insert", __ZEL_INSERT},
    {"int", __ZEL_INTEGER},
    {"integer", __ZEL_INTEGER},
    {"into", __ZEL_INTO},
    {"ipaddress", __ZEL_IPADDRESS},
    {"is", __ZEL_IS},
    {"key", __ZEL_KEY},
    {"like", __ZEL_LIKE},
    {"list", __ZEL_LIST},
    {"locator", __ZEL_LOCATOR},
    {"long", __ZEL_LONG},
    {"long64", __ZEL_LONGLONG},
    {"max", UNSUPPORTED},
    {"min", UNSUPPORTED},
    {"next", __ZEL_NEXT},
    {"not", __ZEL_NOT},
    {"null", __ZEL_NULLX},
    {"object", __ZEL_OBJECT},
    {"off", __ZEL_OFF},
    {"on", __ZEL_ON},
    {"or", __ZEL_OR},
    {"order", __ZEL_ORDER},
    {"primary", __ZEL_PRIMARY},
    {"select", __ZEL_SELECT},
    {"set", __ZEL_SET},
    {"show", __ZEL_SHOW},
    {"shutdown", __ZEL_SHUTDOWN},
    {"smallint", __ZEL_SMALLINT},
    {"some", __ZEL_SOME},
    {"sum", UNSUPPORTED},
    {"table", __ZEL_TABLE},
    {"tables", __ZEL_TABLES},
    {"text", __ZEL_TEXT},
    {"time", __ZEL_TIME},
    {"timestamp", __ZEL_TIMESTAMP},
    {"type", __ZEL_TYPE},
    {"unique", __ZEL_UNIQUE},
    {"update", __ZEL_UPDATE},
    {"values", __ZEL_VALUES},
    {"varchar", __ZEL_VARCHAR},
    {"volatile", __ZEL_VOLATILE},
    {"where", __ZEL_WHERE},
});

void reportTruncation(std::string_view lexeme, long long number) {
    CZelString text("Overflow - The large integer ");
    text.RSStrCat(lexeme);
    text.RSStrCat(" found in an OQL statement has been truncated to ");
    text.RSStrCat(number);
    ZEL_REPORT(E_RCUnsupported, text.RSString());
}

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

    static int Word(std::string_view name, const char **behind, const char *end) {
        const int token = KEYWORDS.Find(name);
        if (token == 0)
            return IDENT;
        if (token != UNSUPPORTED)
            return token;
        if (name.size() == 5 && end - *behind >= 3 && std::memcmp(*behind, "(*)", 3) == 0) {
            *behind += 3;
            return __ZEL_COUNTSTAR;
        }
        ZelReportUnsupportedWord(name);
        return ZelScan::NO_TOKEN;
    }

    static int Whole(std::string_view lexeme, UZelScanValue *value) {
        bool isCut = false;
        const long long number = ZelScan::wholeNumber(lexeme, &isCut);
        if (isCut)
            reportTruncation(lexeme, number);
        if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
            value->m_longLong = number;
            return __ZEL_LONGLONGNUM;
        }
        value->m_int = static_cast<int>(number);
        return __ZEL_INTNUM;
    }

    static ZelScan::EBackslash Backslash() {
        return ZelEscapeIsOn() ? ZelScan::EBackslash::ESCAPES : ZelScan::EBackslash::PLAIN;
    }
    static void Unterminated() {}
};

}  // namespace

ZelOQLFlexLexer::ZelOQLFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelOQLFlexLexer::yylex(UZelScanValue *value) {
    return scan<SRules>(value);
}

int ZelOQLFlexLexer::LineCount() {
    return lineCounter.load(std::memory_order_relaxed);
}

// Written only when it differs: most texts have one line, and threads share the counter.
void ZelOQLFlexLexer::ResetLineCount() {
    if (LineCount() != 1)
        lineCounter.store(1, std::memory_order_relaxed);
}
