#include "bench/Lua.h"

#include <lua.hpp>

#include <cstdio>
#include <cstdlib>

namespace {

void check(lua_State *state, int status) {
    if (status == LUA_OK)
        return;
    std::fprintf(stderr, "lua: %s\n", lua_tostring(state, -1));
    std::abort();
}

// The value of an expression, kept in the registry.
int keep(lua_State *state, const std::string &expression) {
    const std::string chunk = "local unpack, match = table.unpack, string.match; return " + expression;
    check(state, luaL_dostring(state, chunk.c_str()));
    return luaL_ref(state, LUA_REGISTRYINDEX);
}

}  // namespace

Lua::Lua(const std::string &function, const std::string &record) : m_state(luaL_newstate()) {
    luaL_openlibs(m_state);
    m_function = keep(m_state, function);
    m_record = keep(m_state, record);
}

Lua::~Lua() {
    lua_close(m_state);
}

void Lua::push() {
    lua_rawgeti(m_state, LUA_REGISTRYINDEX, m_function);
    lua_rawgeti(m_state, LUA_REGISTRYINDEX, m_record);
    check(m_state, lua_pcall(m_state, 1, 1, 0));
}

void Lua::call() {
    push();
    lua_pop(m_state, 1);
}

std::string Lua::text() {
    push();
    std::string all;
    if (lua_istable(m_state, -1)) {
        for (lua_Integer i = 1; lua_geti(m_state, -1, i) != LUA_TNIL; ++i) {
            all += (i == 1 ? "" : ",") + std::string(lua_tostring(m_state, -1));
            lua_pop(m_state, 1);
        }
        lua_pop(m_state, 1);
    } else {
        all = lua_tostring(m_state, -1);
    }
    lua_pop(m_state, 1);
    return all;
}
