// A folder for one test.
#pragma once

#include <string>
#include <string_view>

// A new, empty folder that is removed with all it holds when the object goes.
class LTempFolder {
public:
    LTempFolder();
    ~LTempFolder();
    LTempFolder(const LTempFolder&) = delete;
    LTempFolder& operator=(const LTempFolder&) = delete;

    const std::string& Path() const { return path_; }
    // The path of `name` in the folder.
    std::string File(std::string_view name) const;
    void WriteFile(std::string_view name, std::string_view text) const;  // makes parents
    std::string ReadFile(std::string_view name) const;                   // empty when missing
    int FileCount() const;  // plain files, at any depth

private:
    std::string path_;
};

// Sets an environment variable and puts the old value back when it goes.
class LScopedEnvironment {
public:
    LScopedEnvironment(std::string name, const std::string& value);
    ~LScopedEnvironment();
    LScopedEnvironment(const LScopedEnvironment&) = delete;
    LScopedEnvironment& operator=(const LScopedEnvironment&) = delete;

private:
    std::string name_, oldValue_;
    bool wasSet_;
};

// A home of its own for one test: data, configuration and temporary folders below `Path()`.
class LTempHome : public LTempFolder {
public:
    LTempHome();

private:
    LScopedEnvironment home_, data_, config_, temporary_, root_;
};
