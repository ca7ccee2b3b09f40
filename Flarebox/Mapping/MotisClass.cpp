#include <Flarebox/Mapping/MotisClass.h>

#include <Flarebox/Mapping/ClassCache.h>
#include <Flarebox/Mapping/MotisPlan.h>
#include <Foundation/Immortal.h>

#include <algorithm>
#include <memory>

namespace flarebox {

/// Both halves of a class's key mapping: what it declares itself, and that merged over its superclasses.
struct MotisClass::MappingTables {
    NSDictionary declared;
    NSDictionary merged;
};

namespace {

/// The process-wide caches. Each has a lock of its own; a class-level declaration runs under the lock of its cache.
template <class Tag, class Entry>
ClassCache<Entry>& sharedCache() {
    static detail::Immortal<ClassCache<Entry>> cache;
    return *cache;
}
struct Mappings;
struct ArrayClasses;
struct ValueMappings;
struct KeyPaths;
using PropertyTables = std::map<std::string, NSDictionary, std::less<>>;

NSDictionary emptyTable() {
    return NSDictionary::dictionaryWithEntries({});
}

/// `added` over `base`; an entry of `added` takes the place of one with the same key.
NSDictionary merged(const NSDictionary& base, const NSDictionary& added) {
    if (base.count() == 0) return added ? added.copy() : emptyTable();
    NSMutableDictionary result = base.mutableCopy();
    for (const auto& [key, value] : added.entries()) result.setObject(value, key);
    return result.copy();
}

}  // namespace

detail::MotisTable::MotisTable(std::vector<MotisProperty> lines_) : lines(std::move(lines_)) {
    properties.reserve(lines.size());
    for (const MotisProperty& line : lines) properties.push_back(line.property);
}

MotisClass::MotisClass(std::string_view name, const ClassInfo& superclass, Factory factory,
                       std::vector<MotisProperty> lines, const MotisDeclarations& declarations)
    : MotisTable(std::move(lines)),
      ClassInfo(name, &superclass, factory, Tables{.properties = properties}),
      declarations_(declarations),
      validators_(declarations.validators ? declarations.validators() : std::vector<PropertyValidator>()) {}

MotisClass::~MotisClass() {
    const std::unique_ptr<const MotisPlan> plan(plan_.load());
}

const MotisClass* MotisClass::modelSuperclass() const {
    const ClassInfo& root = MotisObject::staticClass();
    const bool isBelowRoot = this != &root && superclass() != &root;
    return isBelowRoot ? static_cast<const MotisClass*>(superclass()) : nullptr;
}

// --- Declarations ---

NSDictionary MotisClass::mappingOfLines() const {
    std::vector<NSDictionary::Entry> entries;
    entries.reserve(lines().size());
    for (const MotisProperty& line : lines()) {
        if (line.jsonKey.empty()) continue;
        entries.emplace_back(NSString::stringWithConstant(line.jsonKey),
                             NSString::stringWithConstant(line.property.name));
    }
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

NSDictionary MotisClass::readDeclaredMapping() const {
    if (declarations_.mapping) return declarations_.mapping();
    return mappingOfLines();
}

const MotisClass* MotisClass::mappingClass() const {
    const auto hasKey = [](const MotisProperty& line) { return !line.jsonKey.empty(); };
    const MotisClass* cls = this;
    while (cls && !cls->declarations_.mapping && !std::ranges::any_of(cls->lines(), hasKey))
        cls = cls->modelSuperclass();
    return cls;
}

NSDictionary MotisClass::mts_mapping() const {
    const MotisClass* cls = mappingClass();
    if (!cls) return emptyTable();
    return cls->declarations_.mapping ? cls->declarations_.mapping() : cls->declaredMapping();
}

NSDictionary MotisClass::writtenMapping() const {
    const MotisClass* cls = mappingClass();
    return cls ? cls->declaredMapping() : emptyTable();
}

bool MotisClass::mts_shouldSetUndefinedKeys() const {
    if (declarations_.shouldSetUndefinedKeys) return declarations_.shouldSetUndefinedKeys();
    return mts_cachedMapping().count() == 0;
}

NSDictionary MotisClass::mts_valueMappingForKey(std::string_view property) const {
    for (const MotisClass* cls = this; cls; cls = cls->modelSuperclass()) {
        if (cls->declarations_.valueMappingForKey) return cls->declarations_.valueMappingForKey(property);
    }
    return nullptr;
}

ArrayClassMapping MotisClass::mts_arrayClassMapping() const {
    for (const MotisClass* cls = this; cls; cls = cls->modelSuperclass()) {
        if (cls->declarations_.arrayClassMapping) return cls->declarations_.arrayClassMapping();
    }
    return {};
}

Ref<NSDateFormatter> MotisClass::mts_validationDateFormatter() const {
    return declarations_.validationDateFormatter ? declarations_.validationDateFormatter() : nullptr;
}

// --- Merged tables ---
// A class asks its superclass before it takes the lock, so that one class's declarations never run inside another's
// entry.

const MotisClass::MappingTables& MotisClass::mappingTables() const {
    const MotisClass* base = modelSuperclass();
    const NSDictionary inherited = base ? base->mts_cachedMapping() : NSDictionary();
    return sharedCache<Mappings, MappingTables>().entry(name(), [&] {
        MappingTables tables;
        // A table that its owner can still change is read once like any other.
        tables.declared = readDeclaredMapping().copy();
        tables.merged = merged(inherited, tables.declared);
        return tables;
    });
}

NSDictionary MotisClass::mts_cachedMapping() const {
    return mappingTables().merged;
}

NSDictionary MotisClass::declaredMapping() const {
    return mappingTables().declared;
}

const ArrayClassMapping& MotisClass::mts_cachedArrayClassMapping() const {
    static detail::Immortal<ArrayClassMapping> none;
    const MotisClass* base = modelSuperclass();
    const ArrayClassMapping& inherited = base ? base->mts_cachedArrayClassMapping() : *none;
    return sharedCache<ArrayClasses, ArrayClassMapping>().entry(name(), [&] {
        ArrayClassMapping table = inherited;
        if (!declarations_.arrayClassMapping) return table;
        for (auto& [property, cls] : declarations_.arrayClassMapping()) table.insert_or_assign(property, cls);
        return table;
    });
}

bool MotisClass::hasValueMappings() const {
    if (declarations_.valueMappingForKey) return true;
    const MotisClass* base = modelSuperclass();
    return base && base->hasValueMappings();
}

NSDictionary MotisClass::mts_cachedValueMappingForKey(std::string_view property) const {
    const MotisClass* base = modelSuperclass();
    const NSDictionary inherited = base ? base->mts_cachedValueMappingForKey(property) : NSDictionary();
    const auto read = [&] {
        return merged(inherited,
                      declarations_.valueMappingForKey ? declarations_.valueMappingForKey(property) : NSDictionary());
    };
    // Names that are no property come from the other side, which must not be able to make the table grow.
    if (!line(property)) return read();

    auto& cache = sharedCache<ValueMappings, PropertyTables>();
    const std::lock_guard lock(cache.mutex());
    PropertyTables& tables = cache.entry(name(), [] { return PropertyTables(); });
    if (const auto found = tables.find(property); found != tables.end()) return found->second;
    NSDictionary table = read();
    return tables.emplace(property, std::move(table)).first->second;
}

const MTSKeyPathIndex& MotisClass::mts_keyPaths() const {
    static detail::Immortal<MTSKeyPathIndex> none;
    const NSDictionary declared = declaredMapping();
    const MotisClass* base = modelSuperclass();
    const MTSKeyPathIndex& inherited = base ? base->mts_keyPaths() : *none;
    return sharedCache<KeyPaths, MTSKeyPathIndex>().entry(name(), [&] { return MTSKeyPathIndex(inherited, declared); });
}

// --- Properties ---

const MotisProperty* MotisClass::line(std::string_view property) const {
    for (const MotisClass* cls = this; cls; cls = cls->modelSuperclass()) {
        const auto found =
            std::ranges::find(cls->lines(), property, [](const MotisProperty& line) { return line.property.name; });
        if (found != cls->lines().end()) return &*found;
    }
    return nullptr;
}

const PropertyValidator* MotisClass::validator(std::string_view property) const {
    for (const MotisClass* cls = this; cls; cls = cls->modelSuperclass()) {
        const auto found = std::ranges::find(cls->validators_, property, &PropertyValidator::property);
        if (found != cls->validators_.end()) return &*found;
    }
    return nullptr;
}

std::string_view MotisClass::mts_typeAttributeForKey(std::string_view property) const {
    const MotisProperty* found = line(property);
    if (!found) return {};
    const std::string_view attribute = found->property.typeAttribute;
    return attribute.substr(0, attribute.find(','));
}

// --- Plan ---

const MotisPlan& MotisClass::plan() const {
    if (const MotisPlan* plan = plan_.load(std::memory_order_acquire)) return *plan;
    return buildPlan();
}

const MotisPlan& MotisClass::buildPlan() const {
    // Built outside any lock, since it runs declarations; of threads that come first together, one wins.
    auto built = std::make_unique<MotisPlan>(*this);
    const MotisPlan* published = nullptr;
    if (!plan_.compare_exchange_strong(published, built.get(), std::memory_order_acq_rel)) return *published;
    return *built.release();
}

}  // namespace flarebox
