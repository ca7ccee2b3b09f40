#include <UIKit/DisplayList.h>
#include <UIKit/LayerBitmap.h>
#include <UIKit/LayerRenderer.h>
#include <UIKit/LayerTextures.h>
#include <UIKit/UIView.h>
#include <UIKit/UIViewState.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flarebox {
namespace {

constexpr float leastVisibleOpacity = 0.01F;
/// Pixels drawn a frame for views that are not in sight yet.
constexpr std::int64_t upcomingPixelsPerFrame = 200'000;

CGRect snapped(const CGRect& rect) {
    const CGFloat left = std::round(rect.minX()), top = std::round(rect.minY());
    return CGRectMake(left, top, std::round(rect.maxX()) - left, std::round(rect.maxY()) - top);
}

CGRect scaled(const CGRect& rect, CGFloat scale) {
    return CGRectMake(rect.minX() * scale, rect.minY() * scale, rect.width() * scale, rect.height() * scale);
}

/// As large again on every side: how far ahead bitmaps are made.
CGRect surroundings(const CGRect& rect) {
    return rect.inset(-rect.width(), -rect.height());
}

}  // namespace

/// Goes through the tree once and makes the list of rectangles.
class LayerRenderer::Walk {
public:
    explicit Walk(LayerRenderer& renderer)
        : renderer_(renderer), list_(*renderer.list_), textures_(*renderer.textures_), scale_(renderer.scale_) {}

    void run() {
        renderer_.hasUpcoming_ = false;
        const CGRect target = scaled({{}, renderer_.root_.presentationFrame().size}, scale_);
        list_.clear(target, scale_);
        ++textures_.carriers().list;
        visit(renderer_.root_, {.origin = {}, .clip = target, .nearby = surroundings(target), .isRoot = true});
    }

private:
    using State = UIView::RenderState;
    using Carries = detail::DisplayList::Carries;
    /// What a view has from those around it; coordinates are pixels.
    struct Surroundings {
        CGPoint origin;
        CGRect clip, nearby;
        detail::DisplayList::Carrier carrier = detail::DisplayList::root;
        /// Within the carrier.
        CGRect carriedClip = detail::DisplayList::everywhere;
        float opacity = 1;
        bool isMoving = false, isRoot = false;
    };

    void visit(UIView& view, Surroundings around) {
        if (view.hidden_) return;
        const bool isAnimated = !around.isRoot && view.animationState_ && view.animationState_->isRunning();
        if (isAnimated)
            enterCarrier(view, Carries::View, around);
        else
            around.opacity *= static_cast<float>(view.presentationAlpha());
        if (around.opacity < leastVisibleOpacity) return;
        const CGRect frame = view.presentationFrame();
        around.isMoving |= view.animationState_ && view.animationState_->frame;
        const CGPoint place = around.isRoot ? CGPoint() : frame.origin;
        const CGRect exact = CGRectMake(around.origin.x + place.x * scale_, around.origin.y + place.y * scale_,
                                        frame.width() * scale_, frame.height() * scale_);
        // Text is sharp on whole pixels; while it moves, smoothness counts more.
        const CGRect rect = around.isMoving ? exact : snapped(exact);
        show(view, rect, around);

        if (view.subviews_.empty()) return;
        if (view.clipsToBounds_) {
            around.clip = around.clip.intersection(rect);
            around.carriedClip = around.carriedClip.intersection(rect);
            around.nearby = around.nearby.intersection(surroundings(rect));
            if (around.nearby.isEmpty()) return;
        }
        if (view.boundsOrigin_ != CGPoint() && !around.isRoot) enterCarrier(view, Carries::Content, around);
        around.origin = exact.origin + detail::DisplayList::contentOrigin(view, scale_);
        around.isRoot = false;
        for (const auto& subview : view.subviews_) visit(*subview, around);
    }

