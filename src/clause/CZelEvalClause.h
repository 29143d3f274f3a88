// An `eval(type,'text')`: the target type and the clause's text, kept until the command compiler evaluates it.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/port/ZelExport.h"

class CZelBag;
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

    // Evaluates the clause in the compiler's context: a new binding with a list value, or null.
    CZelVarBind *RECEvaluateClause(CZelCmdCmplr &compiler);
    void RECCompileClause();  // parses the text once

private:
    char *m_text;
    CZelColDef *m_type;
};
