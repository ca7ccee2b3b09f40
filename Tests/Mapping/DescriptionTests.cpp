#include "MappingTesting.h"

namespace flarebox {
namespace {

class Plain : public MotisObject {
    FLAREBOX_MODEL(Plain, MotisObject, (value, setValueOf, Value))
    std::string description() const override { return "PLAIN"; }
};

class Described : public MotisObject {
    FLAREBOX_MODEL(Described, MotisObject, (uid, setUid, NSNumber, "id"), (name, setName, NSString, "name"),
                   (tags, setTags, Value, "tags"))
    std::string description() const override { return "DESC"; }
};

class DescribedTwice : public Described {
    FLAREBOX_MODEL(DescribedTwice, Described)
    static NSDictionary mts_mapping() { return {{"also.id", "uid"}, {"ghost", "noSuchProperty"}}; }
};

TEST(Description, Blocks) {
    const auto inner = make<Described>();
    inner->setUid(1);
    inner->setTags(NSSet::setWithValues(NSArray{5}.elements()));
    const std::string innerAtTwo =
        "DESC:{\n            uid=1,\n            name=nil,\n            tags=(\n                5\n            )\n     "
        "   }";
    const std::string innerAtOne =
        "DESC:{\n        uid=1,\n        name=nil,\n        tags=(\n            5\n        )\n    }";
    const auto plain = make<Plain>();
    struct Case {
        Value tags;
        std::string expected;
    };
    const Case cases[] = {
        {NSArray{"a", "b"}, "[\n        a,\n        b\n    ]"},
        {emptyArray(), "[\n    ]"},
        {NSArray{Value(inner), Value(plain)}, "[\n        " + innerAtTwo + ",\n        PLAIN\n    ]"},
        {NSSet::setWithValues(NSArray{1}.elements()), "(\n        1\n    )"},
        {NSSet::setWithValues(NSArray{1, 2, "c"}.elements()), "(\n        1,\n        2,\n        c,\n    )"},
        {emptyDictionary(), "{\n    }"},
        {NSDictionary{{"k", "v"}}, "{\n        k:v\n    }"},
        {NSDictionary{{"k", "v"}, {2, Value(inner)}}, "{\n        k:v,\n        2:" + innerAtTwo + ",\n    }"},
        {"say \"hi\"", "\"say \"hi\"\""},
        {1.5, "1.5"},
        {nullptr, "nil"},
        {Value(inner), innerAtOne},
        {Value(plain), "PLAIN"},
        {NSOrderedSet::orderedSetWithValues(NSArray{1}.elements()),
         NSOrderedSet::orderedSetWithValues(NSArray{1}.elements()).description()},
    };
    for (const Case& test : cases) {
        const auto model = make<Described>();
        model->setUid(7);
        model->setName("Cup");
        model->setTags(test.tags);
        EXPECT_EQ(model->mts_description(), "DESC:{\n    uid=7,\n    name=\"Cup\",\n    tags=" + test.expected + "\n}");
    }
    EXPECT_EQ(inner->mts_descriptionWithIndentation(-3), "DESC:{\nuid=1,\nname=nil,\ntags=(\n5\n)\n}");
}

TEST(Description, WithoutAMappingIsThePlainOne) {
    const auto plain = make<Plain>();
    EXPECT_EQ(plain->mts_description(), "PLAIN");
    EXPECT_EQ(plain->mts_extendedObjectDescription(), "PLAIN");
    EXPECT_EQ(mts_description("text"), "text");
    EXPECT_EQ(mts_description(12), "12");
    EXPECT_EQ(mts_description(Value(plain)), "PLAIN");
}

TEST(Description, Extended) {
    const auto model = make<Described>();
    model->setUid(7);
    EXPECT_EQ(model->mts_extendedObjectDescription(),
              "DESC - Mapped Values: " +
                  (NSDictionary{{"uid", 7}, {"name", Value::null()}, {"tags", Value::null()}}).description());
}

TEST(Description, NamesComeFromTheMergedMappingDuplicatesIncluded) {
    const auto model = make<DescribedTwice>();
    model->setUid(1);
    EXPECT_EQ(model->mts_description(),
              "DESC:{\n    uid=1,\n    name=nil,\n    tags=nil,\n    uid=1,\n    noSuchProperty=nil\n}");
}

TEST(Description, ObjectsThatHoldEachOtherEnd) {
    const auto model = make<Described>();
    model->setTags(Value(model));
    EXPECT_LT(model->mts_description().size(), 1000000U);
    model->setTags(nullptr);
}

TEST(Reading, ByKey) {
    const auto model = make<DescribedTwice>();
    model->setUid(1);
    model->setName("Cup");
    EXPECT_EQ(model->mts_valueForKey("name"), Value("Cup"));
    EXPECT_EQ(model->mts_valueForKey("also.id"), Value(1));
    EXPECT_FALSE(model->mts_valueForKey("uid"));
    const NSDictionary values =
        model->mts_dictionaryWithValuesForKeys({"also.id", "unknown", "tags", "also.id", "name"});
    EXPECT_EQ(values,
              (NSDictionary{{"also.id", 1}, {"unknown", Value::null()}, {"tags", Value::null()}, {"name", "Cup"}}));
    EXPECT_EQ(values.allKeys(), (NSArray{"also.id", "unknown", "tags", "name"}));

    const auto plain = make<Plain>();
    plain->setValueOf(3);
    EXPECT_EQ(plain->mts_valueForKey("value"), Value(3)) << "without a mapping, by the property's own name";
}

}  // namespace
}  // namespace flarebox
