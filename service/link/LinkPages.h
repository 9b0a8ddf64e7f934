// The three page names through which partner applications (invoicing, accounting, point of sale)
// use the stock. They need no account and no session: the code of the business opens them. Answers
// are bare text without a status line or headers, and then the connection ends; a refusal is the
// first four bytes of its message, by which partners know it. All of this is their protocol.
#pragma once

class LWebletForm;

// "auth", "loc", "item", "qty": adds "qty" (a number as the business writes it; negative takes out)
// to the item's stock at the location. With "test" being "true" or "1" only code and
// location are checked.
void WLLinkQuantityChange(LWebletForm& form);

// "auth", "loc", "sinceseconds": a greeting and the item file as a download, for all items or for
// those that changed within so many seconds.
void WLLinkSync(LWebletForm& form);

// "auth": the names of the business's locations.
void WLLinkLocations(LWebletForm& form);
