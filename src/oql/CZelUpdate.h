// update.
#pragma once

#include "oql/CZelDbObject.h"

class CZelAtom;
class CZelDbEntity;
class CZelFilter;
class CZelRecord;

class QUINTOR_API CZelUpdate : public CZelDbObject {
public:
    CZelUpdate();
    CZelUpdate(CZelDbEntity *target, CZelBag *changes, CZelFilter *filter);  // takes all over
    CZelUpdate(const CZelUpdate &) = delete;
    CZelUpdate &operator=(const CZelUpdate &) = delete;
    ~CZelUpdate() override;

    int RDODestroy() override;
    int RDOInitialise(CZelStore *store) override;
    CZelBag *RDOCompilables() override;
    char *RDOAsString() override;

    CZelDbEntity *RUTarget() const { return m_target; }
    CZelFilter *RUFilter() const { return m_filter; }
    CZelBag *RUChanges() const { return m_changes; }  // of CZelAssign
    void RUSetTarget(CZelDbEntity *target);           // takes over
    void RUSetTarget(const char *database, const char *table, const char *column);

    // Adds column = value; reports E_RCBadArgument when there is no target yet.
    void RUAddAssignment(const char *column, const CZelAtom *value);
    // The filter becomes column = value. A null column reports E_RCBadArgument and leaves none.
    void RUSetFilter(const char *column, const CZelAtom *value);

    // The value assigned to a column; *found says whether there is such an assignment.
    const CZelAtom *RUFindColAssignment(const char *column, __boolean *found) const;
    // Would the update change anything in the record?
    bool RUWillChangeRecord(CZelRecord *record) const;
    void RUResetClauses();

private:
    CZelDbEntity *m_target = nullptr;
    CZelBag *m_changes = nullptr;
    CZelFilter *m_filter = nullptr;
    CZelBag *m_compilables = nullptr;  // elements not owned
};
