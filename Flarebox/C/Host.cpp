#include <Flarebox/C/Hosts.h>
#include <Foundation/Immortal.h>

#include <cmath>

namespace flarebox::c {
namespace {

/// The first version ended with `straight_alpha`.
constexpr std::size_t sizeOfRenderer = offsetof(flarebox_renderer, straight_alpha) + sizeof(bool);

/// A renderer of C as the panel sees it.
class RendererCompositor : public Compositor {
public:
    explicit RendererCompositor(const flarebox_renderer& renderer) : renderer_(renderer) {}

    TextureId createTexture(int width, int height) override {
        return renderer_.create_texture(renderer_.context, width, height);
    }
    void updateTexture(TextureId texture, const PixelRect& region, const std::uint32_t* pixels, int stride) override {
        renderer_.update_texture(renderer_.context, texture, region.x, region.y, region.width, region.height, pixels,
                                 stride);
    }
    void destroyTexture(TextureId texture) override { renderer_.destroy_texture(renderer_.context, texture); }
    void drawQuad(const TexturedQuad& quad) override {
        const auto rect = [](const CGRect& from) {
            return flarebox_rect{from.minX(), from.minY(), from.width(), from.height()};
        };
        const flarebox_quad told = {quad.texture,       quad.source.x,          quad.source.y,   quad.source.width,
                                    quad.source.height, rect(quad.destination), rect(quad.clip), quad.opacity};
        renderer_.draw_quad(renderer_.context, &told);
    }
    Alpha alphaConvention() const override { return renderer_.straight_alpha ? Alpha::Straight : Alpha::Premultiplied; }
    int maximumTextureSize() const override {
        return renderer_.maximum_texture_size > 0 ? renderer_.maximum_texture_size : Compositor::maximumTextureSize();
    }
    void beginFrame() override {
        if (renderer_.begin_frame) renderer_.begin_frame(renderer_.context);
    }
    void endFrame() override {
        if (renderer_.end_frame) renderer_.end_frame(renderer_.context);
    }

private:
    const flarebox_renderer renderer_;
};

bool isScreen(double width, double height, double scale) {
    const auto isSide = [scale](double length) { return length > 0 && length * scale <= UIHost::longestSide; };
    return scale > 0 && scale <= UIHost::largestScale && isSide(width) && isSide(height);
}

constexpr const char* noScreen =
    "width, height and scale have to be more than 0, the scale at most 16 and a side at most 16384 pixels";

bool isPoint(double x, double y) {
    return std::isfinite(x) && std::isfinite(y);
}

constexpr const char* noPointer = "pointers are numbered from 0 on";
constexpr const char* noPoint = "a point is two numbers";

/// What a finger did.
bool consumesPointer(flarebox_host* host, std::int32_t pointer, double x, double y,
                     InputResult (UIHost::*input)(int, CGPoint)) {
    if (pointer < 0) return refused(noPointer);
    if (!isPoint(x, y)) return refused(noPoint);
    return consumes(host, [&](UIHost& panel) { return (panel.*input)(pointer, {x, y}); });
}

}  // namespace

Host::Host(CGSize size, double scale, const flarebox_renderer& renderer)
    : compositor(std::make_unique<RendererCompositor>(renderer)), panel(size, scale) {}

Host::~Host() {
    panel.releaseTextures(*compositor);
}

Handles<Host, flarebox_host>& hosts() {
    static detail::Immortal<Handles<Host, flarebox_host>> hosts;
    return *hosts;
}

}  // namespace flarebox::c

using namespace flarebox;
using namespace flarebox::c;

