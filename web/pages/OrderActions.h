// What is done with an order without opening it, and what the order form asks while it is filled
// in.
#pragma once

class LWebletForm;

// "id" names the order. Receiving and returning also take "status", what the person saw of it:
// pressed twice, or by two people, they book once.
void WLOrderDelete(LWebletForm& form);
void WLOrderReceive(LWebletForm& form);
void WLOrderReturn(LWebletForm& form);
// Makes the items that an order's lines name and nobody has.
void WLOrderRegItems(LWebletForm& form);

// Answers with what the fields of the order form come to, a row of texts between tabs for each:
// "line", its number from 0, its amount; "row", what it is, its amount.
void VWAJAXOCBTaxSelChange(LWebletForm& form);
// The same for the page's other question, whether old rates are kept; the form carries the answer.
void WLUseOldTaxRate(LWebletForm& form);
// The address of the location "id".
void VWAJAXOderLocationChange(LWebletForm& form);
