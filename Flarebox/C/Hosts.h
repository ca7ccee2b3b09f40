#pragma once

#include <Flarebox/C/Guard.h>
#include <UIKit/UIHost.h>

#include <memory>
#include <string>
#include <utility>

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

/// For a function that answers no result: false, and why.
inline bool refused(std::string reason) {
    failed(FLAREBOX_INVALID_ARGUMENT, std::move(reason));
    return false;
}

}  // namespace flarebox::c
