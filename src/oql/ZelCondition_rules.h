// What the scanners of OQL and of conditions that stand alone have in common: the words of a condition, and how it is
// written. Their tokens have the same names in both grammars and not the same numbers, so each scanner includes this
// behind its own grammar's header, and has all of it for itself.
#pragma once

#include "oql/CZelKeywordTableImpl.h"
#include "oql/CZelTextLexer_scan.h"

namespace {

constexpr int UNSUPPORTED = ZelScan::NO_TOKEN;

constexpr SZelKeyword CONDITION_WORDS[] = {
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
};

struct SConditionRules {
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

    static void Unterminated() {}
};

}  // namespace
