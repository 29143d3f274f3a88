// A name of the form database.table.column with an optional chain of ->member and (selector) keys. Each
// part may be an expression, whose name is known only once its clause has been evaluated.
//
// Keys of the chain: a text atom is a member; an int of 0 or above an element; a negative int a selector of
// EZelListUpdateType.
#pragma once

#include "foundations/base/CZelPool.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelAtom;
class CZelBag;
class CZelDoubleList;
class CZelExpr;
class CZelString;

class QUINTOR_API CZelDbEntity {
public:
    ZEL_POOLED

    CZelDbEntity() = default;
    CZelDbEntity(char *database, char *table, char *column);                    // take over the texts
    CZelDbEntity(const char *database, const char *table, const char *column);  // copies; null parts are absent
    CZelDbEntity(CZelExpr *database, CZelExpr *table, CZelExpr *column);        // takes over
    explicit CZelDbEntity(const char *ident);  // split at the first "_"; empty without one
    CZelDbEntity(const CZelDbEntity &other);   // deep
    CZelDbEntity &operator=(const CZelDbEntity &) = delete;
    virtual ~CZelDbEntity();

    // Forgets the ident. RDEIdent builds it from the names as they then stand, also after each evaluation.
    void RDEMakeIdent();

    // The names; null for a part that is absent or not evaluated yet.
    const char *RDEDbName() const;
    const char *RDETblName() const;
    const char *RDEColName() const;
    const CZelAtom *RDEDbNameAtom() const;
    const CZelAtom *RDETblNameAtom() const;
    const CZelAtom *RDEColNameAtom() const;
    const char *RDEIdent();  // database_table, or null

    CZelExpr *RDEDbExpr() const { return m_database; }
    CZelExpr *RDETblExpr() const { return m_table; }
    CZelExpr *RDEColExpr() const { return m_column; }

    CZelDoubleList *RDEColSpec() const { return m_colSpec; }
    int RDESetColSpec(CZelDoubleList *colSpec);  // takes over, deletes the old one; 1
    int RDESetDbName(const CZelAtom &name);      // 1
    int RDESetTblName(const CZelAtom &name);
    int RDESetColName(const CZelAtom &name);

    // The expressions to evaluate: the parts that exist, then the keys. The bag is the entity's.
    CZelBag *RDEClauses();
    void RDEResetClauses();

    __boolean RDEEvalsInside() const;  // is the database, table or column a clause?

    // Does the chain end in a selector (-4 to -1)? *selector is set only then.
    __boolean RDEIsColSpecWild(EZelListUpdateType *selector) const;

    // The name as OQL writes it, new from malloc. Names that are no identifiers are quoted where the grammar
    // takes a quoted name: a database alone, or database and table. Null, reported, for any other such name
    // and for a key that is neither a member's name nor an index or selector.
    char *RDEPrint();
    bool RDEAppendPrint(CZelString &out) const;
    void RDEDump();

private:
    int replacePart(CZelExpr *&part, const CZelAtom &name);
    bool isIdentOf(const CZelAtom &database, const CZelAtom &table) const;
    bool isWrittenQuoted() const;
    bool appendParts(CZelString &out) const;

    CZelExpr *m_database = nullptr;
    CZelExpr *m_table = nullptr;
    CZelExpr *m_column = nullptr;
    char *m_ident = nullptr;
    CZelDoubleList *m_colSpec = nullptr;
    CZelBag *m_clauses = nullptr;  // built on first asking
};
