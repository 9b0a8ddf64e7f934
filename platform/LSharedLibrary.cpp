#include "platform/LSharedLibrary.h"

#include <dlfcn.h>

LSharedLibrary::LSharedLibrary(const std::string& fileName)
    : handle_(::dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

LSharedLibrary::~LSharedLibrary() {
    if (handle_ != nullptr) ::dlclose(handle_);
}

void* LSharedLibrary::FindSymbol(const char* name) const {
    return handle_ == nullptr ? nullptr : ::dlsym(handle_, name);
}
