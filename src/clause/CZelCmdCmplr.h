// The command compiler: turns OQL text, or statements parsed earlier, into two work lists (actions and
// queries), gathers the clause expressions that they hold, and answers what a clause refers to: fields of
// records (&name), constants ($NAME), lists, the topology graph.
//
// Short-lived and cheap: one per use, on the stack, never shared between threads. Only the table of static
// constants is shared; it is loaded once under a lock and read-only afterwards.
//
// An atom that an evaluation returns is new and the caller's, or null: missing data is no failure.
#pragma once

#include <memory>
#include <optional>

#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelRecordVector.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelAtomVector;
class CZelClauseValue;
class CZelDbObject;
class CZelEvalClause;
class CZelExpr;
class CZelFieldName;
class CZelFilter;
class CZelFilterParser;
class CZelGraph;
class CZelRecord;
class CZelStore;
class CZelString;
class CZelTreeList;
class CZelVarBind;

// A constant with an int value.
struct SZelCmdCmpConstsRecord {
    const char *name;
    int value;
};

// A constant that names a bus subject.
struct SZelSubjectRecord {
    const char *name;
    const char *subject;
};

class QUINTOR_API CZelCmdCmplr {
public:
    CZelCmdCmplr();  // loads the static constants if no one has
    CZelCmdCmplr(const CZelCmdCmplr &) = delete;
    CZelCmdCmplr &operator=(const CZelCmdCmplr &) = delete;

    // Answers a constant: the static ones first, then this compiler's own. 1 and *value (not the caller's), or
    // E_RCNotFound and null.
    virtual int RCCGetNumFromConst(const char *name, const CZelAtom **value);

    virtual ~CZelCmdCmplr();

    // --- constants (CZelCmdCmplr_constants.cpp) ---

    // Loads the built-in tables and the caller's rows, once per process: a process with rows of its own calls
    // this before it makes its first compiler.
    static void RCCInitStaticConstStore(unsigned int count, SZelCmdCmpConstsRecord *rows);
    // Empties the tables; no compiler may be in use. They load afresh with the next compiler.
    static void RCCDestroyStaticConstStore();
    int RCCAddToConstStore(CZelVarBind *constant);       // takes over on 1; a duplicate name is reported
    int RCCRemoveFromConstStore(CZelVarBind *constant);  // by its name; the stored binding is not deleted
    __boolean RCCDoesConstExist(CZelAtom *name);         // of this compiler's own

    // --- context ---

    void RCCSetActiveSet(CZelBag *activeSet) { m_ActiveSet = activeSet; }
    void RCCSetGraph(CZelGraph *graph) { m_Graph = graph; }
    void RCCSetCurrentRec(CZelRecord *record, int position);  // records stay the caller's
    void RCCAppendCurrentRec(CZelRecord *record);             // what stood last becomes the enclosing record
    void RCCSetRecordVector(CZelRecordVector *records);       // copies the vector; null for none
    const CZelRecordVector *RCCRecords() const {              // null: none was set
        return m_RecordVector.has_value() ? &*m_RecordVector : nullptr;
    }
    void RCCSetEntityName(const CZelAtom *name, unsigned int level);
    void RCCPurgeVectors();
    void RCCReInitialise();  // ready for a new use; the constants stay

    // --- compiling (CZelCmdCmplr.cpp) ---

    // Parses the text and adds its statements to `bag` in text order. False when a database or table is among
    // them, which pass to the store and so can't be run twice. A text that does not parse is reported.
    static bool RCCPrecompileOQL(const char *text, CZelBag &bag);
    // The only statement of a bag, when it can be run as it stands, without a compiler: it has nothing to be evaluated
    // and does not pass to the store. Null otherwise.
    static CZelDbObject *RCCReadyStatement(const CZelBag &statements);
    int RCCCompileOQL(const char *text);  // 1
    // `own` false: the statements stay the caller's.
    void RCCCompileOQL(CZelBag *statements, bool own);
    void RCCAddToSymbols(CZelDbObject *statement);
    void RCCAddToQueries(CZelDbObject *statement);
    void RCCSetNewClauseBag(CZelBag &clauses);
    void RCCAppendClauseBag(CZelBag *clauses);  // deletes the bag
    void RCCCompileFilter(CZelFilter *filter);
    int RCCCompileClauses();  // evaluates every clause gathered, once; 1
    int RCCCompileExpr(CZelExpr *expression);
    int RCCInitClauses();                            // forgets all results, ready for the next record; 1
    int RCCCompileClausesInRec(CZelRecord *record);  // evaluates fields whose text is a clause, in place; 1
    void RCCPurge(__boolean all);  // empties the lists; deletes all statements but those that a store has adopted
    CZelBag *RCCActions() { return &m_Actions; }
    CZelBag *RCCQueries() { return &m_Queries; }

    // --- running and writing (CZelCmdCmplr_execute.cpp) ---

