#include "oql/CZelSchema.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "foundations/base/CZelReadOnlyFile.h"
#include "foundations/base/CZelStack.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/ZelDebug.h"
#include "oql/CZelDbObject.h"
#include "oql/CZelOQLParser.h"

namespace {

constexpr unsigned int BLOCK_SIZE = 65534;

CZelStack *stackOf(const CZelListable *node) {
    return static_cast<CZelStack *>(static_cast<const CZelPointer *>(node)->RPData());
}

long modificationTime(CZelReadOnlyFile &file) {
    struct stat details = {};
    return file.ROFGetFileDetails(details) == 0 ? static_cast<long>(details.st_mtime) : 0;
}

// The whole file as a text, new from malloc. Null when it can't be read, and, reported, when a NUL would hide
// what stands behind it.
char *readText(CZelReadOnlyFile &file) {
    std::size_t length = 0;
    char *contents = file.ROFReadAll(&length);
    if (contents == nullptr || std::strlen(contents) == length)
        return contents;
    CZelString text("CZelSchema::RSReadSchema: not a text, there is a NUL byte in ");
    text.RSStrCat(file.ROFFileName());
    ZEL_REPORT(E_RCBadValue, text.RSString());
    std::free(contents);
    return nullptr;
}

// Reads byte by byte up to a ; with a newline right behind it. 0 when that border was reached, else the status
// of the read that failed.
int readToBorder(CZelReadOnlyFile &file, CZelString &block, unsigned int &bytesRead) {
    char last = block.RSStringLength() == 0 ? '\0' : block.RSString()[block.RSStringLength() - 1];
    for (;;) {
        char byte[2] = {};
        const int status = file.ROFRead(byte, 1);
        if (status != 0)
            return status;
        ++bytesRead;
        block.RSStrCat(byte[0]);
        if (last == ';' && byte[0] == '\n')
            return 0;
        last = byte[0];
    }
}

}  // namespace

CZelSchema::CZelSchema() : m_items(E_RBFalse), m_files(0) {}

CZelSchema::~CZelSchema() {
    CZelDoubleList *stacks = m_items.RTLIterator();
    for (CZelListable *node = stacks->RDLHead(); node != nullptr; node = stacks->RDLGetNext(node)) {
        while (void *statement = stackOf(node)->RSPop())
            delete static_cast<CZelDbObject *>(statement);
        delete stackOf(node);
    }
}

int CZelSchema::RSReadSchema(const char *path, bool domainSpecific) {
    if (path == nullptr)
        return E_RCFileOpen;
    CZelReadOnlyFile file(path, false);
    if ((domainSpecific ? file.ROFOpenDomainSpecific() : file.ROFOpen()) != 0)
        return E_RCFileOpen;
    if (__Zeltronix_Debug_Level >= 1)
        std::printf("CZelSchema::RSReadSchema: Reading from file: %s\n", file.ROFFileName());
    char *contents = readText(file);
    if (contents != nullptr) {
        m_files.RAVAddToEnd(new CZelAtom(static_cast<const char *>(file.ROFFileName())));
        m_lastFileTime = modificationTime(file);
        m_text.RSStrCat(contents);
        std::free(contents);
    }
    if (file.ROFClose() != 0)
        ZEL_REPORT(E_RCFileClose, path);
    return contents != nullptr ? 1 : E_RCFileRead;
}

int CZelSchema::RSReadSchemaBlock(CZelReadOnlyFile &file, int first, unsigned int &bytesRead) {
    CZelString block;
    if (first != 1)
        block.RSStrCat(&m_text);
    m_text.RSSetToNull();
    const std::unique_ptr<char[]> buffer(new char[BLOCK_SIZE + 1]());
    int status = file.ROFRead(buffer.get(), BLOCK_SIZE);
    if (status != 0) {  // the end of the file: what is left of it came with the failing read
        m_text.RSStrCat(buffer.get());
        bytesRead += static_cast<unsigned int>(std::strlen(buffer.get()));
        return status;
    }
    bytesRead += BLOCK_SIZE;
    block.RSStrCat(buffer.get());
    status = readToBorder(file, block, bytesRead);
    if (status == 0)
        m_text = block;
    return status;
}

int CZelSchema::RSParseSchema() {
    return m_text.RSStringLength() == 0 ? E_RCNull : RSParseSchemaString(m_text.RSString());
}

int CZelSchema::RSParseSchemaString(const char *text) {
    CZelOQLParser parser;
    const int status = parser.ROPParse(text, E_RBTrue);
    if (status == 1) {
        sortStatements(parser.ROPResults());
        return 1;
    }
    CZelString files("The Schema was read from the following files:\n");
    for (unsigned int i = 0; i < m_files.RAVSize(); ++i) {
        files.RSStrCat('\t');
        files.RSStrCat(m_files.RAVGetValue(i));
        files.RSNewLine();
    }
    ZEL_REPORT(E_RCSyntax, files.RSString());
    return status;
}

// The last statement pops first and so ends up lowest: each kind then pops in the order of the text.
void CZelSchema::sortStatements(CZelStack *statements) {
    while (void *popped = statements->RSPop()) {
        const int status = RSGetItems(static_cast<CZelDbObject *>(popped)->RDOType())->RSPush(popped);
        if (status != 1)
            ZEL_REPORT(status, "CZelSchema::RSParseSchemaString");
    }
}

CZelStack *CZelSchema::RSGetItems(__e_dbObj kind) {
    const CZelPointer *entry = m_items.RTLGet(static_cast<int>(kind));
    if (entry != nullptr)
        return static_cast<CZelStack *>(entry->RPData());
    auto *items = new CZelStack(-1);
    const int status = m_items.RTLAdd(static_cast<int>(kind), new CZelPointer(items));
    if (status != 1)
        ZEL_REPORT(status, "This should never ever happen");
    return items;
}
