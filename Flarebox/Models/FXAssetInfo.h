#pragma once

#include <Flarebox/Models/FXBaseObject.h>
#include <Foundation/Export.h>

namespace flarebox {

/// One promotional asset of the game.
class FLAREBOX_EXPORT FXAssetInfo : public FXBaseObject {
    // clang-format off
    FX_RECORD(FXAssetInfo, FXBaseObject,
        (title,           setTitle,           NSString, "title"),
        (subtitle,        setSubtitle,        NSString, "subtitle",         Optional),
        (_description,    set_description,    NSString, "description",      Optional),
        (isActive,        setIsActive,        NSNumber, "is_active"),
        (isGeneric,       setIsGeneric,       NSNumber, "is_generic"),
        (tags,            setTags,            NSString, "tags"),
        (created,         setCreated,         NSDate,   "created"),
        (modified,        setModified,        NSDate,   "modified"),
        (_id,             set_id,             NSNumber, "id"),
        (uid,             setUid,             NSString, "uid"),
        (campaignId,      setCampaignId,      NSNumber, "campaign_id",      Optional),
        (campaignUid,     setCampaignUid,     NSString, "campaign_uid",     Optional),
        (advertiserId,    setAdvertiserId,    NSNumber, "advertiser_id"),
        (advertiserUid,   setAdvertiserUid,   NSString, "advertiser_uid"),
        (fileZorb,        setFileZorb,        NSString, "file_zorb",        Optional),
        (fileStandalone,  setFileStandalone,  NSString, "file_standalone",  Optional),
        (fileIos,         setFileIos,         NSString, "file_ios",         Optional),
        (fileAndroid,     setFileAndroid,     NSString, "file_android",     Optional),
        (filePreview,     setFilePreview,     NSString, "file_preview",     Optional),
        (fileIcon,        setFileIcon,        NSString, "file_icon",        Optional),
        (fileImage,       setFileImage,       NSString, "file_image",       Optional),
        (fileCoupon,      setFileCoupon,      NSString, "file_coupon",      Optional),
        (videoMobile,     setVideoMobile,     NSString, "video_mobile",     Optional),
        (videoStandalone, setVideoStandalone, NSString, "video_standalone", Optional),
        (whereToBuy,      setWhereToBuy,      NSString, "where_to_buy"),
        (category,        setCategory,        NSNumber, "category"),
        (categoryTitle,   setCategoryTitle,   NSString, "category_title",   Optional))
    // clang-format on

protected:
    /// Active and not generic.
    void setDefaults() override;
};

}  // namespace flarebox
