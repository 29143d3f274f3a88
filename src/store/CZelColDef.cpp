#include "store/CZelColDef.h"

#include <cstdlib>

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

// " type " and the name of an element's or member's type.
bool appendElementType(CZelString &text, const CZelColDef &element) {
    text.RSStrCat(" type ");
    if (element.RCDDataType() != E_RDTUndefined)
        text.RSStrCat(CZelAtom::RAGetDataTypeString(element.RCDDataType()));
    else
        text.RSStrCat(element.RCDNamedTypeName());
    return element.RCDDataType() != E_RDTUndefined || element.RCDNamedTypeName() != nullptr;
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

// Calls `visit(path, member)` for each scalar member of an object value, at any depth.
template <class Visit>
void visitScalars(const CZelVarBind &object, const char *prefix, Visit visit) {
    const CZelAtom *value = object.RVBValue();
    const CZelVBList *members = value != nullptr ? value->RAObject() : nullptr;
    if (members == nullptr)
        return;
    const CZelString path = pathOf(object, prefix);
    for (const CZelVarBind *member = members->RVBLHead(); member != nullptr; member = members->RVBLGetNext(member)) {
        if (isScalar(member->RVBValue())) {
            const CZelString full = pathOf(*member, path.RSString());
            visit(full, *member);
        } else {
            visitScalars(*member, path.RSString(), visit);
        }
    }
}

}  // namespace

CZelColDef::CZelColDef() = default;

CZelColDef::CZelColDef(char *name, EZelDataType type, CZelColDef *defined, int maxLen)
    : m_maxLen(maxLen), m_dataType(type), m_defined(defined) {
    if (name != nullptr)
        RCDSetName(name);
}

CZelColDef::CZelColDef(const CZelColDef &other)
    : CZelTblAttr(other),
      m_name(copyOf(other.m_name)),
      m_maxLen(other.m_maxLen),
      m_dataType(other.m_dataType),
      m_namedType(ZelStrDup(other.m_namedType)),
      m_defined(other.m_defined != nullptr ? new CZelColDef(*other.m_defined) : nullptr),
      m_nullable(other.m_nullable),
      m_unique(other.m_unique),
      m_index(other.m_index),
      m_default(copyOf(other.m_default)) {}

CZelColDef::~CZelColDef() {
    delete m_name;
    std::free(m_namedType);
    delete m_defined;
    delete m_default;
}

int CZelColDef::RCDSetName(char *name) {
    CZelAtom interned = CZelAtom::RAName(name);
    std::free(name);
    return RCDSetName(interned);
}

int CZelColDef::RCDSetName(const CZelAtom &name) {
    delete m_name;
    m_name = new CZelAtom(name);
    return 1;
}

int CZelColDef::RCDSetNamedTypeName(const char *name) {
    std::free(m_namedType);
    m_namedType = ZelStrDup(name);
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
    delete m_default;
    m_default = copy;
    return 1;
}

const char *CZelColDef::RCDDataTypeAsString() const {
    return ZelStrDup(CZelAtom::RAGetDataTypeString(m_dataType));
}

char *CZelColDef::RCDTypeText() const {
    CZelString text(CZelAtom::RAGetDataTypeString(m_dataType));
    for (const CZelColDef *element = m_defined; element != nullptr; element = element->m_defined)
        appendElementType(text, *element);
    return text.RSTakeString();
}

char *CZelColDef::RCDOQLDefinition() {
    CZelString text;
    text.RSStrCat(m_name);
    text.RSStrCat(' ');
    text.RSStrCat(m_dataType == E_RDTUndefined && m_namedType != nullptr ? m_namedType
                                                                         : CZelAtom::RAGetDataTypeString(m_dataType));
    text.RSStrCat(' ');
    for (const CZelColDef *element = m_defined; element != nullptr; element = element->m_defined)
        if (!appendElementType(text, *element)) {
            ZEL_REPORT(E_RCNull, "CZelColDef::RCDOQLDefinition: a type without a name");
            return nullptr;
        }
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
        visitScalars(*object, prefix, [out](const CZelString &path, const CZelVarBind &member) {
            out->RBAdd(static_cast<void *>(new CZelVarBind(path.RSString(), member.RVBValue())));
        });
    return out;
}

CZelBag *CZelColDef::RCDIndexBag(CZelVarBind *object, const char *prefix, CZelBag *bag) {
    CZelBag *out = bag != nullptr ? bag : new CZelBag();
    if (object != nullptr)
        visitScalars(*object, prefix, [out](const CZelString &path, const CZelVarBind & /*member*/) {
            out->RBAdd(static_cast<void *>(path.RSStringAsAtom()));
        });
    return out;
}
