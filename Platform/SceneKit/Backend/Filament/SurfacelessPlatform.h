#pragma once

#include <backend/Platform.h>

#include <cstdint>

// The library exports this class without its declaration. The order of the functions is the order in which the
// library calls them, for this one release; CMake refuses every other.
namespace filament::backend {

class Driver;
struct AcquiredImage;

class OpenGLPlatform : public DefaultPlatform {
public:
    ~OpenGLPlatform() noexcept override;

    virtual void terminate() noexcept = 0;
    virtual SwapChain* createSwapChain(void* window, std::uint64_t& flags) noexcept = 0;
    virtual SwapChain* createSwapChain(std::uint32_t width, std::uint32_t height, std::uint64_t& flags) noexcept = 0;
    virtual void destroySwapChain(SwapChain* swapChain) noexcept = 0;
    virtual void createDefaultRenderTarget(std::uint32_t& framebuffer, std::uint32_t& colorBuffer,
                                           std::uint32_t& depthBuffer) noexcept;
    virtual void makeCurrent(SwapChain* draw, SwapChain* read) noexcept = 0;
    virtual void commit(SwapChain* swapChain) noexcept = 0;
    virtual void setPresentationTime(std::int64_t nanoseconds) noexcept = 0;
    virtual bool canCreateFence() noexcept;
    virtual Fence* createFence() noexcept = 0;
    virtual void destroyFence(Fence* fence) noexcept = 0;
    virtual FenceStatus waitFence(Fence* fence, std::uint64_t timeout) noexcept = 0;
    virtual Stream* createStream(void* nativeStream) noexcept = 0;
    virtual void destroyStream(Stream* stream) noexcept = 0;
    virtual void attach(Stream* stream, std::intptr_t texture) noexcept = 0;
    virtual void detach(Stream* stream) noexcept = 0;
    virtual void updateTexImage(Stream* stream, std::int64_t* timestamp) noexcept = 0;
    virtual ExternalTexture* createExternalTextureStorage() noexcept = 0;
    virtual void reallocateExternalStorage(ExternalTexture* texture, std::uint32_t width, std::uint32_t height,
                                           TextureFormat format) noexcept = 0;
    virtual void destroyExternalTextureStorage(ExternalTexture* texture) noexcept = 0;
    virtual AcquiredImage transformAcquiredImage(AcquiredImage source) noexcept;
    virtual bool setExternalImage(void* image, void* texture) noexcept;
    virtual void retainExternalImage(void* image) noexcept;
    virtual void releaseExternalImage(void* image) noexcept;
    virtual void* createExternalImageTexture(void* image) noexcept;
    virtual void destroyExternalImage(void* image) noexcept;

protected:
    static Driver* createDefaultDriver(OpenGLPlatform* platform, void* sharedContext);
};

}  // namespace filament::backend

namespace flarebox::detail {

/// An OpenGL context without window, display or screen: what it draws goes to textures only, and it never meets the
/// host's own context. All but making and destroying happens on the library's driver thread.
class SurfacelessPlatform final : public filament::backend::OpenGLPlatform {
public:
    SurfacelessPlatform() = default;

    /// Why `createDriver` made none; empty otherwise.
    const char* failure() const { return failure_; }

    int getOSVersion() const noexcept override { return 0; }
    filament::backend::Driver* createDriver(void* sharedContext) noexcept override;

    void terminate() noexcept override;
    SwapChain* createSwapChain(void* window, std::uint64_t& flags) noexcept override;
    SwapChain* createSwapChain(std::uint32_t width, std::uint32_t height, std::uint64_t& flags) noexcept override;
    void destroySwapChain(SwapChain*) noexcept override {}
    void makeCurrent(SwapChain* draw, SwapChain* read) noexcept override;
    void commit(SwapChain*) noexcept override {}
    void setPresentationTime(std::int64_t) noexcept override {}

    Fence* createFence() noexcept override { return nullptr; }
    void destroyFence(Fence*) noexcept override {}
    filament::backend::FenceStatus waitFence(Fence*, std::uint64_t) noexcept override;
    Stream* createStream(void*) noexcept override { return nullptr; }
    void destroyStream(Stream*) noexcept override {}
    void attach(Stream*, std::intptr_t) noexcept override {}
    void detach(Stream*) noexcept override {}
    void updateTexImage(Stream*, std::int64_t*) noexcept override {}
    ExternalTexture* createExternalTextureStorage() noexcept override { return nullptr; }
    void reallocateExternalStorage(ExternalTexture*, std::uint32_t, std::uint32_t,
                                   filament::backend::TextureFormat) noexcept override {}
    void destroyExternalTextureStorage(ExternalTexture*) noexcept override {}

private:
    const char* createContext() noexcept;

    // EGLDisplay and EGLContext, whose header brings in a window system's.
    void* display_ = nullptr;
    void* context_ = nullptr;
    SwapChain nowhere_;
    const char* failure_ = "";
};

}  // namespace flarebox::detail
