// The handlers of the page table: one instance per page or dialog class.
#pragma once

class LWebletForm;

template <typename Page>
void WLWebPageRun(LWebletForm& form) {
    Page page(form);
    page.Open();
}

template <typename Dialog>
void WLWebDialogRun(LWebletForm& form) {
    Dialog dialog(form);
    dialog.Run();
}