extern "C" {

flarebox_host* flarebox_host_create(double width, double height, double scale, const flarebox_renderer* renderer) {
    flarebox_host* made = nullptr;
    const auto make = [&] {
        if (UIHost::current()) return failed(FLAREBOX_FAILED, "there is a host already");
        flarebox_renderer known = FLAREBOX_RENDERER;
        if (!copyStruct(renderer, sizeOfRenderer, known)) return FLAREBOX_INVALID_ARGUMENT;
        if (!isScreen(width, height, scale)) return failed(FLAREBOX_INVALID_ARGUMENT, noScreen);
        if (!known.create_texture || !known.update_texture || !known.destroy_texture || !known.draw_quad)
            return failed(FLAREBOX_INVALID_ARGUMENT, "the renderer lacks one of its first four functions");
        claimMainThread();
        made = hosts().add(std::make_unique<Host>(CGSize{width, height}, scale, known));
        return FLAREBOX_OK;
    };
    withoutExceptions(make);
    return made;
}

flarebox_result flarebox_host_destroy(flarebox_host* host) {
    if (!host) return FLAREBOX_OK;
    return guardedOutsideCallbacks(
        [&] { return hosts().remove(host) ? FLAREBOX_OK : failed(FLAREBOX_INVALID_HANDLE, "there is no such host"); });
}

flarebox_result flarebox_host_set_screen(flarebox_host* host, double width, double height, double scale) {
    if (!isScreen(width, height, scale)) return failed(FLAREBOX_INVALID_ARGUMENT, noScreen);
    return with(hosts(), host, [&](Host& object) { object.panel.setScreen({width, height}, scale); });
}

flarebox_result flarebox_host_set_orientation(flarebox_host* host, std::int32_t orientation) {
    if (orientation < FLAREBOX_PORTRAIT || orientation > FLAREBOX_LANDSCAPE_RIGHT)
        return failed(FLAREBOX_INVALID_ARGUMENT, "there is no such orientation");
    return with(hosts(), host,
                [&](Host& object) { object.panel.setOrientation(static_cast<UIDeviceOrientation>(orientation)); });
}

bool flarebox_host_pointer_down(flarebox_host* host, std::int32_t pointer, double x, double y) {
    return consumesPointer(host, pointer, x, y, &UIHost::pointerDown);
}
bool flarebox_host_pointer_moved(flarebox_host* host, std::int32_t pointer, double x, double y) {
    return consumesPointer(host, pointer, x, y, &UIHost::pointerMoved);
}
bool flarebox_host_pointer_up(flarebox_host* host, std::int32_t pointer, double x, double y) {
    return consumesPointer(host, pointer, x, y, &UIHost::pointerUp);
}
bool flarebox_host_pointer_hovered(flarebox_host* host, double x, double y) {
    if (!isPoint(x, y)) return refused(noPoint);
    return consumes(host, [&](UIHost& panel) { return panel.pointerHovered({x, y}); });
}
flarebox_result flarebox_host_pointer_cancelled(flarebox_host* host, std::int32_t pointer) {
    if (pointer < 0) return failed(FLAREBOX_INVALID_ARGUMENT, noPointer);
    return with(hosts(), host, [&](Host& object) { object.panel.pointerCancelled(pointer); });
}
flarebox_result flarebox_host_pointer_left(flarebox_host* host) {
    return with(hosts(), host, [&](Host& object) { object.panel.pointerLeft(); });
}
bool flarebox_host_scrolled(flarebox_host* host, double x, double y, double dx, double dy) {
    if (!isPoint(x, y) || !isPoint(dx, dy)) return refused(noPoint);
    return consumes(host, [&](UIHost& panel) { return panel.scrolled({x, y}, dx, dy); });
}
bool flarebox_host_key_down(flarebox_host* host, const char* key) {
    if (!key) return refused("the key is null");
    return consumes(host, [&](UIHost& panel) { return panel.keyDown(key); });
}

flarebox_result flarebox_host_update(flarebox_host* host, double budget) {
    if (!(budget >= 0)) return failed(FLAREBOX_INVALID_ARGUMENT, "the budget has to be seconds");
    return with(hosts(), host, [&](Host& object) { object.panel.update(budget); });
}

bool flarebox_host_needs_display(flarebox_host* host) {
    bool needs = false;
    with(hosts(), host, [&](Host& object) { needs = object.panel.needsDisplay(); });
    return needs;
}

flarebox_result flarebox_host_set_turn_budget(flarebox_host* host, double seconds) {
    if (!(seconds >= 0)) return failed(FLAREBOX_INVALID_ARGUMENT, "the budget has to be seconds");
    return with(hosts(), host, [&](Host& object) { object.panel.setTurnBudget(seconds); });
}

double flarebox_host_longest_turn(flarebox_host* host) {
    double seconds = 0;
    with(hosts(), host, [&](Host& object) { seconds = object.panel.longestTurn().seconds(); });
    return seconds;
}

flarebox_result flarebox_host_reset_longest_turn(flarebox_host* host) {
    return with(hosts(), host, [](Host& object) { object.panel.resetLongestTurn(); });
}

flarebox_result flarebox_host_draw(flarebox_host* host) {
    return with(hosts(), host, [](Host& object) { object.panel.draw(*object.compositor); });
}

flarebox_result flarebox_host_release_textures(flarebox_host* host) {
    return guardedOutsideCallbacks(
        [&] { return with(hosts(), host, [](Host& object) { object.panel.releaseTextures(*object.compositor); }); });
}

}  // extern "C"
