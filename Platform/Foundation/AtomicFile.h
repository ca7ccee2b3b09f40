#pragma once

#include <Foundation/NSError.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace flarebox {

/// A file that appears at its place complete or not at all, taking the place of one that is there; only the user may
/// read it. What is written before `commit` has no name that a listing of the folder would show, where the file system
/// can do that; what is never committed is gone. One thread at a time.
class AtomicFile {
public:
    /// The folder must exist.
    explicit AtomicFile(std::string_view path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    const std::string& path() const { return path_; }
    /// Whether creating it and everything since has worked.
    bool isGood() const { return failure_ == 0; }
    /// What went wrong first, of NSCocoaErrorDomain with the path; null while nothing has.
    Ref<NSError> error() const;

    /// Does nothing after a failure.
    bool write(std::string_view bytes);
    /// Gives the file its place. False when that or something before failed.
    bool commit();

private:
    /// Keeps the first failure, a number of errno. False.
    bool fail(int number);

    // What each system does in its own way.
    void create();
    /// How much was written; with a failure 0.
    std::size_t append(std::string_view bytes);
    bool takePlace();
    /// Closes it, and removes what has a name still.
    void discard();

    std::string path_;
    /// Where the bytes are meanwhile; empty while they have no name.
    std::string hiddenPath_;
    int descriptor_ = -1;
    int failure_ = 0;
};

}  // namespace flarebox
