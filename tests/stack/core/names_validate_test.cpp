#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "tq_stack/bactext.h"
#include "tq_stack/enums.h"
#include "tq_stack/strings.h"
#include "tq_stack/validate.h"

TEST(Names, StandardWordsForKnownNumbers) {
    EXPECT_STREQ(bactext_error_class_name(ERROR_CLASS_PROPERTY), "property");
    EXPECT_STREQ(bactext_error_code_name(ERROR_CODE_UNKNOWN_PROPERTY), "unknown-property");
    EXPECT_STREQ(bactext_error_code_name(ERROR_CODE_VALUE_OUT_OF_RANGE), "value-out-of-range");
    EXPECT_STREQ(bactext_error_code_name(205), "referenced-port-in-error");
    EXPECT_STREQ(bactext_abort_reason_name(ABORT_REASON_SEGMENTATION_NOT_SUPPORTED),
                 "segmentation-not-supported");
    EXPECT_STREQ(bactext_reject_reason_name(REJECT_REASON_UNRECOGNIZED_SERVICE), "unrecognized-service");
    EXPECT_STREQ(bactext_object_type_name(OBJECT_ANALOG_INPUT), "analog-input");
    EXPECT_STREQ(bactext_object_type_name(OBJECT_NETWORK_PORT), "network-port");
    EXPECT_STREQ(bactext_property_name(PROP_PRESENT_VALUE), "present-value");
    EXPECT_STREQ(bactext_property_name(PROP_COV_INCREMENT), "cov-increment");
    EXPECT_STREQ(bactext_property_name(PROP_PROPERTY_LIST), "property-list");
    EXPECT_STREQ(bactext_property_name(4194304), "max-bvlc-length-accepted");
    EXPECT_STREQ(bactext_confirmed_service_name(12), "read-property");
    EXPECT_STREQ(bactext_unconfirmed_service_name(SERVICE_UNCONFIRMED_WHO_IS), "who-is");
    // Withdrawn choices must not read as services a device could offer.
    EXPECT_STREQ(bactext_confirmed_service_name(13), "unknown-confirmed-service");
    EXPECT_STREQ(bactext_confirmed_service_name_default(25, "-"), "-");
    unsigned index = 99;
    EXPECT_FALSE(bactext_confirmed_service_index("read-property-conditional", &index));
    EXPECT_TRUE(bactext_confirmed_service_index("write-property", &index));
    EXPECT_EQ(index, 15u);
    EXPECT_STREQ(bactext_application_tag_name(BACNET_APPLICATION_TAG_REAL), "REAL");
    EXPECT_STREQ(bactext_application_tag_name(BACNET_APPLICATION_TAG_CHARACTER_STRING), "CharacterString");
    EXPECT_STREQ(bactext_application_tag_name(BACNET_APPLICATION_TAG_OBJECT_ID), "BACnetObjectIdentifier");
}

TEST(Names, UnnamedNumbersGiveFallbacksNeverNull) {
    EXPECT_STREQ(bactext_error_code_name(33), "unknown-error-code");  // withdrawn number
    EXPECT_STREQ(bactext_error_code_name(300), "proprietary-error-code");
    EXPECT_STREQ(bactext_error_code_name(70000), "unknown-error-code");
    EXPECT_STREQ(bactext_error_class_name(64), "proprietary-error-class");
    EXPECT_STREQ(bactext_object_type_name(200), "proprietary-object-type");
    EXPECT_STREQ(bactext_object_type_name(1024), "unknown-object-type");
    EXPECT_STREQ(bactext_property_name(18), "unknown-property");
    EXPECT_STREQ(bactext_property_name(600), "proprietary-property");
    EXPECT_STREQ(bactext_abort_reason_name(64), "proprietary-abort-reason");
    EXPECT_STREQ(bactext_reject_reason_name(10), "unknown-reject-reason");
    EXPECT_STREQ(bactext_confirmed_service_name(34), "unknown-confirmed-service");
    EXPECT_STREQ(bactext_application_tag_name(13), "unknown-application-tag");
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
    unsigned named = 0;
    for (unsigned n = 0; n < 512; ++n) {
        const char* name = bactext_property_name_default(n, nullptr);
        if (!name) continue;
        ++named;
        EXPECT_TRUE(seen.insert(name).second) << name;
        unsigned back = 0;
        ASSERT_TRUE(bactext_property_index(name, &back)) << name;
        EXPECT_EQ(back, n);
    }
    EXPECT_GT(named, 450u);
    unsigned type = 0;
    ASSERT_TRUE(bactext_object_type_index("trend-log", &type));
    EXPECT_EQ(type, unsigned(OBJECT_TREND_LOG));
    EXPECT_FALSE(bactext_object_type_index("trendlog", &type));
    unsigned service = 0;
    ASSERT_TRUE(bactext_confirmed_service_index("read-range", &service));
    EXPECT_EQ(service, unsigned(SERVICE_CONFIRMED_READ_RANGE));
    EXPECT_FALSE(bactext_confirmed_service_index(nullptr, &service));
}

TEST(Validate, ArgumentTypeAndStringChecks) {
    BACNET_APPLICATION_DATA_VALUE v;
    v.tag = BACNET_APPLICATION_TAG_REAL;
    BACNET_ERROR_CLASS cls = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE code = ERROR_CODE_OTHER;
    EXPECT_TRUE(WPValidateArgType(&v, BACNET_APPLICATION_TAG_REAL, &cls, &code));
    EXPECT_EQ(cls, ERROR_CLASS_DEVICE);  // untouched on success
    EXPECT_FALSE(WPValidateArgType(&v, BACNET_APPLICATION_TAG_UNSIGNED_INT, &cls, &code));
    EXPECT_EQ(cls, ERROR_CLASS_PROPERTY);
    EXPECT_EQ(code, ERROR_CODE_INVALID_DATA_TYPE);
    EXPECT_FALSE(WPValidateArgType(nullptr, 0, nullptr, nullptr));

    v.tag = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    characterstring_init_ansi(&v.type.Character_String, "");
    code = ERROR_CODE_OTHER;
    EXPECT_TRUE(WPValidateString(&v, 2147483647, true, &cls, &code));
    EXPECT_FALSE(WPValidateString(&v, 2147483647, false, &cls, &code));
    EXPECT_EQ(code, ERROR_CODE_VALUE_OUT_OF_RANGE);
    characterstring_init_ansi(&v.type.Character_String, "abcd");
    EXPECT_TRUE(WPValidateString(&v, 4, false, &cls, &code));
    EXPECT_FALSE(WPValidateString(&v, 3, false, &cls, &code));
    EXPECT_EQ(cls, ERROR_CLASS_PROPERTY);
    EXPECT_EQ(code, ERROR_CODE_VALUE_TOO_LONG);
    EXPECT_TRUE(WPValidateString(&v, -1, false, &cls, &code));
    v.tag = BACNET_APPLICATION_TAG_OCTET_STRING;
    EXPECT_FALSE(WPValidateString(&v, 10, true, &cls, &code));
    EXPECT_EQ(code, ERROR_CODE_INVALID_DATA_TYPE);
}
