// An `eval(type,'text')`: the target type and the clause's text, which the first evaluation parses into nodes. They
// are kept: a clause is parsed once in its life, and a copy of it copies its nodes.
//
// Threads: one at a time; a clause that threads share is parsed once all the same.
#pragma once

#include <atomic>
#include <mutex>

#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelClauseValue;
class CZelCmdCmplr;
class CZelColDef;
class CZelVarBind;

class QUINTOR_API CZelEvalClause {
public:
    ZEL_POOLED

    CZelEvalClause(CZelColDef *type, char *text);  // takes both over
    CZelEvalClause(const CZelEvalClause &other);   // deep
    CZelEvalClause &operator=(const CZelEvalClause &) = delete;
    virtual ~CZelEvalClause();

    const char *RECCompileable() const { return m_text; }
    char *RECCompileable() { return m_text; }
    CZelColDef *RECColDef() { return m_type; }
    const CZelColDef *RECColDef() const { return m_type; }

    char *RECPrint() const;  // the OQL form, "eval(list type int,'&x')", new from malloc

    // Evaluates the clause in the compiler's context: a new binding with an empty name, whose value is a list of one
    // element of the target type, of none when the clause has no value, or, for record_names and record_values, of
    // all. A value that can't be of the type is reported and stays as it is. Null when the text holds no expression.
    // Several expressions are all evaluated, the last one counts.
    CZelVarBind *RECEvaluateClause(CZelCmdCmplr &compiler);

    // The same without a binding, for a single value or a whole list; false where it would be null. The value may
    // refer to the record or to a constant.
    bool RECEvaluateValue(CZelCmdCmplr &compiler, CZelClauseValue &value);

    // Parses the text, once. A syntax error is reported; what was complete before it counts.
    void RECCompileClause();

private:
    void parse();
    bool RECEvaluateCompiled(CZelCmdCmplr &compiler, CZelClauseValue &value) const;
    static CZelVarBind *resultOf(CZelClauseValue &value);
    bool isOfType(const CZelAtom &atom) const;
    void convert(CZelClauseValue &value) const;
    void convertToList(CZelAtom &atom) const;
    void reportClause(int code, const char *text) const;

    char *m_text;
    CZelColDef *m_type;
    std::atomic<CZelBag *> m_compiled{nullptr};  // of CZelCompiledClause, owned; null until parsed
    std::once_flag m_parsed;
};
