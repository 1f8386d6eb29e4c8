// Content the library relies on by number and name, and the properties of the object types.
#include "TQTestCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

using TQTest::CatalogueDb;

namespace {

const CatalogueDb& catalogue() {
    return CatalogueDb::get();
}

std::string typeName(long long type) {
    auto rows = catalogue().rows("SELECT name FROM bn_datatype WHERE id_bn_datatype=?", {type});
    return rows.empty() ? std::string("<missing>") : rows[0][0].value_or("<null>");
}

long long topMarkup(long long type) {
    return catalogue().scalar(
        "SELECT id_bn_markup FROM bn_datatype_construct WHERE id_bn_datatype=? AND "
        "id_parent=id_bn_datatype_construct",
        {type});
}

long long constructOf(long long type) {
    return catalogue().scalar(
        "SELECT id_bn_datatype_construct FROM bn_datatype_construct WHERE id_bn_datatype=? "
        "AND id_parent=id_bn_datatype_construct",
        {type});
}

}  // namespace

// The names behind the library's type numbers are checked through the entity classes; here the
// markups the descriptor lookup and the renderer take for granted.
TEST(CatalogueFixedNumbers, MarkupsOfTypesTheLibraryUsesByNumber) {
    for (long long type = 0; type <= 12; ++type) EXPECT_EQ(topMarkup(type), type) << typeName(type);
    for (long long enumerated : {1090, 1100, 1148, 1149, 3542, 3543})
        EXPECT_EQ(topMarkup(enumerated), 9) << typeName(enumerated);
    // 1064: an array type that is encoded as one value.
    EXPECT_EQ(std::make_tuple(22, 24, 22),
              std::make_tuple(topMarkup(1026), topMarkup(1064), topMarkup(10000)));
    // The maker's record shows as 947-... in the listing, which strips "Proprietary".
    EXPECT_EQ(typeName(3513).rfind("Proprietary", 0), 0u);
    EXPECT_EQ(typeName(1999), "<missing>");
}

TEST(CatalogueFixedNumbers, NameTablesUsedByConstructNumber) {
    EXPECT_TRUE(constructOf(1100) == 120 && constructOf(1090) == 51);
    EXPECT_EQ(catalogue().scalar(
                  "SELECT id_bn_markup FROM bn_datatype_construct WHERE id_bn_datatype_construct=121 "
                  "AND id_parent=121"),
              8);

    auto objectTypes = catalogue().enumNames(120);
    // Object types 0..64 of the current revision are contiguous; a gap means a lost entry.
    for (long long v = 0; v <= 64; ++v) EXPECT_TRUE(objectTypes.count(v)) << "object type " << v;
    EXPECT_EQ(objectTypes[56], "network-port");
    // 121 is read through 120; its own rows must not tell a different story.
    for (const auto& [bit, name] : catalogue().enumNames(121))
        EXPECT_EQ(objectTypes[bit], name) << "bit " << bit;

    auto properties = catalogue().enumNames(51);
    EXPECT_TRUE(properties[371] == "property-list" && properties.size() > 450);
    for (const char* sql : {"SELECT id_bn_property_type FROM bn_property_type",
                            "SELECT DISTINCT id_bn_property_type FROM bn_properties_in_object"})
        for (long long id : catalogue().ints(sql)) EXPECT_TRUE(properties.count(id)) << "property " << id;
    EXPECT_EQ(catalogue().scalar("SELECT COUNT(*) FROM bn_property_type"),
              static_cast<long long>(properties.size()));
    for (long long id : catalogue().ints("SELECT DISTINCT id_bn_object_type FROM bn_properties_in_object"))
        EXPECT_TRUE(objectTypes.count(id)) << "object type " << id;
}

