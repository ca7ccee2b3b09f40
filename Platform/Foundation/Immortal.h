#pragma once

#include <new>
#include <utility>

namespace flarebox::detail {

/// A process-wide object that is never destroyed, so that whatever ends late in the process may still use it.
template <class T>
class Immortal {
public:
    template <class... Arguments>
    explicit Immortal(Arguments&&... arguments) {
        ::new (static_cast<void*>(&value_)) T(std::forward<Arguments>(arguments)...);
    }
    ~Immortal() {}  // NOLINT(modernize-use-equals-default): the union has none by itself
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() noexcept { return value_; }
    T* operator->() noexcept { return &value_; }

private:
    union {
        T value_;
    };
};

}  // namespace flarebox::detail
