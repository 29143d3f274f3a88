// Turns a text of one or more OQL statements into statement objects.
//
// The parser owns its results until they are taken or popped. It may be used again: each parse adds to the
// results. One thread at a time.
#pragma once

#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelStack;

class QUINTOR_API CZelOQLParser {
public:
    CZelOQLParser();
    CZelOQLParser(const CZelOQLParser &) = delete;
    CZelOQLParser &operator=(const CZelOQLParser &) = delete;
    ~CZelOQLParser();

    // Parses `text`, which must stay as it is for the call. 1 and the statements on the results stack, the
    // last one on top. A syntax error is reported (E_RCSyntax) with the line; the statements that were complete
    // before it move to the failed-parse stack, replacing what an earlier failure left there, and the result
    // is E_RCSyntax when `strict` is E_RBTrue, else 1.
    int ROPParse(const char *text, __boolean strict);

    // The same on a file's contents. E_RCNull for a null path, an unreadable file and one with a NUL byte,
    // E_RCOpenFailed when it can't be opened; all reported.
    int ROPParseFromFile(const char *path, __boolean strict);

    void ROPPurge();                                     // deletes every statement on the results stack
    CZelStack *ROPResults() const { return m_results; }  // the parser's; what a caller pops is the caller's
    CZelStack *ROPTakeResults();                         // the caller's; a new empty one takes its place
    CZelStack *ROPParseFailRetObjects() const { return m_failed; }
    CZelStack *ROPTakeParseFailRetObjects();

    bool ROPHasClauses() const { return m_hasClauses; }  // did a parse come to an eval(...)?

    // Where the last failed parse stopped: 1-based line and column (bytes) of the token that no rule accepts.
    // 0 when the last parse succeeded.
    int ROPErrorLine() const { return m_errorLine; }
    int ROPErrorColumn() const { return m_errorColumn; }

protected:
    void ROPDeleteStackObjects(CZelStack *statements);  // pops and deletes everything

private:
    void keepFailedResults();

    CZelStack *m_results;
    CZelStack *m_failed = nullptr;
    int m_errorLine = 0;
    int m_errorColumn = 0;
    bool m_hasClauses = false;
};
