#pragma once

#include <Flarebox/C/Guard.h>
#include <UIKit/UIHost.h>

#include <memory>

namespace flarebox::c {

/// A panel that C holds, and what draws it.
struct Host {
    Host(CGSize size, double scale, const flarebox_renderer& renderer);
    ~Host();

    std::unique_ptr<Compositor> compositor;
    UIHost panel;
};

Handles<Host, flarebox_host>& hosts();

/// Whether the panel used what `input` hands it.
template <class Input>
bool consumes(flarebox_host* handle, const Input& input) {
    InputResult result = InputResult::Ignored;
    with(hosts(), handle, [&](Host& object) { result = input(object.panel); });
    return result == InputResult::Consumed;
}

}  // namespace flarebox::c
