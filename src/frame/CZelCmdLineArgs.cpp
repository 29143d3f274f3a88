#include "frame/CZelCmdLineArgs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelHashStore.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"
#include "foundations/port/CZelProcess.h"

namespace {

constexpr int LEAST_WIDTH = 15;
constexpr char OPTIONAL_BEGIN[] = "[ ";
constexpr char OPTIONAL_END[] = " ]";
constexpr int OPTIONAL_LENGTH = 4;

template <class Visit>
void forEachControl(const CZelDoubleList *controls, Visit visit) {
    for (CZelListable *item = controls->RDLHead(); item != nullptr; item = controls->RDLGetNext(item))
        visit(static_cast<CZelCLArg *>(item));
}

bool hasName(const CZelCLArg *control) {
    return control->RCLAGetName() != nullptr && *control->RCLAGetName() != '\0';
}

int nameLength(const CZelCLArg *control) {
    const int brackets = control->RCLAIsRequired() == E_RBTrue ? 0 : OPTIONAL_LENGTH;
    return static_cast<int>(std::strlen(control->RCLAGetName())) + brackets;
}

// A word that is no integer goes on as the text it is.
CZelAtom *intFrom(const char *word) {
    auto *atom = new CZelAtom(word);
    if (atom->RACoerce(E_RDTInt) == E_RCOk)
        return atom;
    CZelString text("Command line argument ");
    text.RSStrCat(word);
    text.RSStrCat(" is not of the required integer type.\n");
    ZEL_REPORT(E_RCMalformed, text.RSString());
    return atom;
}

CZelAtom *valueFrom(EZelDataType type, const char *word) {
    if (type == E_RDTInt)
        return intFrom(word);
    if (type == E_RDTText)
        return new CZelAtom(word);
    ZEL_REPORT(E_RCBadOptionType, nullptr);
    return nullptr;
}

bool areEqual(const CZelAtom *left, const CZelAtom *right) {
    if (left == nullptr || right == nullptr)
        return left == right;
    return left->RAEvalRelop(E_ROEqual, right) == E_RBTrue;
}

void reportOverridden(const char *name, const CZelAtom *first, const CZelAtom *second) {
    CZelString text("Duplicate parameters with differing values were passed in.  Value for ");
    text.RSStrCatQuoted(name);
    text.RSStrCat(" was ");
    text.RSStrCatQuoted(first);
    text.RSStrCat(" from the command line and ");
    text.RSStrCatQuoted(second);
    text.RSStrCat(" from the registry.  The command line value will take precedence.\n");
    ZEL_REPORT(E_RCOptionOverridden, text.RSString());
}

void reportContradiction(const char *name, const CZelAtom *first, const CZelAtom *second) {
    CZelString text("Duplicate parameters with differing values were passed in.  Failed when adding ");
    text.RSStrCatQuoted(name);
    text.RSStrCat(" with values ");
    text.RSStrCatQuoted(first);
    text.RSStrCat(" and ");
    text.RSStrCatQuoted(second);
    text.RSNewLine();
    ZEL_REPORT(E_RCBadOption, text.RSString());
}

}  // namespace

CZelCmdLineArgs::CZelCmdLineArgs(int argc, char **argv) {
    RCLAInit(argc, argv, nullptr, nullptr);
}

CZelCmdLineArgs::CZelCmdLineArgs(int argc, char **argv, const SZelCLArgRec *table, int count, const char *usageTail,
                                 CZelDoubleList *controls) {
    RCLAInit(argc, argv, usageTail, controls);
    RCLAAddControls(table, count);
}

CZelCmdLineArgs::~CZelCmdLineArgs() {
    delete m_Found;
    delete m_Controls;
    std::free(m_UsageTail);
}

void CZelCmdLineArgs::RCLAInit(int argc, char **argv, const char *usageTail, CZelDoubleList *controls) {
    std::vector<std::pair<std::string, std::string>> pairs;
    CZelProcess::Instance().GetRegistryArgs(pairs);
    m_Count = argc + 2 * static_cast<int>(pairs.size());
    for (int i = 0; i < argc; ++i)
        m_Args.push_back({argv[i] != nullptr ? argv[i] : "", false});
    for (auto &[option, value] : pairs) {
        m_Args.push_back({std::move(option), true});
        m_Args.push_back({std::move(value), true});
    }
    m_Controls = controls != nullptr ? controls : new CZelDoubleList;
    if (usageTail != nullptr && *usageTail != '\0')
        m_UsageTail = ZelStrDup(usageTail);
}

void CZelCmdLineArgs::RCLAAddControls(const SZelCLArgRec *table, int count) {
    if (table == nullptr)
        return;
    for (const SZelCLArgRec *row = table; row < table + count; ++row)
        m_Controls->RDLAddToListEnd(
            new CZelCLArg(row->m_Name, row->m_Type, row->m_HasParam, row->m_Desc, row->m_Required));
}

void CZelCmdLineArgs::RCLASetControls(CZelDoubleList *controls) {
    if (controls == m_Controls)
        return;
    delete std::exchange(m_Found, nullptr);  // it refers to the old options
    delete m_Controls;
    m_Controls = controls != nullptr ? controls : new CZelDoubleList;
    if (controls == nullptr)
        RCLASetUsage(nullptr);
}

void CZelCmdLineArgs::RCLASetUsage(char *tail) {
    if (tail != m_UsageTail)
        std::free(m_UsageTail);
    m_UsageTail = tail;
}

