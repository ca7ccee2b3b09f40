#include <Foundation/Class.h>
#include <Foundation/Hash.h>
#include <Foundation/Immortal.h>
#include <Foundation/NSObject.h>
#include <Foundation/Values.h>

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace flarebox {
namespace {

struct Registry {
    std::shared_mutex mutex;
    std::unordered_map<std::string_view, Class> classes;
};

// Classes register while other files' variables are being initialised, and leave while those are being destroyed.
Registry& registry() {
    static detail::Immortal<Registry> instance;
    return *instance;
}

void registerBuiltInClasses() {
    NSObject::staticClass();
    NSNull::staticClass();
    NSMutableString::staticClass();
    NSNumber::staticClass();
    NSDate::staticClass();
    NSURL::staticClass();
    NSMutableData::staticClass();
    NSMutableArray::staticClass();
    NSMutableSet::staticClass();
    NSMutableOrderedSet::staticClass();
    NSMutableDictionary::staticClass();
}

/// Members of one sort by name; a class's own come before inherited ones of the same name.
template <class Member>
class MemberNames {
public:
    void add(std::span<const Member> members) {
        for (const Member& member : members) members_.push_back(&member);
    }

    void buildIndex() {
        slots_.assign(detail::HashSlots::slotsFor(members_.size()), 0);
        for (std::size_t i = 0; i < members_.size(); ++i) {
            const std::string_view name = members_[i]->name;
            detail::HashSlots::findOrInsert(slots_, detail::hashText(name), i,
                                            [&](std::size_t at) { return members_[at]->name == name; });
        }
    }

    const Member* find(std::string_view name) const {
        const std::size_t position = detail::HashSlots::find(
            slots_, detail::hashText(name), [&](std::size_t at) { return members_[at]->name == name; });
        return position == detail::HashSlots::notFound ? nullptr : members_[position];
    }

private:
    std::vector<const Member*> members_;
    std::vector<std::uint32_t> slots_;
};

}  // namespace

namespace detail {

struct MemberIndex {
    explicit MemberIndex(Class type) {
        for (; type; type = type->superclass()) {
            properties.add(type->tables().properties);
            actions.add(type->tables().actions);
            outlets.add(type->tables().outlets);
        }
        properties.buildIndex();
        actions.buildIndex();
        outlets.buildIndex();
    }

    MemberNames<Property> properties;
    MemberNames<Action> actions;
    MemberNames<Outlet> outlets;
};

}  // namespace detail

ClassInfo::ClassInfo(std::string_view name, Class superclass, Factory factory)
    : ClassInfo(name, superclass, factory, Tables{}) {}

ClassInfo::ClassInfo(std::string_view name, Class superclass, Factory factory, Tables tables)
    : name_(name), superclass_(superclass), factory_(factory), tables_(tables) {
    std::unique_lock lock(registry().mutex);
    registry().classes.try_emplace(name_, this);
}

ClassInfo::~ClassInfo() {
    {
        std::unique_lock lock(registry().mutex);
        auto entry = registry().classes.find(name_);
        if (entry != registry().classes.end() && entry->second == this) registry().classes.erase(entry);
    }
    delete members_.load(std::memory_order_acquire);
}

bool ClassInfo::isSubclassOf(const ClassInfo& ancestor) const {
    for (Class type = this; type; type = type->superclass_) {
        if (type == &ancestor) return true;
    }
    return false;
}

Ref<NSObject> ClassInfo::create() const {
    return factory_ ? factory_() : Ref<NSObject>();
}

const detail::MemberIndex& ClassInfo::members() const {
    const detail::MemberIndex* current = members_.load(std::memory_order_acquire);
    if (current) return *current;
    auto built = std::make_unique<const detail::MemberIndex>(this);
    if (members_.compare_exchange_strong(current, built.get(), std::memory_order_acq_rel)) return *built.release();
    return *current;
}

const Property* ClassInfo::property(std::string_view name) const {
    return members().properties.find(name);
}

const Action* ClassInfo::action(std::string_view name) const {
    return members().actions.find(name);
}

const Outlet* ClassInfo::outlet(std::string_view name) const {
    return members().outlets.find(name);
}

Class classFromName(std::string_view name) {
    [[maybe_unused]] static const bool registered = (registerBuiltInClasses(), true);
    std::shared_lock lock(registry().mutex);
    auto entry = registry().classes.find(name);
    return entry == registry().classes.end() ? nullptr : entry->second;
}

}  // namespace flarebox
