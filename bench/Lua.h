// A Lua interpreter with one function of one argument, a record as a table.
#pragma once

#include <string>

struct lua_State;

class Lua {
public:
    // `function` is the text of a function expression, `record` that of a table.
    Lua(const std::string &function, const std::string &record);
    Lua(const Lua &) = delete;
    Lua &operator=(const Lua &) = delete;
    ~Lua();

    void call();         // calls the function and drops its result
    std::string text();  // what it gives, as text; the elements of a table are separated by commas

private:
    void push();

    lua_State *m_state;
    int m_function;  // in the registry
    int m_record;
};
