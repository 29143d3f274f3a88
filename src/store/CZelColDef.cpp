#include "store/CZelColDef.h"

#include <cstdlib>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelBag.h"
#include "foundations/base/CZelString.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelError.h"

namespace {

CZelAtom *copyOf(const CZelAtom *atom) {
    return atom != nullptr ? new CZelAtom(*atom) : nullptr;
}

const char *typeName(const CZelColDef &type) {
    const bool isNamed = type.RCDDataType() == E_RDTUndefined && type.RCDNamedTypeName() != nullptr;
    return isNamed ? type.RCDNamedTypeName() : CZelAtom::RAGetDataTypeString(type.RCDDataType());
}

// " type " and its name for each level of elements or members.
bool appendElementTypes(CZelString &text, const CZelColDef *element) {
    for (; element != nullptr; element = element->RCDDefined()) {
        if (element->RCDDataType() == E_RDTUndefined && element->RCDNamedTypeName() == nullptr) {
            ZEL_REPORT(E_RCNull, "CZelColDef: a type without a name");
            return false;
        }
        text.RSStrCat(" type ");
        text.RSStrCat(typeName(*element));
    }
    return true;
}

CZelString pathOf(const CZelVarBind &object, const char *prefix) {
    CZelString path;
    if (prefix != nullptr) {
        path.RSStrCat(prefix);
        path.RSStrCat('.');
    }
    path.RSStrCat(&object.RVBName());
    return path;
}

bool isScalar(const CZelAtom *value) {
    return value != nullptr && value->RAType() >= E_RDTInt && value->RAType() <= E_RDTLong64;
}

// Calls `visit(path, member)` for each scalar member of an object value, `levels` deep.
template <class Visit>
void visitScalars(const CZelVarBind &object, const char *prefix, Visit visit, int levels) {
    const CZelAtom *value = object.RVBValue();
    const CZelVBList *members = value != nullptr && levels > 0 ? value->RAObject() : nullptr;
    if (members == nullptr)
        return;
    const CZelString path = pathOf(object, prefix);
    for (const CZelVarBind *member = members->RVBLHead(); member != nullptr; member = members->RVBLGetNext(member)) {
        if (isScalar(member->RVBValue()))
            visit(pathOf(*member, path.RSString()), *member);
        else
            visitScalars(*member, path.RSString(), visit, levels - 1);
    }
}

}  // namespace

CZelColDef::CZelColDef() = default;

CZelColDef::CZelColDef(char *name, EZelDataType type, CZelColDef *defined, int maxLen)
    : m_maxLen(maxLen), m_dataType(type), m_defined(defined) {
    if (name != nullptr)
        RCDSetName(name);
}

// A text can chain types deeper than the stack allows, so chains are copied and deleted by loops.
CZelColDef::CZelColDef(const CZelColDef &other) : CZelTblAttr(other) {
    copyOwn(other);
    CZelColDef *last = this;
    for (const CZelColDef *element = other.m_defined; element != nullptr; element = element->m_defined) {
        last->m_defined = new CZelColDef;
        last = last->m_defined;
        last->copyOwn(*element);
    }
}

void CZelColDef::copyOwn(const CZelColDef &other) {
    m_name = copyOf(other.m_name);
    m_maxLen = other.m_maxLen;
    m_dataType = other.m_dataType;
    m_namedType = ZelStrDup(other.m_namedType);
    m_nullable = other.m_nullable;
    m_unique = other.m_unique;
    m_index = other.m_index;
    m_default = copyOf(other.m_default);
}

CZelColDef::~CZelColDef() {
    delete m_name;
    std::free(m_namedType);
    delete m_default;
    while (m_defined != nullptr) {
        CZelColDef *element = m_defined;
        m_defined = std::exchange(element->m_defined, nullptr);
        delete element;
    }
}

int CZelColDef::RCDSetName(char *name) {
    const CZelMallocText owner(name);
    delete m_name;
    m_name = name != nullptr ? new CZelAtom(CZelAtom::RAName(name)) : nullptr;
    return 1;
}

int CZelColDef::RCDSetName(const CZelAtom &name) {
    auto *copy = new CZelAtom(name);
    delete m_name;
    m_name = copy;
    return 1;
}

int CZelColDef::RCDSetNamedTypeName(const char *name) {
    char *copy = ZelStrDup(name);
    std::free(m_namedType);
    m_namedType = copy;
    return 1;
}

int CZelColDef::RCDSetNullable(__boolean nullable) {
    m_nullable = nullable;
    return 1;
}

int CZelColDef::RCDSetUnique(__boolean unique) {
    m_unique = unique;
    return 1;
}

int CZelColDef::RCDSetIndex(__boolean index) {
    m_index = index;
    return 1;
}

int CZelColDef::RCDSetDefault(const CZelAtom *value) {
    CZelAtom *copy = copyOf(value);
    // A whole number becomes one of the column's type, so that `time default 0` is a time.
    if (copy != nullptr && copy->RAIsNumber() && copy->RAType() != m_dataType)
        copy->RACoerce(m_dataType);
    delete m_default;
    m_default = copy;
    return 1;
}

const char *CZelColDef::RCDDataTypeAsString() const {
    return ZelStrDup(CZelAtom::RAGetDataTypeString(m_dataType));
}

char *CZelColDef::RCDTypeText() const {
    CZelString text(CZelAtom::RAGetDataTypeString(m_dataType));
    return appendElementTypes(text, m_defined) ? text.RSTakeString() : nullptr;
}

char *CZelColDef::RCDOQLDefinition() {
    CZelString text;
    text.RSStrCat(m_name);
    text.RSStrCat(' ');
    text.RSStrCat(CZelAtom::RAGetDataTypeString(m_dataType));
    text.RSStrCat(' ');
    if (!appendElementTypes(text, m_defined))
        return nullptr;
    if (m_nullable != E_RBTrue)
        text.RSStrCat(" not null ");
    if (m_unique == E_RBTrue)
        text.RSStrCat(" unique ");
    else if (m_index == E_RBTrue)
        text.RSStrCat(" primary key ");
    if (m_default != nullptr) {
        text.RSStrCat(" default ");
        text.RSStrCatQuoted(m_default);
    }
    return text.RSTakeString();
}

CZelBag *CZelColDef::RCDValueBag(const CZelVarBind *object, const char *prefix, CZelBag *bag) {
    CZelBag *out = bag != nullptr ? bag : new CZelBag();
    if (object != nullptr)
        visitScalars(
            *object, prefix,
            [out](const CZelString &path, const CZelVarBind &member) {
                out->RBAdd(static_cast<void *>(new CZelVarBind(path.RSString(), member.RVBValue())));
            },
            CZelAtom::MAX_NESTING);
    return out;
}

CZelBag *CZelColDef::RCDIndexBag(CZelVarBind *object, const char *prefix, CZelBag *bag) {
    CZelBag *out = bag != nullptr ? bag : new CZelBag();
    if (object != nullptr)
        visitScalars(
            *object, prefix,
            [out](const CZelString &path, const CZelVarBind & /*member*/) {
                out->RBAdd(static_cast<void *>(path.RSStringAsAtom()));
            },
            CZelAtom::MAX_NESTING);
    return out;
}