    void enterCarrier(UIView& view, Carries carries, Surroundings& around) {
        around.carrier = list_.addCarrier(view, carries, around.carrier, around.carriedClip, around.opacity);
        around.carriedClip = detail::DisplayList::everywhere;
        around.opacity = 1;
        stateOf(view).setCarries(carries);
    }

    void show(UIView& view, const CGRect& rect, const Surroundings& around) {
        if (rect.isEmpty()) return;
        if (view.showsPixelBuffer()) return showPixels(view, rect, around);
        if (detail::needsBitmap(view)) return showBitmap(view, rect, around);
        showBackground(view, rect, around);
    }

    void showBackground(UIView& view, const CGRect& rect, const Surroundings& around) {
        if (view.backgroundColor_.isClear() || rect.intersection(reach(around)).isEmpty()) return;
        add(textures_.plain(view.backgroundColor_), {0, 0, 1, 1}, rect, around);
    }

    /// What is shown now, or may be before the list is made anew.
    static const CGRect& reach(const Surroundings& around) {
        return around.carrier == detail::DisplayList::root ? around.clip : around.nearby;
    }

    void add(TextureId texture, const PixelRect& source, const CGRect& place, const Surroundings& around) {
        if (texture) list_.add({texture, source, place, around.carriedClip, around.opacity}, around.carrier);
    }

    void showPixels(UIView& view, const CGRect& rect, const Surroundings& around) {
        // What could draw itself as well is a still picture, and is made ahead like a drawing; a scene or a video is
        // not asked for what nobody sees.
        const bool isStill = view.drawsContent(), isInSight = !rect.intersection(around.clip).isEmpty();
        if (rect.intersection(isStill ? around.nearby : reach(around)).isEmpty()) return;
        if (view.layer_.cornerRadii() == CornerRadii()) showBackground(view, rect, around);
        if (view.needsDisplay_ || !hasTexture(view) || !(view.renderState_->drawnSize == view.frame_.size)) {
            if (isStill && !isInSight && !mayDrawAhead(rect.size)) return;
            uploadPixels(view, rect);
        }
        const State& state = *view.renderState_;
        if (!state.texture) return;
        const CGRect place =
            placedByContentMode({CGFloat(state.width), CGFloat(state.height)}, rect, view.contentMode_);
        Surroundings within = around;
        within.carriedClip = around.carriedClip.intersection(rect);
        add(state.texture, {0, 0, state.width, state.height}, place, within);
    }

    void uploadPixels(UIView& view, const CGRect& rect) {
        State& state = stateOf(view);
        view.needsDisplay_ = false;
        state.drawnSize = view.frame_.size;
        const UIView::PixelBuffer picture = view.pixelBuffer();
        const int largest = textures_.maximumSize();
        if (!picture.pixels || picture.width < 1 || picture.height < 1 || picture.width > largest ||
            picture.height > largest) {
            dropTexture(state);
            return;
        }
        const CGRect place =
            placedByContentMode({CGFloat(picture.width), CGFloat(picture.height)}, rect, view.contentMode_);
        const CGFloat shrink = picture.width / place.width();
        const CGRect outline = CGRectMake((rect.minX() - place.minX()) * shrink, (rect.minY() - place.minY()) * shrink,
                                          rect.width() * shrink, rect.height() * shrink);
        CornerRadii radii = view.layer_.cornerRadii();
        for (CGFloat* radius : {&radii.topLeft, &radii.topRight, &radii.bottomLeft, &radii.bottomRight})
            *radius *= scale_ * shrink;
        detail::copyRounded(picture, outline, radii, renderer_.pixels_);
        uploadTexture(state, picture.width, picture.height);
    }

    void dropTexture(State& state) {
        if (state.texture && state.round == textures_.round()) textures_.retire(state.texture);
        state.texture = 0;
        state.round = textures_.round();
        state.width = state.height = 0;
    }

    State& stateOf(UIView& view) {
        if (!view.renderState_ || view.renderState_->textures != renderer_.textures_)
            view.renderState_ = std::make_unique<State>(renderer_.textures_);
        return *view.renderState_;
    }

