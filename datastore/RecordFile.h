// Record files with as few system calls as their rules allow.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "datastore/LTextBuffer.h"
#include "platform/LFileDescriptor.h"

// The whole text of a file. Those of ordinary length lie in the object itself.
class LFileText {
public:
    // Reads all of `fd` from its start; a file of 4 GiB or more counts as empty. False when it
    // cannot be read (a folder, a damaged disk, no memory).
    [[nodiscard]] bool Read(int fd);
    std::string_view View() const { return {large_ ? large_.get() : small_.data(), size_}; }
    bool CountsAsEmpty() const { return countsAsEmpty_; }  // of 4 GiB or more

private:
    bool ReadLarge(int fd);

    std::array<char, 4096> small_;
    std::unique_ptr<char[]> large_;
    size_t size_ = 0;
    bool countsAsEmpty_ = false;
};

// `path` is absolute or relative to the open folder `folder`. The files' access times stay as they
// are where that is permitted. A pipe in the place of a record does not block.
LFileDescriptor OpenRecordToRead(int folder, const char* path);
LFileDescriptor OpenRecordToWrite(const char* path);  // creates it when missing, mode 0666

// Puts `text` in the place of `old`, which is what the file holds. Whoever is killed in between
// leaves a text that reads as the new one; where not all of it can be written the old text is put
// back. `text` is used up. Returns whether the new text is there.
bool ReplaceRecordText(int fd, LTextBuffer& text, const LFileText& old);
