// Values for tests, as short as literals.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelVBList.h"
#include "foundations/base/ZelMalloc.h"

inline CZelAtom listOf(std::initializer_list<CZelAtom> elements) {
    auto *list = new CZelAtomVector(0);
    for (const CZelAtom &element : elements)
        list->RAVAddToEnd(new CZelAtom(element));
    return CZelAtom(list);
}

inline CZelAtom objectOf(std::initializer_list<std::pair<const char *, CZelAtom>> members) {
    auto *object = new CZelVBList;
    for (const auto &[name, value] : members)
        object->RVBLAddToListEnd(new CZelVarBind(name, &value));
    return CZelAtom(object);
}

inline std::unique_ptr<CZelAtomVector> namesOf(std::initializer_list<const char *> names) {
    auto vector = std::make_unique<CZelAtomVector>(0);
    for (const char *name : names)
        vector->RAVAddToEnd(new CZelAtom(name));
    return vector;
}

// A text from malloc as a string, freed; "<null>" for null.
inline std::string taken(char *text) {
    const CZelMallocText owner(text);
    return text != nullptr ? text : "<null>";
}

// "type text" of a value, "null" for a null pointer.
inline std::string shown(const CZelAtom *value) {
    if (value == nullptr)
        return "null";
    return std::string(CZelAtom::RAGetDataTypeString(value->RAType())) + ' ' + taken(value->RAStrRep());
}