    /// Whether what the view last gave to the compositor, a picture or none, still holds.
    bool hasTexture(const UIView& view) const {
        const State* state = view.renderState_.get();
        return state && state->textures == renderer_.textures_ && state->round == textures_.round();
    }

    /// From the renderer's pixels.
    void uploadTexture(State& state, int width, int height) {
        detail::LayerTextures& textures = *renderer_.textures_;
        const TextureId old = state.round == textures.round() ? state.texture : 0;
        const bool isSameSize = state.width == width && state.height == height;
        state.texture = textures.upload(renderer_.pixels_, width, height, old, isSameSize);
        state.round = textures.round();
        state.width = width;
        state.height = height;
    }

    void showBitmap(UIView& view, const CGRect& rect, const Surroundings& around) {
        const bool isAsDrawn = hasTexture(view) && !view.needsDisplay_ && view.renderState_->texture &&
                               view.renderState_->drawnSize == view.frame_.size;
        const detail::BitmapPlan plan =
            isAsDrawn ? view.renderState_->plan : detail::planBitmap(view, scale_, textures_.maximumSize());
        const CGRect outer = placed(view, plan, rect);
        const bool isInSight = !outer.intersection(around.clip).isEmpty();
        if (!isInSight && outer.intersection(around.nearby).isEmpty()) return;
        if (!isAsDrawn && !isUpToDate(view, plan)) {
            if (!isInSight && !mayDrawAhead({CGFloat(plan.width), CGFloat(plan.height)})) return;
            draw(view, plan);
        }
        view.renderState_->plan = plan;
        view.renderState_->drawnSize = view.frame_.size;
        if (!outer.intersection(reach(around)).isEmpty()) addStretched(view, plan, outer, around);
    }

    /// Where the whole bitmap goes: the view and what reaches beyond it.
    CGRect placed(const UIView& view, const detail::BitmapPlan& plan, const CGRect& rect) const {
        // Bitmaps are made in the final size; where that is not a whole number of pixels they keep their own.
        const CGFloat factor = scale_ / plan.scale;
        const CGSize final = view.frame_.size;
        const CGSize shown = view.presentationFrame().size;
        CGFloat width = plan.width * factor * (final.width > 0 ? shown.width / final.width : 1);
        CGFloat height = plan.height * factor * (final.height > 0 ? shown.height / final.height : 1);
        if (plan.isStretchedX()) width = rect.width() + (plan.outsetX + plan.outsetRight) * factor;
        if (plan.isStretchedY()) height = rect.height() + (plan.outsetY + plan.outsetBottom) * factor;
        return CGRectMake(rect.minX() - plan.outsetX * factor, rect.minY() - plan.outsetY * factor, width, height);
    }

    bool isUpToDate(const UIView& view, const detail::BitmapPlan& plan) const {
        if (!hasTexture(view) || view.needsDisplay_) return false;
        const State* state = view.renderState_.get();
        if (!state->texture) return false;
        const bool isSameSize = !view.drawsContent() || state->drawnSize == view.frame_.size;
        return isSameSize && state->width == plan.width && state->height == plan.height;
    }

    bool mayDrawAhead(CGSize pixels) {
        const bool may = drawnAhead_ < upcomingPixelsPerFrame;
        if (may)
            drawnAhead_ += static_cast<std::int64_t>(pixels.width * pixels.height);
        else
            renderer_.hasUpcoming_ = true;
        return may;
    }

    void draw(UIView& view, const detail::BitmapPlan& plan) {
        State& state = stateOf(view);
        // Cleared first: drawing may find that it has to happen again.
        view.needsDisplay_ = false;
        detail::drawBitmap(view, plan, renderer_.pixels_);
        ++renderer_.bitmapsDrawn_;
        const auto middle = static_cast<std::size_t>(plan.top) * static_cast<std::size_t>(plan.width) +
                            static_cast<std::size_t>(plan.left);
        state.isMiddleClear = renderer_.pixels_[middle] == 0;
        uploadTexture(state, plan.width, plan.height);
    }

