#pragma once

#include <UIKit/Compositor.h>
#include <UIKit/Geometry.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace flarebox {

class UIView;

namespace detail {
class DisplayList;
class LayerTextures;
}

/// Shows a tree of views through a compositor. A view is drawn into a bitmap only when its look changed; the list of
/// rectangles is kept from frame to frame, moved where views only move, fade or scroll, and made anew when anything
/// else in the tree changed. Main thread.
class LayerRenderer {
public:
    /// `root` must outlive the renderer. A tree is shown by one renderer at a time.
    explicit LayerRenderer(UIView& root);
    ~LayerRenderer();
    LayerRenderer(const LayerRenderer&) = delete;
    LayerRenderer& operator=(const LayerRenderer&) = delete;

    /// Whether the picture differs from the one last drawn.
    bool needsDisplay() const;
    /// Draws the tree with its root's upper left corner at pixel 0, 0; `scale` is in pixels per point. A compositor or
    /// scale other than the last one draws every bitmap anew.
    void draw(Compositor& compositor, CGFloat scale);
    /// Gives back every texture made with that compositor; the next `draw` makes them again.
    void releaseTextures(Compositor& compositor);

    /// Since the renderer was made.
    struct Statistics {
        std::size_t bitmapsDrawn = 0;
        std::size_t texturesUploaded = 0;
        std::size_t listsBuilt = 0;
        /// In the list as it is now.
        std::size_t quads = 0;
    };
    Statistics statistics() const;

private:
    class Walk;
    bool needsList() const;
    void makeList();

    UIView& root_;
    std::shared_ptr<detail::LayerTextures> textures_;
    std::unique_ptr<detail::DisplayList> list_;
    /// Where bitmaps are drawn before the compositor gets them.
    std::vector<std::uint32_t> pixels_;
    std::uint64_t drawnStamp_ = 0;
    CGFloat scale_ = 0;
    std::size_t bitmapsDrawn_ = 0, listsBuilt_ = 0;
    bool hasList_ = false;
    /// Views that may come into sight still wait for their bitmaps.
    bool hasUpcoming_ = false;
};

}  // namespace flarebox
