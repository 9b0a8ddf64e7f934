// A file that a browser uploads, as long as no handler has taken it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LFileDescriptor.h"

// Owns a file in the folder of uploads: it is deleted when the object goes, unless Keep gave it
// another owner. Belongs to one request.
class LWebPostFile {
public:
    // `fieldName` is the form's field; `name` what the browser calls the file, of which only the
    // part behind the last slash or backslash is taken (at most 259 bytes).
    LWebPostFile(std::string_view fieldName, std::string_view name);
    ~LWebPostFile() { Discard(); }
    LWebPostFile(LWebPostFile&& other) noexcept;
    LWebPostFile& operator=(LWebPostFile&& other) noexcept;
    LWebPostFile(const LWebPostFile&) = delete;
    LWebPostFile& operator=(const LWebPostFile&) = delete;

    const std::string& FieldName() const { return fieldName_; }
    const std::string& Name() const { return name_; }
    const std::string& Path() const { return path_; }
    // Whether all of it lies at Path(); false when the disk did not take it.
    bool IsStored() const { return !path_.empty(); }

    // Makes the file, empty and for this user only. Not open when it cannot be made; errno tells
    // why. `sessionId` says whose it is, should the program end before it deletes the file.
    LFileDescriptor Create(std::string_view sessionId);
    // Deletes the file.
    void Discard();
    // Gives the file to who calls: it gets a lasting name, which is returned, and stays. Empty when
    // it has none.
    std::string Keep();

private:
    std::string fieldName_, name_, path_;
};

using LWebPostFiles = std::vector<LWebPostFile>;

// Where uploads lie until a handler has taken them. Made, for this user only, with the first one.
std::string UploadFolder();
// Deletes what no session of `sessionFolder` needs any more: the rests of an earlier run of the
// program, and files kept for sessions that are gone.
void SweepUploads(const std::string& sessionFolder);
