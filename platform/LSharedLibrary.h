// A library of the system that is loaded when it is first needed.
#pragma once

#include <string>

// Stays loaded until the owner goes. Symbols are looked up by name.
class LSharedLibrary {
public:
    explicit LSharedLibrary(const std::string& fileName);  // "libcrypto.so.3"
    ~LSharedLibrary();
    LSharedLibrary(const LSharedLibrary&) = delete;
    LSharedLibrary& operator=(const LSharedLibrary&) = delete;

    bool IsLoaded() const { return handle_ != nullptr; }
    template <typename Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(FindSymbol(name));
    }

private:
    void* FindSymbol(const char* name) const;  // null when missing
    void* handle_ = nullptr;
};
