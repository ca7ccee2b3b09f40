#include <Flarebox/Models/FXAssetInfo.h>

namespace flarebox {

void FXAssetInfo::setDefaults() {
    FXBaseObject::setDefaults();
    setIsActive(1);
    setIsGeneric(0);
}

}  // namespace flarebox
