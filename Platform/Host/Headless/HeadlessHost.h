#pragma once

#include <Foundation/Export.h>
#include <Host/Headless/SoftwareCompositor.h>
#include <UIKit/UIHost.h>

#include <functional>
#include <string>

namespace flarebox {

/// Runs the panel without any display: its picture is memory, and a PNG on request. Together with a virtual clock the
/// same calls give the same pictures. Main thread.
class FLAREBOX_EXPORT HeadlessHost : public UIHost {
public:
    /// Size in points, scale in pixels per point.
    HeadlessHost(CGSize screenSize, CGFloat scale);
    ~HeadlessHost() override;

    /// Paints what lies under the panel: called by `drawFrame` first, with the picture of the last frame still in it.
    /// Null, the default, for transparent black.
    void setBackground(std::function<void(SoftwareCompositor& picture)> paint) { paintBackground_ = std::move(paint); }
    using UIHost::draw;
    /// Draws background and panel; the picture is as large as the screen.
    void drawFrame();

    /// The picture of the last frame.
    SoftwareCompositor& picture() { return compositor_; }
    /// False, with the reason in the log, when the file cannot be written.
    bool writePNG(const std::string& path) const;

private:
    SoftwareCompositor compositor_;
    std::function<void(SoftwareCompositor&)> paintBackground_;
};

}  // namespace flarebox
