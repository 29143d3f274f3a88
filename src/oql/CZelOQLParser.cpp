#include "oql/CZelOQLParser.h"

#include <cstring>

#include "foundations/base/CZelReadOnlyFile.h"
#include "foundations/base/CZelStack.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLScanner.h"
#include "oql/CZelStatementActionsImpl.h"
#include "oql/ZelOQL.tab.h"
#include "oql/ZelSyntaxErrorImpl.h"

namespace {

int fail(int code, const char *what, const char *path) {
    CZelString text("CZelOQLParser::ROPParseFromFile: ");
    text.RSStrCat(what);
    text.RSStrCat(path);
    return ZEL_FAIL(code, text.RSString());
}

}  // namespace

CZelOQLParser::CZelOQLParser() : m_results(new CZelStack(-1)) {}

CZelOQLParser::~CZelOQLParser() {
    ROPDeleteStackObjects(m_results);
    delete m_results;
    ROPDeleteStackObjects(m_failed);
    delete m_failed;
}

int CZelOQLParser::ROPParse(const char *text, __boolean strict) {
    if (text == nullptr)
        return ZEL_FAIL(E_RCNull, "CZelOQLParser::ROPParse: no text");
    const std::size_t length = std::strlen(text);
    if (length >= CZelOQLScanner::MAX_LENGTH)
        return ZEL_FAIL(E_RCUnsupported, "CZelOQLParser::ROPParse: a text of 2 GiB or more");
    m_errorLine = m_errorColumn = 0;
    CZelOQLScanner scanner(text, static_cast<unsigned int>(length));
    ZelOQLFlexLexer::ResetLineCount();
    CZelStatementActions actions(scanner, *m_results);
    const bool isWhole = ZelOQLparse(scanner, actions) == 0;
    m_hasClauses = m_hasClauses || actions.HasClauses();
    if (isWhole)
        return 1;
    ZelReportSyntaxError(scanner.Line(), {text, length});
    scanner.TokenPlace(&m_errorLine, &m_errorColumn);
    keepFailedResults();
    return strict == E_RBTrue ? E_RCSyntax : 1;
}

int CZelOQLParser::ROPParseFromFile(const char *path, __boolean strict) {
    if (path == nullptr)
        return fail(E_RCNull, "no path", "");
    CZelReadOnlyFile file(path);
    if (file.ROFCheckAccess() != E_FROk || file.ROFOpen() != E_FROk)
        return fail(E_RCOpenFailed, "can't open ", path);
    std::size_t length = 0;
    const CZelMallocText text(file.ROFReadAll(&length));
    if (text == nullptr)
        return fail(E_RCNull, "can't read ", path);
    if (std::strlen(text.get()) != length)
        return fail(E_RCNull, "not a text, there is a NUL byte in ", path);
    return ROPParse(text.get(), strict);
}

void CZelOQLParser::ROPPurge() {
    ROPDeleteStackObjects(m_results);
}

CZelStack *CZelOQLParser::ROPTakeResults() {
    CZelStack *results = m_results;
    m_results = new CZelStack(-1);
    return results;
}

CZelStack *CZelOQLParser::ROPTakeParseFailRetObjects() {
    CZelStack *failed = m_failed;
    m_failed = nullptr;
    return failed;
}

void CZelOQLParser::ROPDeleteStackObjects(CZelStack *statements) {
    while (statements != nullptr && statements->RSLength() > 0)
        delete static_cast<CZelDbObject *>(statements->RSPop());
}

void CZelOQLParser::keepFailedResults() {
    ROPDeleteStackObjects(m_failed);
    delete m_failed;
    m_failed = ROPTakeResults();
}
