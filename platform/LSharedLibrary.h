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

// The functions that are used of a library and of those that it brings along. A class derives from
// this and has a member for each function, made by Find.
class LLoadedFunctions {
public:
    bool IsReady() const { return ready_; }  // the library is there and has them all

protected:
    explicit LLoadedFunctions(const std::string& fileName) : library_(fileName) {}
    ~LLoadedFunctions() = default;
    template <typename Function>
    Function* Find(const char* name) {
        Function* const found = library_.Find<Function>(name);
        ready_ = ready_ && found != nullptr;
        return found;
    }

private:
    LSharedLibrary library_;
    bool ready_ = library_.IsLoaded();
};
