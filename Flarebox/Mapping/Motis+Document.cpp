// Filling straight from a decoded document, without making values of its dictionaries.

#include <Flarebox/Mapping/Motis.h>
#include <Flarebox/Mapping/MotisPlan.h>
#include <Flarebox/Mapping/NestingLevel.h>
#include <Foundation/Storage.h>

#include <ranges>
#include <utility>

namespace flarebox {

namespace {

using detail::DocumentStorage;
using detail::TapeWord;
using detail::ValueAccess;

using NumberKind = ValueAccess::NumberKind;

double secondsOf(NumberKind kind, std::uint64_t bits) {
    if (kind == NumberKind::Signed) return static_cast<double>(static_cast<std::int64_t>(bits));
    return kind == NumberKind::Unsigned ? static_cast<double>(bits) : std::bit_cast<double>(bits);
}

/// Writes the element at `index` into the field of a property that takes it as it is; false when it does not. A number
/// is as good as a date.
bool take(const PropertyPlan& property, Value& field, const DocumentStorage& document, std::uint32_t index) {
    const auto takes = [&](Value::Kind kind) { return property.fittingKind == kind || property.takesAnything; };
    const auto takeNumber = [&](NumberKind kind) {
        if (takes(Value::Kind::Number))
            ValueAccess::setNumber(field, kind, document.numberBits(index));
        else if (property.fittingKind == Value::Kind::Date)
            ValueAccess::setDate(field, secondsOf(kind, document.numberBits(index)));
        else
            return false;
        return true;
    };
    const TapeWord word = document.word(index);
    switch (word.sort()) {
        case '"':
            if (!takes(Value::Kind::String)) return false;
            ValueAccess::borrow(field, Value::Kind::String, document, word.textPlace());
            return true;
        case 'l':
            return takeNumber(NumberKind::Signed);
        case 'u':
            return takeNumber(NumberKind::Unsigned);
        case 'd':
            return takeNumber(NumberKind::Floating);
        case 'n':
            ValueAccess::setEmpty(field, Value::Kind::Absent);
            return true;
        case '{':
            if (!takes(Value::Kind::Dictionary)) return false;
            break;
        case '[':
            if (!property.takesAnything) return false;
            break;
        default:
            if (!takes(Value::Kind::Number)) return false;
    }
    document.borrow(field, index);
    return true;
}

/// Where a key path leads that starts at the element at `index`.
struct Destination {
    /// Leads nowhere when it is 0.
    std::uint32_t index = 0;
    /// A path may lead to a value that is not there before it is asked for.
    bool needsValues = false;
};

Destination destination(const MTSKeyPath& path, const DocumentStorage& document, std::uint32_t index) {
    for (const MTSKeyPath::Component& component : path.furtherComponents()) {
        const char sort = document.word(index).sort();
        if (sort == '[' && !std::in_range<std::size_t>(component.index)) return {0, true};
        if (sort == '[')
            index = document.indexOfElement(index, static_cast<std::size_t>(component.index));
        else
            index = sort == '{' ? document.indexOfKey(index, component.name) : 0;
        if (index == 0) break;
    }
    return {index, false};
}

}  // namespace

void MotisObject::fillFromDocument(const DocumentStorage& document, std::uint32_t index) {
    const MotisPlan& plan = classInfo().plan();
    if (fillInOrder(plan, document, index)) return;
    Value dictionary;
    document.borrow(dictionary, index);
    fillFromEntries(plan, dictionary.as<NSDictionary>());
}

bool MotisObject::fillInOrder(const MotisPlan& plan, const DocumentStorage& document, std::uint32_t index) {
    // The fields count one document for all of them.
    if (document_ && &ValueAccess::document(document_) != &document) return false;
    KeyMatches matches;
    if (!plan.sequences().find(document, index, matches)) return false;
    if (!document_) {
        Value root;
        ValueAccess::borrow(root, Value::Kind::Dictionary, document, index);
        document_ = static_cast<const Value&>(root);
    }
    Ref<NSObject> self;
    for (const auto& [key, at] : matches) {
        if (key && key->isPlain() && takeFromDocument(*key->property, document, at + 1)) continue;
        // Hooks may run from here on, and let go of the last reference to this very object.
        if (!self) self = retained();
        setEntryFromDocument(plan, key, document, at);
    }
    return true;
}

bool MotisObject::takeFromDocument(const PropertyPlan& property, const DocumentStorage& document, std::uint32_t index) {
    return property.field && take(property, this->*property.field, document, index);
}

bool MotisObject::takeModels(const PropertyPlan& property, const DocumentStorage& document, std::uint32_t index) {
    const NestingLevel level;
    if (!property.modelClass || level.isTooDeep()) return false;
    const auto model = [&](std::uint32_t at) {
        Ref<NSObject> made = property.modelClass->create();
        // Objects of a model class are model objects.
        if (made) static_cast<MotisObject&>(*made).fillFromDocument(document, at);
        return Value(std::move(made));
    };
    const char sort = document.word(index).sort();
    if (property.rule.classKind == ClassKind::Model) {
        if (sort != '{') return false;
        Value made = model(index);
        if (made)
            this->*property.field = std::move(made);
        else
            mts_invalidValueForKey(made, property.name, nullptr);
        return true;
    }
    if (sort != '[') return false;
    std::vector<Value> elements(document.elementCount(index));
    std::uint32_t at = index + 1;
    for (Value& element : elements) {
        const char elementSort = document.word(at).sort();
        if (elementSort != '{' && elementSort != 'n') return false;
        if (elementSort == '{') ValueAccess::borrow(element, Value::Kind::Dictionary, document, at);
        at = document.after(at);
    }
    // From the end, as hooks expect it.
    for (Value& element : std::views::reverse(elements)) {
        if (!element) continue;
        element = model(ValueAccess::place(element));
        if (!element) mts_invalidValueForArrayKey(element, property.name, nullptr);
    }
    this->*property.field = NSArray::arrayWithValues(std::move(elements));
    return true;
}

void MotisObject::setEntryFromDocument(const MotisPlan& plan, const KeyPlan* key, const DocumentStorage& document,
                                       std::uint32_t index) {
    const std::string_view name = document.textAt(document.word(index).textPlace());
    if (key && key->isPlain()) return setFromDocument(*key->property, name, document, index + 1);

    bool isSetDirectly = false;
    if (key && key->paths) {
        auto known = key->pathKeys.begin();
        for (const MTSKeyPath& path : *key->paths) {
            if (path.isPlain()) isSetDirectly = true;
            const KeyPlan* pathKey = known != key->pathKeys.end() ? *known++ : plan.key(path.key());
            setPathFromDocument(pathKey, path, document, index + 1);
        }
    }
    if (isSetDirectly || !(plan.heedsUnknownKeys() || (key && key->property))) return;
    Value value;
    document.borrow(value, index + 1);
    mts_setValue(value, name);
}

void MotisObject::setPathFromDocument(const KeyPlan* key, const MTSKeyPath& path, const DocumentStorage& document,
                                      std::uint32_t start) {
    const Destination found = destination(path, document, start);
    if (found.needsValues) {
        Value value;
        document.borrow(value, start);
        return walkKeyPath(path, value);
    }
    if (found.index == 0) return;
    if (key && key->property) return setFromDocument(*key->property, path.key(), document, found.index);
    Value value;
    document.borrow(value, found.index);
    mts_setValue(value, path.key());
}

void MotisObject::setFromDocument(const PropertyPlan& property, std::string_view key, const DocumentStorage& document,
                                  std::uint32_t index) {
    if (takeFromDocument(property, document, index) || takeModels(property, document, index)) return;
    Value value;
    document.borrow(value, index);
    assign(property, value, key);
}

}  // namespace flarebox
