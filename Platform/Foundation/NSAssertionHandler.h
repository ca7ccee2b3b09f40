#pragma once

#include <Foundation/Export.h>

#include <exception>
#include <source_location>
#include <string>
#include <string_view>

namespace flarebox {

inline constexpr const char* NSInternalInconsistencyException = "NSInternalInconsistencyException";

/// The platform's exception: raised for mistakes of the programmer, not for anything that comes from outside.
class FLAREBOX_EXPORT NSException : public std::exception {
public:
    NSException(std::string_view name, std::string_view reason) : name_(name), reason_(reason) {}

    const std::string& name() const { return name_; }
    const std::string& reason() const { return reason_; }
    /// The reason.
    const char* what() const noexcept override { return reason_.c_str(); }

private:
    std::string name_;
    std::string reason_;
};

/// What happens when an assertion fails. Main thread.
class FLAREBOX_EXPORT NSAssertionHandler {
public:
    virtual ~NSAssertionHandler() = default;

    /// The default raises an `NSException` named NSInternalInconsistencyException whose reason is the description.
    /// Where a handler of the host returns instead, the operation that asserted goes on and reports an error its own
    /// way.
    virtual void handleFailure(std::string_view function, std::string_view file, int line,
                               std::string_view description);

    static NSAssertionHandler& currentHandler();
    /// Installs a handler, or with null the default one again. The handler must outlive its use.
    static void setCurrentHandler(NSAssertionHandler* handler);
    /// Whether the kit was built with assertions, that is without NDEBUG. Without them no handler is ever called.
    static bool assertionsActive();
};

/// Asserts that an input is as required; a failure is described as "Invalid parameter not satisfying: NAME".
/// Returns the condition, so that the caller can go on with its error where the handler returned or assertions are off.
bool assertParameter(bool condition, std::string_view name,
                     std::source_location location = std::source_location::current());

}  // namespace flarebox
