#pragma once

#include <Examples/OpenGLGame/OffscreenContext.h>
#include <Examples/OpenGLGame/OffscreenTarget.h>
#include <Host/Headless/SoftwareCompositor.h>
#include <Host/OpenGL/OpenGLCompositor.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flarebox::testing {

using examples::OffscreenContext;
using examples::OffscreenTarget;

/// What a game's context is, or what the kit is made to believe that it is: a version without its later functions.
struct GLKind {
    const char* name;
    OffscreenContext::Kind kind = OffscreenContext::Kind::Desktop;
    /// Null: as it is.
    const char* version = nullptr;
    bool hidesExtensions = false;

    bool isES() const { return kind == OffscreenContext::Kind::ES; }
};

inline constexpr GLKind glKinds[] = {
    {"Desktop"},
    {"Desktop33", OffscreenContext::Kind::Desktop, "3.3 (Core Profile)"},
    {"ES", OffscreenContext::Kind::ES},
    {"ES30", OffscreenContext::Kind::ES, "OpenGL ES 3.0", true},
};

inline const char* pretendedVersion = nullptr;

inline const GLubyte* APIENTRY pretendedString(GLenum name) {
    const bool isPretended = pretendedVersion && name == GL_VERSION;
    return isPretended ? reinterpret_cast<const GLubyte*>(pretendedVersion) : glGetString(name);
}

inline const GLubyte* APIENTRY noExtension(GLenum, GLuint) {
    return reinterpret_cast<const GLubyte*>("");
}

/// Resolves what the kind has.
inline OpenGLResolver resolverOf(const GLKind& kind) {
    return [kind](const char* name) -> void* {
        if (name == std::string_view("glGetString")) {
            pretendedVersion = kind.version;
            return reinterpret_cast<void*>(&pretendedString);
        }
        if (kind.hidesExtensions && name == std::string_view("glGetStringi"))
            return reinterpret_cast<void*>(&noExtension);
        return OffscreenContext::resolve(name);
    };
}

/// The version that the kit goes by, as 33 for 3.3.
inline int versionOf(const GLKind& kind) {
    const std::string_view text = kind.version ? kind.version : reinterpret_cast<const char*>(glGetString(GL_VERSION));
    const std::size_t digit = text.find_first_of("0123456789");
    return (text[digit] - '0') * 10 + (text[digit + 2] - '0');
}

/// A context of every kind in turn. Skipped only where the machine has no way to make one at all.
class OpenGLTest : public ::testing::TestWithParam<GLKind> {
protected:
    void SetUp() override {
        context_ = std::make_unique<OffscreenContext>(GetParam().kind);
        if (!context_->failure().empty()) GTEST_SKIP() << "no OpenGL without a window here: " << context_->failure();
    }
    bool isES() const { return GetParam().isES(); }

    std::unique_ptr<OffscreenContext> context_;
};

inline std::string kindName(const ::testing::TestParamInfo<GLKind>& info) {
    return info.param.name;
}

/// Largest difference of one colour or alpha between two pictures of one size.
inline int difference(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b) {
    if (a.size() != b.size()) return 256;
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (const int shift : {0, 8, 16, 24}) {
            const int one = static_cast<int>(a[i] >> shift & 255), other = static_cast<int>(b[i] >> shift & 255);
            largest = std::max(largest, std::abs(one - other));
        }
    }
    return largest;
}

/// Rounding in 8 bits, once in the mixing of four texels and once in the blending.
inline constexpr int rounding = 3;

/// Rectangles of all kinds: copied, stretched, from a part of a texture, clipped, beside the target, faded.
class SampleQuads {
public:
    static constexpr int width = 96, height = 64;

    explicit SampleQuads(Compositor& compositor) : compositor_(compositor) {
        opaque_ = make(
            16, [](int x, int y) { return 0xFF000000U | static_cast<unsigned>(x * 16 << 16 | y * 16 << 8 | 0x30); });
        sheer_ = make(8, [](int x, int y) {
            const unsigned alpha = static_cast<unsigned>(x * 32);
            return alpha << 24 | (alpha / 2) << 16 | (y % 2 ? alpha : 0);
        });
    }

    void draw() {
        const CGRect all = CGRectMake(0, 0, width, height);
        compositor_.beginFrame();
        compositor_.drawQuad({opaque_, {0, 0, 16, 16}, CGRectMake(2, 3, 16, 16), all, 1});
        compositor_.drawQuad({sheer_, {0, 0, 8, 8}, CGRectMake(6, 7, 8, 8), all, 1});
        compositor_.drawQuad({opaque_, {4, 4, 6, 5}, CGRectMake(20.25, 3.5, 30.5, 22.75), all, 1});
        compositor_.drawQuad({sheer_, {0, 0, 8, 8}, CGRectMake(54.5, 2.5, 32, 20), CGRectMake(60.5, 0, 20, 15.5), 1});
        compositor_.drawQuad({opaque_, {0, 0, 16, 16}, CGRectMake(2, 30, 16, 16), all, 0.5F});
        compositor_.drawQuad({opaque_, {0, 0, 16, 16}, CGRectMake(-7, 52, 16, 16), all, 1});
        compositor_.drawQuad({opaque_, {3, 3, 1, 1}, CGRectMake(85, 40, 40, 40), all, 0.3F});
        compositor_.drawQuad({sheer_, {1, 2, 4, 4}, CGRectMake(30, 34, 40, 24), CGRectMake(0, 40, 96, 10), 0.7F});
        // None of these is to be seen.
        compositor_.drawQuad({opaque_, {0, 0, 17, 16}, CGRectMake(70, 40, 10, 10), all, 1});
        compositor_.drawQuad({opaque_, {0, 0, 16, 16}, CGRectMake(70, 40, 10, 10), CGRectMake(0, 0, 70, 64), 1});
        compositor_.drawQuad({99, {0, 0, 16, 16}, CGRectMake(70, 40, 10, 10), all, 1});
        compositor_.endFrame();
    }

    /// What `draw` shows over a target full of that colour.
    static std::vector<std::uint32_t> expected(std::uint32_t background) {
        SoftwareCompositor software(width, height);
        software.clear(background);
        SampleQuads(software).draw();
        return {software.pixels().begin(), software.pixels().end()};
    }

private:
    template <class Pixel>
    TextureId make(int side, Pixel pixel) {
        // A row has a pixel more in memory than in the texture.
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x <= side; ++x) pixels.push_back(x < side ? pixel(x, y) : 0xFFFFFFFFU);
        }
        const TextureId texture = compositor_.createTexture(side, side);
        compositor_.updateTexture(texture, {0, 0, side, side}, pixels.data(), side + 1);
        return texture;
    }

    Compositor& compositor_;
    TextureId opaque_ = 0, sheer_ = 0;
};

}  // namespace flarebox::testing
