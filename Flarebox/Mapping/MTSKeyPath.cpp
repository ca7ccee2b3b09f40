#include <Flarebox/Mapping/MTSKeyPath.h>

#include <Foundation/Hash.h>

#include <memory>

namespace flarebox {

using detail::HashSlots;
using detail::hashText;

MTSKeyPath MTSKeyPath::initWithKeyPath(const NSString& keyPath) {
    MTSKeyPath path;
    path.key_ = keyPath;
    std::string_view rest = path.key();
    for (std::size_t dot = rest.find('.'); dot != rest.npos; dot = rest.find('.')) {
        rest.remove_prefix(dot + 1);
        const std::string_view name = rest.substr(0, rest.find('.'));
        path.furtherComponents_.push_back({name, NSString(name).integerValue()});
    }
    return path;
}

MTSKeyPathList::~MTSKeyPathList() {
    Node* next = first_.next.load();
    while (const std::unique_ptr<const Node> node{next}) next = node->next.load();
}

void MTSKeyPathList::append(MTSKeyPath path) {
    auto node = std::make_unique<Node>(std::move(path));
    Node* last = &first_;
    while (Node* next = last->next.load(std::memory_order_relaxed)) last = next;
    last->next.store(node.release(), std::memory_order_release);
}

auto MTSKeyPathIndex::startsWith(std::string_view component) const {
    return [this, component](std::size_t at) { return lists_[at]->firstComponent() == component; };
}

MTSKeyPathIndex::MTSKeyPathIndex(const MTSKeyPathIndex& inherited, const NSDictionary& declared)
    : slots_(HashSlots::slotsFor(inherited.lists_.size() + declared.count())) {
    lists_.reserve(inherited.lists_.size() + declared.count());
    for (MTSKeyPathList* list : inherited.lists_) {
        HashSlots::insert(slots_, hashText(list->firstComponent()), lists_.size());
        lists_.push_back(list);
    }
    for (const auto& [key, property] : declared.entries()) {
        const auto text = key.as<NSString>();
        if (!text) continue;
        MTSKeyPath path = MTSKeyPath::initWithKeyPath(text);
        const std::string_view component = path.firstComponent();
        const std::size_t known =
            HashSlots::findOrInsert(slots_, hashText(component), lists_.size(), startsWith(component));
        if (known != HashSlots::notFound)
            lists_[known]->append(std::move(path));
        else
            lists_.push_back(&own_.emplace_back(std::move(path)));
    }
}

MTSKeyPathList* MTSKeyPathIndex::find(std::string_view component) const {
    if (lists_.empty()) return nullptr;
    const std::size_t position = HashSlots::find(slots_, hashText(component), startsWith(component));
    return position == HashSlots::notFound ? nullptr : lists_[position];
}

}  // namespace flarebox
