#include "bench/luajit/LuaJitModule.h"

#include <lua.hpp>

#include <cstdio>
#include <string>

namespace {

// The record for a function: each field is read when it is asked for, through functions that LuaJIT compiles calls to.
// Called with the reader and the record, gives the function and its argument.
constexpr const char *PRELUDE = R"lua(
local ffi, newTable, match = require 'ffi', require 'table.new', string.match
ffi.cdef[[
typedef struct { int kind, size; double number; const char *text; const void *list; } Field;
typedef struct {
    const void *(*name)(const char *);
    void (*read)(const void *, const void *, Field *);
    void (*element)(const void *, int, Field *);
} Reader;
]]
local reader, record = ...
reader, record = ffi.cast('const Reader *', reader), ffi.cast('const void *', record)
local field, element = ffi.new 'Field', ffi.new 'Field'
local names = setmetatable({}, {__index = function(all, key)
    all[key] = reader.name(key)
    return all[key]
end})
local function plain(value)
    if value.kind == 1 then return value.number end
    if value.kind == 2 then return ffi.string(value.text, value.size) end
end
local function list(value)
    local all = newTable(value.size + 1, 0)
    for i = 1, value.size do
        reader.element(value.list, i - 1, element)
        all[i] = plain(element)
    end
    return all
end
local function read(_, key)
    reader.read(record, names[key], field)
    return field.kind == 3 and list(field) or plain(field)
end
local argument = setmetatable({}, {__index = read})
)lua";

struct State {
    lua_State *lua;
    int function;  // in the registry
    int argument;
};

bool report(lua_State *lua, int status) {
    if (status == 0)
        return true;
    std::fprintf(stderr, "luajit: %s\n", lua_tostring(lua, -1));
    return false;
}

bool prepare(State &state, const std::string &chunk, const LuaJitReader *reader, const void *record) {
    if (!report(state.lua, luaL_loadstring(state.lua, chunk.c_str())))
        return false;
    lua_pushlightuserdata(state.lua, const_cast<LuaJitReader *>(reader));
    lua_pushlightuserdata(state.lua, const_cast<void *>(record));
    if (!report(state.lua, lua_pcall(state.lua, 2, 2, 0)))
        return false;
    state.argument = luaL_ref(state.lua, LUA_REGISTRYINDEX);
    state.function = luaL_ref(state.lua, LUA_REGISTRYINDEX);
    return true;
}

void closeState(void *opaque) {
    auto *state = static_cast<State *>(opaque);
    lua_close(state->lua);
    delete state;
}

void *openState(const char *function, const LuaJitReader *reader, const void *record) {
    auto *state = new State{luaL_newstate(), 0, 0};
    luaL_openlibs(state->lua);
    if (prepare(*state, std::string(PRELUDE) + "return " + function + ", argument", reader, record))
        return state;
    closeState(state);
    return nullptr;
}

bool push(const State &state) {
    lua_rawgeti(state.lua, LUA_REGISTRYINDEX, state.function);
    lua_rawgeti(state.lua, LUA_REGISTRYINDEX, state.argument);
    return report(state.lua, lua_pcall(state.lua, 1, 1, 0));
}

int callState(void *opaque) {
    const auto &state = *static_cast<State *>(opaque);
    if (!push(state))
        return 0;
    lua_settop(state.lua, 0);
    return 1;
}

std::string resultOf(lua_State *lua) {
    if (!lua_istable(lua, -1))
        return lua_tostring(lua, -1);
    std::string all;
    const int size = static_cast<int>(lua_objlen(lua, -1));
    for (int i = 1; i <= size; ++i) {
        lua_rawgeti(lua, -1, i);
        all += (i == 1 ? "" : ",") + std::string(lua_tostring(lua, -1));
        lua_pop(lua, 1);
    }
    return all;
}

int textOfState(void *opaque, char *buffer, unsigned size) {
    const auto &state = *static_cast<State *>(opaque);
    if (!push(state))
        return 0;
    std::snprintf(buffer, size, "%s", resultOf(state.lua).c_str());
    lua_settop(state.lua, 0);
    return 1;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const LuaJitModule *luaJitModule() {
    static const LuaJitModule module = {openState, callState, textOfState, closeState};
    return &module;
}
