// JSON text to values and records, and back.

#include <Fuzz/Support/ByteSource.h>

#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Models/FXCoupon.h>
#include <Flarebox/Models/FXEngagementData.h>
#include <Flarebox/Models/FXSessionInfo.h>
#include <Flarebox/Models/FXUserSession.h>
#include <Foundation/NSJSONSerialization.h>

namespace flarebox::fuzz {
namespace {

Value read(std::string_view json) {
    Ref<NSError> error;
    Value value = NSJSONSerialization::JSONObjectWithText(json, NSJSONReadingAllowFragments, &error);
    check(value.isAbsent() == static_cast<bool>(error), "a value or an error");
    return value;
}

std::string write(const Value& value) {
    std::string json;
    check(NSJSONSerialization::writeJSONObject(value, json, NSJSONWritingFragmentsAllowed, nullptr),
          "what was read can be written");
    return json;
}

template <class Record>
void checkRecord(const Value& value) {
    const auto record = Record::initWithDictionary(value);
    const NSDictionary written = record->toDictionary();
    check(written == Record::initWithDictionary(deepCopy(value))->toDictionary(),
          "how values are stored does not matter");
    check(written == Record::initWithDictionary(written)->toDictionary(), "a record written and read is the same");
    const auto described = Record::initWithDictionary(record->copy()->toDictionary());
    check(described->toDictionary() == record->copy()->toDictionary(), "a copy is like any other record");
    check(!record->debugDescription().empty(), "every record can be described");
}

void checkRecords(const Value& value) {
    checkRecord<FXAssetInfo>(value);
    checkRecord<FXCoupon>(value);
    checkRecord<FXEngagementData>(value);
    checkRecord<FXSessionInfo>(value);
    checkRecord<FXUserSession>(value);
}

}  // namespace

FLAREBOX_FUZZER(Json) {
    const Value value = read(text(input));
    const Value strict = NSJSONSerialization::JSONObjectWithText(text(input), NSJSONReadingStrict, nullptr);
    const bool isContainer = value.as<NSArray>() || value.as<NSDictionary>();
    check(static_cast<bool>(strict) == isContainer, "only the outermost value makes the difference");
    if (!value) return;

    const std::string json = write(value);
    const Value again = read(json);
    check(again == value, "what was written reads the same");
    // A negative zero reads as a plain one.
    check(json.find("-0") != std::string::npos || write(again) == json, "what was read writes the same");
    check(again.hash() == value.hash(), "equal values have equal hashes");
    check(deepCopy(value) == value, "a copy is equal");
    check(write(deepCopy(value)) == json, "a copy is written the same");
    check(!value.description().empty() || value == Value(""), "every value can be described");

    checkRecords(value);
    for (const Value& element : value.as<NSArray>()) checkRecords(element);
}

}  // namespace flarebox::fuzz
