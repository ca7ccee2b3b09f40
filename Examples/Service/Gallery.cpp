#include "Gallery.h"

#include "Artwork/Artwork.h"
#include "Catalogue.h"

#include <cstdint>
#include <cstdio>
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

std::string etagOf(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    char text[24];
    std::snprintf(text, sizeof text, "\"%016llx\"", static_cast<unsigned long long>(hash));
    return text;
}

}  // namespace

std::shared_ptr<const Picture> Gallery::pictureAt(std::string_view path) {
    auto request = parse(path);
    if (!request || !isOffered(*request)) return nullptr;

    // One at a time: drawing keeps a core busy, and a second request for the same picture finds it done.
    std::lock_guard lock(mutex_);
    if (auto found = pictures_.find(path); found != pictures_.end()) return found->second;
    if (closed_) return nullptr;
    Picture picture;
    picture.png = drawPicture(request->name, request->kind);
    picture.etag = etagOf(picture.png);
    auto shared = std::make_shared<const Picture>(std::move(picture));
    pictures_.emplace(path, shared);
    return shared;
}

}  // namespace flarebox::examples
