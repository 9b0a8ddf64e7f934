#include "web/pages/ItemActions.h"

#include "inventory/ItemDelete.h"
#include "inventory/LItem.h"
#include "web/accounts/PageCheck.h"
#include "web/framework/LWebUserInterface.h"

void WLItemDelete(LWebletForm& form) {
    if (!AuthenticateAction(form)) return;
    LItem item;
    if (!WLMayChange(form) || !form.Profile().Items().Open(item, form.Parameter("id"))) {
        return WLRedirect(form, "itemlist");  // a viewer, or another tab was quicker
    }
    const LItemListRow row{item.GetString("Name"), form.Parameter("loc")};
    item.Invalidate();  // the operation opens it by itself
    LWebUserInterface ui(form);
    LItemsDelete(ui, form.Profile(), {row});
    ui.Finish("itemlist");
}
