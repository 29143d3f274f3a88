#include "clause/CZelCmdCmplr.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelExpr.h"
#include "oql/CZelFilterParser.h"
#include "oql/CZelOQLParser.h"
#include "store/CZelDatabase.h"
#include "store/CZelFilter.h"
#include "store/CZelTable.h"

namespace {

constexpr const char *NO_VALUE = "No Value";

CZelDbObject *statementOf(const CZelPointer *node) {
    return static_cast<CZelDbObject *>(node->RPData());
}

bool passesToStore(const CZelDbObject &statement) {
    return statement.RDOType() == E_DODatabase || statement.RDOType() == E_DOTable;
}

bool isQuery(__e_dbObj kind) {
    return kind == E_DONone || kind == E_DOQuery || kind == E_DOExit || kind == E_DOShow;
}

bool isAction(__e_dbObj kind) {
    return (kind >= E_DODatabase && kind <= E_DOUpdate) || (kind >= E_DOQryInsert && kind <= E_DODropIndex);
}

// Most expressions of a statement are constants, which have nothing to be evaluated.
bool mayHoldClause(const CZelPointer *node) {
    const EZelExprType type = static_cast<const CZelExpr *>(node->RPData())->REType();
    return type == E_RETClause || type == E_RETEntity;
}

// The first that may hold a clause, from a node on; null at the end.
CZelPointer *clauseFrom(CZelPointer *node) {
    while (node != nullptr && !mayHoldClause(node))
        node = CZelBag::RBNext(node);
    return node;
}

// The parser's results have the last statement on top; this empties them into `bag` in the order of the text.
// True when all of them can be run again.
bool drainInTextOrder(CZelStack &results, CZelBag &bag) {
    bool repeatable = true;
    for (int i = 0; i < results.RSLength(); ++i) {
        auto *statement = static_cast<CZelDbObject *>(results.RSPeek(i));
        repeatable = repeatable && !passesToStore(*statement);
        bag.RBAdd(static_cast<void *>(statement));
    }
    while (results.RSLength() > 0)
        results.RSPop();
    return repeatable;
}

// As RCCPrecompileOQL.
bool parse(CZelOQLParser &parser, const char *text, CZelBag &bag) {
    const int status = parser.ROPParse(text, E_RBFalse);
    if (status == 1)
        return drainInTextOrder(*parser.ROPResults(), bag);
    ZEL_REPORT(status, "CZelCmdCmplr::RCCPrecompileOQL");
    return true;
}

}  // namespace

CZelCmdCmplr::CZelCmdCmplr() {
    RCCInitStaticConstStore(0, nullptr);
}

CZelCmdCmplr::~CZelCmdCmplr() {
    RCCPurge(E_RBFalse);
    RCCDeleteContentsOfConstStore();
    delete m_EntityNames;
}

CZelRecordVector &CZelCmdCmplr::recordsForWriting() {
    return m_RecordVector.has_value() ? *m_RecordVector : m_RecordVector.emplace();
}

void CZelCmdCmplr::RCCSetCurrentRec(CZelRecord *record, int position) {
    recordsForWriting().RRVSetValue(position, record);
}

void CZelCmdCmplr::RCCAppendCurrentRec(CZelRecord *record) {
    recordsForWriting().RRVAddToEnd(record);
}

void CZelCmdCmplr::RCCSetRecordVector(CZelRecordVector *records) {
    if (records != nullptr && records == RCCRecords())
        return;
    m_RecordVector.reset();
    if (records != nullptr)
        m_RecordVector.emplace(*records);
}

void CZelCmdCmplr::RCCSetEntityName(const CZelAtom *name, unsigned int level) {
    if (m_EntityNames == nullptr)
        m_EntityNames = new CZelAtomVector(1);
    while (m_EntityNames->RAVSize() < level)
        m_EntityNames->RAVAddToEnd(new CZelAtom());
    m_EntityNames->RAVAddToEnd(name != nullptr ? new CZelAtom(*name) : new CZelAtom());
}

