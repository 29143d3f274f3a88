#include "oql/ZelOQLFlexLexer.h"

#include "foundations/base/CZelString.h"
#include "foundations/base/ZelEscape.h"
#include "foundations/port/CZelError.h"
#include "oql/ZelOQL.tab.h"
#include "oql/ZelUnsupportedWordImpl.h"

#include "oql/ZelCondition_rules.h"  // behind the tokens

namespace {

std::atomic<int> lineCounter{1};

constexpr CZelKeywordTable KEYWORDS(CONDITION_WORDS, {
                                                         {"counter", __ZEL_COUNTER},
                                                         {"create", __ZEL_CREATE},
                                                         {"database", __ZEL_DATABASE},
                                                         {"databases", __ZEL_DATABASES},
                                                         {"default", __ZEL_DEFAULT},
                                                         {"delete", __ZEL_DELETE},
                                                         {"drop", __ZEL_DROP},
                                                         {"external", __ZEL_EXTERNAL},
                                                         {"index", __ZEL_INDEX},
                                                         {"insert", __ZEL_INSERT},
                                                         {"into", __ZEL_INTO},
                                                         {"key", __ZEL_KEY},
                                                         {"off", __ZEL_OFF},
                                                         {"on", __ZEL_ON},
                                                         {"primary", __ZEL_PRIMARY},
                                                         {"set", __ZEL_SET},
                                                         {"show", __ZEL_SHOW},
                                                         {"shutdown", __ZEL_SHUTDOWN},
                                                         {"table", __ZEL_TABLE},
                                                         {"tables", __ZEL_TABLES},
                                                         {"timestamp", __ZEL_TIMESTAMP},
                                                         {"unique", __ZEL_UNIQUE},
                                                         {"update", __ZEL_UPDATE},
                                                         {"values", __ZEL_VALUES},
                                                         {"volatile", __ZEL_VOLATILE},
                                                     });

void reportTruncation(std::string_view lexeme, long long number) {
    CZelString text("Overflow - The large integer ");
    text.RSStrCat(lexeme);
    text.RSStrCat(" found in an OQL statement has been truncated to ");
    text.RSStrCat(number);
    ZEL_REPORT(E_RCUnsupported, text.RSString());
}

struct SRules : SConditionRules {
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
};

}  // namespace

ZelOQLFlexLexer::ZelOQLFlexLexer() : CZelTextLexer(lineCounter) {}

int ZelOQLFlexLexer::yylex(UZelScanValue *value) {
    return scan<SRules>(value);
}

int ZelOQLFlexLexer::LineCount() {
    return lineCounter.load(std::memory_order_relaxed);
}

void ZelOQLFlexLexer::ResetLineCount() {
    startLines(lineCounter);
}
