// Steps that the master records share: finding one by its name, deleting the chosen ones.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datastore/LFileStoreListBase.h"
#include "inventory/MovementLock.h"
#include "platform/LUserInterface.h"

// Opens the first record, in the store's order, whose "Name" passes `matches`; otherwise `record`
// is left unbound.
template <typename Matches>
bool OpenFirstNamed(const LFileStoreListBase& list, LRecord& record, const Matches& matches) {
    const auto iterator = list.CreateIteratorBase(record);
    for (; record.IsBound(); iterator->Next(record)) {
        if (matches(record.GetView("Name"))) return true;
    }
    return false;
}

// Deletes the records of these keys. `refusal(record)` gives the reason why one has to stay, empty
// when it may go; reasons are shown under `title` and the others still deleted. Under the
// business's movement lock, so that nothing comes to name a record between the look and the
// deletion. True when at least one was deleted.
template <typename Record, typename Refusal>
bool DeleteChosen(LUserInterface& ui, const LProfile& profile, const LAppDataBaseList<Record>& list,
                  std::string_view title, const std::vector<std::string>& keys,
                  const Refusal& refusal) {
    bool anyDeleted = false;
    std::vector<std::string> reasons;
    {
        const LMovementLock lock(profile);
        for (const std::string& key : keys) {
            Record record;
            if (!list.Open(record, key)) continue;  // someone else was quicker
            std::string reason = refusal(record);
            if (reason.empty()) {
                anyDeleted = list.Delete(key) || anyDeleted;
            } else {
                reasons.push_back(std::move(reason));
            }
        }
    }
    // Only now: while a message stands on the screen, others' movements must not wait.
    for (const std::string& reason : reasons) ui.Inform(title, reason);
    return anyDeleted;
}
