// Evaluates clauses against a record and constants, and gives values as texts with their type in front.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "clause/CZelCmdCmplr.h"
#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelAtomParser.h"
#include "store/CZelColDef.h"

class ClauseFixture : public ::testing::Test {
protected:
    // Two records: `current`, and `outer` around it.
    ClauseFixture() {
        compiler.RCCSetCurrentRec(&outer, 0);
        compiler.RCCAppendCurrentRec(&current);
    }

    static void set(CZelRecord &record, const char *name, const CZelAtom &value) {
        const CZelAtom label(name);
        record.RRAddOrSetValue(&label, &value);
    }
    // A value by the syntax of literals.
    static void setLiteral(CZelRecord &record, const char *name, const char *literal) {
        const std::unique_ptr<CZelAtom> value(CZelAtomParser().RAPParse(literal, nullptr));
        ASSERT_NE(nullptr, value) << literal;
        set(record, name, *value);
    }

    static std::unique_ptr<CZelEvalClause> clause(const std::string &text, CZelColDef *type = nullptr) {
        return std::make_unique<CZelEvalClause>(type, ZelStrDup(text.c_str()));
    }
    static CZelColDef *type(EZelDataType of, CZelColDef *element = nullptr) {
        return new CZelColDef(nullptr, of, element, -1);
    }

    static std::string describe(const CZelAtom *atom) {
        if (atom == nullptr)
            return "null";
        return std::string(CZelAtom::RAGetDataTypeString(atom->RAType())) + " " +
               CZelMallocText(atom->RAStrRep()).get();
    }

    // The elements of the result, "none" for an empty list, "null" for no result at all.
    std::string evaluate(CZelEvalClause &what) {
        const std::unique_ptr<CZelVarBind> result(what.RECEvaluateClause(compiler));
        if (result == nullptr)
            return "null";
        const CZelAtomVector *list = result->RVBValue()->RAList();
        std::string text = list->RAVSize() == 0 ? "none" : "";
        for (unsigned int i = 0; i < list->RAVSize(); ++i)
            text += (i == 0 ? "" : ", ") + describe(list->RAVGetValue(i));
        return text;
    }
    // A clause whose type takes every value as it is, or one of a type.
    std::string evaluate(const std::string &text) { return evaluate(*clause(text)); }
    std::string evaluate(const std::string &text, CZelColDef *as) { return evaluate(*clause(text, as)); }

    // Without the type, for texts and numbers whose type is clear.
    std::string plain(const std::string &text) {
        const std::string value = evaluate(text);
        return value.substr(value.find(' ') + 1);
    }

    CZelErrorCapture reports;
    CZelRecord outer;
    CZelRecord current;
    CZelCmdCmplr compiler;
};
