#include <Flarebox/Mapping/Motis.h>
#include <Foundation/NSNumberFormatter.h>

namespace flarebox {

namespace {

Ref<NSNumberFormatter> decimalFormatter(bool allowsFloats) {
    auto formatter = make<NSNumberFormatter>();
    formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
    formatter->setAllowsFloats(allowsFloats);
    return formatter;
}

/// The only initialiser of the kit that runs at load: it makes sure that what all threads share exists before there are
/// any.
const bool isInitialised = (mts_motisInitialization(), true);

}  // namespace

NSNumberFormatter& mts_decimalFormatterNoFloats() {
    static const Ref<NSNumberFormatter> formatter = decimalFormatter(false);
    return *formatter;
}

NSNumberFormatter& mts_decimalFormatterAllowFloats() {
    static const Ref<NSNumberFormatter> formatter = decimalFormatter(true);
    return *formatter;
}

void mts_motisInitialization() {
    const MotisClass& root = MotisObject::staticClass();
    root.mts_cachedMapping();
    root.mts_cachedArrayClassMapping();
    root.mts_keyPaths();
    mts_decimalFormatterAllowFloats();
    mts_decimalFormatterNoFloats();
}

}  // namespace flarebox