// tag and tag_structure drive decoding: a wrong tag misreads every value of the property.
TEST(CatalogueProperties, TagAndStructureMatchTheDataType) {
    auto rows = catalogue().rows(
        "SELECT p.id_bn_object_type, p.id_bn_property_type, p.id_bn_datatype, p.tag, p.tag_structure, "
        "p.description, c.id_bn_markup, p.optional, p.id_bn_properties_in_object FROM "
        "bn_properties_in_object p "
        "LEFT JOIN bn_datatype_construct c ON c.id_bn_datatype=p.id_bn_datatype "
        "AND c.id_parent=c.id_bn_datatype_construct");
    ASSERT_GT(rows.size(), 1000u);
    for (const auto& r : rows) {
        long long object = CatalogueDb::toInt(r[0]), property = CatalogueDb::toInt(r[1]);
        long long type = CatalogueDb::toInt(r[2]), tag = CatalogueDb::toInt(r[3]);
        long long structure = CatalogueDb::toInt(r[4]), markup = CatalogueDb::toInt(r[6]);
        std::string declared = r[5].value_or("");
        std::string where = std::to_string(object) + "/" + std::to_string(property) + " " + declared;
        ASSERT_TRUE(r[6] || type == 1000) << where << ": type " << type << " has no definition";
        // Derived primitives, enumerations and bit strings use their base type's tag.
        long long expectedTag = type < 16 ? type : (markup >= 0 && markup <= 12 ? markup : 0);
        EXPECT_EQ(tag, expectedTag) << where;
        long long expected = 0;
        if (declared.rfind("BACnetARRAY", 0) == 0)
            expected = 1;
        else if (declared.rfind("BACnetLIST", 0) == 0 || declared.rfind("SEQUENCE", 0) == 0)
            expected = 2;
        else if (markup == 24)
            expected = structure == 1 ? 1 : 2;  // a named list or array type keeps its own shape
        EXPECT_EQ(structure, expected) << where;
        EXPECT_TRUE(CatalogueDb::toInt(r[7]) >= 1 && CatalogueDb::toInt(r[7]) <= 3) << where;
        // The key packs object type and property like an object identifier, so it is stable;
        // the second standard property range (from 4194304) is folded onto bit 21.
        long long low = property >= 4194304 ? ((property - 4194304) | 0x200000) : property;
        EXPECT_EQ(CatalogueDb::toInt(r[8]), (object << 22) | low) << where;
    }
    // The descriptor lookup's own statement, for values whose decoding is well known.
    auto descriptor = [](long long object, long long property) {
        auto rows = catalogue().rows(
            "SELECT id_bn_datatype,tag,tag_structure,empty_allowed,managed_internally FROM "
            "bn_properties_in_object WHERE id_bn_object_type=? AND id_bn_property_type=?",
            {object, property});
        std::vector<long long> values;
        if (rows.size() == 1)
            for (const auto& cell : rows[0]) values.push_back(CatalogueDb::toInt(cell));
        return values;
    };
    // Analog-input present-value (REAL), device object-list, binary-input present-value.
    using V = std::vector<long long>;
    EXPECT_EQ(descriptor(0, 85), (V{4, 4, 0, 0, 0}));
    EXPECT_EQ(descriptor(8, 76), (V{12, 12, 1, 0, 0}));
    EXPECT_EQ(descriptor(3, 85), (V{catalogue().typeNumber("BACnetBinaryPV"), 9, 0, 0, 0}));
    // Status-flags; the priority array is the array type that is always encoded as one value.
    EXPECT_TRUE(descriptor(0, 111)[1] == 8 && descriptor(1, 87)[0] == 1064);
}

TEST(CatalogueProperties, EveryObjectTypeHasTheIdentifyingProperties) {
    auto objectTypes = catalogue().ints("SELECT DISTINCT id_bn_object_type FROM bn_properties_in_object");
    ASSERT_GE(objectTypes.size(), 60u);
    // The listing query of the entity layer, with bounds that select the required classes.
    const std::string listing =
        "SELECT a.id_bn_property_type FROM bn_properties_in_object a, bn_property_type b WHERE "
        "b.id_bn_property_type=a.id_bn_property_type AND a.id_bn_object_type=? AND a.optional>? AND "
        "a.optional<? "
        "AND a.id_bn_property_type<> 371 ORDER BY b.sort";
    for (long long object : objectTypes) {
        for (long long property : {75, 77, 79, 371}) {
            auto cls = catalogue().ints(
                "SELECT optional FROM bn_properties_in_object WHERE id_bn_object_type=? AND "
                "id_bn_property_type=?",
                {object, property});
            ASSERT_EQ(cls.size(), 1u) << "object type " << object << " lacks property " << property;
            EXPECT_LT(cls[0], 3) << "object type " << object << " property " << property
                                 << " must be required";
        }
        auto required = catalogue().ints(listing, {object, 0, 3});
        std::set<long long> set(required.begin(), required.end());
        // object-identifier is listed first wherever it appears: its sort comes from first use.
        EXPECT_TRUE(set.count(75) && set.count(77) && set.count(79) && !set.count(371) &&
                    required.front() == 75)
            << object;
    }
    EXPECT_EQ(catalogue().scalar("SELECT id_bn_property_type FROM bn_property_type WHERE sort=1"), 75);
    EXPECT_TRUE(
        catalogue().rows("SELECT sort FROM bn_property_type GROUP BY sort HAVING COUNT(*) > 1").empty());
}

