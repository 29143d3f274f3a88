// Pieces that the texts of statements share.
#pragma once

class CZelAtom;
class CZelAtomVector;
class CZelBag;
class CZelDbEntity;
class CZelFilter;
class CZelQuery;
class CZelString;

// Each appends its piece. False: it can't be written, which has been reported; the text is then worthless.

// Does a name stand in a text as it is? A letter, then letters, digits, _ and &.
bool ZelIsName(const CZelAtom &name);

// A name that is no identifier would be read as something else, so it is refused.
bool ZelAppendName(CZelString &text, const CZelAtom &name);
bool ZelAppendNames(CZelString &text, const CZelAtomVector &names, const char *separator);

// An entity that names something; null is reported.
bool ZelAppendEntity(CZelString &text, const CZelDbEntity *entity);

// A bag of CZelDbEntity, each behind `before`, with a separator between them.
bool ZelAppendEntities(CZelString &text, const CZelBag &entities, const char *before, const char *separator);

// A bag of CZelExpr with a separator between them.
bool ZelAppendExpressions(CZelString &text, const CZelBag &expressions, const char *separator);

// A condition as it is written, or with clauses as their values.
bool ZelAppendFilter(CZelString &text, CZelFilter &filter, bool resolved);

// Of a select: sources; where (with clauses as their values when `resolved`), groups, having and order; and all
// from "select" on.
bool ZelAppendSource(CZelString &text, const CZelBag &source);
bool ZelAppendConditions(CZelString &text, const CZelQuery &query, bool resolved);
bool ZelAppendQuery(CZelString &text, const CZelQuery &query);
