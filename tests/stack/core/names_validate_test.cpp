#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tq_stack/bactext.h"
#include "tq_stack/enums.h"
#include "tq_stack/strings.h"
#include "tq_stack/validate.h"

TEST(Names, StandardWordsAndFallbacksNeverNull) {
    using Name = const char* (*)(unsigned);
    // The standard words of every table are checked against the catalogue by the consistency tests;
    // here the wrappers' pass-through at the ends of the standard ranges and their fallbacks.
    const std::tuple<Name, unsigned, const char*> rows[] = {
        {bactext_error_code_name, ERROR_CODE_UNKNOWN_PROPERTY, "unknown-property"},
        {bactext_error_code_name, 205, "referenced-port-in-error"},    // the last standard code
        {bactext_property_name, 4194304, "max-bvlc-length-accepted"},  // the second standard range
        {bactext_unconfirmed_service_name, SERVICE_UNCONFIRMED_WHO_IS, "who-is"},
        {bactext_application_tag_name, BACNET_APPLICATION_TAG_REAL, "REAL"},
        {bactext_application_tag_name, BACNET_APPLICATION_TAG_OBJECT_ID, "BACnetObjectIdentifier"},
        // Withdrawn choices must not read as services a device could offer.
        {bactext_confirmed_service_name, 13, "unknown-confirmed-service"},
        {bactext_error_code_name, 33, "unknown-error-code"},  // withdrawn number
        {bactext_error_code_name, 300, "proprietary-error-code"},
        {bactext_error_code_name, 70000, "unknown-error-code"},
        {bactext_error_class_name, 64, "proprietary-error-class"},
        {bactext_object_type_name, 200, "proprietary-object-type"},
        {bactext_object_type_name, 1024, "unknown-object-type"},
        {bactext_property_name, 18, "unknown-property"},
        {bactext_property_name, 600, "proprietary-property"},
        {bactext_abort_reason_name, 64, "proprietary-abort-reason"},
        {bactext_reject_reason_name, 10, "unknown-reject-reason"},
        {bactext_confirmed_service_name, 34, "unknown-confirmed-service"},
        {bactext_application_tag_name, 13, "unknown-application-tag"},
    };
    for (const auto& [name, number, expected] : rows) EXPECT_STREQ(name(number), expected) << number;
    EXPECT_STREQ(bactext_confirmed_service_name_default(25, "-"), "-");
    EXPECT_STREQ(bactext_error_code_name_default(300, ""), "");
    EXPECT_STREQ(bactext_error_code_name_default(32, ""), "unknown-property");
    EXPECT_EQ(bactext_abort_reason_name_default(99, nullptr), nullptr);
    for (unsigned n : {0u, 1u, 100u, 4194303u, 0xFFFFFFFFu}) {
        EXPECT_NE(bactext_property_name(n), nullptr);
        EXPECT_NE(bactext_error_code_name(n), nullptr);
        EXPECT_NE(bactext_unconfirmed_service_name(n), nullptr);
    }
}

TEST(Names, TablesAreUniqueAndReverseLookupsRoundTrip) {
    std::set<std::string> seen;
    for (unsigned n = 0; n < 512; ++n) {
        const char* name = bactext_property_name_default(n, nullptr);
        if (!name) continue;
        EXPECT_TRUE(seen.insert(name).second) << name;
        unsigned back = 0;
        ASSERT_TRUE(bactext_property_index(name, &back)) << name;
        EXPECT_EQ(back, n);
    }
    EXPECT_GT(seen.size(), 450u);
    unsigned index = 99, other = 99, third = 99;
    EXPECT_TRUE(bactext_object_type_index("trend-log", &index) && index == OBJECT_TREND_LOG);
    EXPECT_FALSE(bactext_object_type_index("trendlog", &index));
    EXPECT_TRUE(bactext_confirmed_service_index("read-range", &other) &&
                other == SERVICE_CONFIRMED_READ_RANGE);
    EXPECT_TRUE(bactext_confirmed_service_index("write-property", &third) && third == 15);
    EXPECT_FALSE(bactext_confirmed_service_index("read-property-conditional", &index));  // withdrawn
    EXPECT_FALSE(bactext_confirmed_service_index(nullptr, &index));
}

TEST(Validate, ArgumentTypeAndStringChecks) {
    BACNET_APPLICATION_DATA_VALUE v;
    v.tag = BACNET_APPLICATION_TAG_REAL;
    BACNET_ERROR_CLASS cls = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE code = ERROR_CODE_OTHER;
    EXPECT_TRUE(WPValidateArgType(&v, BACNET_APPLICATION_TAG_REAL, &cls, &code) && cls == ERROR_CLASS_DEVICE);
    EXPECT_FALSE(WPValidateArgType(&v, BACNET_APPLICATION_TAG_UNSIGNED_INT, &cls, &code));
    EXPECT_EQ(std::make_tuple(cls, code),
              std::make_tuple(ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE));
    EXPECT_FALSE(WPValidateArgType(nullptr, 0, nullptr, nullptr));

    v.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    characterstring_init_ansi(&v.type.Character_String, "");
    code = ERROR_CODE_OTHER;
    EXPECT_TRUE(WPValidateString(&v, 2147483647, true, &cls, &code));
    EXPECT_TRUE(!WPValidateString(&v, 2147483647, false, &cls, &code) &&
                code == ERROR_CODE_VALUE_OUT_OF_RANGE);
    characterstring_init_ansi(&v.type.Character_String, "abcd");
    EXPECT_TRUE(WPValidateString(&v, 4, false, &cls, &code));
    EXPECT_FALSE(WPValidateString(&v, 3, false, &cls, &code));
    EXPECT_EQ(std::make_tuple(cls, code), std::make_tuple(ERROR_CLASS_PROPERTY, ERROR_CODE_VALUE_TOO_LONG));
    EXPECT_TRUE(WPValidateString(&v, -1, false, &cls, &code));
    v.tag = BACNET_APPLICATION_TAG_OCTET_STRING;
    EXPECT_FALSE(WPValidateString(&v, 10, true, &cls, &code));
    EXPECT_EQ(code, ERROR_CODE_INVALID_DATA_TYPE);
}
