// The upload receiver: reads the body of a POST that may carry files.
#pragma once

#include <cstdint>

#include "web/server/LWebPostFile.h"

class LWebletForm;

// What the program's own upload dialogs take.
inline constexpr uint64_t kMaxUploadBytes = 20000000;

// For post scripts. Reads a multipart body part by part: ordinary parts become parameters, chosen
// files go to the disk and are added to `files`, and progress is recorded for the number
// "uBrowserID" of the address. All files together may have `maxBytes`, the ordinary parts 3,000,000
// bytes. Without a session files are passed over: the page check will turn the request away. Any
// other body is read as a form's.
//
// False when the request is over: it was refused as too long, or was no such body, or did not come
// in time (as many milliseconds as bytes and 20 s more, no minute of them silent).
bool LWebPostFileReceive(LWebletForm& form, LWebPostFiles& files, uint64_t maxBytes);
