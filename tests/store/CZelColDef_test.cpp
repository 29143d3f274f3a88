#include "store/CZelColDef.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelExpr.h"
#include "support/AtomBuild.h"

namespace {

using Column = std::unique_ptr<CZelColDef>;

Column columnOf(EZelDataType type, Column defined = nullptr, int maxLen = -1) {
    return std::make_unique<CZelColDef>(ZelStrDup("a"), type, defined.release(), maxLen);
}

// "no", "as it is", or the value that takes the place.
std::string checked(CZelColDef &column, const CZelAtom *value) {
    CZelAtom *replacement = nullptr;
    if (column.RCDTypeMatches(value, &replacement) != E_RBTrue)
        return replacement == nullptr ? "no" : "no, but replaced";
    const std::unique_ptr<CZelAtom> owner(replacement);
    return replacement == nullptr ? "as it is" : shown(replacement);
}

std::string checked(const Column &column, const CZelAtom &value) {
    return checked(*column, &value);
}

TEST(ColDefTest, AValueOfTheColumnsTypeStandsAndNumbersAreConverted) {
    const CZelAtom number(5);
    const CZelAtom values[] = {number,        CZelAtom(5L),
                               CZelAtom("5"), CZelAtom(5.5F),
                               CZelAtom(5LL), CZelAtom(ZelStrDup("x")),
                               listOf({}),    objectOf({{"m", number}})};
    const struct {
        EZelDataType type;
        const char *verdicts[8];
    } rows[] = {
        {E_RDTInt, {"as it is", "int 5", "int 5", "int 5", "int 5", "no", "no", "no"}},
        {E_RDTLong, {"long 5", "as it is", "long 5", "long 5", "long 5", "no", "no", "no"}},
        {E_RDTText, {"no", "no", "as it is", "no", "no", "as it is", "no", "no"}},
        {E_RDTFloat, {"float 5.0", "float 5.0", "float 5.0", "as it is", "float 5.0", "no", "no", "no"}},
        {E_RDTLong64, {"long64 5", "long64 5", "long64 5", "long64 5", "as it is", "no", "no", "no"}},
        {E_RDTData, {"no", "no", "no", "no", "no", "no", "no", "no"}},
        {E_RDTLocator, {"no", "no", "no", "no", "no", "no", "no", "no"}},
        {E_RDTList, {"no", "no", "no", "no", "no", "no", "as it is", "no"}},
        {E_RDTObject, {"no", "no", "no", "no", "no", "no", "no", "as it is"}},
        {E_RDTUndefined,
         {"as it is", "as it is", "as it is", "as it is", "as it is", "as it is", "as it is", "as it is"}},
    };
    for (const auto &row : rows)
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(row.verdicts[i], checked(columnOf(row.type), values[i])) << row.type << " value " << i;
    const auto *bytes = reinterpret_cast<const unsigned char *>("xy");
    EXPECT_EQ("as it is", checked(columnOf(E_RDTData), CZelAtom(bytes, 2)));
}

TEST(ColDefTest, AnOutOfRangeNumberAndAListWithoutAVectorDoNotFit) {
    EXPECT_EQ("no", checked(columnOf(E_RDTInt), CZelAtom(1LL << 40)));
    EXPECT_EQ("no", checked(columnOf(E_RDTInt), CZelAtom("99999999999")));
    CZelAtom hollow = listOf({});
    delete hollow.RATakeList();
    EXPECT_EQ("no", checked(columnOf(E_RDTList), hollow));
}

TEST(ColDefTest, AnOverlongTextIsCut) {
    EXPECT_EQ("as it is", checked(columnOf(E_RDTText, nullptr, 3), CZelAtom("abc")));
    EXPECT_EQ("text abc", checked(columnOf(E_RDTText, nullptr, 3), CZelAtom("abcd")));
    EXPECT_EQ("text ", checked(columnOf(E_RDTText, nullptr, 0), CZelAtom("a")));
    EXPECT_EQ("as it is", checked(columnOf(E_RDTText), CZelAtom(std::string(100000, 'x').c_str())));
}

TEST(ColDefTest, AMissingValueTakesTheDefaultOrNeedsAColumnThatAllowsIt) {
    for (int flags = 0; flags < 16; ++flags) {
        const Column column = columnOf(E_RDTInt);
        column->RCDSetNullable(ZelBool((flags & 1) != 0));
        column->RCDSetUnique(ZelBool((flags & 2) != 0));
        column->RCDSetIndex(ZelBool((flags & 4) != 0));
        const CZelAtom nine(9);
        if ((flags & 8) != 0)
            column->RCDSetDefault(&nine);
        const std::string expected = (flags & 8) != 0 ? "int 9" : flags == 1 ? "as it is" : "no";
        const CZelAtom undefined;
        EXPECT_EQ(expected, checked(*column, nullptr)) << flags;
        EXPECT_EQ(expected, checked(*column, &undefined)) << flags;
    }
    const Column column = columnOf(E_RDTInt);
    const CZelAtom undefined;
    column->RCDSetDefault(&undefined);
    EXPECT_EQ("as it is", checked(*column, nullptr));
}

TEST(ColDefTest, ElementsAreCheckedAgainstTheDeclaredType) {
    const Column ints = columnOf(E_RDTList, columnOf(E_RDTInt));
    EXPECT_EQ("as it is", checked(ints, listOf({})));
    EXPECT_EQ("as it is", checked(ints, listOf({CZelAtom(1), CZelAtom(2)})));
    EXPECT_EQ("list [1,2,3]", checked(ints, listOf({CZelAtom(1), CZelAtom("2"), CZelAtom(3)})));
    EXPECT_EQ("no", checked(ints, listOf({CZelAtom(1), CZelAtom("x")})));
    EXPECT_EQ("no", checked(ints, listOf({CZelAtom("1"), CZelAtom("x")})));
    EXPECT_EQ("as it is", checked(columnOf(E_RDTList), listOf({CZelAtom(1), CZelAtom("x")})));
    const Column object = columnOf(E_RDTObject, columnOf(E_RDTText, nullptr, 2));
    EXPECT_EQ("object {m='ab',n='cd',o=NULL}",
              checked(object, objectOf({{"m", CZelAtom("ab")}, {"n", CZelAtom("cde")}, {"o", CZelAtom()}})));
    EXPECT_EQ("no", checked(object, objectOf({{"m", CZelAtom(1)}})));
    const Column nested = columnOf(E_RDTList, columnOf(E_RDTObject, columnOf(E_RDTList, columnOf(E_RDTFloat))));
    EXPECT_EQ("list [{m=[1.0]},{n=[2.0]}]", checked(nested, listOf({objectOf({{"m", listOf({CZelAtom(1.0F)})}}),
                                                                    objectOf({{"n", listOf({CZelAtom(2)})}})})));
}

TEST(ColDefTest, ElementsTakeDefaultsToo) {
    Column element = columnOf(E_RDTInt);
    const CZelAtom nine(9);
    element->RCDSetDefault(&nine);
    const Column column = columnOf(E_RDTList, std::move(element));
    EXPECT_EQ("list [1,9]", checked(column, listOf({CZelAtom(1), CZelAtom()})));
}

TEST(ColDefTest, TheContentChecksStandAlone) {
    const Column ints = columnOf(E_RDTList, columnOf(E_RDTInt));
    const CZelAtom list = listOf({CZelAtom("4")});
    CZelAtom *replacement = nullptr;
    EXPECT_EQ(E_RBTrue, ints->RCDCheckListContentType(*list.RAList(), &replacement));
    EXPECT_EQ("list [4]", shown(std::unique_ptr<CZelAtom>(replacement).get()));
    const CZelAtom object = objectOf({{"m", CZelAtom("5")}});
    EXPECT_EQ(E_RBTrue, ints->RCDCheckObjectContentType(*object.RAObject(), &replacement));
    EXPECT_EQ("object {m=5}", shown(std::unique_ptr<CZelAtom>(replacement).get()));
    const CZelErrorCapture reports;
    EXPECT_EQ(E_RBFalse, ints->RCDTypeMatches(&list, nullptr));
    EXPECT_EQ(E_RCNull, reports.LastCode());
}

TEST(ColDefTest, TheRecordIsCorrected) {
    CZelRecord record;
    EXPECT_EQ(E_RBTrue, columnOf(E_RDTInt)->RCDTypeMatches(record));
    EXPECT_EQ(nullptr, record.RRValuePairOf(columnOf(E_RDTInt)->RCDName()));
    const Column defaulted = columnOf(E_RDTInt);
    defaulted->RCDSetNullable(E_RBFalse);
    EXPECT_EQ(E_RBFalse, defaulted->RCDTypeMatches(record));
    const CZelAtom nine(9);
    defaulted->RCDSetDefault(&nine);
    EXPECT_EQ(E_RBTrue, defaulted->RCDTypeMatches(record));
    EXPECT_EQ("int 9", shown(record.RRValueOf("a")));
    EXPECT_EQ(E_RBFalse, columnOf(E_RDTText)->RCDTypeMatches(record));
    EXPECT_EQ("int 9", shown(record.RRValueOf("a")));
    EXPECT_EQ(E_RBTrue, columnOf(E_RDTFloat)->RCDTypeMatches(record));
    EXPECT_EQ("float 9.0", shown(record.RRValueOf("a")));
    EXPECT_EQ(1, record.RRVbIterator()->RVBLLength());
}

TEST(ColDefTest, ABindingWithoutAValueTakesTheDefaultInItsPlace) {
    CZelRecord record;
    record.RRAddValue(new CZelVarBind("a", static_cast<const CZelAtom *>(nullptr)));
    const Column column = columnOf(E_RDTInt);
    const CZelAtom nine(9);
    column->RCDSetDefault(&nine);
    EXPECT_EQ(E_RBTrue, column->RCDTypeMatches(record));
    EXPECT_EQ("int 9", shown(record.RRValueOf("a")));
    EXPECT_EQ(1, record.RRVbIterator()->RVBLLength());
}

TEST(ColDefTest, AnUpdateGetsNoDefaultAndKeepsItsConvertedValue) {
    const Column column = columnOf(E_RDTInt);
    const CZelAtom text("5");
    CZelExpr value(&text);
    EXPECT_EQ(E_RBTrue, column->RCDUpdateTypeMatches(&value));
    EXPECT_EQ("int 5", shown(value.REHeadAtomVal()));
    CZelExpr overridden;
    overridden.RESetOverride(&text);
    EXPECT_EQ(E_RBTrue, column->RCDUpdateTypeMatches(&overridden));
    EXPECT_EQ("int 5", shown(overridden.REHeadAtomVal()));
    EXPECT_EQ("text 5", shown(&text));
    CZelExpr null(static_cast<const CZelAtom *>(nullptr));
    EXPECT_EQ(E_RBTrue, column->RCDUpdateTypeMatches(&null));
    column->RCDSetDefault(&text);
    column->RCDSetNullable(E_RBFalse);
    EXPECT_EQ(E_RBFalse, column->RCDUpdateTypeMatches(&null));
}

TEST(ColDefTest, CoercingForgives) {
    const auto coerced = [](const Column &column, CZelAtom value) {
        return shown(std::unique_ptr<CZelAtom>(column->RCDCoerceType(&value)).get());
    };
    EXPECT_EQ("int 5", coerced(columnOf(E_RDTInt), CZelAtom("5")));
    EXPECT_EQ("null", coerced(columnOf(E_RDTInt), CZelAtom("x")));
    EXPECT_EQ("text ab", coerced(columnOf(E_RDTText, nullptr, 2), CZelAtom("abc")));
    EXPECT_EQ("null", coerced(columnOf(E_RDTText), CZelAtom(1)));
    EXPECT_EQ("list ['x']", coerced(columnOf(E_RDTList, columnOf(E_RDTInt)), listOf({CZelAtom("x")})));
    EXPECT_EQ("undefined undefined", coerced(columnOf(E_RDTInt), CZelAtom()));
    const Column column = columnOf(E_RDTInt);
    const CZelAtom nine(9);
    column->RCDSetDefault(&nine);
    EXPECT_EQ("int 9", coerced(column, CZelAtom("x")));
    EXPECT_EQ("int 9", shown(std::unique_ptr<CZelAtom>(column->RCDCoerceType(nullptr)).get()));
    column->RCDSetNullable(E_RBFalse);
    EXPECT_EQ("null", coerced(column, CZelAtom("x")));
    EXPECT_EQ("null", coerced(column, CZelAtom()));
}

TEST(ColDefTest, DefinitionsAreOql) {
    const auto definition = [](const Column &column) { return taken(column->RCDOQLDefinition()); };
    const Column column = columnOf(E_RDTInt);
    EXPECT_EQ("a int ", definition(column));
    column->RCDSetNullable(E_RBFalse);
    column->RCDSetIndex(E_RBTrue);
    EXPECT_EQ("a int  not null  primary key ", definition(column));
    column->RCDSetUnique(E_RBTrue);
    const CZelAtom five(5);
    column->RCDSetDefault(&five);
    EXPECT_EQ("a int  not null  unique  default 5", definition(column));
    const Column text = columnOf(E_RDTText, nullptr, 20);
    const CZelAtom quoted("it's");
    text->RCDSetDefault(&quoted);
    EXPECT_EQ("a text  default \"it's\"", definition(text));
    Column named = std::make_unique<CZelColDef>();
    named->RCDSetNamedTypeName("part");
    const Column list = columnOf(E_RDTList, columnOf(E_RDTObject, std::move(named)));
    EXPECT_EQ("a list  type object type part", definition(list));
    EXPECT_EQ("list type object type part", taken(list->RCDTypeText()));
    const CZelErrorCapture reports;
    EXPECT_EQ("<null>", definition(columnOf(E_RDTList, std::make_unique<CZelColDef>())));
    EXPECT_EQ(E_RCNull, reports.LastCode());
}

TEST(ColDefTest, ACopyIsDeep) {
    Column original = columnOf(E_RDTList, columnOf(E_RDTText, nullptr, 3));
    const CZelAtom nine = listOf({CZelAtom("x")});
    original->RCDSetDefault(&nine);
    original->RCDSetNullable(E_RBFalse);
    original->RCDSetUnique(E_RBTrue);
    CZelColDef copy(*original);
    const std::string definition = taken(original->RCDOQLDefinition());
    original.reset();
    EXPECT_EQ(definition, taken(copy.RCDOQLDefinition()));
    EXPECT_EQ(3, copy.RCDDefined()->RCDMaxLen());
    EXPECT_EQ("list ['abc']", checked(copy, std::make_unique<CZelAtom>(listOf({CZelAtom("abcd")})).get()));
}

TEST(ColDefTest, ScalarMembersAreFoundByTheirPath) {
    const CZelAtom value =
        objectOf({{"b", CZelAtom(1)}, {"c", objectOf({{"d", CZelAtom("x")}, {"e", listOf({})}})}, {"f", CZelAtom()}});
    CZelVarBind object("a", &value);
    CZelColDef column;
    const CZelBagGuard<CZelVarBind> values(column.RCDValueBag(&object, "p", nullptr));
    ASSERT_EQ(2, values->RBLength());
    EXPECT_EQ("p.a.b=1", taken(static_cast<CZelVarBind *>(values->RBFirst()->RPData())->RVBVbAsString()));
    const CZelBagGuard<CZelAtom> paths(column.RCDIndexBag(&object, nullptr, nullptr));
    ASSERT_EQ(2, paths->RBLength());
    EXPECT_EQ("text a.c.d", shown(static_cast<CZelAtom *>(CZelBag::RBNext(paths->RBFirst())->RPData())));
}

// A column of lists in lists around an int, and a value of the same depth whose innermost element is a text.
void checkDeep(int levels, const char *verdict) {
    Column column = columnOf(E_RDTInt);
    CZelAtom value("1");
    for (int level = 0; level < levels; ++level) {
        column = columnOf(E_RDTList, std::move(column));
        auto *list = new CZelAtomVector(1);
        list->RAVAddToEnd(new CZelAtom(std::move(value)));
        value = CZelAtom(list);
    }
    const CZelColDef copy(*column);
    EXPECT_EQ(4U + static_cast<unsigned>(levels - 1) * 10 + 9, taken(copy.RCDTypeText()).size());
    EXPECT_EQ(verdict, checked(column, value).substr(0, 4)) << levels;
}

// What the thread sanitizer adds to each function takes stack of its own.
#ifdef __SANITIZE_THREAD__
constexpr std::size_t SMALL_STACK = 8 << 20;
#else
constexpr std::size_t SMALL_STACK = 1 << 20;
#endif

TEST(ColDefTest, DeepTypesNeedNoDeepStackAndTooDeepValuesDoNotFit) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, SMALL_STACK);
    pthread_t thread;
    const auto run = [](void *) -> void * {
        checkDeep(999, "list");
        checkDeep(1000, "no");
        checkDeep(100000, "no");
        return nullptr;
    };
    ASSERT_EQ(0, pthread_create(&thread, &attributes, run, nullptr));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace
