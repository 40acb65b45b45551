#include "camera/loaded_symbol.h"

#include <dlfcn.h>

namespace zelvaro {

void *loadedSymbol(const char *name)
{
    return dlsym(RTLD_DEFAULT, name);
}

} // namespace zelvaro
