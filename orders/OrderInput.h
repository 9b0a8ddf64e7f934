// What a person enters for an order, as the web and the desktop editor both hand it over.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "datastore/LProfile.h"
#include "orders/LPOrder.h"
#include "orders/OrderTaxes.h"
#include "orders/OrderTotals.h"
#include "platform/LUserInterface.h"

// One line as typed, numbers and money in the profile's format.
struct LOrderLineInput {
    std::string code, description, measure;
    std::string quantity, unitCost;  // empty: 0
    std::string taxName;             // an entry of the tax list; empty: "Default"
    // The number, from 1, of the stored line that this one was made from: it keeps that line's
    // received quantity and, where old rates are used, its rate. 0: a new line.
    int storedLine = 0;
};

struct LOrderInput {
    std::string id;        // empty: a new order
    std::string supplier;  // the name; one that no supplier bears makes a new supplier
    std::string date, receiptDate;
    std::string locationId;
    std::string shipBy, trackingRef, address, shippingAddress, notes, internalNotes;
    bool isSameAsBillTo = false;
    bool isNotTaxed = false;
    std::vector<LOrderLineInput> lines;
    // Whether rates that have changed since the order was recorded were kept; unset until it was
    // asked. Lives as long as the editing does.
    std::optional<LTaxRates> taxRates;
};

// What the editor shows for a stored order. Quantities come with as many decimals as they have, so
// that saving without a change changes nothing.
LOrderInput LOrderInputOf(const LProfile& profile, const LPOrder& order);
// What it shows for a new one: today's dates, the first location, the company's address.
LOrderInput LOrderNewInput(const LProfile& profile);

// The code under which a line's item is known: its present one, or what was typed for an item that
// is not there (yet).
std::string LOrderLineCode(const LProfile& profile, const LPOrder& order, int line);
// The entry of the tax list that stands for the line's tax.
std::string LOrderLineTaxChoice(const LTaxOptions& options, const LPOrder& order, int line);

enum class LOrderField {
    kDate,
    kReceiptDate,
    kSupplier,
    kLocation,
    kLines,
    kItem,
    kQuantity,
    kUnitCost
};
// `line` is the index of the input line that was refused, -1 where none is meant; `title` is empty
// where a complaint has none.
struct LOrderError : LFieldError<LOrderField> {
    std::string title;
    int line = -1;
};

// What was entered, read. Blank lines are gone; `inputLine` is the index that a line had.
struct LOrderReadLine {
    std::string code, description, measure, taxName;
    double quantity = 0;
    LMoney unitCost;
    int storedLine = 0;
    int inputLine = 0;
};
struct LOrderRead {
    std::string supplier;           // without blanks around it
    std::string date, receiptDate;  // stored dates, or what was typed where it is none
    std::vector<LOrderReadLine> lines;
};

// Only refuses what cannot be read: an unfinished order may be kept as a draft.
LOrderError LOrderReadInput(const LProfile& profile, const LOrderInput& input, LOrderRead& read);
// Checks an order that is to be recorded or made a template; the first complaint ends it. Asks
// before an order for which stock has been received is recorded again; "Cancel" there is a refusal
// without a message. Changes nothing.
LOrderError LOrderValidate(LUserInterface& ui, const LProfile& profile, const LOrderInput& input,
                           LOrderRead& read);