    struct Span {
        int source, sourceLength;
        CGFloat place, length;
    };

    /// The parts of a bitmap along one axis: all of it, or both edges and the line between them that is stretched.
    static std::size_t divide(Span (&spans)[3], int size, int first, int last, CGFloat place, CGFloat length,
                              CGFloat factor) {
        if (first == 0) {
            spans[0] = {0, size, place, length};
            return 1;
        }
        const CGFloat before = first * factor, after = last * factor;
        spans[0] = {0, first, place, before};
        spans[1] = {first, 1, place + before, length - before - after};
        spans[2] = {first + 1, last, place + length - after, after};
        return 3;
    }

    void addStretched(const UIView& view, const detail::BitmapPlan& plan, const CGRect& outer,
                      const Surroundings& around) {
        const State& state = *view.renderState_;
        const CGFloat factor = scale_ / plan.scale;
        Span columns[3], rows[3];
        const std::size_t columnCount =
            divide(columns, plan.width, plan.left, plan.right, outer.minX(), outer.width(), factor);
        const std::size_t rowCount =
            divide(rows, plan.height, plan.top, plan.bottom, outer.minY(), outer.height(), factor);
        for (std::size_t row = 0; row < rowCount; ++row) {
            for (std::size_t column = 0; column < columnCount; ++column) {
                const bool isMiddle = columnCount == 3 && rowCount == 3 && row == 1 && column == 1;
                if (isMiddle && state.isMiddleClear) continue;
                const Span &x = columns[column], &y = rows[row];
                add(state.texture, {x.source, y.source, x.sourceLength, y.sourceLength},
                    CGRectMake(x.place, y.place, x.length, y.length), around);
            }
        }
    }

    LayerRenderer& renderer_;
    detail::DisplayList& list_;
    detail::LayerTextures& textures_;
    CGFloat scale_;
    std::int64_t drawnAhead_ = 0;
};

LayerRenderer::LayerRenderer(UIView& root)
    : root_(root),
      textures_(std::make_shared<detail::LayerTextures>()),
      list_(std::make_unique<detail::DisplayList>()) {}
LayerRenderer::~LayerRenderer() = default;

bool LayerRenderer::needsList() const {
    return root_.changeStamp_ > drawnStamp_ || hasUpcoming_ || !hasList_;
}

bool LayerRenderer::needsDisplay() const {
    return needsList() || textures_->carriers().haveMoved;
}

void LayerRenderer::draw(Compositor& compositor, CGFloat scale) {
    const std::uint64_t round = textures_->round();
    textures_->use(compositor);
    if (scale != scale_) textures_->discardAll();
    scale_ = scale;
    const bool haveMoved = std::exchange(textures_->carriers().haveMoved, false);
    const bool isOutdated = needsList() || textures_->round() != round;
    if (isOutdated || (haveMoved && !list_->place()))
        makeList();
    else if (!haveMoved && pixels_.capacity() > 0)
        // At rest; a bitmap may have taken megabytes.
        pixels_ = std::vector<std::uint32_t>();
    compositor.beginFrame();
    for (const TexturedQuad& quad : list_->quads()) compositor.drawQuad(quad);
    compositor.endFrame();
}

void LayerRenderer::makeList() {
    // Counted on first, so that what changes while the list is made shows in the next.
    drawnStamp_ = detail::changeStampInForce++;
    textures_->destroyRetired();
    Walk(*this).run();
    list_->place();
    hasList_ = true;
    ++listsBuilt_;
}

void LayerRenderer::releaseTextures(Compositor& compositor) {
    textures_->release(compositor);
    list_->clear({}, scale_);
    list_->place();
    hasList_ = false;
}

LayerRenderer::Statistics LayerRenderer::statistics() const {
    return {bitmapsDrawn_, textures_->uploads(), listsBuilt_, list_->quads().size()};
}

}  // namespace flarebox
