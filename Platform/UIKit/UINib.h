#pragma once

#include <Foundation/NSError.h>
#include <Foundation/NSObject.h>

#include <memory>
#include <string_view>
#include <vector>

namespace flarebox {

class NSBundle;

/// Domain of the errors of layout files; their descriptions name file and line.
inline constexpr const char* UINibErrorDomain = "UINibErrorDomain";

/// A layout file: the XML description of a tree of views, checked and made on demand. A file is read once a process,
/// and when asked to. Main thread. Docs/LayoutFiles.md describes the format.
class UINib : public NSObject {
    FLAREBOX_CLASS(UINib)
public:
    /// The file "NAME.xml" of the bundle. Never null; a missing or malformed file is an error of instantiating.
    static Ref<UINib> nibWithNibName(std::string_view name, NSBundle& bundle);
    /// A layout from memory; `name` stands for the file in messages.
    static Ref<UINib> nibWithText(std::string_view text, std::string_view name);
    ~UINib() override;

    /// Reads the files of all layouts again that have changed since. One that is wrong now is told in the log, and
    /// stays as it was. True when one has another content from now on; views that exist stay as they are. For tools.
    static bool readChangedFiles();

    /// Makes the file's views anew and answers its top-level objects, all outlets bound, all `awakeFromNib` called.
    /// Outlets and actions belong to the first top-level object where its class has them, to the owner, which may be
    /// null, otherwise. On any error the result is empty; the error goes to `error`, or to the log when that is
    /// null.
    std::vector<Ref<NSObject>> instantiateWithOwner(NSObject* owner, Ref<NSError>* error = nullptr) const;

private:
    struct File;
    std::shared_ptr<const File> file_;
};

}  // namespace flarebox
