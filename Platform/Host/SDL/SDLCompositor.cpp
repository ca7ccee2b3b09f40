#include "SDLCompositor.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>

namespace flarebox {
namespace {

SDL_Rect roundedOut(const CGRect& rect) {
    const int left = static_cast<int>(std::lround(rect.minX())), top = static_cast<int>(std::lround(rect.minY()));
    return {left, top, static_cast<int>(std::lround(rect.maxX())) - left,
            static_cast<int>(std::lround(rect.maxY())) - top};
}

bool lies(const CGRect& inner, const CGRect& outer) {
    return inner.minX() >= outer.minX() && inner.minY() >= outer.minY() && inner.maxX() <= outer.maxX() &&
           inner.maxY() <= outer.maxY();
}

/// What SDL keeps for the window and for every render target apart.
struct ViewState {
    SDL_Rect viewport{}, clip{};
    float scaleX = 1, scaleY = 1;
    int logicalWidth = 0, logicalHeight = 0;
    bool isClipped = false;

    static ViewState of(SDL_Renderer* renderer) {
        ViewState state;
        SDL_RenderGetLogicalSize(renderer, &state.logicalWidth, &state.logicalHeight);
        SDL_RenderGetScale(renderer, &state.scaleX, &state.scaleY);
        SDL_RenderGetViewport(renderer, &state.viewport);
        state.isClipped = SDL_RenderIsClipEnabled(renderer) == SDL_TRUE;
        SDL_RenderGetClipRect(renderer, &state.clip);
        return state;
    }

    void apply(SDL_Renderer* renderer) const {
        // The logical size comes first because setting it overwrites scale and viewport. What is right already is left
        // alone: SDL keeps pixels and hands out rounded units, so setting what it handed out may be a pixel off.
        if (logicalWidth > 0 && logicalHeight > 0) SDL_RenderSetLogicalSize(renderer, logicalWidth, logicalHeight);
        float currentX = 1, currentY = 1;
        SDL_RenderGetScale(renderer, &currentX, &currentY);
        if (currentX != scaleX || currentY != scaleY) SDL_RenderSetScale(renderer, scaleX, scaleY);
        SDL_Rect current{};
        SDL_RenderGetViewport(renderer, &current);
        if (!SDL_RectEquals(&current, &viewport)) SDL_RenderSetViewport(renderer, &viewport);
        SDL_RenderSetClipRect(renderer, isClipped ? &clip : nullptr);
    }

    static void makePlain(SDL_Renderer* renderer) {
        int width = 0, height = 0;
        SDL_RenderGetLogicalSize(renderer, &width, &height);
        if (width > 0 || height > 0) SDL_RenderSetLogicalSize(renderer, 0, 0);
        SDL_RenderSetScale(renderer, 1, 1);
        SDL_RenderSetViewport(renderer, nullptr);
        SDL_RenderSetClipRect(renderer, nullptr);
    }
};

}  // namespace

struct SDLCompositor::RendererState {
    SDL_Texture* target = nullptr;
    ViewState targetView, windowView;
    SDL_BlendMode blendMode = SDL_BLENDMODE_NONE;
    Uint8 red = 0, green = 0, blue = 0, alpha = 0;
    /// What is set now, to leave a batch of rectangles unbroken where nothing changes.
    bool isClipped = false;
    SDL_Rect clip{};
};

SDLCompositor::SDLCompositor(SDL_Renderer* renderer)
    : renderer_(renderer), maximumTextureSize_(Compositor::maximumTextureSize()) {
    SDL_RendererInfo info;
    if (SDL_GetRendererInfo(renderer, &info) != 0) return;
    // The software renderer reports 0: it has no limit of its own.
    const int limit = std::min(info.max_texture_width, info.max_texture_height);
    if (limit > 0) maximumTextureSize_ = std::min(maximumTextureSize_, limit);
}

SDLCompositor::~SDLCompositor() {
    for (SDL_Texture* texture : textures_) {
        if (texture) SDL_DestroyTexture(texture);
    }
}

TextureId SDLCompositor::createTexture(int width, int height) {
    if (width <= 0 || height <= 0) return 0;
    SDL_Texture* texture =
        SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STATIC, width, height);
    if (!texture) return 0;
    SDL_SetTextureBlendMode(texture, SDL_BLENDMODE_BLEND);
    SDL_SetTextureScaleMode(texture, SDL_ScaleModeLinear);
    const auto place = std::find(textures_.begin(), textures_.end(), nullptr);
    if (place != textures_.end()) {
        *place = texture;
        return static_cast<TextureId>(place - textures_.begin() + 1);
    }
    textures_.push_back(texture);
    return static_cast<TextureId>(textures_.size());
}

