#include "programs/oql/CZelStatementStore.h"

#include <algorithm>
#include <cctype>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/port/CZelErrorCapture.h"
#include "oql/CZelAtomParser.h"
#include "programs/oql/CZelResult.h"

namespace {

std::unique_ptr<CZelAtom> valueOf(const std::string &literal) {
    return std::unique_ptr<CZelAtom>(CZelAtomParser().RAPParse(literal.c_str(), nullptr));
}

// A name that $ can stand in front of.
bool isConstantName(const std::string &name) {
    const auto isWord = [](unsigned char c) { return c < 0x80 && (std::isalnum(c) != 0 || c == '_'); };
    return name.size() >= 2 && std::isalpha(static_cast<unsigned char>(name[0])) != 0 &&
           std::all_of(name.begin(), name.end(), isWord);
}

}  // namespace

void CZelStatementStore::Run(const char *text, CZelResult &result) {
    CZelErrorCapture reports;
    CZelBag *rows = nullptr;
    RSMProcessOQL(m_compiler, text, &rows, &result.m_status, m_record.get(), E_RBTrue);
    result.TakeRows(rows);
    result.m_reports = reports.Reports();
}

bool CZelStatementStore::SetRecord(const std::string &literal) {
    const std::unique_ptr<CZelAtom> value = valueOf(literal);
    const CZelVBList *fields = value != nullptr ? std::as_const(*value).RAObject() : nullptr;
    if (fields != nullptr)
        m_record = std::make_unique<CZelRecord>(fields);
    return fields != nullptr;
}

bool CZelStatementStore::SetConstant(const std::string &name, const std::string &literal, std::string *problem) {
    const std::unique_ptr<CZelAtom> value = valueOf(literal);
    if (!isConstantName(name))
        *problem = "a constant's name has two letters, digits or _ at least, a letter first";
    else if (value == nullptr)
        *problem = "a constant's value is a literal, as 1, 'text' or [1,2]";
    else if (isSystemConstant(name))
        *problem = "$" + name + " is a constant of the system";
    if (!problem->empty())
        return false;
    CZelVarBind *&constant = m_constants[name];
    if (constant != nullptr) {
        constant->RVBSetValue(value.get());
    } else {
        constant = new CZelVarBind(name.c_str(), value.get());
        m_compiler.RCCAddToConstStore(constant);
    }
    return true;
}

// Those win over all others of the name.
bool CZelStatementStore::isSystemConstant(const std::string &name) {
    const CZelAtom *value = nullptr;
    return m_compiler.RCCGetNumFromConst(name.c_str(), &value) == 1 && m_constants.count(name) == 0;
}

int CZelStatementStore::RSMDoExit(CZelExit *statement, EZelStoreErrorStatus *status, CZelQryInfo *request) {
    m_shutdown = true;
    return CZelStoreMgr::RSMDoExit(statement, status, request);
}
