// What is done to an item of the list without a form.
#pragma once

class LWebletForm;

// Deletes the item named by the parameter "id" from the location named by "loc", after a
// confirmation.
void WLItemDelete(LWebletForm& form);
