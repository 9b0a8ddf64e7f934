#include "datastore/LFileStoreDataStore.h"

#include "datastore/RecordText.h"
#include "platform/FileIo.h"
#include "platform/Folders.h"

std::string LFileStoreDataStore::MakeDataFilePath(std::string_view listFolder,
                                                  std::string_view key) {
    std::string path(listFolder);
    path += '/';
    path += CutText(EncodeText(key));
    path += ".dat";
    return path;
}

void LFileStoreDataStoreAppFolder::SetDefaultFolder() {
    folder_ = CutText(GetUserDataFolderApp());
    MakeFolderTree(folder_, 0700);
}