// Intrinsic reporting's properties come as one block, on object types with an event state; the
// switches of an event algorithm (its inhibit, the inhibit's reference, the time delays) only on
// object types that have an algorithm, recognised by one of its parameters.
TEST(CatalogueProperties, EventReportingIsWholeAndAlgorithmSwitchesHaveAnAlgorithm) {
    const auto names = catalogue().enumNames(51);
    std::map<long long, std::set<std::string>> objects;
    for (const auto& r :
         catalogue().rows("SELECT id_bn_object_type, id_bn_property_type FROM bn_properties_in_object"))
        objects[CatalogueDb::toInt(r[0])].insert(names.at(CatalogueDb::toInt(r[1])));
    const char* const block[] = {
        "notification-class", "event-enable",        "acked-transitions",          "notify-type",
        "event-time-stamps",  "event-message-texts", "event-message-texts-config", "event-detection-enable"};
    for (const auto& object : objects) {
        SCOPED_TRACE(catalogue().enumNames(120).at(object.first));
        auto has = [&object](const char* property) { return object.second.count(property) > 0; };
        const auto inBlock = static_cast<std::size_t>(std::count_if(std::begin(block), std::end(block), has));
        EXPECT_TRUE(inBlock == 0 || inBlock == std::size(block)) << inBlock << " of the block";
        EXPECT_TRUE(inBlock == 0 || has("event-state"));
        EXPECT_EQ(has("event-algorithm-inhibit"), has("event-algorithm-inhibit-ref"));
        // Alert Enrollment may inhibit the alerts it forwards, which no parameter of its own describes.
        const bool algorithm = has("time-delay") || has("event-parameters") ||
                               has("notification-threshold") || has("access-alarm-events") ||
                               object.first == 52 /* alert-enrollment */;
        EXPECT_TRUE(!has("event-algorithm-inhibit") || (algorithm && inBlock > 0));
        EXPECT_TRUE(!has("time-delay") || has("event-algorithm-inhibit"));
        EXPECT_TRUE(!has("time-delay-normal") || has("time-delay") || has("event-parameters"));
    }
}

