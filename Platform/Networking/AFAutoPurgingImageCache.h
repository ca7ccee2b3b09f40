#pragma once

#include <UIKit/UIImage.h>

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace flarebox {

/// Decoded pictures by name, within a bound of memory: when it is passed, the pictures that were asked for least
/// recently go first. Main thread only.
class AFAutoPurgingImageCache {
public:
    static constexpr std::size_t defaultMemoryCapacity = std::size_t{32} << 20;

    explicit AFAutoPurgingImageCache(std::size_t memoryCapacity = defaultMemoryCapacity) : capacity_(memoryCapacity) {}

    std::size_t memoryCapacity() const { return capacity_; }
    /// Lets go at once of what no longer fits.
    void setMemoryCapacity(std::size_t bytes);
    /// Bytes of pixels held.
    std::size_t memoryUsage() const { return usage_; }

    /// Replaces a picture of that name. One that is larger than the whole cache is not kept.
    void addImage(Ref<UIImage> image, std::string_view identifier);
    /// Null when there is none; the picture then counts as just used.
    Ref<UIImage> imageWithIdentifier(std::string_view identifier);
    /// Puts a picture where it is kept in fewer pixels; does nothing where it is not.
    void replaceSmaller(const Ref<UIImage>& image);
    void removeImageWithIdentifier(std::string_view identifier);
    void removeAllImages();

private:
    struct Entry {
        std::string identifier;
        Ref<UIImage> image;
    };
    using Entries = std::list<Entry>;  // the most recently used one first

    void remove(Entries::iterator entry);
    void purgeTo(std::size_t bytes);

    std::size_t capacity_;
    std::size_t usage_ = 0;
    Entries entries_;
    std::unordered_map<std::string_view, Entries::iterator> byIdentifier_;
};

}  // namespace flarebox
