#include <Foundation/NSAssertionHandler.h>

namespace flarebox {

namespace {

NSAssertionHandler* installed = nullptr;

}  // namespace

void NSAssertionHandler::handleFailure(std::string_view, std::string_view, int, std::string_view description) {
    throw NSException(NSInternalInconsistencyException, description);
}

NSAssertionHandler& NSAssertionHandler::currentHandler() {
    static NSAssertionHandler raising;
    return installed ? *installed : raising;
}

void NSAssertionHandler::setCurrentHandler(NSAssertionHandler* handler) {
    installed = handler;
}

bool NSAssertionHandler::assertionsActive() {
#ifdef NDEBUG
    return false;
#else
    return true;
#endif
}

bool assertParameter(bool condition, std::string_view name, std::source_location location) {
    if (condition || !NSAssertionHandler::assertionsActive()) return condition;
    std::string description = "Invalid parameter not satisfying: ";
    description += name;
    NSAssertionHandler::currentHandler().handleFailure(location.function_name(), location.file_name(),
                                                       static_cast<int>(location.line()), description);
    return false;
}

}  // namespace flarebox
