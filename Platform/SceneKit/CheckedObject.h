#pragma once

#include <Foundation/Values.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flarebox::detail {

/// The first thing found wrong; later ones are ignored.
class Refusal {
public:
    bool isRefused() const { return !reason_.empty(); }
    const std::string& reason() const { return reason_; }
    void refuse(std::string reason) {
        if (reason_.empty()) reason_ = std::move(reason);
    }

private:
    std::string reason_;
};

/// One object of a description that nobody can be trusted to have written right. What is read from it is checked and
/// goes into a clean copy; what is never read is left out of that. Whatever is wrong becomes the refusal, and the
/// answer is then empty.
class CheckedObject {
public:
    using Visit = std::function<void(CheckedObject& object, std::size_t index)>;

    /// A null parent for the description itself. `name` and the parent have to outlive this.
    CheckedObject(const Value& value, Refusal& refusal, const CheckedObject* parent = nullptr,
                  std::string_view name = {}, std::optional<std::size_t> index = {});

    bool has(std::string_view key) const;
    /// An integer from `least` to `most`; `otherwise` where the key is missing.
    std::size_t integer(std::string_view key, std::size_t least, std::size_t most, std::size_t otherwise);
    /// The number of one of `count` things; nothing where the key is missing.
    std::optional<std::size_t> index(std::string_view key, std::size_t count);
    std::size_t requiredIndex(std::string_view key, std::size_t count);
    /// Numbers of things, at least one.
    std::vector<std::size_t> indices(std::string_view key, std::size_t count, std::size_t most);
    /// The numbers of things under those of the names that the object has.
    std::vector<std::pair<std::string, std::size_t>> namedIndices(std::span<const std::string_view> names,
                                                                  std::size_t count);
    bool flag(std::string_view key);
    /// A finite number.
    std::optional<float> number(std::string_view key);
    /// Finite numbers, as many as one of the counts says; empty where the key is missing.
    std::vector<float> numbers(std::string_view key, std::initializer_list<std::size_t> counts);
    std::vector<float> numbers(std::string_view key, std::size_t least, std::size_t most);
    /// One of the texts; the first where the key is missing.
    std::string_view text(std::string_view key, std::initializer_list<std::string_view> allowed);
    /// Any text, not copied; empty where the key is missing.
    std::string_view peekText(std::string_view key) const;
    /// Texts of an array, not copied.
    std::vector<std::string_view> peekTexts(std::string_view key);

    /// Visits the objects of an array, at most `most`; false where the key is missing or something is wrong.
    bool objects(std::string_view key, std::size_t most, const Visit& visit);
    /// Visits an object; false where the key is missing or something is wrong.
    bool object(std::string_view key, const std::function<void(CheckedObject&)>& visit);

    void refuse(std::string_view key, std::string_view what) const;
    bool isRefused() const { return refusal_.isRefused(); }
    /// For entries of the clean copy that are not taken over as they are.
    void put(std::string_view key, Value value);
    /// Leaves an entry out of the clean copy after all.
    void drop(std::string_view key);
    NSDictionary clean() const { return NSDictionary::dictionaryWithEntries(clean_); }

private:
    std::string place() const;
    Value valueOf(std::string_view key) const;
    std::optional<std::size_t> checkedIndex(std::string_view key, const Value& value, std::size_t count) const;

    NSDictionary object_;
    Refusal& refusal_;
    const CheckedObject* parent_;
    std::string_view name_;
    std::optional<std::size_t> index_;
    std::vector<NSDictionary::Entry> clean_;
};

}  // namespace flarebox::detail
