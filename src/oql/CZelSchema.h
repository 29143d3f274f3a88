// Schema texts: one or more files of OQL, parsed and sorted by kind of statement, so that a store manager can
// take all databases, then tables, indexes and inserts, whatever their order in the files. One thread.
#pragma once

#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelTreeList.h"
#include "foundations/base/ZelEnums.h"
#include "foundations/port/ZelExport.h"

class CZelReadOnlyFile;
class CZelStack;

class QUINTOR_API CZelSchema {
public:
    CZelSchema();
    CZelSchema(const CZelSchema &) = delete;
    CZelSchema &operator=(const CZelSchema &) = delete;
    ~CZelSchema();  // with every statement that nobody took

    // Appends a file to the text. 1, E_RCFileOpen (nothing added), E_RCFileRead. The domain's own variant of the
    // file is read when `domainSpecific`.
    int RSReadSchema(const char *file, bool domainSpecific);

    // Loads the next part of a large file, ending at a `;` before a line end. Gives the status of the last
    // read, 0 while there is more. `first` is 1 for the first part; `bytesRead` grows by what was read.
    int RSReadSchemaBlock(CZelReadOnlyFile &file, int first, unsigned int &bytesRead);

    int RSParseSchema();                        // E_RCNull without a text
    int RSParseSchemaString(const char *text);  // 1, or E_RCSyntax, reported with the file names

    // The statements of a kind, which pop in the order of the text; what is popped is the caller's.
    CZelStack *RSGetItems(__e_dbObj kind);
    long RSGetLastFileTimestamp() const { return m_lastFileTime; }

private:
    void sortStatements(CZelStack *statements);

    CZelString m_text;
    CZelTreeList m_items;  // kind -> CZelStack*, owned
    CZelAtomVector m_files;
    long m_lastFileTime = 0;
};
