#pragma once

#include <Foundation/NSError.h>
#include <SceneKit/SCNNode.h>

#include <string_view>

namespace flarebox {

/// Domain of the errors of model files.
inline constexpr const char* ZorbErrorDomain = "ZorbErrorDomain";

/// Makes nodes of model files: binary glTF 2.0 of at most 256 MiB. Main thread only.
class ZorbRenderer : public NSObject {
    FLAREBOX_CLASS(ZorbRenderer)
public:
    /// A node that shows the model of the file, or null for a file that cannot be shown. Reads the file's description
    /// only, which takes milliseconds at most; its vertices and pictures are read, and checked, on the thread that
    /// draws when the node is first seen, so the file has to stay. A file that turns out to be broken there is not
    /// shown, and the view tells why.
    Ref<SCNNode> createSCNNodeFromFile(std::string_view path);
    /// Why the last call answered null; null when it did not.
    const Ref<NSError>& lastError() const { return lastError_; }

private:
    Ref<NSError> lastError_;
};

}  // namespace flarebox
