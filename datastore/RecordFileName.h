// Which file of a list folder holds the record of a key, and the way back.
#pragma once

#include <string>
#include <string_view>

// The file's name with its extension: the key encoded as record text, ".dat". A name longer than
// the file system takes (255 bytes) becomes the encoded key's beginning, "@@", and the SHA-256
// digest of the whole key, so that two keys never share a file; the key itself is then noted in the
// file (KeyNote). Empty only for an empty key.
std::string RecordFileName(std::string_view key);

// What the text of the record begins with, before its fields: empty for most keys; for one whose
// file name had to be shortened a pair without a name, which every reader of record texts skips:
// "=" and the encoded key.
std::string KeyNote(std::string_view key);

bool IsRecordFileName(std::string_view fileName);  // ends with ".dat"

// The key that a listed record file stands for, at most 259 bytes: the decoded file name, or for a
// shortened one the key noted in `text`. Where that note is missing or belongs to another file, the
// decoded name is the key; such a key leads to the same file. Empty when the name holds no key.
std::string KeyOfRecordFile(std::string_view fileName, std::string_view text);
