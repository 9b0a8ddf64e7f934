// Answers made of a file or of a block of memory.
#pragma once

#include <string>
#include <string_view>

class LWebletForm;

// Answers with the file at `path`: as it is, the part that a "Range" header asks for, its
// compressed sibling (".gz") where the client takes that, "304 Not Modified" when the two header
// values tell that the client has it already, or a 404 that keeps the connection. After a failure
// midway the connection is marked to be closed.
void LWebletServeFile(LWebletForm& form, const std::string& path, std::string_view ifNoneMatch,
                      std::string_view ifModifiedSince);

// Answers with `content` as a download named `fileName`. False when the client has gone.
bool LWebletServeBuffer(LWebletForm& form, std::string_view content, std::string_view contentType,
                        std::string_view fileName);