    // Carries the actions out on a local store, in order; failures are reported; 1.
    int RCCExecuteOQL(CZelStore *store, __boolean flag);
    char *RCCCompileOQLToString(const char *text);  // the statements as text, from malloc; null for none
    char *RCCCompileOQLToString(CZelBag *statements);

    // --- evaluating (CZelCmdCmplr_evaluate.cpp, CZelCmdCmplr_dollar.cpp, CZelCmdCmplr_this.cpp) ---

    CZelAtom *RCCEvaluateClause(CZelEvalClause *clause);
    CZelAtom *RCCGetEvalValue(CZelBag *activeSet, CZelRecordVector *records, CZelEvalClause *clause);
    CZelAtom *RCCEvaluateDollar(const char *name);
    CZelAtom *RCCEvaluateAmpersand(const char *name);
    CZelAtom *RCCEvaluateAmpersand(CZelAtom *name);
    CZelAtom *RCCEvaluateAmpersand(const char *name, const CZelAtomVector &path);
    CZelAtom *RCCEvaluateAmpersand(CZelAtom *name, const CZelAtomVector &path);
    CZelAtom *RCCEvaluateThis(int a, int b, const char *name, int c, const CZelAtomVector &path);
    CZelAtom *RCCEvaluateRecordNames();
    CZelAtom *RCCEvaluateRecordValues();
    CZelAtom *RCCEvaluateCat(const CZelAtomVector &parts);
    CZelAtom *RCCEvaluateAppend(const char *list, const char *item);
    CZelAtom *RCCEvaluateAppendUnique(const char *list, const char *item);
    CZelAtom *RCCEvaluateDelete(const char *list, const char *item);
    CZelAtom *RCCEvaluateLength(const char *name);
    CZelAtom *RCCEvaluateLength(CZelAtom *name);

    // The same without a copy, for nodes that were made once and are evaluated often. What they give is the record's
    // or the constant's; null for nothing.
    const CZelAtom *RCCField(const CZelFieldName &name) const;
    void RCCEvaluateDollar(const char *name, CZelClauseValue &value);
    static void RCCCatPart(CZelString &text, const CZelAtom *part);  // one part of a concatenation
    // A new list, the caller's.
    CZelAtomVector *RCCAppended(const CZelFieldName &list, const CZelFieldName &item, bool unique) const;
    CZelAtomVector *RCCDeleted(const CZelFieldName &list, const CZelFieldName &item) const;

    // Which environment variables $NAME may read; null (the default) allows all. Set before threads start.
    using EnvironmentFilter = bool (*)(const char *name);
    static void RCCSetEnvironmentFilter(EnvironmentFilter filter);

protected:
    int RCCGetNestLevel(const char *name, const char **rest);  // leading & signs; *rest is the name behind them
    CZelAtom *RCCEvaluateRecord(EVBType kind);
    CZelAtom *RCCEvaluateDollarTime(const char *name);
    CZelAtom *RCCEvaluateDollarCpuTime(const char *name);
    CZelAtom *RCCEvaluateDollarUserCpuTime(const char *name);
    CZelAtom *RCCEvaluateDollarSystemCpuTime(const char *name);
    CZelAtom *RCCEvaluateDollarFTime(const char *name);
    CZelAtom *EvaluateDollarMemUsage(const char *name);
    CZelAtom *EvaluateDollarDomainName(const char *name);
    CZelAtom *EvaluateDollarSoftwareVersion(const char *name);

private:
    static void RCCAddToStaticConstStore(unsigned int count, const SZelCmdCmpConstsRecord *rows);
    static void RCCAddToStaticConstStore(unsigned int count, const SZelSubjectRecord *rows);
    void RCCDeleteContentsOfConstStore();
    CZelRecordVector &recordsForWriting();
    char *RCCCompileOQLToString();
    CZelRecord *recordAt(int level) const;
    CZelAtom *evaluateBuiltIn(const char *name);
    const char *followIndirections(const char *name);
    void sortStatement(CZelDbObject *statement, bool own, bool mayHoldClauses);
    void addTo(CZelBag &list, CZelDbObject *statement, bool mayHoldClauses);
    void addClauses(const CZelBag *expressions);
    void listForDeletion(CZelDbObject *statement);
    void compileText(CZelVarBind &field, CZelFilterParser &parser);
    void takeLastClause(CZelVarBind &field);

    CZelBag *m_ActiveSet = nullptr;                  // not owned
    std::optional<CZelRecordVector> m_RecordVector;  // the last is the current record; records not owned
    CZelGraph *m_Graph = nullptr;                    // not owned
    CZelAtomVector *m_EntityNames = nullptr;         // one per nest level
    std::unique_ptr<CZelTreeList> m_ConstStore;      // name -> CZelVarBind*, owned; null until there is one
    CZelBag m_Actions;
    CZelBag m_Queries;
    CZelBag m_Clauses;     // CZelExpr* of the statements
    CZelBag m_Statements;  // to be disposed of at a purge
};
