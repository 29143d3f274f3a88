#include "bench/LuaJit.h"

#include <dlfcn.h>

#include <cstdlib>

#include "bench/luajit/LuaJitModule.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"

namespace {

// Its own functions first: the bench has others of these names.
const LuaJitModule *load() {
#ifdef QUINTOR_BENCH_LUAJIT
    void *library = dlopen(QUINTOR_BENCH_LUAJIT, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (library == nullptr)
        return nullptr;
    const auto entry = reinterpret_cast<const LuaJitModule *(*)()>(dlsym(library, "luaJitModule"));
    return entry == nullptr ? nullptr : entry();
#else
    return nullptr;
#endif
}

const LuaJitModule *module() {
    static const LuaJitModule *const loaded = load();
    return loaded;
}

void set(const CZelAtom *value, LuaJitField *field) {
    *field = {0, 0, 0, nullptr, nullptr};
    if (value == nullptr)
        return;
    if (value->RAIsNumber()) {
        field->kind = 1;
        field->number = value->RADouble();
    } else if (value->RAType() == E_RDTText) {
        field->kind = 2;
        field->size = static_cast<int>(value->RATextLength());
        field->text = value->RAString();
    } else if (value->RAType() == E_RDTList) {
        field->kind = 3;
        field->size = static_cast<int>(value->RAList()->RAVSize());
        field->list = value->RAList();
    }
}

// Names stay for the life of the process.
const void *nameOf(const char *text) {
    return new CZelAtom(CZelAtom::RAName(text));
}

void read(const void *record, const void *name, LuaJitField *field) {
    set(static_cast<const CZelRecord *>(record)->RRValueOf(static_cast<const CZelAtom *>(name)), field);
}

void element(const void *list, int index, LuaJitField *field) {
    set(static_cast<const CZelAtomVector *>(list)->RAVGetValue(static_cast<unsigned>(index)), field);
}

constexpr LuaJitReader READER = {nameOf, read, element};

}  // namespace

bool LuaJit::isHere() {
    return module() != nullptr;
}

LuaJit::LuaJit(const std::string &function, const CZelRecord &record)
    : m_module(module()), m_state(m_module->open(function.c_str(), &READER, &record)) {
    if (m_state == nullptr)
        std::exit(1);
}

LuaJit::~LuaJit() {
    m_module->close(m_state);
}

void LuaJit::call() {
    if (m_module->call(m_state) != 1)
        std::exit(1);
}

std::string LuaJit::text() {
    char buffer[512];
    if (m_module->text(m_state, buffer, sizeof buffer) != 1)
        std::exit(1);
    return buffer;
}