char *CZelCmdLineArgs::RCLAGetUsage() const {
    const CZelMallocText lines(RCLAFormatUsage());
    CZelString text("Usage: ");
    if (!m_Args.empty())
        text.RSStrCat(m_Args.front().m_Text.c_str());
    text.RSStrCat(" [options] ...\n");
    text.RSStrCat(lines.get());
    text.RSStrCat(m_UsageTail);
    return text.RSTakeString();
}

char *CZelCmdLineArgs::RCLAFormatUsage() const {
    CZelString text("");
    const int width = usageWidth();
    forEachControl(m_Controls, [&](CZelCLArg *control) {
        if (hasName(control))
            RCLAItemUsage(control, width, &text);
    });
    return text.RSStringCopy();
}

int CZelCmdLineArgs::usageWidth() const {
    int width = LEAST_WIDTH;
    forEachControl(m_Controls, [&width](const CZelCLArg *control) {
        if (hasName(control))
            width = std::max(width, nameLength(control));
    });
    return width;
}

void CZelCmdLineArgs::RCLAItemUsage(CZelCLArg *control, int width, CZelString *text) const {
    const bool optional = control->RCLAIsRequired() != E_RBTrue;
    text->RSSpaces(2);
    if (optional)
        text->RSStrCat(OPTIONAL_BEGIN);
    text->RSStrCat(control->RCLAGetName());
    if (optional)
        text->RSStrCat(OPTIONAL_END);
    text->RSSpaces(width + 1 - nameLength(control));
    if (control->RCLAGetDesc() == nullptr || *control->RCLAGetDesc() == '\0')
        return;
    text->RSStrCat(control->RCLAGetDesc());
    text->RSNewLine();
}

CZelHashStore *CZelCmdLineArgs::RCLAFindArgs(CZelDoubleList *missing) {
    if (m_Found != nullptr)
        return m_Found;
    m_Found = new CZelHashStore(100, E_RBFalse, E_RBTrue, 500);
    findAll();
    if (missing != nullptr)
        RCLACheckRequired(missing);
    return m_Found;
}

// A word that names no option is passed over, and so is the value behind one that takes a parameter.
void CZelCmdLineArgs::findAll() {
    for (std::size_t position = 0; position < m_Args.size(); ++position) {
        CZelCLArg *control = controlNamed(m_Args[position].m_Text);
        if (control == nullptr)
            continue;
        if (control->RCLAHasParam() != E_RBTrue)
            takeFlag(control);
        else if (takeParameter(control, position))
            ++position;
    }
}

CZelCLArg *CZelCmdLineArgs::controlNamed(const std::string &word) const {
    CZelCLArg *found = nullptr;
    if (word.empty())
        return found;
    forEachControl(m_Controls, [&](CZelCLArg *control) {
        if (found == nullptr && hasName(control) && word == control->RCLAGetName())
            found = control;
    });
    return found;
}

void CZelCmdLineArgs::takeFlag(CZelCLArg *control) {
    const int status = m_Found->RHSAddObjectAt(control->RCLAGetName(), control);
    if (status == E_RCOk)
        control->RCLASetVal(new CZelAtom(1));
    else if (status != E_RCDuplicate)
        ZEL_REPORT(status, nullptr);
}

// False when no word follows.
bool CZelCmdLineArgs::takeParameter(CZelCLArg *control, std::size_t position) {
    if (position + 1 == m_Args.size()) {
        std::fprintf(stderr, "Parameter %s requires argument\n", control->RCLAGetName());
        ZEL_REPORT(E_RCBadOption, nullptr);
        return false;
    }
    CZelAtom *value = valueFrom(control->RCLAArgType(), m_Args[position + 1].m_Text.c_str());
    addValue(control, value, m_Args[position].m_FromRegistry);
    return true;
}

void CZelCmdLineArgs::addValue(CZelCLArg *control, CZelAtom *value, bool fromRegistry) {
    const int status = m_Found->RHSAddObjectAt(control->RCLAGetName(), control);
    if (status == E_RCOk) {
        control->RCLASetVal(value);
        return;
    }
    const std::unique_ptr<CZelAtom> refused(value);
    if (status == E_RCDuplicate)
        checkSecondValue(control, value, fromRegistry);
    else
        ZEL_REPORT(status, nullptr);
}

void CZelCmdLineArgs::checkSecondValue(const CZelCLArg *control, const CZelAtom *value, bool fromRegistry) const {
    const CZelAtom *first = control->RCLAArgVal();
    if (areEqual(value, first))
        return;
    if (fromRegistry)
        reportOverridden(control->RCLAGetName(), first, value);
    else
        reportContradiction(control->RCLAGetName(), first, value);
}

int CZelCmdLineArgs::RCLACheckRequired(CZelDoubleList *missing) const {
    if (missing == nullptr)
        return ZEL_FAIL(E_RCBadArgument, "CZelCmdLineArgs::RCLACheckRequired: no list for the missing options.");
    forEachControl(m_Controls, [&](const CZelCLArg *control) {
        if (control->RCLAIsRequired() == E_RBTrue && hasName(control) && !isAmongWords(control->RCLAGetName()))
            missing->RDLAddToListEnd(new CZelCLArg(*control));
    });
    return E_RCOk;
}

bool CZelCmdLineArgs::isAmongWords(const char *name) const {
    return std::any_of(m_Args.begin(), m_Args.end(), [name](const Word &word) { return word.m_Text == name; });
}
