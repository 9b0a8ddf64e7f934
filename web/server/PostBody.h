// Reading the URL-encoded body of a POST.
#pragma once

#include <cstdint>

class LWebletForm;

// A longer body is refused; also what the ordinary fields of an upload may take together.
inline constexpr uint64_t kMaxPostBytes = 3000000;

// Answers that the body is too long. The connection then closes, the body unread.
void RefuseTooLongPost(LWebletForm& form);

// Reads exactly `length` bytes, at most kMaxPostBytes, within as many milliseconds and `extraMs`
// more, and adds the pairs to the parameters. False when they did not come, which has been logged:
// the connection is to be closed.
[[nodiscard]] bool ReadPostForm(LWebletForm& form, uint64_t length, int extraMs);
