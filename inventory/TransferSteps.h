// What making a transfer and taking its steps share.
#pragma once

#include "inventory/Transfers.h"

// Sets the state with its date and person, and saves. False, and the stored transfer as before,
// when it could not be written: a full disk shows in what is read back.
[[nodiscard]] bool StoreTransferState(const LProfile& profile, LTransfer& transfer,
                                      LTransferState state, const LTransferStep& step);
