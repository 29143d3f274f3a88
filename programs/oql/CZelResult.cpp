#include "programs/oql/CZelResult.h"

#include <algorithm>
#include <utility>

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/ZelCodes.h"
#include "oql/CZelDbEntity.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelExpr.h"
#include "oql/CZelOQLDumper.h"
#include "oql/CZelOQLParser.h"
#include "oql/CZelQuery.h"
#include "programs/oql/ZelEach.h"
#include "programs/oql/ZelValueText.h"
#include "store/CZelColDef.h"
#include "store/CZelDatabase.h"
#include "store/CZelStore.h"
#include "store/CZelTable.h"

namespace {

// The name that a selected column has in a row: its own, or that of its last key.
std::string selectedName(const CZelDbEntity &entity) {
    const CZelDoubleList *keys = entity.RDEColSpec();
    if (keys == nullptr || keys->RDLLength() == 0)
        return entity.RDEColName() == nullptr ? std::string() : entity.RDEColName();
    return ZelPlainText(static_cast<const CZelExpr *>(keys->RDLTail())->REAtomVal());
}

// Parses again, which can't fail: the text has just been run.
std::unique_ptr<CZelDbObject> statementOf(const char *text) {
    CZelErrorCapture quiet;
    CZelOQLParser parser;
    parser.ROPParse(text, E_RBFalse);
    CZelStack *statements = parser.ROPResults();
    return std::unique_ptr<CZelDbObject>(static_cast<CZelDbObject *>(statements->RSPop()));
}

CZelTable *onlySource(const CZelQuery &query, const CZelStore &store) {
    if (query.RQSource() == nullptr || query.RQSource()->RBLength() != 1)
        return nullptr;
    CZelErrorCapture quiet;
    return store.RSTableNamed(static_cast<CZelDbEntity *>(query.RQSource()->RBFirst()->RPData()));
}

std::unique_ptr<CZelRecord> rowOf(const std::string &column, const CZelAtom &value) {
    auto row = std::make_unique<CZelRecord>();
    row->RRAddValue(new CZelVarBind(column.c_str(), &value));
    return row;
}

}  // namespace

void CZelResult::TakeRows(CZelBag *records) {
    CZelBagGuard<CZelRecord> bag(records);
    m_givesRows = records != nullptr;
    if (!m_givesRows)
        return;
    m_rows.reserve(static_cast<std::size_t>(bag->RBLength()));
    for (CZelPointer *node = bag->RBFirst(); node != nullptr; node = CZelBag::RBNext(node))
        m_rows.emplace_back(static_cast<CZelRecord *>(node->RPData()));
    bag->RBEmptyBag();
}

void CZelResult::AddRow(std::unique_ptr<CZelRecord> row) {
    m_givesRows = true;
    m_rows.push_back(std::move(row));
}

bool CZelResult::IsWarning(int code) {
    return code == E_RCOptionOverridden;
}

bool CZelResult::HasFailed() const {
    if (m_status != E_RSEOk && m_status != E_RSENoMatch)
        return true;
    return std::any_of(m_reports.begin(), m_reports.end(),
                       [](const SZelReport &report) { return !IsWarning(report.m_code); });
}

void CZelResult::FindColumns(const char *statement, const CZelStore &store) {
    std::unique_ptr<CZelDbObject> parsed = statement == nullptr ? nullptr : statementOf(statement);
    __e_dbObj kind = parsed == nullptr ? E_DONone : parsed->RDOType();
    if (kind == E_DOShow)
        spreadShow();
    if (kind == E_DOQuery)
        findQueryColumns(static_cast<CZelQuery &>(*parsed), store);
    else
        addRowColumns();
}

void CZelResult::findQueryColumns(const CZelQuery &query, const CZelStore &store) {
    if (query.RQSelection() != nullptr)
        addSelected(query);
    addRowColumns();
    if (query.RQSelection() == nullptr && query.RQCountStar() == E_RBFalse)
        addTableColumns(query, store);
}