SDL_Texture* SDLCompositor::textureOf(TextureId texture) const {
    return texture >= 1 && texture <= textures_.size() ? textures_[texture - 1] : nullptr;
}

void SDLCompositor::updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) {
    SDL_Texture* target = textureOf(texture);
    if (!target || !pixels) return;
    const SDL_Rect rect{region.x, region.y, region.width, region.height};
    SDL_UpdateTexture(target, &rect, pixels, stride * static_cast<int>(sizeof *pixels));
}

void SDLCompositor::destroyTexture(TextureId texture) {
    SDL_Texture* doomed = textureOf(texture);
    if (!doomed) return;
    textures_[texture - 1] = nullptr;
    SDL_DestroyTexture(doomed);
}

void SDLCompositor::drawQuad(const TexturedQuad& quad) {
    SDL_Texture* texture = textureOf(quad.texture);
    const CGRect shown = quad.destination.intersection(quad.clip);
    const auto alpha = static_cast<Uint8>(std::lround(std::clamp(quad.opacity, 0.0F, 1.0F) * 255));
    if (!texture || shown.isEmpty() || alpha == 0) return;

    const SDL_Rect clip = roundedOut(quad.clip);
    if (clip.w <= 0 || clip.h <= 0) return;
    setClip(lies(quad.destination, quad.clip) ? nullptr : &clip);
    SDL_SetTextureAlphaMod(texture, alpha);
    const SDL_Rect source{quad.source.x, quad.source.y, quad.source.width, quad.source.height};
    const SDL_FRect destination{
        static_cast<float>(quad.destination.minX()), static_cast<float>(quad.destination.minY()),
        static_cast<float>(quad.destination.width()), static_cast<float>(quad.destination.height())};
    SDL_RenderCopyF(renderer_, texture, &source, &destination);
}

void SDLCompositor::setClip(const SDL_Rect* clip) {
    if (!gameState_) return;
    RendererState& state = *gameState_;
    const bool isSame = clip ? state.isClipped && SDL_RectEquals(clip, &state.clip) : !state.isClipped;
    if (isSame) return;
    SDL_RenderSetClipRect(renderer_, clip);
    state.isClipped = clip != nullptr;
    if (clip) state.clip = *clip;
}

void SDLCompositor::beginFrame() {
    gameState_ = std::make_unique<RendererState>();
    RendererState& state = *gameState_;
    SDL_GetRenderDrawBlendMode(renderer_, &state.blendMode);
    SDL_GetRenderDrawColor(renderer_, &state.red, &state.green, &state.blue, &state.alpha);
    state.target = SDL_GetRenderTarget(renderer_);
    if (state.target) {
        state.targetView = ViewState::of(renderer_);
        SDL_SetRenderTarget(renderer_, nullptr);
    }
    state.windowView = ViewState::of(renderer_);
    ViewState::makePlain(renderer_);
}

void SDLCompositor::endFrame() {
    if (!gameState_) return;
    const std::unique_ptr<RendererState> state = std::move(gameState_);
    state->windowView.apply(renderer_);
    if (state->target) {
        SDL_SetRenderTarget(renderer_, state->target);
        state->targetView.apply(renderer_);
    }
    SDL_SetRenderDrawColor(renderer_, state->red, state->green, state->blue, state->alpha);
    SDL_SetRenderDrawBlendMode(renderer_, state->blendMode);
}

}  // namespace flarebox
