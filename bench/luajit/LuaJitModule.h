// What lies between the bench and the module that holds LuaJIT. LuaJIT has the function names of Lua, which the bench
// links: the module is loaded apart from it, and knows records by a table of functions only.
#pragma once

// A value of a record: kind 1 is a number, 2 a text, 3 a list; 0 is none of these. Declared once more for LuaJIT's
// own foreign functions, in the module.
struct LuaJitField {
    int kind;
    int size;  // of the text in bytes, of the list in elements
    double number;
    const char *text;
    const void *list;
};

struct LuaJitReader {
    const void *(*name)(const char *text);  // a name's handle, looked up once
    void (*read)(const void *record, const void *name, LuaJitField *field);
    void (*element)(const void *list, int index, LuaJitField *field);
};

// A LuaJIT state with one function of one argument, the record. Functions give 0 when Lua reports an error, which has
// been printed then.
struct LuaJitModule {
    void *(*open)(const char *function, const LuaJitReader *reader, const void *record);
    int (*call)(void *state);                               // drops the result
    int (*text)(void *state, char *buffer, unsigned size);  // the result as text; elements are separated by commas
    void (*close)(void *state);
};

extern "C" const LuaJitModule *luaJitModule();  // the module's only symbol
