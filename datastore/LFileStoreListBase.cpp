#include "datastore/LFileStoreListBase.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "datastore/LFolderReader.h"
#include "datastore/LListFolder.h"
#include "datastore/RecordFileName.h"
#include "platform/LFileDescriptor.h"

namespace {

class LFileRecordStore final : public LDataStoreRecordStore {
public:
    explicit LFileRecordStore(std::shared_ptr<const LListFolder> list) : list_(std::move(list)) {}
    bool Save(LRecord& record) const override { return list_->Save(record); }
    const LListFolder* List() const { return list_.get(); }

private:
    std::shared_ptr<const LListFolder> list_;
};

void BindTo(const std::shared_ptr<const LListFolder>& list, LRecord& record) {
    record.Bind(std::make_unique<LFileRecordStore>(list));
}

std::shared_ptr<const LListFolder> MakeListFolder(const LFileStoreDataStore& store,
                                                  std::string_view listName,
                                                  std::string_view keyField) {
    std::string path = store.Folder() + "/";
    path += listName;
    ::mkdir(path.c_str(), 0777);
    return std::make_shared<const LListFolder>(std::move(path), keyField);
}

}  // namespace

LFileStoreListBase::LFileStoreListBase(const LFileStoreDataStore& store, std::string_view listName,
                                       std::string_view keyField)
    : shared_(MakeListFolder(store, listName, keyField)) {}

const std::string& LFileStoreListBase::Folder() const { return shared_->Path(); }

const std::string& LFileStoreListBase::KeyField() const { return shared_->KeyField(); }

bool LFileStoreListBase::TestRecordExists(std::string_view key) const {
    return shared_->Exists(key);
}

void LFileStoreListBase::CreateNewRecord(LRecord& record) const {
    record.Invalidate();
    BindTo(shared_, record);
}

void LFileStoreListBase::CreateNewRecord(LRecord& record, std::string_view key) const {
    const std::string newKey(key);  // may be a view of the record's own
    record.Invalidate();
    if (newKey.empty()) return;
    BindTo(shared_, record);
    record.SetKeys(newKey, {});
}

bool LFileStoreListBase::Open(LRecord& record, std::string_view key) const {
    const std::string newKey(key);
    record.Invalidate();
    if (!shared_->Load(newKey, record)) return false;
    BindTo(shared_, record);
    record.SetKeys(newKey, newKey);
    return true;
}

void LFileStoreListBase::OpenAlways(LRecord& record, std::string_view key) const {
    const std::string newKey(key);
    record.Invalidate();
    const bool loaded = shared_->Load(newKey, record);
    BindTo(shared_, record);
    record.SetKeys(newKey, loaded ? std::string_view(newKey) : std::string_view());
}

bool LFileStoreListBase::Load(std::string_view key, LRecord& record) const {
    return shared_->Load(key, record);
}

bool LFileStoreListBase::Save(LRecord& record) const { return shared_->Save(record); }

bool LFileStoreListBase::Delete(std::string_view key) const { return shared_->Delete(key); }

std::unique_ptr<LFileStoreIteratorBase> LFileStoreListBase::CreateIteratorBase(
    LRecord& record) const {
    record.Invalidate();
    std::unique_ptr<LFileStoreIteratorBase> iterator(new LFileStoreIteratorBase(shared_));
    iterator->Next(record);
    return iterator;
}

// The folder stays open for this one walk, so that files are opened relative to it.
struct LFileStoreIteratorBase::State {
    explicit State(std::shared_ptr<const LListFolder> listFolder)
        : list(std::move(listFolder)),
          folder(::open(list->Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          reader(folder.Get()) {}

    std::shared_ptr<const LListFolder> list;
    LFileDescriptor folder;
    LFolderReader reader;
};

LFileStoreIteratorBase::LFileStoreIteratorBase(std::shared_ptr<const LListFolder> list)
    : state_(std::make_unique<State>(std::move(list))) {}

LFileStoreIteratorBase::~LFileStoreIteratorBase() = default;

void LFileStoreIteratorBase::Next(LRecord& record) {
    record.Flush();
    const LListFolder& list = *state_->list;
    while (const LFolderReader::Entry* entry = state_->reader.Next()) {
        if (!entry->mayBeFile || !IsRecordFileName(entry->name)) continue;
        if (!list.LoadListed(state_->folder.Get(), entry->name, record)) continue;
        record.ClearDirty();
        // Whoever had the record meanwhile may have bound it elsewhere.
        const auto* store = dynamic_cast<const LFileRecordStore*>(record.Store());
        if (store == nullptr || store->List() != &list) BindTo(state_->list, record);
        return;
    }
    record.Invalidate();
}
