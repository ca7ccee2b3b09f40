#include <Flarebox/Mapping/MTSKeyPath.h>

#include <Foundation/Values.h>

namespace flarebox {

MTSKeyPath MTSKeyPath::initWithKeyPath(std::string_view keyPath) {
    MTSKeyPath path;
    path.key_ = keyPath;
    for (std::size_t start = 0;;) {
        const std::size_t dot = keyPath.find('.', start);
        const std::string_view name = keyPath.substr(start, dot == std::string_view::npos ? dot : dot - start);
        path.components_.push_back({std::string(name), NSString(name).integerValue()});
        if (dot == std::string_view::npos) return path;
        start = dot + 1;
    }
}

void MTSKeyPathList::append(MTSKeyPath path) {
    Node* node = others_.emplace_back(std::make_unique<Node>(std::move(path), nullptr)).get();
    last_->next.store(node, std::memory_order_release);
    isSinglePlainKey_.store(false, std::memory_order_release);
    last_ = node;
}

}  // namespace flarebox
