// The businesses that live side by side: the default one in the shared data folder, further ones in
// numbered folders of "MultiBus" there.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct LBusiness {
    int number = 0;      // 0: the default business
    std::string folder;  // its database folder
    std::string name;    // "Name" of its "Company" settings; may be empty
    bool isDeleted = false;
};

enum class LBusinessFilter { kListed, kWithDeleted };

// Walks the businesses: the default one first, then the folder's order. Only folders named by a
// number count; one that is marked deleted is met when the filter asks for it.
class InvBusinessIterator {
public:
    explicit InvBusinessIterator(LBusinessFilter filter = LBusinessFilter::kListed);
    void Reset();
    void Next();
    bool IsValid() const { return valid_; }
    const LBusiness& Current() const { return current_; }

private:
    LBusinessFilter filter_;
    std::vector<std::string> folders_;
    size_t next_ = 0;
    bool valid_ = false;
    LBusiness current_;
};

std::vector<LBusiness> ListBusinesses(LBusinessFilter filter = LBusinessFilter::kListed);

// Makes the folder with the smallest free number and returns its path; nothing when it cannot be
// made.
std::optional<std::string> CreateNewBusiness();
bool IsBusinessValid(std::string_view name);   // ignoring case, listed ones only
int GetBusinessNumber(std::string_view name);  // exact; -1 when none matches
std::string GetBusinessName(int number);       // also of a deleted one; empty for none
std::string GetBusinessFolder(int number);     // empty for a negative number; it may not exist
int NumberOfBusinessFolder(std::string_view folder);  // of a folder in "MultiBus"; -1 for others
// The folder of the first listed business of exactly this name; empty for none.
std::string FindBusinessFolder(std::string_view name);

// Change the "Company" settings of an existing business; false for a number that is none.
bool SetBusinessName(int number, std::string_view name);
bool SetBusinessDeleted(int number, bool isDeleted);
