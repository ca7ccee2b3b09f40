// Property lists: text as it comes, and values of every kind written and read.

#include <Fuzz/Support/ByteSource.h>

#include <Foundation/NSPropertyListSerialization.h>

namespace flarebox::fuzz {
namespace {

void checkRoundTrip(const Value& value, const NSData& written) {
    Ref<NSError> error;
    const Value again = NSPropertyListSerialization::propertyListWithData(written, "written", &error);
    check(!error && again == value, "what was written reads the same");
    check(NSPropertyListSerialization::dataWithPropertyList(again) == written, "what was read writes the same");
}

}  // namespace

FLAREBOX_FUZZER(PropertyList) {
    Ref<NSError> error;
    const Value value =
        NSPropertyListSerialization::propertyListWithData(NSData::dataWithBytes(text(input)), "fuzzed", &error);
    check(value.isAbsent() == static_cast<bool>(error), "a value or an error");
    if (value) {
        const NSData written = NSPropertyListSerialization::dataWithPropertyList(value);
        check(static_cast<bool>(written), "what was read can be written");
        checkRoundTrip(value, written);
        return;
    }
    ByteSource source(input);
    const Value made = makeValue(source, 5, false);
    if (const NSData written = NSPropertyListSerialization::dataWithPropertyList(made, &error))
        checkRoundTrip(made, written);
}

}  // namespace flarebox::fuzz
