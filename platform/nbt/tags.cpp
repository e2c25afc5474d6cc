// Lists and compounds: places by key, typed reading and writing.
#include "platform/nbt/tags.h"

#include <algorithm>
#include <stdexcept>

namespace platform {

void ListTag::add(Tag value) {
    if (items_.empty()) {
        element_ = value.type();
    } else if (value.type() != element_) {
        throw std::invalid_argument("a list holds tags of one type");
    }
    items_.push_back(std::move(value));
}

void ListTag::clear() {
    items_.clear();
    element_ = TagType::End;
}

namespace {

template <class Entries>
auto place(Entries& entries, std::string_view key) {
    return std::lower_bound(entries.begin(), entries.end(), key,
                            [](const CompoundTag::Entry& e, std::string_view k) { return e.key.compare(k) < 0; });
}

template <class Value, class Compound>
auto* typed(Compound& tag, std::string_view key) {
    auto* found = tag.get(key);
    return found != nullptr ? found->template as<Value>() : nullptr;
}

template <class Value>
Value valueor(const CompoundTag& tag, std::string_view key, Value otherwise) {
    const auto* found = typed<Value>(tag, key);
    return found != nullptr ? *found : otherwise;
}

template <class Value>
Value& made(CompoundTag& tag, std::string_view key) {
    if (auto* found = typed<Value>(tag, key)) return *found;
    return std::get<Value>(tag.put(key, Value{}).value());
}

}  // namespace

const Tag* CompoundTag::get(std::string_view key) const {
    const auto it = place(entries_, key);
    return it != entries_.end() && it->key == key ? &it->value : nullptr;
}

Tag* CompoundTag::get(std::string_view key) { return const_cast<Tag*>(std::as_const(*this).get(key)); }

Tag& CompoundTag::put(std::string_view key, Tag value) {
    auto it = place(entries_, key);
    if (it != entries_.end() && it->key == key) {
        it->value = std::move(value);
    } else {
        it = entries_.insert(it, Entry{std::string(key), std::move(value)});
    }
    return it->value;
}

bool CompoundTag::erase(std::string_view key) {
    const auto it = place(entries_, key);
    if (it == entries_.end() || it->key != key) return false;
    entries_.erase(it);
    return true;
}

void CompoundTag::clear() { entries_.clear(); }

Tag& CompoundTag::Filler::add(std::string key, Tag value) {
    return tag_.entries_.emplace_back(Entry{std::move(key), std::move(value)}).value;
}

CompoundTag::Filler::~Filler() {
    auto& entries = tag_.entries_;
    const auto ordered = [](const Entry& a, const Entry& b) { return a.key < b.key; };
    const auto unordered = [](const Entry& a, const Entry& b) { return a.key >= b.key; };
    if (std::adjacent_find(entries.begin(), entries.end(), unordered) == entries.end()) return;
    std::stable_sort(entries.begin(), entries.end(), ordered);
    // The last of equal keys stays: unique() keeps the first of a run, so it runs from the back.
    const auto first =
        std::unique(entries.rbegin(), entries.rend(), [](const Entry& a, const Entry& b) { return a.key == b.key; });
    entries.erase(entries.begin(), first.base());
}

std::int8_t CompoundTag::getByte(std::string_view key, std::int8_t otherwise) const {
    return valueor(*this, key, otherwise);
}
std::int16_t CompoundTag::getShort(std::string_view key, std::int16_t otherwise) const {
    return valueor(*this, key, otherwise);
}
std::int32_t CompoundTag::getInt(std::string_view key, std::int32_t otherwise) const {
    return valueor(*this, key, otherwise);
}
std::int64_t CompoundTag::getInt64(std::string_view key, std::int64_t otherwise) const {
    return valueor(*this, key, otherwise);
}
std::string CompoundTag::getString(std::string_view key) const { return valueor(*this, key, std::string()); }
const CompoundTag* CompoundTag::getCompound(std::string_view key) const { return typed<CompoundTag>(*this, key); }
CompoundTag* CompoundTag::getCompound(std::string_view key) { return typed<CompoundTag>(*this, key); }
const ListTag* CompoundTag::getList(std::string_view key) const { return typed<ListTag>(*this, key); }
ListTag* CompoundTag::getList(std::string_view key) { return typed<ListTag>(*this, key); }

void CompoundTag::putByte(std::string_view key, std::int8_t value) { put(key, value); }
void CompoundTag::putShort(std::string_view key, std::int16_t value) { put(key, value); }
void CompoundTag::putInt(std::string_view key, std::int32_t value) { put(key, value); }
void CompoundTag::putInt64(std::string_view key, std::int64_t value) { put(key, value); }
void CompoundTag::putString(std::string_view key, std::string value) { put(key, std::move(value)); }
CompoundTag& CompoundTag::compound(std::string_view key) { return made<CompoundTag>(*this, key); }
ListTag& CompoundTag::list(std::string_view key) { return made<ListTag>(*this, key); }

}  // namespace platform
