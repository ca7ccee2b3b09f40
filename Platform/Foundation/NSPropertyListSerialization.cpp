#include <Foundation/Backend/Pugixml/PropertyListXML.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSPropertyListSerialization.h>

namespace flarebox {

namespace {

constexpr std::size_t maximumFileSize = std::size_t{16} * 1024 * 1024;

void report(Ref<NSError>* error, int code, std::string_view failure) {
    if (error) *error = NSError::errorWithDomain(NSCocoaErrorDomain, code, failure);
}

}  // namespace

NSData NSPropertyListSerialization::dataWithPropertyList(const Value& propertyList, Ref<NSError>* error) {
    std::string failure;
    std::string text = detail::writePropertyListXML(propertyList, failure);
    if (failure.empty()) return NSData::dataWithString(std::move(text));
    report(error, NSPropertyListWriteInvalidError, failure);
    return {};
}

Value NSPropertyListSerialization::propertyListWithData(const NSData& data, std::string_view fileName,
                                                        Ref<NSError>* error) {
    std::string failure;
    Value value = detail::readPropertyListXML(data.text(), fileName, failure);
    if (!failure.empty()) report(error, NSPropertyListReadCorruptError, failure);
    return value;
}

Value NSPropertyListSerialization::propertyListWithContentsOfFile(std::string_view path, Ref<NSError>* error) {
    NSData data = NSFileManager::defaultManager().contentsAtPath(path, maximumFileSize, error);
    return data ? propertyListWithData(data, path, error) : Value();
}

}  // namespace flarebox
