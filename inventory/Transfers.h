// Transfers: requests to move stock from one location to another, which are sent and then received.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "datastore/LDate.h"
#include "datastore/LProfile.h"
#include "inventory/LNameMap.h"
#include "platform/LUserInterface.h"

// Requested -> sent -> received. A requested or a sent one can be cancelled.
enum class LTransferState { kRequested, kSent, kReceived, kCancelled };
// "Requested", "Sent", "Received", "Cancelled": stored and shown.
std::string_view TransferStateName(LTransferState state);

struct LTransferLine {
    std::string itemId, itemCode;  // the code as it was when the transfer was made
    double quantity = 0;           // in the item's unit, more than 0
};

// A record of the list "Transfers"; its key is its number ("TRF1"). "State"; "From" and "To": keys
// of locations, "FromName" and "ToName" their names when it was made; "Lines": what is to move, as
// elements "item key/quantity/item code"; "InTransit": what has left and not arrived, as elements
// "item key/quantity" of items that keep stock (components in place of built items); "Note"; for
// each state that was reached "RequestedDate" and "RequestedBy", "SentDate" and so on; "Moving" is
// "1" from the state being stored until the stock and the history have followed.
class LTransfer : public LRecord {
public:
    LTransferState State() const;  // any text that is none reads as cancelled: nothing moves
    bool IsOpen() const { return State() <= LTransferState::kSent; }
    std::vector<LTransferLine> Lines() const;
    // The locations' names of now, or where one is gone the name that it had.
    std::string FromName(const LProfile& profile) const;
    std::string ToName(const LProfile& profile) const;
    // The same for a list of transfers, from the names of all locations.
    std::string FromName(const LNameMap& locations) const;
    std::string ToName(const LNameMap& locations) const;
};
class LTransferList : public LAppDataBaseList<LTransfer> {
public:
    explicit LTransferList(const LProfile& profile)
        : LAppDataBaseList(profile.Store(), "Transfers") {}
};

// A transfer as typed; the quantities in the profile's number format. Blank lines are left out.
struct LTransferLineInput {
    std::string itemCode, quantity;
};
struct LTransferInput {
    std::string from, to;  // names of locations
    std::vector<LTransferLineInput> lines;
    std::string note;
};
enum class LTransferField { kFrom, kTo, kItem, kQuantity };
// `line` is the index of the input's line that was refused, -1 where none was.
struct LTransferError : LFieldError<LTransferField> {
    int line = -1;
};
// Who does a step, and the day on which it is said to have happened.
struct LTransferStep {
    std::string who;
    LDate date;
};

// Makes a requested transfer under the next free number, which the settings block "Transfer" keeps.
// Checks first; on an error nothing is saved. Stock does not change. `transfer` is bound
// afterwards.
LTransferError LTransferRequest(const LProfile& profile, LTransfer& transfer,
                                const LTransferInput& input, const LTransferStep& step);

// Each step below is taken under the business's movement lock on the transfer as it is stored then,
// so that of several people who press the button together one has taken it and the others are told
// so. It returns what stands against it in words for the person, one sentence a line, and has then
// changed nothing; empty when it was done. Items of the lines change through LItemChangeQuantity,
// all or none, and the receiving history gets a row of no value for each line: minus the quantity
// at the source when it is sent, plus the quantity where it arrives.
//
// What a step leaves in the middle of it (the process is killed) is a transfer whose state is ahead
// of its stock, never stock that moves a second time. It can be told: TransferInterruption.

// Whether stock may be sent that is not there; it goes below zero then, as it may in a sale.
enum class LShortage { kRefuse, kAllow };
[[nodiscard]] std::string LTransferSend(const LProfile& profile, std::string_view id,
                                        const LTransferStep& step, LShortage shortage);
[[nodiscard]] std::string LTransferReceive(const LProfile& profile, std::string_view id,
                                           const LTransferStep& step);
// What was sent goes back to where it came from.
[[nodiscard]] std::string LTransferCancel(const LProfile& profile, std::string_view id,
                                          const LTransferStep& step);

// Makes a transfer and takes its steps up to `until` (requested, sent or received) at once. On an
// error nothing has moved and no transfer is left, except that one which could be sent but not
// received is left cancelled.
LTransferError LTransferStock(const LProfile& profile, LTransfer& transfer,
                              const LTransferInput& input, const LTransferStep& step,
                              LTransferState until, LShortage shortage);

// What the person has to know of a transfer whose last step was cut off in the middle of it, in
// words; empty for any other. The next step that is done ends it.
std::string TransferInterruption(const LProfile& profile, std::string_view id);

// A sentence for each item of which the source does not hold what the transfer needs; the quantity
// of a built item counts by its components.
std::vector<std::string> TransferShortages(const LProfile& profile, const LTransfer& transfer);

// Whether a requested or sent transfer has a line for the item or something of it on the way.
bool IsItemOnOpenTransfer(const LProfile& profile, std::string_view itemId);
// Whether such a transfer goes from or to that location (by key).
bool IsLocationOnOpenTransfer(const LProfile& profile, std::string_view locationId);