void CZelResult::addSelected(const CZelQuery &query) {
    for (CZelPointer *node = query.RQSelection()->RBFirst(); node != nullptr; node = CZelBag::RBNext(node)) {
        const CZelExpr *selected = static_cast<CZelExpr *>(node->RPData());
        if (selected->REEntityVal() != nullptr)
            m_columns.push_back(selectedName(*selected->REEntityVal()));
    }
}

void CZelResult::addTableColumns(const CZelQuery &query, const CZelStore &store) {
    CZelTable *table = onlySource(query, store);
    if (table == nullptr)
        return;
    ZelEach<CZelColDef>(table->RTColumns()->RTLIterator(),
                        [this](const CZelColDef &column) { addColumn(column.RCDName()->RAString(), 1); });
}

void CZelResult::addRowColumns() {
    std::vector<std::string> names;
    for (const std::unique_ptr<CZelRecord> &row : m_rows) {
        if (isOfTheseColumns(*row))
            continue;
        names.clear();
        const CZelVBList *values = row->RRVbIterator();
        for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
            names.emplace_back(value->RVBName().RATextView());
            addColumn(names.back(), static_cast<int>(std::count(names.begin(), names.end(), names.back())));
        }
    }
}

bool CZelResult::isOfTheseColumns(const CZelRecord &row) const {
    const CZelVBList *values = row.RRVbIterator();
    if (static_cast<std::size_t>(values->RVBLLength()) != m_columns.size())
        return false;
    auto column = m_columns.begin();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        if (*column++ != value->RVBName().RATextView())
            return false;
    }
    return true;
}

// The column is there when the name already stands `occurrence` times.
void CZelResult::addColumn(const std::string &name, int occurrence) {
    if (std::count(m_columns.begin(), m_columns.end(), name) < occurrence)
        m_columns.push_back(name);
}

std::vector<const CZelAtom *> CZelResult::Cells(const CZelRecord &row) const {
    std::vector<const CZelAtom *> cells(m_columns.size(), nullptr);
    std::vector<bool> taken(m_columns.size(), false);
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            if (taken[i] || m_columns[i] != value->RVBName().RATextView())
                continue;
            cells[i] = value->RVBValue();
            taken[i] = true;
            break;
        }
    }
    return cells;
}

void CZelResult::spreadShow() {
    if (m_rows.empty())
        return;
    const CZelVarBind *first = m_rows[0]->RRVbIterator()->RVBLHead();
    if (m_rows.size() > 1 || first == nullptr || first->RVBNamed("database"))
        return spreadDump();
    std::unique_ptr<CZelRecord> shown = std::move(m_rows[0]);
    m_rows.clear();
    if (first->RVBNamed("databases") || first->RVBNamed("tables"))
        spreadNames(first->RVBNamed("tables") ? "table" : "database", *first->RVBValue());
    else
        spreadSchema(*first->RVBValue());
}

void CZelResult::spreadDump() {
    for (std::unique_ptr<CZelRecord> &row : m_rows) {
        CZelString text;
        text.RSStrCat(CZelMallocText(CZelOQLDumper::ExtractOQLString(*row)).get());
        text.RSSearchAndReplace("\r\n", "\n");
        row = rowOf("Oql", CZelAtom(text.RSTakeString()));
    }
}

void CZelResult::spreadNames(const std::string &column, const CZelAtom &names) {
    const CZelAtomVector *list = names.RAList();
    for (unsigned int i = 0; list != nullptr && i < list->RAVSize(); ++i)
        m_rows.push_back(rowOf(column, *list->RAVGetValue(i)));
    if (m_columns.empty())
        m_columns.push_back(column);
}

void CZelResult::spreadSchema(const CZelAtom &schema) {
    const CZelVBList *columns = schema.RAObject();
    if (columns == nullptr)
        return;
    for (const CZelVarBind *column = columns->RVBLHead(); column != nullptr; column = columns->RVBLGetNext(column)) {
        std::unique_ptr<CZelRecord> row = rowOf("Column", column->RVBName());
        const CZelVBList *traits = column->RVBValue()->RAObject();
        for (const CZelVarBind *trait = traits->RVBLHead(); trait != nullptr; trait = traits->RVBLGetNext(trait))
            row->RRAddValue(new CZelVarBind(*trait));
        m_rows.push_back(std::move(row));
    }
}