TEST(CatalogueWebService, ErrorsMetadataAndMarkups) {
    for (long long code : {0, 3, 8, 27, 39, 49, 50, 52}) {
        auto rows = catalogue().rows(
            "SELECT name, http_status, error_text FROM bn_ws_error WHERE id_bn_ws_error=?", {code});
        ASSERT_EQ(rows.size(), 1u) << "web-service error " << code;
        long long status = CatalogueDb::toInt(rows[0][1]);
        EXPECT_TRUE(status >= 400 && status <= 599 && rows[0][0] && !rows[0][0]->empty() && rows[0][2] &&
                    !rows[0][2]->empty())
            << code;
    }
    const std::vector<std::string> categories = {
        "cat-value", "cat-extensions", "cat-change", "cat-mutability", "cat-encoding", "cat-restrictions",
        "cat-doc",   "cat-ui",         "cat-links",  "cat-tags",       "cat-types",    "cat-all"};
    auto names = catalogue().enumNames(constructOf(3542));
    ASSERT_EQ(names.size(), categories.size());
    for (size_t i = 0; i < categories.size(); ++i) EXPECT_EQ(names[static_cast<long long>(i)], categories[i]);

    auto items = catalogue().enumNames(constructOf(3543));
    for (long long item : {403, 409, 410, 412, 413, 705, 706, 801, 802, 1103, 1310, 2105, 2106})
        EXPECT_TRUE(items.count(item)) << "metadata " << item;
    EXPECT_TRUE(items[403] == "type" && items[1103] == "memberType");
    for (const auto& r : catalogue().rows("SELECT catagory_enum_value, metadata_enum_value FROM "
                                          "bn_ws_metadata_query_options"))
        EXPECT_TRUE(names.count(CatalogueDb::toInt(r[0])) && items.count(CatalogueDb::toInt(r[1])));
    // The library raises for a category other than 0 that has no rows.
    for (long long category = 1; category < static_cast<long long>(categories.size()); ++category)
        EXPECT_GT(
            catalogue().scalar(
                "SELECT COUNT(*) FROM bn_ws_metadata_query_options WHERE catagory_enum_value=?", {category}),
            0)
            << categories[static_cast<size_t>(category)];
    // "all" offers every item.
    EXPECT_EQ(
        catalogue().scalar("SELECT COUNT(*) FROM bn_ws_metadata_query_options WHERE catagory_enum_value=11"),
        static_cast<long long>(items.size()));

    ASSERT_EQ(catalogue().scalar("SELECT COUNT(*) FROM bn_markup_type"), 38);
    const std::map<long long, std::string> markups{{22, "Sequence"}, {24, "SequenceOf"}, {25, "Choice"}};
    for (const auto& markup : markups)
        EXPECT_EQ(
            catalogue().rows("SELECT name FROM bn_markup_type WHERE id_bn_markup_type=?", {markup.first}),
            (std::vector<TQTest::Row>{{markup.second}}));
}

// The renderer's own name query (one level and two levels deep) against the generated rows.
TEST(CatalogueAdmDefinition, RendererQueriesFindValueAndMemberNames) {
    auto query = [](const std::string& column, int level) {
        std::string sql = "SELECT " + column + ", name FROM bn_adm_definition WHERE parent=";
        if (level > 1) sql += "(SELECT id_bn_adm_definition FROM bn_adm_definition WHERE parent=";
        sql +=
            "(SELECT id_bn_adm_definition FROM bn_adm_definition WHERE parent=id_bn_adm_definition AND "
            "id_bn_datatype=?)";
        if (level > 1) sql += " AND id_bn_adm_definition != parent)";
        sql += " AND " + column + " BETWEEN ? AND ?";
        return sql;
    };
    auto names = [&](long long type, long long value, const std::string& column, int level) {
        std::map<long long, std::string> found;
        for (const auto& r : catalogue().rows(query(column, level), {type, value - 5, value + 5}))
            found[CatalogueDb::toInt(r[0])] = r[1].value_or("");
        return found;
    };
    // One self-parented row per type, so the subquery finds exactly the type.
    EXPECT_TRUE(catalogue()
                    .rows("SELECT id_bn_datatype FROM bn_adm_definition WHERE parent=id_bn_adm_definition "
                          "GROUP BY id_bn_datatype HAVING COUNT(*) <> 1")
                    .empty());
    EXPECT_EQ(catalogue().scalar("SELECT COUNT(*) FROM bn_adm_definition WHERE parent=id_bn_adm_definition"),
              catalogue().scalar("SELECT COUNT(*) FROM bn_datatype"));

    using Names = std::map<long long, std::string>;
    EXPECT_EQ(names(catalogue().typeNumber("BACnetTimeStamp"), 1, "context_tag", 1),
              (Names{{0, "time"}, {1, "sequence-number"}, {2, "datetime"}}));
    auto eventStates = names(catalogue().typeNumber("BACnetEventState"), 2, "value", 1);
    EXPECT_TRUE(eventStates[0] == "normal" && eventStates[2] == "offnormal");
    auto objectTypes = names(1100, 8, "value", 1);
    EXPECT_TRUE(objectTypes.size() == 11 && objectTypes[8] == "device");
    // Two levels: the members of the inline choice that opens BACnetSpecialEvent.
    EXPECT_EQ(names(catalogue().typeNumber("BACnetSpecialEvent"), 0, "context_tag", 2),
              (Names{{0, "calendar-entry"}, {1, "calendar-reference"}}));
}
