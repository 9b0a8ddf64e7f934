// Memory for a text whose size is only known once it is written.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

// Unlike a string it does not fill memory that is about to be overwritten.
class LTextBuffer {
public:
    // Room for `size` bytes; what was in it is lost. Throws std::bad_alloc.
    char* Prepare(size_t size) {
        if (size > room_) {
            data_ = std::make_unique_for_overwrite<char[]>(size);
            room_ = size;
        }
        size_ = 0;
        return data_.get();
    }
    // The text is what lies between the beginning and `end`.
    void FinishAt(const char* end) { size_ = static_cast<size_t>(end - data_.get()); }
    // Makes the text `size` bytes long where it is shorter.
    void Extend(size_t size, char filler) {
        if (size <= size_) return;
        if (size > room_) {
            auto larger = std::make_unique_for_overwrite<char[]>(size);
            std::copy_n(data_.get(), size_, larger.get());
            data_ = std::move(larger);
            room_ = size;
        }
        std::fill(data_.get() + size_, data_.get() + size, filler);
        size_ = size;
    }
    std::string_view View() const { return {data_.get(), size_}; }

private:
    std::unique_ptr<char[]> data_;
    size_t room_ = 0, size_ = 0;
};
