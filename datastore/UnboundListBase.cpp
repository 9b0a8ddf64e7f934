#include "datastore/UnboundListBase.h"

#include <memory>
#include <string>

namespace {

class LUnboundRecordStore final : public LDataStoreRecordStore {
public:
    bool Save(LRecord& record) const override {
        record.ClearDirty();
        return true;
    }
};

}  // namespace

void UnboundListBase::OpenAlways(LRecord& record, std::string_view key) {
    const std::string newKey(key);  // may be a view of the record's own
    record.Invalidate();
    record.Bind(std::make_unique<LUnboundRecordStore>());
    record.SetKeys(newKey, {});
}

void InitUnboundRecord(LRecord& record, std::string_view key) {
    UnboundListBase::OpenAlways(record, key);
}

void InitUnboundRecord(LRecord& record, const LRecord& source) {
    UnboundListBase::OpenAlways(record, source.GetPrimaryKey());
    record.CopyRecord(source);
}
