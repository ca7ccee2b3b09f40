// Archives: bytes that claim to be one, and values and records that are archived and come back.

#include <Fuzz/Support/ByteSource.h>

#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Models/FXSessionInfo.h>
#include <Foundation/NSKeyedArchiver.h>

namespace flarebox::fuzz {
namespace {

Value unarchived(const NSData& archive, bool isSound) {
    Ref<NSError> error;
    const Value value = NSKeyedUnarchiver::unarchiveObjectWithData(archive, &error);
    check(value.isAbsent() == static_cast<bool>(error), "a value or an error");
    check(!isSound || value, "what was archived comes back");
    return value;
}

/// Archives what came out of an archive again.
void checkAgain(const Value& value) {
    const NSData archive = NSKeyedArchiver::archivedDataWithRootObject(value);
    // Shared values take room of their own when they are written, so that a small archive may grow beyond the limits.
    if (!archive) return;
    const Value again = unarchived(archive, true);
    check(again.classOf() == value.classOf(), "the class comes back");
    check(NSKeyedArchiver::archivedDataWithRootObject(again) == archive, "what came back is archived the same");
}

}  // namespace

FLAREBOX_FUZZER(KeyedArchive) {
    FXAssetInfo::staticClass();
    FXSessionInfo::staticClass();
    if (const Value value = unarchived(NSData::dataWithBytes(text(input)), false)) return checkAgain(value);

    ByteSource source(input);
    const bool isRecord = source.flag();
    const Value made = makeValue(source, 5, false);
    const Value root = isRecord ? Value(FXAssetInfo::initWithDictionary(made)) : made;
    const NSData archive = NSKeyedArchiver::archivedDataWithRootObject(root);
    check(static_cast<bool>(archive) == static_cast<bool>(root), "every value there is can be archived");
    if (!archive) return;
    const Value again = unarchived(archive, true);
    if (!isRecord) check(again == root, "what was archived comes back the same");
    checkAgain(again);
}

}  // namespace flarebox::fuzz
