// A dialog that also receives files.
#pragma once

#include <string>

#include "web/framework/LWebDialogWithNavTabs.h"
#include "web/framework/PostFileReceive.h"
#include "web/framework/TabData.h"

// Its page needs a post script beside its ordinary one:
//
//     void ReceiveThing(LWebletForm& form) {
//         LWebPostFileReceive(form, form.PostFiles(), kMaxUploadBytes);
//     }
//     LWebletInstallPostScript("thingprop", ReceiveThing);
//
// File inputs (AddFileInput) are then sent through a hidden frame with their progress shown; a
// submit without a chosen file goes the way of other dialogs. With a tab name, files that were
// chosen on this tab are kept while other tabs are looked at.
class LWebDialogUploadFiles : public LWebDialogWithNavTabs {
public:
    // `maxBytes` is what all files of one submit may have together; the page tells before it sends.
    explicit LWebDialogUploadFiles(LWebletForm& form, uint64_t maxBytes = kMaxUploadBytes);

protected:
    // The received files, from 0: those of this submit, then those that the tab kept and this
    // submit did not replace. `name` is what the browser calls the file, `path` where it lies until
    // the answer (a kept one: until DropTabData). False when there is no such file.
    bool GetUploadFile(size_t index, std::string& name, std::string& path);
    // The same by the file input's id.
    bool GetUploadFileOf(int id, std::string& name, std::string& path);

    bool CheckReceived() override;
    void AddDialogScript() override;

private:
    std::vector<LTabFile> UploadedFiles();

    const uint64_t maxBytes_;
};
