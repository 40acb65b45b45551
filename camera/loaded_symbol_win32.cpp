#include "camera/loaded_symbol.h"

#include <windows.h>

#include <psapi.h>

#include <array>

namespace zelvaro {

void *loadedSymbol(const char *name)
{
    std::array<HMODULE, 512> modules;
    DWORD bytes = 0;
    if (!EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof modules, &bytes))
        return nullptr;
    const std::size_t loaded = bytes / sizeof(HMODULE);
    for (std::size_t i = 0; i < loaded && i < modules.size(); ++i) {
        if (FARPROC found = GetProcAddress(modules[i], name))
            return reinterpret_cast<void *>(found);
    }
    return nullptr;
}

} // namespace zelvaro
