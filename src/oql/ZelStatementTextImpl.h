// Pieces that the texts of statements share.
#pragma once

class CZelAtomVector;
class CZelBag;
class CZelDbEntity;
class CZelDoubleList;
class CZelFilter;
class CZelQuery;
class CZelString;

// The entity's text; false when it has none.
bool ZelAppendEntity(CZelString &text, CZelDbEntity *entity);

// Names with a separator between them.
void ZelAppendNames(CZelString &text, const CZelAtomVector &names, const char *separator);

// A bag of CZelDbEntity, each behind `before`, with a separator between them.
void ZelAppendEntities(CZelString &text, CZelBag &entities, const char *before, const char *separator);

// A bag of CZelExpr with a separator between them; false when one has no text.
bool ZelAppendExpressions(CZelString &text, CZelBag &expressions, const char *separator);

// A condition as it is written, or with clauses as their values.
void ZelAppendFilter(CZelString &text, CZelFilter &filter, bool resolved);

// Of a select: sources; where (with clauses as their values when `resolved`), groups, having and order; order
// alone; and all from "select" on, false (reported) when a part is missing.
void ZelAppendSource(CZelString &text, CZelBag &source);
void ZelAppendConditions(CZelString &text, const CZelQuery &query, bool resolved);
void ZelAppendOrders(CZelString &text, CZelBag *orders);
bool ZelAppendQuery(CZelString &text, const CZelQuery &query);
