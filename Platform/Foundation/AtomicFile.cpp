#include "AtomicFile.h"

#include <Foundation/FileError.h>

#include <cerrno>
#include <filesystem>

namespace flarebox {
namespace {

bool isSeparator(char c) {
    return c == '/' || c == std::filesystem::path::preferred_separator;
}

}  // namespace

AtomicFile::AtomicFile(std::string_view path) : path_(path) {
    while (path_.size() > 1 && isSeparator(path_.back())) path_.pop_back();
    if (path_.empty() || path_.find('\0') != path_.npos)
        failure_ = EINVAL;
    else
        create();
}

AtomicFile::~AtomicFile() {
    discard();
}

Ref<NSError> AtomicFile::error() const {
    return failure_ == 0 ? nullptr : fileError(failure_, FileAccess::Write, path_);
}

bool AtomicFile::fail(int number) {
    if (failure_ == 0) failure_ = number;
    return false;
}

bool AtomicFile::write(std::string_view bytes) {
    while (isGood() && !bytes.empty()) bytes.remove_prefix(append(bytes));
    return isGood();
}

bool AtomicFile::commit() {
    if (!isGood() || !takePlace()) return false;
    hiddenPath_.clear();
    return true;
}

}  // namespace flarebox
