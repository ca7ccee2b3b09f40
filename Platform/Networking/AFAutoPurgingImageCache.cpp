#include <Networking/AFAutoPurgingImageCache.h>

#include <algorithm>
#include <utility>

namespace flarebox {

void AFAutoPurgingImageCache::setMemoryCapacity(std::size_t bytes) {
    capacity_ = bytes;
    purgeTo(capacity_);
}

void AFAutoPurgingImageCache::addImage(Ref<UIImage> image, std::string_view identifier) {
    removeImageWithIdentifier(identifier);
    if (!image || image->byteCost() > capacity_) return;
    purgeTo(capacity_ - image->byteCost());
    usage_ += image->byteCost();
    entries_.push_front({std::string(identifier), std::move(image)});
    byIdentifier_[entries_.front().identifier] = entries_.begin();
}

Ref<UIImage> AFAutoPurgingImageCache::imageWithIdentifier(std::string_view identifier) {
    auto found = byIdentifier_.find(identifier);
    if (found == byIdentifier_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->image;
}

void AFAutoPurgingImageCache::replaceSmaller(const Ref<UIImage>& image) {
    const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) {
        return entry.image->isSamePictureAs(*image) && !entry.image->pixelSize().holds(image->pixelSize());
    });
    if (found != entries_.end()) addImage(image, std::string(found->identifier));
}

void AFAutoPurgingImageCache::removeImageWithIdentifier(std::string_view identifier) {
    auto found = byIdentifier_.find(identifier);
    if (found != byIdentifier_.end()) remove(found->second);
}

void AFAutoPurgingImageCache::removeAllImages() {
    purgeTo(0);
}

void AFAutoPurgingImageCache::remove(Entries::iterator entry) {
    usage_ -= entry->image->byteCost();
    byIdentifier_.erase(entry->identifier);
    entries_.erase(entry);
}

void AFAutoPurgingImageCache::purgeTo(std::size_t bytes) {
    while (usage_ > bytes) remove(std::prev(entries_.end()));
}

}  // namespace flarebox
