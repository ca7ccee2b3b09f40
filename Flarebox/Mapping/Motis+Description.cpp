#include <Flarebox/Mapping/Motis.h>
#include <Foundation/Storage.h>

namespace flarebox {

namespace {

/// Objects that hold each other would never end, and those that share others could fill any memory: beyond these bounds
/// an object is only named.
class DescribedObject {
public:
    DescribedObject() {
        objects_ = depth_ == 0 ? 1 : objects_ + 1;
        ++depth_;
    }
    ~DescribedObject() { --depth_; }
    DescribedObject(const DescribedObject&) = delete;
    DescribedObject& operator=(const DescribedObject&) = delete;

    bool isTooMuch() const { return depth_ > deepest || objects_ > most; }

private:
    static constexpr int deepest = 200, most = 20'000;
    static inline thread_local int depth_ = 0, objects_ = 0;
};

std::string indentation(int level) {
    return std::string(level > 0 ? 4 * static_cast<std::size_t>(level) : 0, ' ');
}

void appendElements(std::string& text, std::span<const Value> elements, int level) {
    for (std::size_t position = 0; position < elements.size(); ++position) {
        text += indentation(level + 2) + mts_descriptionWithIndentation(elements[position], level + 2);
        if (position + 1 < elements.size()) text += ",";
        text += "\n";
    }
}

// Readers of these texts rely on the comma after the last of several members of a set or dictionary.
const char* separatorOfUnordered(std::size_t count) {
    return count > 1 ? ",\n" : "\n";
}

void appendMembers(std::string& text, std::span<const Value> members, int level) {
    for (const Value& member : members) {
        text += indentation(level + 2) + mts_descriptionWithIndentation(member, level + 2);
        text += separatorOfUnordered(members.size());
    }
}

void appendEntries(std::string& text, std::span<const NSDictionary::Entry> entries, int level) {
    for (const auto& [key, value] : entries) {
        text += indentation(level + 2) + mts_descriptionWithIndentation(key, level + 2) + ":";
        text += mts_descriptionWithIndentation(value, level + 2);
        text += separatorOfUnordered(entries.size());
    }
}

void appendValue(std::string& text, const Value& value, int level) {
    switch (value.kind()) {
        case Value::Kind::Absent:
            text += "nil";
            return;
        case Value::Kind::Array:
            text += "[\n";
            appendElements(text, value.as<NSArray>().elements(), level);
            text += indentation(level + 1) + "]";
            return;
        case Value::Kind::Set:
            text += "(\n";
            appendMembers(text, value.as<NSSet>().elements(), level);
            text += indentation(level + 1) + ")";
            return;
        case Value::Kind::Dictionary:
            text += "{\n";
            appendEntries(text, value.as<NSDictionary>().entries(), level);
            text += indentation(level + 1) + "}";
            return;
        case Value::Kind::String:
            text.append("\"").append(value.as<NSString>().text()).append("\"");
            return;
        default:
            text += mts_descriptionWithIndentation(value, level + 1);
    }
}

/// The property names of the merged mapping in its order, duplicates included.
std::vector<std::string_view> mappedNames(const MotisClass& cls) {
    std::vector<std::string_view> names;
    // The texts stay when the handle goes: the table of a class is kept.
    const NSDictionary mapping = cls.mts_cachedMapping();
    for (const auto& [key, name] : mapping.entries()) {
        if (name.kind() == Value::Kind::String) names.push_back(detail::ValueAccess::text(name));
    }
    return names;
}

}  // namespace

std::string MotisObject::mts_extendedObjectDescription() const {
    const std::vector<std::string_view> names = mappedNames(classInfo());
    if (names.empty()) return description();
    std::vector<NSDictionary::Entry> entries;
    for (const std::string_view name : names) {
        const Value value = valueForKey(name);
        entries.emplace_back(Value(name), value ? value : Value::null());
    }
    return description() + " - Mapped Values: " + NSDictionary::dictionaryWithEntries(std::move(entries)).description();
}

std::string MotisObject::mts_descriptionWithIndentation(int level) const {
    const std::vector<std::string_view> names = mappedNames(classInfo());
    std::string text = description();
    const DescribedObject object;
    if (names.empty() || object.isTooMuch()) return text;
    text += ":{\n";
    for (std::size_t position = 0; position < names.size(); ++position) {
        text += indentation(level + 1);
        text.append(names[position]).append("=");
        appendValue(text, valueForKey(names[position]), level);
        text += position + 1 < names.size() ? ",\n" : "\n";
    }
    return text + indentation(level) + "}";
}

std::string mts_description(const Value& value) {
    return mts_descriptionWithIndentation(value, 0);
}

std::string mts_descriptionWithIndentation(const Value& value, int level) {
    if (const auto* model = value.object<MotisObject>()) return model->mts_descriptionWithIndentation(level);
    return value.description();
}

}  // namespace flarebox
