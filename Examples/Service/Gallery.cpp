#include "Gallery.h"

#include "Artwork/Artwork.h"
#include "Catalogue.h"

#include <optional>
#include <utility>

namespace flarebox::examples {
namespace {

struct Request {
    std::string_view name;
    PictureKind kind;
};

std::optional<Request> parse(std::string_view path) {
    constexpr std::string_view suffix = ".png";
    if (!path.ends_with(suffix)) return std::nullopt;
    path.remove_suffix(suffix.size());
    for (auto [folder, kind] : {std::pair<std::string_view, PictureKind>{"/media/icons/", PictureKind::Icon},
                                std::pair<std::string_view, PictureKind>{"/media/images/", PictureKind::Image}}) {
        if (path.starts_with(folder)) return Request{path.substr(folder.size()), kind};
    }
    return std::nullopt;
}

bool isOffered(const Request& request) {
    for (const Product& product : catalogue()) {
        if (product.name == request.name) {
            return request.kind == PictureKind::Icon ? product.hasIcon : product.hasImage;
        }
    }
    return false;
}

}  // namespace

std::shared_ptr<const StoredFile> Gallery::pictureAt(std::string_view path) {
    auto request = parse(path);
    if (!request || !isOffered(*request)) return nullptr;

    // One at a time: drawing keeps a core busy, and a second request for the same picture finds it done.
    std::lock_guard lock(mutex_);
    if (auto found = pictures_.find(path); found != pictures_.end()) return found->second;
    if (closed_) return nullptr;
    auto shared = storedFile(drawPicture(request->name, request->kind), "image/png");
    pictures_.emplace(path, shared);
    return shared;
}

}  // namespace flarebox::examples
