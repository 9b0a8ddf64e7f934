// The folder of static files that the server serves.
#pragma once

#include <string>

// Brings the files that the program carries in itself to `folder`, where they are missing or
// differ; everything else that lies there is left alone. What cannot be written is logged and
// leaves the old file, if there was one. False then.
bool RefreshWebFolder(const std::string& folder);
