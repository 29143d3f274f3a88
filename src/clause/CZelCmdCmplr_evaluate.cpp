#include "clause/CZelClauseValue.h"
#include "clause/CZelCmdCmplr.h"
#include "clause/CZelEvalClause.h"
#include "clause/CZelFieldName.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelRecordVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelError.h"

namespace {

CZelAtom *copyOf(const CZelAtom *atom) {
    return atom != nullptr ? new CZelAtom(*atom) : nullptr;
}

// The text of a computed name. A null pointer is reported; another type than text is no name.
const char *nameText(const CZelAtom *name) {
    if (name == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr: no name to evaluate");
    return name != nullptr ? name->RAString() : nullptr;
}

bool isEqual(const CZelAtom *element, const CZelAtom &item) {
    return element != nullptr && element->RAEvalRelop(E_ROEqual, &item) == E_RBTrue;
}

// The position of the first element equal to the item, or the size.
unsigned int positionOf(const CZelAtomVector &list, const CZelAtom &item) {
    unsigned int i = 0;
    while (i < list.RAVSize() && !isEqual(list.RAVGetValue(i), item))
        ++i;
    return i;
}

CZelAtom *listAtom(CZelAtomVector *list) {
    return list != nullptr ? new CZelAtom(list) : nullptr;
}

}  // namespace

CZelAtom *CZelCmdCmplr::RCCEvaluateClause(CZelEvalClause *clause) {
    if (clause == nullptr)
        return nullptr;
    CZelClauseValue value;
    clause->RECEvaluateValue(*this, value);
    return value.IsWhole() ? copyOf(value.Head()) : value.TakeAtom();
}

CZelAtom *CZelCmdCmplr::RCCGetEvalValue(CZelBag *activeSet, CZelRecordVector *records, CZelEvalClause *clause) {
    RCCSetActiveSet(activeSet);
    RCCSetRecordVector(records);
    return RCCEvaluateClause(clause);
}

int CZelCmdCmplr::RCCGetNestLevel(const char *name, const char **rest) {
    int level = 0;
    while (name[level] == '&')
        ++level;
    *rest = name + level;
    return level;
}

CZelRecord *CZelCmdCmplr::recordAt(int level) const {
    return m_RecordVector.has_value() ? m_RecordVector->RRVGetValueFromEnd(level) : nullptr;
}

const CZelAtom *CZelCmdCmplr::RCCField(const CZelFieldName &name) const {
    return name.ValueIn(RCCRecords());
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAmpersand(const char *name) {
    return copyOf(RCCField(CZelFieldName(name)));
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAmpersand(CZelAtom *name) {
    return RCCEvaluateAmpersand(nameText(name));
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAmpersand(const char *name, const CZelAtomVector &path) {
    if (name == nullptr)
        return nullptr;
    const char *field = nullptr;
    const CZelRecord *record = recordAt(RCCGetNestLevel(name, &field));
    return record != nullptr ? copyOf(record->RRValueOf(field, path)) : nullptr;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAmpersand(CZelAtom *name, const CZelAtomVector &path) {
    return RCCEvaluateAmpersand(nameText(name), path);
}

CZelAtom *CZelCmdCmplr::RCCEvaluateRecord(EVBType kind) {
    const CZelRecord *record = recordAt(0);
    if (record == nullptr)
        return nullptr;
    const CZelVBList *values = record->RRVbIterator();
    auto *list = new CZelAtomVector(static_cast<unsigned int>(values->RVBLLength()));
    for (const CZelVarBind *pair = values->RVBLHead(); pair != nullptr; pair = values->RVBLGetNext(pair)) {
        const CZelAtom *atom = kind == E_VBName ? &pair->RVBName() : pair->RVBValue();
        list->RAVAddToEnd(atom != nullptr ? new CZelAtom(*atom) : new CZelAtom());
    }
    return new CZelAtom(list);
}

CZelAtom *CZelCmdCmplr::RCCEvaluateRecordNames() {
    CZelAtom *names = RCCEvaluateRecord(E_VBName);
    if (names == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr::RCCEvaluateRecordNames");
    return names;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateRecordValues() {
    CZelAtom *values = RCCEvaluateRecord(E_VBValue);
    if (values == nullptr)
        ZEL_REPORT(E_RCBadArgument, "CZelCmdCmplr::RCCEvaluateRecordValues");
    return values;
}

void CZelCmdCmplr::RCCCatPart(CZelString &text, const CZelAtom *part) {
    if (CZelAtom::RAIsNull(part))
        text.RSStrCat("<NULL>");
    else
        text.RSStrCat(part);
}

CZelAtom *CZelCmdCmplr::RCCEvaluateCat(const CZelAtomVector &parts) {
    if (parts.RAVSize() == 0)
        return nullptr;
    CZelString text("");
    for (unsigned int i = 0; i < parts.RAVSize(); ++i)
        RCCCatPart(text, parts.RAVGetValue(i));
    return text.RSStringAsAtom();
}

CZelAtomVector *CZelCmdCmplr::RCCAppended(const CZelFieldName &list, const CZelFieldName &item, bool unique) const {
    if (!list.IsName() || recordAt(list.Level()) == nullptr)
        return nullptr;
    const CZelAtom *old = RCCField(list);
    const CZelAtom *added = RCCField(item);
    if (added == nullptr || (old != nullptr && old->RAList() == nullptr))
        return nullptr;
    auto *result = old != nullptr ? new CZelAtomVector(*old->RAList()) : new CZelAtomVector(1);
    if (!unique || positionOf(*result, *added) == result->RAVSize())
        result->RAVAddToEnd(new CZelAtom(*added));
    return result;
}

CZelAtomVector *CZelCmdCmplr::RCCDeleted(const CZelFieldName &list, const CZelFieldName &item) const {
    const CZelAtom *old = RCCField(list);
    const CZelAtom *removed = RCCField(item);
    if (old == nullptr || removed == nullptr || old->RAList() == nullptr)
        return nullptr;
    auto *result = new CZelAtomVector(*old->RAList());
    const unsigned int position = positionOf(*result, *removed);
    if (position < result->RAVSize())
        delete result->RAVRemoveAtom(position);
    return result;
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAppend(const char *list, const char *item) {
    return listAtom(RCCAppended(CZelFieldName(list), CZelFieldName(item), false));
}

CZelAtom *CZelCmdCmplr::RCCEvaluateAppendUnique(const char *list, const char *item) {
    return listAtom(RCCAppended(CZelFieldName(list), CZelFieldName(item), true));
}

CZelAtom *CZelCmdCmplr::RCCEvaluateDelete(const char *list, const char *item) {
    return listAtom(RCCDeleted(CZelFieldName(list), CZelFieldName(item)));
}

CZelAtom *CZelCmdCmplr::RCCEvaluateLength(const char *name) {
    const CZelAtom *value = RCCField(CZelFieldName(name));
    if (value == nullptr)
        return new CZelAtom(0);
    if (value->RAList() != nullptr)
        return new CZelAtom(static_cast<int>(value->RAList()->RAVSize()));
    if (value->RAObject() != nullptr)
        return new CZelAtom(value->RAObject()->RVBLLength());
    ZEL_REPORT(E_RCBadValue, "Return val is not a list type.");
    return new CZelAtom(0);
}

CZelAtom *CZelCmdCmplr::RCCEvaluateLength(CZelAtom *name) {
    const char *text = nameText(name);
    return text != nullptr ? RCCEvaluateLength(text) : nullptr;
}
