// Filling straight from a decoded document, without making values of its dictionaries.

#include <Flarebox/Mapping/Motis.h>
#include <Flarebox/Mapping/MotisPlan.h>
#include <Foundation/Storage.h>

namespace flarebox {

namespace {

using detail::DocumentStorage;
using detail::TapeWord;
using detail::ValueAccess;

double secondsAt(const DocumentStorage& document, std::uint32_t index) {
    const std::uint64_t bits = document.numberBits(index);
    switch (document.word(index).sort()) {
        case 'l':
            return static_cast<double>(static_cast<std::int64_t>(bits));
        case 'u':
            return static_cast<double>(bits);
        default:
            return std::bit_cast<double>(bits);
    }
}

/// Writes the element at `index` into the field of a property that takes it as it is; false when it does not. A number
/// is as good as a date.
bool take(const PropertyPlan& property, Value& field, const DocumentStorage& document, std::uint32_t index) {
    const auto takes = [&](Value::Kind kind) { return property.fittingKind == kind || property.takesAnything; };
    const TapeWord word = document.word(index);
    switch (word.sort()) {
        case '"':
            if (!takes(Value::Kind::String)) return false;
            ValueAccess::borrow(field, Value::Kind::String, document, word.textPlace());
            return true;
        case 'l':
        case 'u':
        case 'd':
            if (takes(Value::Kind::Number))
                document.borrow(field, index);
            else if (property.fittingKind == Value::Kind::Date)
                ValueAccess::setDate(field, secondsAt(document, index));
            else
                return false;
            return true;
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
    for (const MTSKeyPath::Component& component : path.components().subspan(1)) {
        const char sort = document.word(index).sort();
        if (sort == '[' && component.index < 0) return {0, true};
        if (sort == '[')
            index = document.indexOfElement(index, static_cast<std::size_t>(component.index));
        else
            index = sort == '{' ? document.indexOfKey(index, component.name) : 0;
        if (index == 0) break;
    }
    return {index, false};
}

}  // namespace

bool MotisObject::fillFromDocument(const MotisPlan& plan, const NSDictionary& dictionary) {
    if (!ValueAccess::isInDocument(dictionary)) return false;
    const DocumentStorage& document = ValueAccess::document(dictionary);
    // The fields count one document for all of them.
    if (document_ && &ValueAccess::document(document_) != &document) return false;

    KeyMatches matches;
    if (!plan.sequences().match(document, ValueAccess::place(dictionary), matches)) {
        plan.sequences().learn(dictionary);
        if (!plan.sequences().match(document, ValueAccess::place(dictionary), matches)) return false;
    }
    if (!document_) document_ = dictionary;
    Ref<NSObject> self;
    for (const auto& [key, index] : matches) {
        if (key && key->isPlain() && takeFromDocument(key->property, document, index + 1)) continue;
        // Hooks may run from here on, and let go of the last reference to this very object.
        if (!self) self = retained();
        setEntryFromDocument(plan, key, document, index);
    }
    return true;
}

bool MotisObject::takeFromDocument(const PropertyPlan* property, const DocumentStorage& document, std::uint32_t index) {
    return property && property->field && take(*property, this->*property->field, document, index);
}

void MotisObject::setEntryFromDocument(const MotisPlan& plan, const KeyPlan* key, const DocumentStorage& document,
                                       std::uint32_t index) {
    Value value;
    document.borrow(value, index + 1);
    const std::string_view name = document.textAt(document.word(index).textPlace());
    if (!key || !key->paths || key->isPlain()) return setEntry(key, name, value);

    bool isSetDirectly = false;
    for (const MTSKeyPath& path : *key->paths) {
        if (path.isPlain()) isSetDirectly = true;
        setPathFromDocument(plan, path, document, index + 1);
    }
    if (!isSetDirectly && (key->property || plan.heedsUnknownKeys())) mts_setValue(value, name);
}

void MotisObject::setPathFromDocument(const MotisPlan& plan, const MTSKeyPath& path, const DocumentStorage& document,
                                      std::uint32_t start) {
    const Destination found = destination(path, document, start);
    const KeyPlan* key = plan.key(path.key());
    if (found.index == 0 && !found.needsValues) return;
    if (!found.needsValues && key && takeFromDocument(key->property, document, found.index)) return;
    Value value;
    document.borrow(value, found.needsValues ? start : found.index);
    if (found.needsValues)
        walkKeyPath(path, value);
    else
        mts_setValue(value, path.key());
}

}  // namespace flarebox
