#pragma once

#include <UIKit/UIView.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace flarebox::hostgame {

/// Which pictures of models and videos a view shows.
struct ContentFrames {
    std::size_t scenePictures = 0;
    /// Kept, so that no later frame can be taken for one of them.
    std::vector<std::shared_ptr<const void>> videoFrames;

    /// Whether anything has been drawn that the other does not know of.
    bool isNewerThan(const ContentFrames& other) const;
};

/// Those of the view and of everything in it.
ContentFrames contentFrames(const UIView& view);
/// Whether a model or a video can be seen in it.
bool showsContent(const UIView& view);

}  // namespace flarebox::hostgame
