#pragma once

#include <Host/OpenGL/GLFunctions.h>
#include <UIKit/Compositor.h>

#include <optional>
#include <vector>

namespace flarebox::detail {

/// One shader and one buffer of vertices, filled anew for every batch, that draw all textured rectangles.
class GLQuads {
public:
    /// None, with the reason in the log, when the shader cannot be made. The functions must outlive it.
    static std::optional<GLQuads> make(const GLFunctions& gl);
    /// Gives everything back.
    void destroy();

    /// Draws pixels `area` of the target with what lies there of the rectangle.
    void add(GLuint texture, const TexturedQuad& quad, const PixelRect& area);
    /// Whether `draw` has something to draw.
    bool isEmpty() const { return vertices_.empty(); }
    /// Draws what was added since the last call, in the order in which it was added. The size is that of the target in
    /// pixels. With `isLinear` colours are handed out as light, for a target that encodes them itself.
    void draw(int width, int height, bool isLinear);

private:
    struct Vertex {
        /// Pixels from the target's upper left corner.
        GLfloat x, y;
        /// Texels from the texture's upper left corner.
        GLfloat u, v;
        /// The outermost texels of the source's: beyond them nothing is mixed in.
        GLfloat left, top, right, bottom;
        GLfloat opacity;
    };
    struct Batch {
        GLuint texture;
        GLsizei count;
    };

    explicit GLQuads(const GLFunctions& gl) : gl_(&gl) {}
    bool makeProgram();
    bool attach(GLenum kind, const char* source);
    bool link();
    void makeBuffer();

    const GLFunctions* gl_;
    GLuint program_ = 0, vertexArray_ = 0, buffer_ = 0;
    GLint targetSize_ = -1, isLinear_ = -1;
    std::vector<Vertex> vertices_;
    std::vector<Batch> batches_;
};

}  // namespace flarebox::detail
