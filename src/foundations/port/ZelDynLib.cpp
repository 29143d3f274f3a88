#include "foundations/port/ZelDynLib.h"

#include <dlfcn.h>

#include "foundations/port/ZelCodes.h"

void *ZelDLOpen(const char *path, int) {
    if (path == nullptr || *path == '\0')  // the system would give the program itself
        return nullptr;
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void *ZelDLSym(void *library, const char *name) {
    return library != nullptr && name != nullptr ? dlsym(library, name) : nullptr;
}

int ZelDLClose(void *library) {
    return library != nullptr && dlclose(library) == 0 ? E_RCOk : E_RCBadArgument;
}

const char *ZelDLError() {
    const char *text = dlerror();
    return text != nullptr ? text : "";
}
