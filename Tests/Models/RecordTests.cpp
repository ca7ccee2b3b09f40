#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Models/FXCoupon.h>
#include <Flarebox/Models/FXEngagementData.h>
#include <Flarebox/Models/FXSessionInfo.h>
#include <Flarebox/Models/FXUserSession.h>
#include <Foundation/NSJSONSerialization.h>
#include <Foundation/NSKeyedArchiver.h>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace flarebox {

static void PrintTo(const Value& value, std::ostream* stream) {
    *stream << value.description();
}

namespace {

/// The wire's view of one field.
struct Field {
    const char* property;
    const char* key;
    char type;  // s text, n number, d date
    bool isOptional = false;
};

struct RecordCase {
    const MotisClass& cls;
    std::function<Ref<FXBaseObject>()> init;
    std::function<Ref<FXBaseObject>(const Value&)> initWithDictionary;
    std::function<bool(std::string_view)> propertyIsOptional;
    NSArray motisKeys;
    NSDictionary mapping;
    std::vector<Field> fields;
};

template <class Record>
RecordCase recordCase(std::vector<Field> fields) {
    return {Record::staticClass(),
            [] { return Ref<FXBaseObject>(Record::init()); },
            [](const Value& dictionary) { return Ref<FXBaseObject>(Record::initWithDictionary(dictionary)); },
            [](std::string_view name) { return Record::propertyIsOptional(name); },
            Record::mts_motisKeys(),
            Record::mapping(),
            std::move(fields)};
}

std::vector<RecordCase> allRecords() {
    constexpr bool optional = true;
    std::vector<RecordCase> records;
    records.push_back(recordCase<FXAssetInfo>({{"title", "title", 's'},
                                               {"subtitle", "subtitle", 's', optional},
                                               {"_description", "description", 's', optional},
                                               {"isActive", "is_active", 'n'},
                                               {"isGeneric", "is_generic", 'n'},
                                               {"tags", "tags", 's'},
                                               {"created", "created", 'd'},
                                               {"modified", "modified", 'd'},
                                               {"_id", "id", 'n'},
                                               {"uid", "uid", 's'},
                                               {"campaignId", "campaign_id", 'n', optional},
                                               {"campaignUid", "campaign_uid", 's', optional},
                                               {"advertiserId", "advertiser_id", 'n'},
                                               {"advertiserUid", "advertiser_uid", 's'},
                                               {"fileZorb", "file_zorb", 's', optional},
                                               {"fileStandalone", "file_standalone", 's', optional},
                                               {"fileIos", "file_ios", 's', optional},
                                               {"fileAndroid", "file_android", 's', optional},
                                               {"filePreview", "file_preview", 's', optional},
                                               {"fileIcon", "file_icon", 's', optional},
                                               {"fileImage", "file_image", 's', optional},
                                               {"fileCoupon", "file_coupon", 's', optional},
                                               {"videoMobile", "video_mobile", 's', optional},
                                               {"videoStandalone", "video_standalone", 's', optional},
                                               {"whereToBuy", "where_to_buy", 's'},
                                               {"category", "category", 'n'},
                                               {"categoryTitle", "category_title", 's', optional}}));
    records.push_back(recordCase<FXEngagementData>({{"action", "action", 's'},
                                                    {"advertiser", "advertiser", 's'},
                                                    {"age", "age", 's', optional},
                                                    {"asset", "asset", 's'},
                                                    {"browser", "browser", 's', optional},
                                                    {"browserVer", "browser_ver", 's', optional},
                                                    {"campaign", "campaign", 's'},
                                                    {"country", "country", 's', optional},
                                                    {"desktop", "desktop", 's'},
                                                    {"developer", "developer", 's'},
                                                    {"deviceId", "device_id", 's'},
                                                    {"duration", "duration", 's'},
                                                    {"game", "game", 's'},
                                                    {"generic", "generic", 's'},
                                                    {"ipAddr", "ip_addr", 's'},
                                                    {"mobile", "mobile", 's'},
                                                    {"os", "os", 's', optional},
                                                    {"osVer", "os_ver", 's', optional},
                                                    {"session", "session", 's'},
                                                    {"sex", "sex", 's', optional},
                                                    {"spot", "spot", 's', optional},
                                                    {"version", "version", 's'}}));
    records.push_back(recordCase<FXSessionInfo>({{"_id", "id", 'n'},
                                                 {"uid", "uid", 's'},
                                                 {"developerUid", "developer_uid", 's'},
                                                 {"gameUid", "game_uid", 's'},
                                                 {"game", "game", 'n'},
                                                 {"version", "version", 'n'},
                                                 {"start", "start", 'd', optional},
                                                 {"end", "end", 'd', optional},
                                                 {"firstName", "first_name", 's'},
                                                 {"lastName", "last_name", 's'},
                                                 {"age", "age", 'n', optional},
                                                 {"sex", "sex", 's'},
                                                 {"state", "state", 's'},
                                                 {"city", "city", 's'},
                                                 {"country", "country", 's'},
                                                 {"ipAddr", "ip_addr", 's', optional},
                                                 {"deviceId", "device_id", 's'}}));
    records.push_back(recordCase<FXUserSession>({{"firstName", "first_name", 's', optional},
                                                 {"lastName", "last_name", 's', optional},
                                                 {"age", "age", 'n', optional},
                                                 {"sex", "sex", 's', optional},
                                                 {"state", "state", 's', optional},
                                                 {"city", "city", 's', optional},
                                                 {"country", "country", 's', optional},
                                                 {"ipAddr", "ip_addr", 's', optional},
                                                 {"deviceId", "device_id", 's', optional}}));
    records.push_back(recordCase<FXCoupon>({{"session", "session", 's', optional}, {"asset", "asset", 'n'}}));
    records.push_back(recordCase<FXBaseObject>({}));
    return records;
}

Value sampleValue(const Field& field, int seed) {
    if (field.type == 's') return Value(std::string("text ") + field.key + std::to_string(seed));
    if (field.type == 'n') return seed;
    return seed * 1000;
}

NSDictionary sampleJson(const RecordCase& record) {
    std::vector<NSDictionary::Entry> entries;
    int seed = 1;
    for (const Field& field : record.fields) entries.emplace_back(Value(field.key), sampleValue(field, seed++));
    return NSDictionary::dictionaryWithEntries(std::move(entries));
}

TEST(Records, FollowTheirTables) {
    for (const RecordCase& record : allRecords()) {
        SCOPED_TRACE(record.cls.name());
        ASSERT_EQ(record.cls.lines().size(), record.fields.size());
        ASSERT_EQ(record.mapping.count(), record.fields.size());
        ASSERT_EQ(record.motisKeys.count(), record.fields.size());
        for (std::size_t index = 0; index < record.fields.size(); ++index) {
            const Field& field = record.fields[index];
            SCOPED_TRACE(field.property);
            EXPECT_EQ(record.mapping.entries()[index].first, Value(field.key));
            EXPECT_EQ(record.mapping.entries()[index].second, Value(field.property));
            EXPECT_EQ(record.motisKeys.objectAtIndex(index), Value(field.property));
            EXPECT_EQ(record.propertyIsOptional(field.property), field.isOptional);
            const char* attribute = field.type == 's'   ? "T@\"NSString\""
                                    : field.type == 'n' ? "T@\"NSNumber\""
                                                        : "T@\"NSDate\"";
            EXPECT_EQ(record.cls.mts_typeAttributeForKey(field.property), attribute);
        }
        EXPECT_FALSE(record.propertyIsOptional("no such property"));
    }
}

TEST(Records, GoThroughJsonArchiveAndCopyUnchanged) {
    for (const RecordCase& record : allRecords()) {
        SCOPED_TRACE(record.cls.name());
        const NSDictionary json = sampleJson(record);
        const auto filled = record.initWithDictionary(json);
        int seed = 1;
        for (const Field& field : record.fields) {
            const Value sample = sampleValue(field, seed++);
            const Value expected =
                field.type == 'd' ? Value(NSDate::dateWithTimeIntervalSince1970(sample.as<NSNumber>().doubleValue()))
                                  : sample;
            EXPECT_EQ(filled->valueForKey(field.property), expected) << field.property;
            EXPECT_EQ(filled->toDictionary().objectForKey(field.key), expected) << field.key;
        }
        EXPECT_EQ(filled->toDictionary().allKeys(), json.allKeys());

        const auto copy = filled->copyWithZone();
        EXPECT_NE(copy, filled);
        EXPECT_EQ(&copy->classInfo(), &record.cls);
        EXPECT_EQ(copy->toDictionary(), filled->toDictionary());
        for (const Field& field : record.fields)
            EXPECT_TRUE(copy->valueForKey(field.property).isSameAs(filled->valueForKey(field.property)))
                << field.property;

        const NSData archive = NSKeyedArchiver::archivedDataWithRootObject(Value(filled));
        ASSERT_TRUE(archive);
        const Value unarchived = NSKeyedUnarchiver::unarchiveObjectWithData(archive);
        ASSERT_TRUE(unarchived.object<FXBaseObject>());
        EXPECT_EQ(&unarchived.object<FXBaseObject>()->classInfo(), &record.cls);
        EXPECT_EQ(unarchived.object<FXBaseObject>()->toDictionary(), filled->toDictionary());
    }
}

TEST(Records, WithoutValuesAreAllNull) {
    for (const RecordCase& record : allRecords()) {
        SCOPED_TRACE(record.cls.name());
        for (const Value& nothing : {Value(), Value::null(), Value(NSArray{1}), Value("text"),
                                     Value(NSDictionary::dictionaryWithEntries({}))}) {
            const auto empty = record.initWithDictionary(nothing);
            const NSDictionary json = empty->toDictionary();
            EXPECT_EQ(json.count(), record.fields.size());
            for (const auto& [key, value] : json.entries()) EXPECT_TRUE(value.isNull()) << key.description();
        }
        EXPECT_EQ(record.init()->toDictionary().count(), record.fields.size());
    }
}

TEST(Records, KeysAreOneListPerClass) {
    EXPECT_TRUE(FXAssetInfo::mts_motisKeys().isSameAs(FXAssetInfo::mts_motisKeys()));
    EXPECT_TRUE(FXAssetInfo::mappingPropertyNames().isSameAs(FXAssetInfo::mts_motisKeys()));
    EXPECT_EQ(FXBaseObject::mts_motisKeys().count(), 0U);
}

TEST(AssetInfo, DefaultsBelongToInitAlone) {
    const auto fresh = FXAssetInfo::init();
    EXPECT_EQ(fresh->isActive(), Value(1));
    EXPECT_EQ(fresh->isGeneric(), Value(0));
    const auto decoded = FXAssetInfo::initWithDictionary(NSDictionary::dictionaryWithEntries({}));
    EXPECT_FALSE(decoded->isActive());
    EXPECT_FALSE(decoded->isGeneric());

    // A copy starts from init; what the original lacks keeps its default.
    EXPECT_EQ(decoded->copy()->isActive(), Value(1));
    fresh->setIsActive(5);
    fresh->setIsGeneric(nullptr);
    EXPECT_EQ(fresh->copy()->isActive(), Value(5));
    EXPECT_EQ(fresh->copy()->isGeneric(), Value(0));

    // An archive does not.
    const Value unarchived =
        NSKeyedUnarchiver::unarchiveObjectWithData(NSKeyedArchiver::archivedDataWithRootObject(Value(fresh)));
    ASSERT_TRUE(unarchived.object<FXAssetInfo>());
    EXPECT_EQ(unarchived.object<FXAssetInfo>()->isActive(), Value(5));
    EXPECT_FALSE(unarchived.object<FXAssetInfo>()->isGeneric());
}

TEST(AssetInfo, ReadsTheWireNotItsOwnNames) {
    const auto asset = FXAssetInfo::initWithDictionary(NSDictionary{{"description", "x"},
                                                                    {"id", 7},
                                                                    {"_id", 8},
                                                                    {"_description", "y"},
                                                                    {"isActive", 1},
                                                                    {"unknown", NSArray::arrayWithValues({})}});
    EXPECT_EQ(asset->_description(), "x");
    EXPECT_EQ(asset->_id(), Value(7));
    EXPECT_FALSE(asset->isActive());
    asset->set_id(9);
    EXPECT_EQ(asset->toDictionary().objectForKey("id"), Value(9));
}

TEST(AssetInfo, DatesAreSecondsOrNothing) {
    const auto created = [](const Value& value) {
        return FXAssetInfo::initWithDictionary(NSDictionary{{"created", value}})->created();
    };
    EXPECT_EQ(created(1500000000.5).timeIntervalSince1970(), 1500000000.5);
    EXPECT_EQ(created("1500000000,9").timeIntervalSince1970(), 1500000000);
    EXPECT_FALSE(created("2017-07-14T02:40:00Z"));
    EXPECT_FALSE(created(NSArray::arrayWithValues({})));
    EXPECT_FALSE(created(Value::null()));
}

TEST(AssetInfo, KeepsTruthValuesAndEveryDigit) {
    const auto asset = FXAssetInfo::initWithDictionary(
        NSDictionary{{"is_active", true}, {"is_generic", "false"}, {"id", INT64_MAX}, {"title", UINT64_MAX}});
    EXPECT_TRUE(asset->isActive().isBoolean() && asset->isActive().boolValue());
    EXPECT_TRUE(asset->isGeneric() && !asset->isGeneric().boolValue());
    EXPECT_EQ(asset->_id().integerValue(), INT64_MAX);
    EXPECT_EQ(asset->title(), "18446744073709551615");
}

Value decoded(std::string_view json) {
    return NSJSONSerialization::JSONObjectWithText(json, NSJSONReadingStrict, nullptr);
}

TEST(Records, OutliveWhatTheyWereDecodedFrom) {
    Value answer = decoded(R"([{"title": "one", "description": "first", "unknown": 1}, {"title": "two", "id": 12}])");
    auto first = FXAssetInfo::initWithDictionary(answer.as<NSArray>().objectAtIndex(0));
    const auto second = FXAssetInfo::initWithDictionary(answer.as<NSArray>().objectAtIndex(1));
    answer = nullptr;
    EXPECT_EQ(first->title(), "one");
    EXPECT_EQ(second->_id(), Value(12));

    // Filled again from another answer, a record holds on to both.
    first->mts_setValuesForKeysWithDictionary(decoded(R"({"title": "three", "uid": "u"})").as<NSDictionary>());
    EXPECT_EQ(first->title(), "three");
    EXPECT_EQ(first->uid(), "u");
    EXPECT_EQ(first->_description(), "first");

    // And what is taken out of a record outlives the record.
    const NSString title = first->title();
    const NSDictionary json = first->toDictionary();
    const auto copy = first->copy();
    first = nullptr;
    EXPECT_EQ(title, "three");
    EXPECT_EQ(json.objectForKey("description"), Value("first"));
    EXPECT_EQ(copy->uid(), "u");
}

TEST(Coupon, IsDescribedByItsMapping) {
    const auto coupon = FXCoupon::init();
    coupon->setAsset(5);
    EXPECT_EQ(coupon->toDictionary(), (NSDictionary{{"session", Value::null()}, {"asset", 5}}));
    EXPECT_EQ(coupon->debugDescription(), coupon->description() + ":{\n    session=nil,\n    asset=5\n}");
    coupon->setSession("abc");
    EXPECT_EQ(coupon->toDictionary(), (NSDictionary{{"session", "abc"}, {"asset", 5}}));
}

/// A record that a host adds: inherits, nests and has a scalar.
class SignedCoupon : public FXCoupon {
    FX_RECORD(SignedCoupon, FXCoupon, (signature, setSignature, NSData, "meta.signature", Optional),
              (holder, setHolder, Ref<FXUserSession>, "holder"), (uses, setUses, int, "uses"))
};

TEST(Records, AHostsRecordInherits) {
    const auto coupon = SignedCoupon::initWithDictionary(NSDictionary{{"session", "s"},
                                                                      {"meta", NSDictionary{{"signature", "aGk="}}},
                                                                      {"holder", NSDictionary{{"first_name", "Ada"}}},
                                                                      {"uses", "3"}});
    EXPECT_EQ(coupon->session(), "s");
    EXPECT_EQ(coupon->signature().text(), "hi");
    ASSERT_TRUE(coupon->holder());
    EXPECT_EQ(coupon->holder()->firstName(), "Ada");
    EXPECT_EQ(coupon->uses(), 3);
    EXPECT_EQ(SignedCoupon::mts_motisKeys(), (NSArray{"session", "asset", "signature", "holder", "uses"}));
    // The wire form holds the keys of the class's own table.
    EXPECT_EQ(coupon->toDictionary().allKeys(), (NSArray{"meta.signature", "holder", "uses"}));
    EXPECT_TRUE(SignedCoupon::propertyIsOptional("session") && SignedCoupon::propertyIsOptional("signature"));
    EXPECT_FALSE(SignedCoupon::propertyIsOptional("uses"));
    EXPECT_EQ(coupon->copy()->holder(), coupon->holder());
}

/// A class without lines of its own.
class SilentCoupon : public FXCoupon {
    FX_RECORD(SilentCoupon, FXCoupon)
};

TEST(Records, WithoutLinesOfItsOwnARecordIsItsSuperclass) {
    const auto coupon = SilentCoupon::initWithDictionary(NSDictionary{{"asset", 4}});
    EXPECT_EQ(coupon->toDictionary(), (NSDictionary{{"session", Value::null()}, {"asset", 4}}));
    EXPECT_EQ(SilentCoupon::mts_motisKeys(), (NSArray{"session", "asset"}));
}

class Defaulted : public FXBaseObject {
    FX_RECORD(Defaulted, FXBaseObject, (a, setA, NSString, "a"), (local, setLocal, NSString))
protected:
    void setDefaults() override { setLocal("default"); }
};

TEST(Records, DecodingAppliesNoDefaultsNotEvenToWhatHasNoKey) {
    const auto record = Defaulted::init();
    record->setA("x");
    record->setLocal(nullptr);
    const Value back =
        NSKeyedUnarchiver::unarchiveObjectWithData(NSKeyedArchiver::archivedDataWithRootObject(Value(record)));
    ASSERT_TRUE(back.object<Defaulted>());
    EXPECT_EQ(back.object<Defaulted>()->a(), "x");
    EXPECT_FALSE(back.object<Defaulted>()->local());
}

TEST(Records, NumbersBecomeTextsThatPeopleWrite) {
    const auto asset = FXAssetInfo::initWithDictionary(NSJSONSerialization::JSONObjectWithText(
        R"({"title":100000.0,"uid":0.0001,"tags":2e6,"subtitle":1e300})", NSJSONReadingStrict, nullptr));
    EXPECT_EQ(asset->title(), "100000");
    EXPECT_EQ(asset->uid(), "0.0001");
    EXPECT_EQ(asset->tags(), "2000000");
    EXPECT_EQ(asset->subtitle(), "1e+300");
}

}  // namespace
}  // namespace flarebox
