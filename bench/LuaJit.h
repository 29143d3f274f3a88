// LuaJIT, in a module of its own, with one function of one argument: a record of this store, whose fields it reads
// where they lie.
#pragma once

#include <string>

class CZelRecord;
struct LuaJitModule;

class LuaJit {
public:
    static bool isHere();

    // `function` is the text of a function expression. The record outlives the object.
    // Requires: isHere().
    LuaJit(const std::string &function, const CZelRecord &record);
    LuaJit(const LuaJit &) = delete;
    LuaJit &operator=(const LuaJit &) = delete;
    ~LuaJit();

    void call();         // calls the function and drops its result
    std::string text();  // what it gives, as text; the elements of a table are separated by commas

private:
    const LuaJitModule *m_module;
    void *m_state;
};
