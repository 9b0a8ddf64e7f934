#include "web/framework/LWebDialogUploadFiles.h"

#include <algorithm>

#include "web/framework/UploadProgress.h"

LWebDialogUploadFiles::LWebDialogUploadFiles(LWebletForm& form, uint64_t maxBytes)
    : LWebDialogWithNavTabs(form), maxBytes_(maxBytes) {
    Script().Include("ajax.js");
    Script().Include("postfile.js");
}

std::vector<LTabFile> LWebDialogUploadFiles::UploadedFiles() {
    std::vector<LTabFile> files;
    for (const LWebPostFile& file : Form().PostFiles()) {
        if (file.IsStored()) files.push_back({file.FieldName(), file.Name(), file.Path()});
    }
    const size_t received = files.size();
    for (LTabFile& kept : ReadTabFiles(Form(), TabName())) {
        const auto isReplaced = [&kept](const LTabFile& file) { return file.field == kept.field; };
        const auto end = files.begin() + static_cast<std::ptrdiff_t>(received);
        if (std::none_of(files.begin(), end, isReplaced)) files.push_back(std::move(kept));
    }
    return files;
}

bool LWebDialogUploadFiles::GetUploadFile(size_t index, std::string& name, std::string& path) {
    const std::vector<LTabFile> files = UploadedFiles();
    if (index >= files.size()) return false;
    name = files[index].name;
    path = files[index].path;
    return true;
}

bool LWebDialogUploadFiles::GetUploadFileOf(int id, std::string& name, std::string& path) {
    for (const LTabFile& file : UploadedFiles()) {
        if (file.field != std::to_string(id)) continue;
        name = file.name;
        path = file.path;
        return true;
    }
    return false;
}

bool LWebDialogUploadFiles::CheckReceived() {
    for (const LWebPostFile& file : Form().PostFiles()) {
        if (file.IsStored()) continue;
        PopupBoxError("The file \"" + file.Name() +
                      "\" could not be stored on the server. Nothing was saved.");
        return false;
    }
    return true;
}

void LWebDialogUploadFiles::AddDialogScript() {
    Out().Write(
        "<iframe id=uploadIFrame name=uploadIFrame onload=uploadDone()  height=1 width=1 "
        "style='visibility:hidden;'></iframe>");
    LWebDialogWithNavTabs::AddDialogScript();
    Script().Add("uBrowserID = %u;", NewUploadNumber());
    Script().Add("uploadMaxBytes = %u;", maxBytes_);
    Script().Add(
        "var uploadForm = document.getElementById('dialogform');"
        "var currentAction = uploadForm.getAttribute('action');"
        "uploadForm.setAttribute('action', currentAction + '?uBrowserID='+uBrowserID);\n");
}
