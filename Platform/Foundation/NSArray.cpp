#include <Foundation/Storage.h>
#include <Foundation/Values.h>

namespace flarebox {
namespace {

using detail::ListStorage;
using detail::ValueAccess;

Value adoptList(Value::Kind kind, std::vector<Value> elements, bool isMutable) {
    auto storage = std::make_unique<ListStorage>(std::move(elements));
    return ValueAccess::adopt(kind, storage.release(), isMutable);
}

Value arrayValue(std::vector<Value> elements, bool isMutable) {
    std::erase_if(elements, [](const Value& element) { return element.isAbsent(); });
    return adoptList(Value::Kind::Array, std::move(elements), isMutable);
}

Value setValue(Value::Kind kind, std::span<const Value> elements, bool isMutable) {
    auto storage = std::make_unique<ListStorage>(std::vector<Value>());
    storage->values.reserve(elements.size());
    for (const Value& element : elements) storage->addDistinct(element);
    return ValueAccess::adopt(kind, storage.release(), isMutable);
}

std::span<const Value> elementsOf(const Value& list) noexcept {
    return list ? ValueAccess::list(list) : std::span<const Value>();
}

bool contains(const Value& list, const Value& value) noexcept {
    return list && ValueAccess::storage<ListStorage>(list).find(value) != detail::HashSlots::notFound;
}

}  // namespace

NSArray::NSArray(std::initializer_list<Value> elements) : Value(arrayValue(elements, false)) {}

NSArray NSArray::arrayWithValues(std::vector<Value> elements) {
    return NSArray(arrayValue(std::move(elements), false), Checked{});
}

std::span<const Value> NSArray::elements() const noexcept {
    return elementsOf(*this);
}

Value NSArray::objectAtIndex(std::size_t index) const noexcept {
    if (ValueAccess::isInDocument(*this)) return ValueAccess::document(*this).elementAt(extra_, index);
    const auto all = elements();
    return index < all.size() ? all[index] : Value();
}

NSArray NSArray::copy() const {
    if (!isMutable_) return *this;
    return NSArray(adoptList(Kind::Array, std::vector<Value>(begin(), end()), false), Checked{});
}

NSMutableArray NSArray::mutableCopy() const {
    if (!*this) return {};
    return NSMutableArray(adoptList(Kind::Array, std::vector<Value>(begin(), end()), true), NSMutableArray::Checked{});
}

NSMutableArray NSMutableArray::array() {
    return NSMutableArray(adoptList(Kind::Array, {}, true), Checked{});
}

void NSMutableArray::addObject(Value value) {
    if (*this && value) ValueAccess::storage<ListStorage>(*this).values.push_back(std::move(value));
}

void NSMutableArray::removeObjectAtIndex(std::size_t index) {
    if (index >= count()) return;
    auto& values = ValueAccess::storage<ListStorage>(*this).values;
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
}

void NSMutableArray::replaceObjectAtIndex(std::size_t index, Value value) {
    if (index < count() && value) ValueAccess::storage<ListStorage>(*this).values[index] = std::move(value);
}

NSSet NSSet::setWithValues(std::span<const Value> elements) {
    return NSSet(setValue(Kind::Set, elements, false), Checked{});
}

std::span<const Value> NSSet::elements() const noexcept {
    return elementsOf(*this);
}

bool NSSet::containsObject(const Value& value) const noexcept {
    return contains(*this, value);
}

NSMutableSet NSMutableSet::setWithValues(std::span<const Value> elements) {
    return NSMutableSet(setValue(Kind::Set, elements, true), Checked{});
}

NSOrderedSet NSOrderedSet::orderedSetWithValues(std::span<const Value> elements) {
    return NSOrderedSet(setValue(Kind::OrderedSet, elements, false), Checked{});
}

std::span<const Value> NSOrderedSet::elements() const noexcept {
    return elementsOf(*this);
}

bool NSOrderedSet::containsObject(const Value& value) const noexcept {
    return contains(*this, value);
}

NSMutableOrderedSet NSMutableOrderedSet::orderedSetWithValues(std::span<const Value> elements) {
    return NSMutableOrderedSet(setValue(Kind::OrderedSet, elements, true), Checked{});
}

}  // namespace flarebox
