#include <cstdio>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelSmartRecord.h"
#include "foundations/base/CZelString.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDelete.h"
#include "oql/CZelExpr.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"
#include "store/CZelStore.h"
#include "storemgr/CZelStoreMgr.h"

namespace {

// What a change record asks for.
enum Action { INSERT = 0, UPDATE = 1, DELETE = 2, UNKNOWN = 3 };

CZelFilter *columnFilter(const char *column, const CZelAtom *value, EZelOper op) {
    const char *none = nullptr;
    auto *left = new CZelExpr(new CZelDbEntity(none, none, column));
    return new CZelFilter(new CZelBoolean(left, new CZelExpr(value), op));
}

CZelFilter *joined(CZelFilter *left, CZelFilter *right) {
    auto *both = new CZelFilter();
    both->RFAddLeft(left);
    both->RFAddRight(right);
    both->RFSetOp(E_RAAnd);
    return both;
}

// The action of a change record. A number that is no action is reported and is UNKNOWN.
Action actionOf(const CZelAtom &field) {
    const int number = field.RAInt();
    if (number >= INSERT && number <= DELETE)
        return static_cast<Action>(number);
    CZelString text;
    text.RSStrCat(number);
    ZEL_REPORT(E_RCBadType, text.RSString());
    return UNKNOWN;
}

}  // namespace

int CZelStoreMgr::RSMInsert(CZelRecord *record, CZelDbEntity *table, EZelStoreErrorStatus *status, __boolean takeLock) {
    const int code = m_Store->RSInsert(record, table, status, takeLock);
    return code == 1 || code == E_RCRefused ? code : ZEL_FAIL(code, "CZelStoreMgr::RSMInsert");
}

int CZelStoreMgr::RSMUpdate(CZelRecord *values, CZelFilter *filter, CZelDbEntity *table, EZelStoreErrorStatus *status) {
    const int code = m_Store->RSUpdate(values, filter, table, status);
    return code == 1 || code == E_RCNotFound ? code : ZEL_FAIL(code, "CZelStoreMgr::RSMUpdate");
}

int CZelStoreMgr::RSMUpdate(CZelRecord *values, const char *key, CZelDbEntity *table, EZelStoreErrorStatus *status) {
    CZelAtomVector keys(1);
    keys.RAVAddToEnd(new CZelAtom(key));
    return RSMUpdate(values, keys, table, status);
}

int CZelStoreMgr::RSMUpdate(CZelRecord *values, const CZelAtomVector &keys, CZelDbEntity *table,
                            EZelStoreErrorStatus *status) {
    CZelFilter *filter = RSMMakeSimpleFilter(keys, values, E_ROEqual);
    if (filter == nullptr)
        return 1;
    const int code = RSMUpdate(values, filter, table, status);
    delete filter;
    return code;
}

int CZelStoreMgr::RSMDelete(CZelRecord *record, const char *key, const CZelDbEntity *table,
                            EZelStoreErrorStatus *status) {
    CZelAtomVector keys(1);
    keys.RAVAddToEnd(new CZelAtom(key));
    return RSMDelete(record, keys, table, status);
}

int CZelStoreMgr::RSMDelete(CZelRecord *record, const CZelAtomVector &keys, const CZelDbEntity *table,
                            EZelStoreErrorStatus *status) {
    CZelFilter *filter = RSMMakeSimpleFilter(keys, record, E_ROEqual);
    if (filter == nullptr)
        return 1;
    CZelDelete statement(new CZelDbEntity(*table), filter);
    return RSMDoDelete(&statement, status);
}

int CZelStoreMgr::RSMNotifyRecordToDb(CZelSmartRecord *record, const CZelDbEntity *table, const char *actionField,
                                      const CZelAtomVector &keys, EZelStoreErrorStatus *status) {
    const CZelAtom *field = record->RRValueOf(actionField);
    if (field == nullptr || field->RAType() != E_RDTInt) {
        ZEL_REPORT(E_RCBadValue, actionField);
        return 1;
    }
    CZelDbEntity target(*table);
    switch (actionOf(*field)) {
        case INSERT:
            return insertAndRelease(record, target, status);
        case UPDATE:
            return updateOrInsert(record, target, keys, status);
        case DELETE: {
            const int code = RSMDelete(record, keys, table, status);
            record->RSRDeleteUser();
            return code;
        }
        case UNKNOWN:
            break;
    }
    ZEL_REPORT(E_RCBadValue, "Undefined action field -> NOP");
    return 1;
}

// The table has made itself a user of the row it took, so giving up the caller's hold passes it on; a row that
// was refused dies here.
int CZelStoreMgr::insertAndRelease(CZelSmartRecord *record, CZelDbEntity &table, EZelStoreErrorStatus *status) {
    const int code = RSMInsert(record, &table, status, E_RBTrue);
    record->RSRDeleteUser();
    return code;
}

int CZelStoreMgr::updateOrInsert(CZelSmartRecord *record, CZelDbEntity &table, const CZelAtomVector &keys,
                                 EZelStoreErrorStatus *status) {
    EZelStoreErrorStatus outcome = E_RSEOk;
    const int code = RSMUpdate(record, keys, &table, &outcome);
    if (outcome == E_RSENoMatch)
        return insertAndRelease(record, table, status);
    if (status != nullptr)
        *status = outcome;
    record->RSRDeleteUser();
    return code;
}

CZelFilter *CZelStoreMgr::RSMMakeSimpleFilter(const char *column, const CZelAtom &value, EZelOper op) {
    return columnFilter(column, &value, op);
}

CZelFilter *CZelStoreMgr::RSMMakeSimpleFilter(const char *column, CZelRecord *record, EZelOper op) {
    const CZelAtom name(column);
    const CZelVarBind *binding = record->RRValuePairOf(&name);
    if (binding != nullptr)
        return columnFilter(column, binding->RVBValue(), op);
    if (__Zeltronix_Debug_Level > 0)
        std::printf("RMMakeSimpleFilter %s not found in record\n", column);
    return nullptr;
}

// The first two columns stand side by side under an And; each further one goes on the left of a new And over
// what is there.
CZelFilter *CZelStoreMgr::RSMMakeSimpleFilter(const CZelAtomVector &columns, CZelRecord *record, EZelOper op) {
    if (columns.RAVSize() == 0)
        return new CZelFilter();
    CZelFilter *all = nullptr;
    int count = 0;
    for (unsigned int i = 0; i < columns.RAVSize(); ++i) {
        const char *name = columns.RAVGetValue(i)->RAString();
        CZelFilter *one = name != nullptr ? RSMMakeSimpleFilter(name, record, op) : nullptr;
        if (one == nullptr)
            continue;
        ++count;
        if (all == nullptr)
            all = one;
        else
            all = count == 2 ? joined(all, one) : joined(one, all);
    }
    return all;
}