void CZelCmdCmplr::RCCPurgeVectors() {
    if (m_RecordVector.has_value())
        m_RecordVector->RRVReset();
    if (m_EntityNames == nullptr)
        return;
    delete m_EntityNames;
    m_EntityNames = new CZelAtomVector(1);
}

void CZelCmdCmplr::RCCReInitialise() {
    RCCPurge(E_RBFalse);
    RCCPurgeVectors();
    m_Graph = nullptr;
}

bool CZelCmdCmplr::RCCPrecompileOQL(const char *text, CZelBag &bag) {
    CZelOQLParser parser;
    return parse(parser, text, bag);
}

CZelDbObject *CZelCmdCmplr::RCCReadyStatement(const CZelBag &statements) {
    CZelDbObject *statement = statements.RBLength() == 1 ? statementOf(statements.RBFirst()) : nullptr;
    if (statement == nullptr || passesToStore(*statement))
        return nullptr;
    const CZelBag *expressions = statement->RDOCompilables();
    return expressions == nullptr || clauseFrom(expressions->RBFirst()) == nullptr ? statement : nullptr;
}

int CZelCmdCmplr::RCCCompileOQL(const char *text) {
    CZelOQLParser parser;
    CZelBag statements;
    parse(parser, text, statements);
    for (CZelPointer *node = statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        sortStatement(statementOf(node), true, parser.ROPHasClauses());
    return 1;
}

void CZelCmdCmplr::RCCCompileOQL(CZelBag *statements, bool own) {
    if (statements == nullptr)
        return;
    for (CZelPointer *node = statements->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        sortStatement(statementOf(node), own, true);
}

void CZelCmdCmplr::sortStatement(CZelDbObject *statement, bool own, bool mayHoldClauses) {
    if (statement == nullptr) {
        ZEL_REPORT(E_RCNull, nullptr);
        return;
    }
    if (passesToStore(*statement) && !own)
        ZEL_REPORT(E_RCBadValue, "CZelCmdCmplr::RCCCompileOQL");
    if (isQuery(statement->RDOType()))
        addTo(m_Queries, statement, mayHoldClauses);
    else if (isAction(statement->RDOType()))
        addTo(m_Actions, statement, mayHoldClauses);
    else if (own)
        return delete statement;
    if (own || passesToStore(*statement))
        listForDeletion(statement);
}

// A database or table leaves the list when the store adopts it.
void CZelCmdCmplr::listForDeletion(CZelDbObject *statement) {
    auto *entry = new CZelPointer(statement);
    m_Statements.RBAdd(entry);
    statement->RDOSetListing(entry);
}

void CZelCmdCmplr::RCCAddToSymbols(CZelDbObject *statement) {
    addTo(m_Actions, statement, true);
}

void CZelCmdCmplr::RCCAddToQueries(CZelDbObject *statement) {
    addTo(m_Queries, statement, true);
}

void CZelCmdCmplr::addTo(CZelBag &list, CZelDbObject *statement, bool mayHoldClauses) {
    list.RBAdd(static_cast<void *>(statement));
    if (mayHoldClauses)
        addClauses(statement->RDOCompilables());
}

void CZelCmdCmplr::addClauses(const CZelBag *expressions) {
    CZelPointer *node = expressions != nullptr ? clauseFrom(expressions->RBFirst()) : nullptr;
    for (; node != nullptr; node = clauseFrom(CZelBag::RBNext(node)))
        m_Clauses.RBAdd(node->RPData());
}

void CZelCmdCmplr::RCCSetNewClauseBag(CZelBag &clauses) {
    m_Clauses.RBEmptyBag();
    m_Clauses.RBAppend(&clauses);
    clauses.RBEmptyBag();
}

void CZelCmdCmplr::RCCAppendClauseBag(CZelBag *clauses) {
    m_Clauses.RBAppend(clauses);
    delete clauses;
}

void CZelCmdCmplr::RCCCompileFilter(CZelFilter *filter) {
    CZelBag found;
    if (filter->RFEvalClauses(&found) != nullptr)
        m_Clauses.RBAppend(&found);
}

int CZelCmdCmplr::RCCCompileClauses() {
    for (CZelPointer *node = m_Clauses.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        RCCCompileExpr(static_cast<CZelExpr *>(node->RPData()));
    return 1;
}

int CZelCmdCmplr::RCCCompileExpr(CZelExpr *expression) {
    if (expression->REType() == E_RETClause) {
        CZelEvalClause *clause = expression->REClauseVal();
        expression->RESetClauseVal(clause != nullptr ? clause->RECEvaluateClause(*this) : nullptr);
        return 1;
    }
    CZelBag *inner = expression->REType() == E_RETEntity ? expression->REEntityVal()->RDEClauses() : nullptr;
    if (inner == nullptr)
        return 1;
    for (CZelPointer *node = inner->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        RCCCompileExpr(static_cast<CZelExpr *>(node->RPData()));
    return 1;
}

int CZelCmdCmplr::RCCInitClauses() {
    for (CZelPointer *node = m_Clauses.RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        auto *expression = static_cast<CZelExpr *>(node->RPData());
        if (expression->REType() == E_RETClause)
            expression->RESetClauseVal(nullptr);
    }
    return 1;
}

// Members of objects come in the place of their object. Objects may lie in objects to any depth, so those that are
// not done yet wait in a list.
int CZelCmdCmplr::RCCCompileClausesInRec(CZelRecord *record) {
    if (record == nullptr)
        return 1;
    CZelFilterParser parser;
    std::vector<CZelVarBind *> waiting{record->RRVbIterator()->RVBLHead()};
    while (!waiting.empty()) {
        CZelVarBind *field = waiting.back();
        waiting.pop_back();
        if (field == nullptr)
            continue;
        waiting.push_back(record->RRVbIterator()->RVBLGetNext(field));
        CZelAtom *value = field->RVBValue();
        if (value == nullptr)
            ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr::RCCCompileClausesInRec");
        else if (value->RAObject() != nullptr && value->RAObject()->RVBLLength() > 0)
            waiting.push_back(value->RAObject()->RVBLHead());
        else
            compileText(*field, parser);
    }
    return 1;
}

void CZelCmdCmplr::compileText(CZelVarBind &field, CZelFilterParser &parser) {
    CZelString text;
    text.RSStrCat(&field.RVBName());
    text.RSStrCat("=");
    text.RSStrCat(field.RVBValue());
    if (std::strstr(text.RSString(), "eval") == nullptr)
        return;
    CZelFilter *filter = parser.RFPParse(text.RSString(), nullptr);
    if (filter != nullptr) {
        const int former = m_Clauses.RBLength();
        RCCCompileFilter(filter);
        RCCCompileClauses();
        if (m_Clauses.RBLength() > former)
            takeLastClause(field);
        delete filter;
    }
    RCCPurge(E_RBFalse);
}

// The field takes the value of the last clause found. A text that only holds the word "eval" by chance has
// none, and its field stays as it is.
void CZelCmdCmplr::takeLastClause(CZelVarBind &field) {
    const auto *node = static_cast<const CZelPointer *>(m_Clauses.RBIterator()->RDLTail());
    const CZelExpr *last = node != nullptr ? static_cast<const CZelExpr *>(node->RPData()) : nullptr;
    if (last == nullptr || last->REType() != E_RETClause)
        return;
    const CZelAtom noValue(NO_VALUE);
    const CZelAtom *value = last->REHeadAtomVal();
    field.RVBSetValue(value != nullptr ? value : &noValue);
}

void CZelCmdCmplr::RCCPurge(__boolean /*all*/) {
    m_Actions.RBEmptyBag();
    m_Clauses.RBEmptyBag();
    m_Queries.RBEmptyBag();
    for (CZelPointer *node = m_Statements.RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        delete statementOf(node);
    m_Statements.RBEmptyBag();
}
