#pragma once

#include <cstddef>
#include <memory>

namespace flarebox::benchmarks {

/// The peer: the same panel in an immediate-mode library, of the same size on the same screen, with everything that it
/// has for a frame made ready to draw: vertices, indices and draw commands. No renderer takes them.
class ImmediatePanel {
public:
    explicit ImmediatePanel(std::size_t assets);
    ~ImmediatePanel();
    ImmediatePanel(const ImmediatePanel&) = delete;
    ImmediatePanel& operator=(const ImmediatePanel&) = delete;

    /// One frame of 1/60 second. `slide` from 0, closed, to 1, open; `scroll` from 0, the list's beginning, to 1, its
    /// end. Returns the number of vertices.
    int frame(float slide, float scroll);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace flarebox::benchmarks
