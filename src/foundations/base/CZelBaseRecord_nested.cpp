// Reading and writing below a name, along a path of keys.
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelBaseRecord.h"
#include "foundations/base/CZelStack.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr long long LARGEST_INDEX = 1000000;

bool isSelector(long long key) {
    return key == E_RLUAll || key == E_RLUNext || key == E_RLUAny;
}

bool isIndexKey(const CZelAtom &key) {
    return key.RAIsNumber() && key.RAType() != E_RDTFloat;
}

// A path on the way: the keys from the bottom of a stack that are still to be gone along.
struct Path {
    const CZelStack *m_keys;
    int m_position;
    int m_end;

    bool IsDone() const { return m_position == m_end; }
    const CZelAtom *Key() const { return static_cast<const CZelAtom *>(m_keys->RSPeek(m_position)); }
    Path Next() const { return {m_keys, m_position + 1, m_end}; }
};

int checkKey(const CZelAtom *key) {
    if (key == nullptr)
        return E_RCBadArgument;
    if (key->RAType() == E_RDTText)
        return E_RCOk;
    if (!isIndexKey(*key))
        return E_RCBadType;
    long long index = key->RALongLong();
    bool allowed = index < 0 ? isSelector(index) : index <= LARGEST_INDEX;
    return allowed ? E_RCOk : E_RCBadValue;
}

// Asked before anything is made, so that a bad key further down leaves no half of a path behind.
int checkPath(Path path) {
    if (path.m_end > CZelAtom::MAX_NESTING)
        return E_RCBadValue;
    int status = E_RCOk;
    for (; !path.IsDone() && status == E_RCOk; path = path.Next())
        status = checkKey(path.Key());
    return status;
}

// The member's value, made where it is missing. Null when the value is no object.
CZelAtom *memberForWriting(CZelAtom &value, const CZelAtom &name) {
    if (value.RAIsUndefined())
        value = CZelAtom(new CZelVBList);
    CZelVBList *object = value.RAObject();
    if (object == nullptr)
        return nullptr;
    CZelVarBind *member = object->RVBLFind(name);
    if (member == nullptr) {
        member = new CZelVarBind(name, CZelAtom());
        object->RVBLAddToListEnd(member);
    }
    return member->RVBForWriting();
}

CZelAtom *elementForWriting(CZelAtomVector &list, unsigned int index) {
    if (list.RAVGetValue(index) == nullptr)
        list.RAVSetValue(index, new CZelAtom);
    return list.RAVGetValue(index);
}

// The list in the value, made where it is missing. Null when the value is of another type.
CZelAtomVector *listForWriting(CZelAtom &value) {
    if (value.RAIsUndefined())
        value = CZelAtom(new CZelAtomVector);
    return value.RAList();
}

int write(CZelAtom &value, Path path, const CZelAtom *written);

// An empty list gets an element, so that a read by the same path reaches what was written.
int writeAll(CZelAtomVector &list, Path path, const CZelAtom *written) {
    unsigned int size = list.RAVSize() == 0 ? 1 : list.RAVSize();
    int status = E_RCOk;
    for (unsigned int i = 0; i < size; ++i) {
        int result = write(*elementForWriting(list, i), path, written);
        if (result != E_RCOk)
            status = result;
    }
    return status;
}

unsigned int indexFor(const CZelAtomVector &list, long long key) {
    if (key == E_RLUNext)
        return list.RAVSize();
    return key == E_RLUAny ? 0 : static_cast<unsigned int>(key);
}

// Where one key leads. Null when the value can't be stepped into by it.
CZelAtom *placeFor(CZelAtom &value, const CZelAtom &key) {
    if (key.RAType() == E_RDTText)
        return memberForWriting(value, key);
    CZelAtomVector *list = listForWriting(value);
    return list == nullptr ? nullptr : elementForWriting(*list, indexFor(*list, key.RALongLong()));
}

// Goes by a loop; only a step to all elements calls itself, once per element.
int write(CZelAtom &value, Path path, const CZelAtom *written) {
    CZelAtom *place = &value;
    for (; !path.IsDone(); path = path.Next()) {
        const CZelAtom &key = *path.Key();
        if (isIndexKey(key) && key.RALongLong() == E_RLUAll) {
            CZelAtomVector *list = listForWriting(*place);
            return list == nullptr ? E_RCBadType : writeAll(*list, path.Next(), written);
        }
        place = placeFor(*place, key);
        if (place == nullptr)
            return E_RCBadType;
    }
    place->RASet(written);
    return E_RCOk;
}

}  // namespace

const CZelAtom *CZelBaseRecord::RRStep(const CZelAtom *value, const CZelAtom &key) {
    if (value == nullptr)
        return nullptr;
    if (key.RAType() == E_RDTText) {
        const CZelVarBind *member = value->RAObject() == nullptr ? nullptr : value->RAObject()->RVBLFind(key);
        return member == nullptr ? nullptr : member->RVBValue();
    }
    if (!isIndexKey(key) || value->RAList() == nullptr)
        return nullptr;
    long long index = key.RALongLong();
    if (index == E_RLUAll || index == E_RLUAny)
        index = 0;
    return index < 0 || index > LARGEST_INDEX ? nullptr
                                              : value->RAList()->RAVGetValue(static_cast<unsigned int>(index));
}

const CZelAtom *CZelBaseRecord::RRValueOf(const CZelAtomVector &path) const {
    const CZelAtom *value = RRValueOf(path.RAVGetValue(0));
    return descend(value, path, 1);
}

const CZelAtom *CZelBaseRecord::RRValueOf(const char *name, const CZelAtomVector &path) const {
    return descend(RRValueOf(name), path, 0);
}

const CZelAtom *CZelBaseRecord::descend(const CZelAtom *value, const CZelAtomVector &path, unsigned int first) {
    for (unsigned int i = first; value != nullptr && i < path.RAVSize(); ++i) {
        const CZelAtom *key = path.RAVGetValue(i);
        value = key == nullptr ? nullptr : RRStep(value, *key);
    }
    return value;
}

const CZelAtom *CZelBaseRecord::RRValueOfNested(const CZelAtom &name, CZelStack &keys, const CZelAtom **leaf) const {
    const CZelAtom *value = RRValueOf(&name);
    for (int i = 0; value != nullptr && i < keys.RSLength(); ++i) {
        const CZelAtom *key = static_cast<const CZelAtom *>(keys.RSPeek(i));
        value = key == nullptr ? nullptr : RRStep(value, *key);
    }
    if (leaf != nullptr)
        *leaf = value;
    return value;
}

int CZelBaseRecord::RRAddOrSetValueNested(const CZelAtom &name, CZelStack &keys, const CZelAtom *value) {
    Path path{&keys, 0, keys.RSLength()};
    if (path.IsDone())
        return RRAddOrSetValue(&name, value);
    int status = checkPath(path);
    if (status != E_RCOk)
        return status;
    CZelVarBind *binding = m_values.RVBLFind(name);
    if (binding == nullptr) {
        binding = new CZelVarBind(name, CZelAtom());
        m_values.RVBLAddToListEnd(binding);
    }
    return write(*binding->RVBForWriting(), path, value);
}
