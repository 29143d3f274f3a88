#include "clause/CZelEvalClause.h"

#include <cstdlib>
#include <memory>

#include "clause/CZelClauseParser.h"
#include "clause/CZelClauseValue.h"
#include "clause/CZelCompiledClause.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelAtomParser.h"
#include "store/CZelColDef.h"

namespace {

CZelClauseParser &clauseParser() {
    static CZelClauseParser parser;
    return parser;
}

CZelAtomParser &atomParser() {
    static CZelAtomParser parser;
    return parser;
}

const CZelCompiledClause *nodeOf(const CZelPointer *entry) {
    return static_cast<const CZelCompiledClause *>(entry->RPData());
}

CZelBag *copyOf(const CZelBag *nodes) {
    if (nodes == nullptr)
        return nullptr;
    auto *copies = new CZelBag();
    for (const CZelPointer *entry = nodes->RBFirst(); entry != nullptr; entry = CZelBag::RBNext(entry))
        copies->RBAdd(static_cast<void *>(nodeOf(entry)->RCCClone()));
    return copies;
}

CZelVarBind *namelessList(CZelAtom &&list) {
    static const CZelAtom noName = CZelAtom::RAName("");
    return new CZelVarBind(noName, std::move(list));
}

}  // namespace

CZelEvalClause::CZelEvalClause(CZelColDef *type, char *text) : m_text(text), m_type(type) {}

CZelEvalClause::CZelEvalClause(const CZelEvalClause &other)
    : m_text(ZelStrDup(other.m_text)),
      m_type(other.m_type != nullptr ? new CZelColDef(*other.m_type) : nullptr),
      m_compiled(copyOf(other.m_compiled.load(std::memory_order_acquire))) {}

CZelEvalClause::~CZelEvalClause() {
    const CZelBagGuard<CZelCompiledClause> nodes(m_compiled.load(std::memory_order_acquire));
    std::free(m_text);
    delete m_type;
}

char *CZelEvalClause::RECPrint() const {
    CZelString text("eval(");
    text.RSStrCat(CZelMallocText(m_type != nullptr ? m_type->RCDTypeText() : nullptr).get());
    text.RSStrCat(',');
    text.RSStrCatQuoted(m_text != nullptr ? m_text : "");
    text.RSStrCat(')');
    return text.RSTakeString();
}

CZelVarBind *CZelEvalClause::RECEvaluateClause(CZelCmdCmplr &compiler) {
    CZelClauseValue value;
    return RECEvaluateValue(compiler, value) ? resultOf(value) : nullptr;
}

bool CZelEvalClause::RECEvaluateValue(CZelCmdCmplr &compiler, CZelClauseValue &value) {
    if (m_compiled.load(std::memory_order_acquire) == nullptr)
        RECCompileClause();
    return RECEvaluateCompiled(compiler, value);
}

void CZelEvalClause::RECCompileClause() {
    if (m_text == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelEvalClause::RECCompileClause");
    else if (m_compiled.load(std::memory_order_acquire) == nullptr)
        std::call_once(m_parsed, [this] { parse(); });
}

void CZelEvalClause::parse() {
    auto *nodes = new CZelBag();
    const int status = clauseParser().RCPParse(m_text, nodes);
    if (status != 1)
        ZEL_REPORT(status, "CZelEvalClause::RECCompileClause");
    m_compiled.store(nodes, std::memory_order_release);
}

bool CZelEvalClause::RECEvaluateCompiled(CZelCmdCmplr &compiler, CZelClauseValue &value) const {
    const CZelBag *nodes = m_compiled.load(std::memory_order_acquire);
    const CZelPointer *entry = nodes != nullptr ? nodes->RBFirst() : nullptr;
    value.Clear();
    if (entry == nullptr)
        return false;
    for (; entry != nullptr; entry = CZelBag::RBNext(entry)) {
        nodeOf(entry)->RCCEvaluate(compiler, value);
        if (value.HasValue() && !value.IsWhole() && !isOfType(*value.Get()))
            convert(value);
    }
    return true;
}

CZelVarBind *CZelEvalClause::resultOf(CZelClauseValue &value) {
    if (value.IsWhole())
        return namelessList(value.Take());
    auto *list = new CZelAtomVector(value.HasValue() ? 1 : 0);
    if (value.HasValue())
        list->RAVAddToEnd(value.TakeAtom());
    return namelessList(CZelAtom(list));
}

// The elements of a list have types too.
bool CZelEvalClause::isOfType(const CZelAtom &atom) const {
    const EZelDataType type = m_type != nullptr ? m_type->RCDDataType() : atom.RAType();
    return type == atom.RAType() && type != E_RDTList;
}

void CZelEvalClause::convert(CZelClauseValue &value) const {
    const EZelDataType type = m_type != nullptr ? m_type->RCDDataType() : value.Get()->RAType();
    if (type == E_RDTList)
        return convertToList(value.Own());
    const int status = value.Own().RACoerce(type);
    if (status != 1)
        reportClause(status, "Could not convert value for clause:");
}

// A text is read as a literal first.
void CZelEvalClause::convertToList(CZelAtom &atom) const {
    if (atom.RAType() == E_RDTText) {
        const std::unique_ptr<CZelAtom> parsed(atomParser().RAPParse(atom.RAString(), nullptr));
        if (parsed == nullptr)
            reportClause(E_RCNull, "Could not parse atom for clause:");
        atom = parsed != nullptr ? std::move(*parsed) : CZelAtom();
    }
    const int status = atomParser().RAPCoerceList(m_type, &atom);
    if (status != 1 && !atom.RAIsUndefined())
        reportClause(status, "Could not convert list for clause:");
}

void CZelEvalClause::reportClause(int code, const char *text) const {
    CZelString report(text);
    report.RSStrCat(m_text);
    ZEL_REPORT(code, report.RSString());
}
