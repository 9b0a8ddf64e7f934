// A list folder full of stock items to measure on.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "datastore/LFileStoreListBase.h"

// Gives `record` the 25 fields of a stock item, 593 bytes as record text, that differ with `n`.
void FillItem(LRecord& record, int n);
// Their record text.
std::string ItemText(int n);

// A folder in the place for temporary files ($TMPDIR) that is removed with all in it at exit.
const std::string& BenchFolder();

// A list whose records 1 to `count` are there; made once for each count.
const LFileStoreListBase& ListOf(int count);
// Keys of it in an order that is the same in every run; as many as `count`, at most 20000.
std::vector<std::string> RandomKeys(int count);

// Puts the record file of `key` out of the way. Removing it instead would make the next creation
// slow: file systems avoid numbers of files that were freed a moment ago.
void MoveAway(const LFileStoreListBase& list, const std::string& key);
