#include <UIKit/LayerBitmap.h>
#include <UIKit/LayerTextures.h>
#include <UIKit/UIViewState.h>

#include <algorithm>

namespace flarebox {
namespace detail {
namespace {

/// A panel has a dozen plain colours; more come from colours that change all the time.
constexpr std::size_t maximumColors = 64;

}  // namespace

void LayerTextures::use(Compositor& compositor) {
    if (compositor_ == &compositor) return;
    // The former compositor is left alone: it may not exist any more.
    textures_.clear();
    retired_.clear();
    colors_.clear();
    compositor_ = &compositor;
    ++round_;
}

void LayerTextures::release(Compositor& compositor) {
    if (compositor_ != &compositor) return;
    discardAll();
    compositor_ = nullptr;
}

void LayerTextures::discardAll() {
    for (const TextureId texture : textures_) compositor_->destroyTexture(texture);
    textures_.clear();
    retired_.clear();
    colors_.clear();
    ++round_;
}

TextureId LayerTextures::upload(std::vector<std::uint32_t>& pixels, int width, int height, TextureId texture,
                                bool isSameSize) {
    if (texture && !isSameSize) {
        destroy(texture);
        texture = 0;
    }
    if (!texture) {
        texture = compositor_->createTexture(width, height);
        if (!texture) return 0;
        textures_.push_back(texture);
    }
    if (compositor_->alphaConvention() == Compositor::Alpha::Straight) makeAlphaStraight(pixels);
    compositor_->updateTexture(texture, {0, 0, width, height}, pixels.data(), width);
    ++uploads_;
    return texture;
}

TextureId LayerTextures::plain(const UIColor& color) {
    const auto known = std::ranges::find(colors_, color, &std::pair<UIColor, TextureId>::first);
    if (known != colors_.end()) return known->second;
    if (colors_.size() >= maximumColors) {
        // It may stand in the list that is being made, and is given back before the next one.
        retire(colors_.front().second);
        colors_.erase(colors_.begin());
    }
    std::vector<std::uint32_t> pixel{premultiplied(color)};
    const TextureId texture = upload(pixel, 1, 1, 0, false);
    if (texture) colors_.emplace_back(color, texture);
    return texture;
}

void LayerTextures::destroyRetired() {
    for (const TextureId texture : std::exchange(retired_, {})) destroy(texture);
}

void LayerTextures::destroy(TextureId texture) {
    if (std::erase(textures_, texture)) compositor_->destroyTexture(texture);
}

}  // namespace detail

UIView::RenderState::~RenderState() {
    if (texture && round == textures->round()) textures->retire(texture);
}

void UIView::RenderState::setCarries(detail::DisplayList::Carries what) {
    carriesInList_[static_cast<std::size_t>(what)] = textures->carriers().list;
}

void UIView::RenderState::markMoved(UIView& view, detail::DisplayList::Carries what) {
    const RenderState* state = view.renderState_.get();
    const bool isCarrier =
        state && state->carriesInList_[static_cast<std::size_t>(what)] == state->textures->carriers().list;
    if (isCarrier)
        state->textures->carriers().haveMoved = true;
    else
        view.markChanged();
}

}  // namespace flarebox
