#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace flarebox::benchmarks {

/// The asset as a program written for this one class would have it; what the peers fill and write.
struct PlainAsset {
    std::optional<std::string> title, subtitle, description, tags, uid, campaignUid, advertiserUid, fileZorb,
        fileStandalone, fileIos, fileAndroid, filePreview, fileIcon, fileImage, fileCoupon, videoMobile,
        videoStandalone, whereToBuy, categoryTitle;
    std::optional<double> isActive, isGeneric, created, modified, id, campaignId, advertiserId, category;
};

using TextField = std::optional<std::string> PlainAsset::*;
using NumberField = std::optional<double> PlainAsset::*;

/// Where a JSON key goes; both null for an unknown one.
struct AssetField {
    TextField text = nullptr;
    NumberField number = nullptr;
};

/// The field of a JSON key: one switch and one or two comparisons of constant length.
inline AssetField assetField(std::string_view key) {
    const auto is = [&](const auto& name) { return std::memcmp(key.data(), name, sizeof name - 1) == 0; };
    using A = PlainAsset;
    switch (key.size()) {
        case 2:
            if (is("id")) return {nullptr, &A::id};
            break;
        case 3:
            if (is("uid")) return {&A::uid};
            break;
        case 4:
            if (is("tags")) return {&A::tags};
            break;
        case 5:
            if (is("title")) return {&A::title};
            break;
        case 7:
            if (is("created")) return {nullptr, &A::created};
            break;
        case 8:
            if (is("subtitle")) return {&A::subtitle};
            if (is("modified")) return {nullptr, &A::modified};
            if (is("file_ios")) return {&A::fileIos};
            if (is("category")) return {nullptr, &A::category};
            break;
        case 9:
            if (is("is_active")) return {nullptr, &A::isActive};
            if (is("file_zorb")) return {&A::fileZorb};
            if (is("file_icon")) return {&A::fileIcon};
            break;
        case 10:
            if (is("is_generic")) return {nullptr, &A::isGeneric};
            if (is("file_image")) return {&A::fileImage};
            break;
        case 11:
            if (is("description")) return {&A::description};
            if (is("campaign_id")) return {nullptr, &A::campaignId};
            if (is("file_coupon")) return {&A::fileCoupon};
            break;
        case 12:
            if (is("campaign_uid")) return {&A::campaignUid};
            if (is("file_android")) return {&A::fileAndroid};
            if (is("file_preview")) return {&A::filePreview};
            if (is("video_mobile")) return {&A::videoMobile};
            if (is("where_to_buy")) return {&A::whereToBuy};
            break;
        case 13:
            if (is("advertiser_id")) return {nullptr, &A::advertiserId};
            break;
        case 14:
            if (is("advertiser_uid")) return {&A::advertiserUid};
            if (is("category_title")) return {&A::categoryTitle};
            break;
        case 15:
            if (is("file_standalone")) return {&A::fileStandalone};
            break;
        case 16:
            if (is("video_standalone")) return {&A::videoStandalone};
            break;
        default:
            break;
    }
    return {};
}

/// The same fields in the order of the wire, for writing: `write(key, field)`.
template <class Write>
void forEachAssetField(const PlainAsset& asset, Write write) {
    write("title", asset.title);
    write("subtitle", asset.subtitle);
    write("description", asset.description);
    write("is_active", asset.isActive);
    write("is_generic", asset.isGeneric);
    write("tags", asset.tags);
    write("created", asset.created);
    write("modified", asset.modified);
    write("id", asset.id);
    write("uid", asset.uid);
    write("campaign_id", asset.campaignId);
    write("campaign_uid", asset.campaignUid);
    write("advertiser_id", asset.advertiserId);
    write("advertiser_uid", asset.advertiserUid);
    write("file_zorb", asset.fileZorb);
    write("file_standalone", asset.fileStandalone);
    write("file_ios", asset.fileIos);
    write("file_android", asset.fileAndroid);
    write("file_preview", asset.filePreview);
    write("file_icon", asset.fileIcon);
    write("file_image", asset.fileImage);
    write("file_coupon", asset.fileCoupon);
    write("video_mobile", asset.videoMobile);
    write("video_standalone", asset.videoStandalone);
    write("where_to_buy", asset.whereToBuy);
    write("category", asset.category);
    write("category_title", asset.categoryTitle);
}

}  // namespace flarebox::benchmarks
