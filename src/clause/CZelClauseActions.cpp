#include "clause/CZelClauseActionsImpl.h"
#include "clause/CZelCompiledAmpersand.h"
#include "clause/CZelCompiledAppend.h"
#include "clause/CZelCompiledCat.h"
#include "clause/CZelCompiledDelete.h"
#include "clause/CZelCompiledDollar.h"
#include "clause/CZelCompiledIpToLong.h"
#include "clause/CZelCompiledLength.h"
#include "clause/CZelCompiledLiteral.h"
#include "clause/CZelCompiledLongToIp.h"
#include "clause/CZelCompiledLookup.h"
#include "clause/CZelCompiledRecord.h"
#include "clause/CZelCompiledRegExpMatch.h"
#include "clause/CZelCompiledThis.h"
#include "clause/CZelCompiledTimestamp.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/ZelMalloc.h"

void CZelClauseActions::AddResult(CZelCompiledClause *clause) {
    m_out.RBAdd(static_cast<void *>(clause));
}

CZelBag *CZelClauseActions::AddTo(CZelBag *bag, CZelCompiledClause *clause) {
    if (bag == nullptr)
        bag = new CZelBag();
    bag->RBAdd(static_cast<void *>(clause));
    return bag;
}

CZelCompiledClause *CZelClauseActions::Integer(int number) {
    return new CZelCompiledLiteral(new CZelAtom(number));
}

CZelCompiledClause *CZelClauseActions::Real(float number) {
    return new CZelCompiledLiteral(new CZelAtom(number));
}

CZelCompiledClause *CZelClauseActions::Text(SZelSlice text) const {
    return new CZelCompiledLiteral(new CZelAtom(m_scanner.SliceAtom(text)));
}

CZelCompiledClause *CZelClauseActions::Name(SZelSlice name) const {
    return new CZelCompiledLiteral(new CZelAtom(m_scanner.SliceName(name)));
}

CZelCompiledClause *CZelClauseActions::Dollar(SZelSlice name) const {
    return new CZelCompiledDollar(m_scanner.SliceCopy(name));
}

CZelCompiledClause *CZelClauseActions::Reference(CZelCompiledClause *name, CZelBag *path) {
    return new CZelCompiledAmpersand(name, path);
}

CZelCompiledClause *CZelClauseActions::Append(SZelSlice list, SZelSlice item, __boolean unique) const {
    return new CZelCompiledAppend(m_scanner.SliceCopy(list), m_scanner.SliceCopy(item), unique);
}

CZelCompiledClause *CZelClauseActions::Delete(SZelSlice list, SZelSlice item) const {
    return new CZelCompiledDelete(m_scanner.SliceCopy(list), m_scanner.SliceCopy(item));
}

CZelCompiledClause *CZelClauseActions::Cat(CZelBag *parts) {
    return new CZelCompiledCat(parts);
}

CZelCompiledClause *CZelClauseActions::Length(CZelCompiledClause *clause) {
    return new CZelCompiledLength(clause);
}

CZelCompiledClause *CZelClauseActions::Record(__boolean values) {
    return new CZelCompiledRecord(values);
}

CZelCompiledClause *CZelClauseActions::Timestamp(CZelCompiledClause *clause) {
    return new CZelCompiledTimestamp(clause, nullptr);
}

CZelCompiledClause *CZelClauseActions::Timestamp(CZelCompiledClause *clause, SZelSlice format) const {
    return new CZelCompiledTimestamp(clause, CZelMallocText(m_scanner.SliceCopy(format)).get());
}

CZelCompiledClause *CZelClauseActions::RegExpMatch(CZelCompiledClause *clause, SZelSlice pattern) const {
    return new CZelCompiledRegExpMatch(clause, CZelMallocText(m_scanner.SliceCopy(pattern)).get());
}

CZelCompiledClause *CZelClauseActions::IpToLong(CZelCompiledClause *clause) {
    return new CZelCompiledIpToLong(clause);
}

CZelCompiledClause *CZelClauseActions::LongToIp(CZelCompiledClause *clause) {
    return new CZelCompiledLongToIp(clause);
}

CZelCompiledClause *CZelClauseActions::Lookup(CZelCompiledClause *key, CZelCompiledClause *name,
                                              CZelCompiledClause *fallback) {
    return new CZelCompiledLookup(key, name, fallback);
}

CZelCompiledClause *CZelClauseActions::This(CZelCompiledClause *first, CZelCompiledClause *second,
                                            CZelCompiledClause *third, SZelSlice name, CZelBag *path) const {
    return new CZelCompiledThis(first, second, third, m_scanner.SliceCopy(name), path);
}

CZelCompiledClause *CZelClauseActions::Compute(CZelCompiledClause *left, EZelClauseOpr op, CZelCompiledClause *right) {
    return new CZelCompiledExpr(left, op, right);
}

CZelCompiledClause *CZelClauseActions::Negate(CZelCompiledClause *operand) {
    return new CZelCompiledExpr(operand);
}
