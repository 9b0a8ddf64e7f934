#include "tests/inventory/LTestBusiness.h"

#include "platform/FileIo.h"

std::string LTestBusiness::Add(std::string_view list, Fields fields) const {
    LRecord record;
    profile_.List(list).CreateNewRecord(record);
    for (const auto& [name, value] : fields) record.SetString(name, value);
    return record.Flush() ? record.GetPrimaryKey() : std::string();
}

std::string LTestBusiness::Stored(std::string_view list, std::string_view key,
                                  std::string_view field) const {
    LRecord record;
    const bool isThere = profile_.List(list).Open(record, key);
    return isThere ? record.GetString(field) : "no record";
}

std::string LTestBusiness::ItemFile(std::string_view itemKey) const {
    return ReadFile(LFileStoreDataStore::MakeDataFilePath(profile_.Items().Folder(), itemKey))
        .value_or("no file");
}

void LTestBusiness::SetOption(std::string_view name, std::string_view value) {
    {
        LRecord options;
        profile_.OpenSettings(options, "Options");
        options.SetString(name, value);
    }
    profile_.Reload();
}
