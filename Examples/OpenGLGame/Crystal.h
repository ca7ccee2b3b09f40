#pragma once

namespace flarebox::openglgame {

/// What this game shows: a crystal that turns. Needs a context of OpenGL 3.3 to be current, and sets its state as it
/// likes: it leaves its program, its vertex array, the depth test and the culling of back faces behind.
class Crystal {
public:
    Crystal();
    ~Crystal();
    Crystal(const Crystal&) = delete;
    Crystal& operator=(const Crystal&) = delete;

    /// Fills the bound framebuffer, whose sides are in pixels. The crystal turns once in six seconds.
    void draw(int width, int height, double seconds) const;

private:
    unsigned program_ = 0, vertexArray_ = 0, buffer_ = 0;
};

}  // namespace flarebox::openglgame
