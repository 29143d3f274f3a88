#include "oql/CZelAtomParser.h"

#include <cstring>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/port/CZelError.h"
#include "oql/CZelAtomActionsImpl.h"
#include "oql/CZelAtomScanner.h"
#include "oql/ZelAtom.tab.h"
#include "store/CZelColDef.h"

namespace {

CZelAtom *parse(const char *text, std::size_t length, int *status) {
    CZelAtomScanner scanner(text, static_cast<unsigned int>(length));
    CZelAtomActions actions(scanner);
    if (ZelAtomparse(scanner, actions) == 0)
        return actions.TakeResult();
    *status = E_RCSyntax;
    return nullptr;
}

void check(int status) {
    if (status != 1)
        ZEL_REPORT(status, "CZelAtomParser::RAPCoerceList");
}

// 1, or the code of what keeps the element from becoming one of the defined type.
int coerceElement(CZelAtomParser &parser, CZelColDef &definition, CZelAtom *element) {
    const EZelDataType type = definition.RCDDataType();
    if (type == E_RDTList && element->RAType() == E_RDTList)
        return parser.RAPCoerceList(&definition, element);
    if (element->RAType() == type)
        return 1;
    const bool isScalar = type >= E_RDTInt && type <= E_RDTLong64;
    return isScalar ? element->RACoerce(type) : E_RCBadType;
}

}  // namespace

CZelAtomParser::~CZelAtomParser() = default;

CZelAtom *CZelAtomParser::RAPParse(const char *text, int *status) {
    int result = 1;
    CZelAtom *atom = nullptr;
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    if (text == nullptr)
        result = ZEL_FAIL(E_RCNull, "CZelAtomParser::RAPParse: no text");
    else if (length >= CZelAtomScanner::MAX_LENGTH)
        result = ZEL_FAIL(E_RCUnsupported, "CZelAtomParser::RAPParse: a text of 2 GiB or more");
    else
        atom = parse(text, length, &result);
    if (status != nullptr)
        *status = result;
    return atom;
}

int CZelAtomParser::RAPCoerceList(CZelColDef *definition, CZelAtom *list) {
    CZelAtomVector *elements = list != nullptr ? list->RAList() : nullptr;
    if (elements == nullptr)
        return E_RCBadType;
    CZelColDef *elementType = definition != nullptr ? definition->RCDDefined() : nullptr;
    for (unsigned int i = 0; i < elements->RAVSize(); ++i) {
        CZelAtom *element = elements->RAVGetValue(i);
        if (element == nullptr)
            ZEL_REPORT(E_RCNull, "CZelAtomParser::RAPCoerceList");
        else if (elementType != nullptr)
            check(coerceElement(*this, *elementType, element));
    }
    return 1;
}
