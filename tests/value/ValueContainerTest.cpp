#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/DataWriteProperty.h"
#include "TQ_BACnet/ValueContainer.h"
#include "ValueDatabase.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <cstring>

#include <vector>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::ValueContainer;
using Descriptor = TQ::BACnet::ValueContainer::DataPropertyInObject;
namespace BN = TQ::BACnet;

namespace {

// A proprietary object type, so the rows below never meet the catalogue's own.
const auto TEST_OBJECT = static_cast<BACNET_OBJECT_TYPE>(700);
const auto PV = static_cast<BACNET_PROPERTY_ID>(85);
const auto PRIORITY_ARRAY = static_cast<BACNET_PROPERTY_ID>(87);
const auto OBJECT_NAME = static_cast<BACNET_PROPERTY_ID>(77);
const auto UNKNOWN = static_cast<BACNET_PROPERTY_ID>(4000);

class ValueContainerDecode : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        auto& db = TQValueTest::ValueDatabase::instance();
        db.seedProperty(TEST_OBJECT, PV, 4, 4, 0, false);
        db.seedProperty(TEST_OBJECT, PRIORITY_ARRAY, 4, 4, 1, true);
        db.seedProperty(TEST_OBJECT, OBJECT_NAME, 7, 7, 0, false);
    }

    int decode(const std::vector<uint8_t>& bytes, BACNET_PROPERTY_ID property, int arrayIndex = -1,
               unsigned maxValues = 0) {
        return container.decode(bytes.data(), static_cast<int>(bytes.size()), maxValues, TEST_OBJECT,
                                property, arrayIndex, error);
    }

    ValueContainer container;
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    BN::DataErrorRef error{errorClass, errorCode};
};

std::vector<uint8_t> reals(std::initializer_list<float> values) {
    std::vector<uint8_t> out;
    uint8_t buffer[8];
    for (float v : values) {
        const int len = encode_application_real(buffer, v);
        out.insert(out.end(), buffer, buffer + len);
    }
    return out;
}

std::vector<uint8_t> unsigneds(std::initializer_list<unsigned> values) {
    std::vector<uint8_t> out;
    uint8_t buffer[8];
    for (unsigned v : values) {
        const int len = encode_application_unsigned(buffer, v);
        out.insert(out.end(), buffer, buffer + len);
    }
    return out;
}

std::string textOf(const ValueContainer& c) {
    std::string out;
    return c.getText(out, false);
}

template <class F>
std::string assertionOf(F f) {
    try {
        f();
    } catch (const Poco::AssertionViolationException& e) {
        return e.message();
    }
    return "<no assertion>";
}

}  // namespace

TEST_F(ValueContainerDecode, singleValuesVectorsAndLimits) {
    EXPECT_EQ(5, decode(reals({21.5f}), PV));
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, container.getStructure());
    EXPECT_EQ(BN::BACNET_DT_REAL, container.getDataType());
    EXPECT_EQ(21.5f, container.getReal(false));

    const auto three = reals({1.0f, 2.0f, 3.0f});
    EXPECT_EQ(15, decode(three, PRIORITY_ARRAY));
    EXPECT_EQ(BN::BACNET_DTS_ARRAY, container.getStructure());
    EXPECT_EQ("1|2|3", textOf(container));
    std::vector<DataApplicationValue> values;
    EXPECT_EQ(3u, container.getValues(values).size());

    // A value of a single-valued property that arrives as several becomes an array.
    EXPECT_EQ(15, decode(three, PV));
    EXPECT_EQ(BN::BACNET_DTS_ARRAY, container.getStructure());
    EXPECT_EQ(5, decode(three, PV, -1, 1));
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, container.getStructure());
    EXPECT_EQ(1.0f, container.getReal(false));
    EXPECT_EQ(10, decode(three, PRIORITY_ARRAY, -1, 2));
    EXPECT_EQ("1|2", textOf(container));

    // Array index 0 asks for the length: an Unsigned whatever the element type.
    EXPECT_EQ(2, decode(unsigneds({16}), PRIORITY_ARRAY, 0));
    EXPECT_EQ(BN::BACNET_DT_UNSIGNED_INT, container.getDataType());
    EXPECT_EQ(16u, container.getUInt());
    EXPECT_EQ(5, decode(reals({4.0f}), PRIORITY_ARRAY, 3));
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, container.getStructure());

    // Decoding again into the same container reuses what it holds.
    EXPECT_EQ(15, decode(three, PRIORITY_ARRAY));
    EXPECT_EQ(5, decode(reals({9.5f}), PV));
    EXPECT_EQ(9.5f, container.getReal(false));

    EXPECT_EQ(0, decode({}, PRIORITY_ARRAY));
    EXPECT_EQ("", textOf(container));
}

TEST_F(ValueContainerDecode, badInputReportsProtocolErrors) {
    // Unknown pair: -1 and the error left alone.
    EXPECT_EQ(-1, decode(reals({1.0f}), UNKNOWN));
    EXPECT_EQ(ERROR_CLASS_DEVICE, errorClass);

    EXPECT_EQ(-1, decode(unsigneds({3}), PV));
    EXPECT_EQ(ERROR_CLASS_PROPERTY, errorClass);
    EXPECT_EQ(ERROR_CODE_INVALID_DATA_TYPE, errorCode);

    errorClass = ERROR_CLASS_DEVICE;
    const std::vector<uint8_t> null{0x00};
    EXPECT_EQ(1, decode(null, PV));
    EXPECT_EQ(ERROR_CLASS_DEVICE, errorClass);
    EXPECT_EQ("NULL", textOf(container));

    // Every truncation of a valid value list fails without reading past its end.
    const auto bytes = reals({1.0f, 2.0f});
    for (size_t cut = 1; cut < bytes.size(); ++cut) {
        if (cut == 5) continue;  // a whole first value
        std::vector<uint8_t> part(bytes.begin(), bytes.begin() + cut);
        errorClass = ERROR_CLASS_DEVICE;
        EXPECT_EQ(-1, decode(part, PRIORITY_ARRAY)) << cut;
        EXPECT_EQ(ERROR_CLASS_PROPERTY, errorClass);
        EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
    }
    // A failed decode leaves an empty container behind, not half a vector.
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, container.getStructure());
    DataApplicationValue held;
    EXPECT_TRUE(container.getValue(held).isNull());

    // Dates and times the text form cannot show are refused as out of range.
    Descriptor anyPrimitive(BN::BACNET_DT_DATE, BACNET_APPLICATION_TAG_DATE, BN::BACNET_DTS_SINGLE_VALUE,
                            true, 4);
    const uint8_t badDay[] = {0xA4, 0x7C, 0x02, 0x7C, 0x00};
    const uint8_t anyDay[] = {0xA4, 0x7C, 0x02, 0xFF, 0xFF};
    EXPECT_EQ(-1, container.decode(badDay, 5, 0, anyPrimitive, -1, error));
    EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
    EXPECT_EQ(5, container.decode(anyDay, 5, 0, anyPrimitive, -1, error));
    EXPECT_EQ("2024-02-*", textOf(container));
    Descriptor time(BN::BACNET_DT_TIME, BACNET_APPLICATION_TAG_TIME, BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    const uint8_t hour24[] = {0xB4, 24, 0, 0, 0};
    EXPECT_EQ(-1, container.decode(hour24, 5, 0, time, -1, error));
    const uint8_t noon[] = {0xB4, 12, 0, 0, 0xFF};
    EXPECT_EQ(5, container.decode(noon, 5, 0, time, -1, error));
    EXPECT_EQ("12.00.00.*", textOf(container));

    // An empty string where none is allowed.
    const std::vector<uint8_t> emptyString{0x71, 0x00};
    EXPECT_EQ(-1, decode(emptyString, OBJECT_NAME));
    EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);

    Descriptor descriptor(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BN::BACNET_DTS_SINGLE_VALUE, true,
                          4);
    EXPECT_EQ(-1, container.decode(nullptr, 5, 0, descriptor, -1, error));
    EXPECT_EQ(-1, container.decode(bytes.data(), -1, 0, descriptor, -1, error));
}

TEST(ValueContainerConstructed, heldAsTheirEncoding) {
    BACnet_DateTime dt;
    datetime_set_values(&dt, 2024, 3, 7, 8, 30, 0, 0);
    uint8_t bytes[16];
    const int len = bacapp_encode_datetime(bytes, &dt);
    Descriptor descriptor(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE,
                          true, 4);
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    BN::DataErrorRef error(errorClass, errorCode);
    ValueContainer c;
    ASSERT_EQ(len, c.decode(bytes, len, 0, descriptor, -1, error));
    const std::string text = textOf(c);
    EXPECT_EQ("A4 7C 03 07 04 B4 08 1E 00 00", text);
    uint8_t out[MAX_APDU];
    ASSERT_EQ(len, c.encode(out));
    EXPECT_EQ(0, std::memcmp(bytes, out, len));

    ValueContainer back;
    EXPECT_TRUE(back.setText(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, text, false));
    EXPECT_EQ(text, textOf(back));
    EXPECT_FALSE(back.setText(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, "A4 7", false));
    EXPECT_EQ("NULL", textOf(back));

    // Unbalanced or overrunning tags are a services error.
    const uint8_t opened[] = {0x0E, 0x21, 0x01};
    EXPECT_EQ(-1, c.decode(opened, 3, 0, descriptor, -1, error));
    EXPECT_EQ(ERROR_CLASS_SERVICES, errorClass);
    EXPECT_EQ(ERROR_CODE_OTHER, errorCode);
    const uint8_t overrun[] = {0x0E, 0x1C, 0x01, 0x0F};
    EXPECT_EQ(-1, c.decode(overrun, 4, 0, descriptor, -1, error));
    const uint8_t closedFirst[] = {0x0F};
    EXPECT_EQ(-1, c.decode(closedFirst, 1, 0, descriptor, -1, error));

    Descriptor list(static_cast<BN::BACnetDataType>(1129), BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_LIST,
                    true, 4);
    const uint8_t nested[] = {0x09, 0x55, 0x3E, 0x44, 0x41, 0xAC, 0x00, 0x00, 0x3F};
    ASSERT_EQ(9, c.decode(nested, 9, 0, list, -1, error));
    TQ::Utility::OctetBuffer encoded;
    EXPECT_EQ(9, c.encode2(encoded));
    EXPECT_EQ("09553E4441AC00003F", encoded.getHexString(false));
}

TEST(ValueContainerText, primitiveTextsRoundTrip) {
    ValueContainer c;
    EXPECT_EQ("NULL", textOf(c));
    EXPECT_TRUE(c.setText(BN::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2|3", false));
    EXPECT_EQ(BN::BACNET_DTS_ARRAY, c.getStructure());
    EXPECT_EQ("1|2|3", textOf(c));
    std::vector<DataApplicationValue> values;
    EXPECT_EQ(3u, c.getValues(values).size());
    EXPECT_EQ(3u, values[2].type.Unsigned_Int);

    EXPECT_TRUE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, " 21.5 ", false));
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, c.getStructure());
    EXPECT_EQ("21.5", textOf(c));
    EXPECT_TRUE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "null", false));
    EXPECT_EQ(BN::BACNET_DT_NULL, c.getDataType());
    EXPECT_EQ("NULL", textOf(c));
    EXPECT_TRUE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "", false));
    EXPECT_EQ("NULL", textOf(c));
    EXPECT_FALSE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "warm", false));
    EXPECT_FALSE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "1|x", false));

    const std::pair<BACNET_APPLICATION_TAG, std::string> cases[] = {
        {BACNET_APPLICATION_TAG_BOOLEAN, "true|false"},
        {BACNET_APPLICATION_TAG_CHARACTER_STRING, "Hall 1"},
        {BACNET_APPLICATION_TAG_BIT_STRING, "true,false,true"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "8,1|0,3"},
        {BACNET_APPLICATION_TAG_DATE, "2024-03-07 4"},
        {BACNET_APPLICATION_TAG_OCTET_STRING, "0AFF|NULL"},
    };
    for (const auto& [tag, text] : cases) {
        ASSERT_TRUE(c.setText(static_cast<BN::BACnetDataType>(tag), tag, text, false)) << text;
        ValueContainer again;
        ASSERT_TRUE(again.setText(c.getDataType(), c.getTag(), textOf(c), false));
        EXPECT_EQ(text, textOf(again));
        uint8_t a[MAX_APDU], b[MAX_APDU];
        const int len = c.encode(a);
        ASSERT_EQ(len, again.encode(b));
        EXPECT_EQ(0, std::memcmp(a, b, len));
    }

    EXPECT_TRUE(
        c.setStrings(BN::BACNET_DT_SIGNED_INT, BACNET_APPLICATION_TAG_SIGNED_INT, {"-1", "2"}, false));
    EXPECT_EQ("-1|2", textOf(c));
    EXPECT_TRUE(c.setStrings(BN::BACNET_DT_SIGNED_INT, BACNET_APPLICATION_TAG_SIGNED_INT, {"-1"}, false));
    EXPECT_EQ(-1, c.getInt());
    EXPECT_TRUE(c.setStrings(BN::BACNET_DT_SIGNED_INT, BACNET_APPLICATION_TAG_SIGNED_INT, {}, false));
    EXPECT_EQ("NULL", textOf(c));
    EXPECT_FALSE(c.setStrings(BN::BACNET_DT_RECIPIENT, BACNET_APPLICATION_TAG_NULL, {"x"}, false));
}

TEST(ValueContainerEncode, vectorsStopAtOneApdu) {
    ValueContainer c;
    ASSERT_TRUE(c.setStrings(BN::BACNET_DT_CHARACTER_STRING, BACNET_APPLICATION_TAG_CHARACTER_STRING,
                             {std::string(733, 'a'), std::string(734, 'b')}, false));
    uint8_t apdu[2 * MAX_APDU];
    testing::internal::CaptureStdout();
    EXPECT_EQ(0, c.encode(apdu));
    EXPECT_NE(std::string::npos,
              testing::internal::GetCapturedStdout().find(" ValueContainer::encodeT() failure"));
    TQ::Utility::OctetBuffer buffer;
    EXPECT_EQ(1477, c.encode2(buffer));  // the buffer form grows instead
    EXPECT_EQ(1477u, buffer.size());

    ASSERT_TRUE(c.setStrings(BN::BACNET_DT_CHARACTER_STRING, BACNET_APPLICATION_TAG_CHARACTER_STRING,
                             {std::string(733, 'a'), std::string(733, 'b')}, false));
    EXPECT_EQ(1476, c.encode(apdu));
    EXPECT_EQ(0, c.encode(nullptr));

    c.setReal(1.0f);
    EXPECT_EQ(5, c.encode2(buffer));
    EXPECT_EQ("443F800000", buffer.getHexString(false));
    try {
        c.encodeContext(apdu, 1);
        FAIL();
    } catch (const Poco::NotImplementedException& e) {
        EXPECT_EQ("ValueContainer::encodeContext()", e.message());
    }
}

TEST(ValueContainerAccess, typedGettersAndSetters) {
    ValueContainer c;
    c.setBool(true);
    EXPECT_TRUE(c.getBool());
    EXPECT_EQ(BN::BACNET_DT_BOOLEAN, c.getDataType());
    EXPECT_EQ(0u, assertionOf([&] { c.getUInt(); }).find("tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    c.setUInt(7);
    EXPECT_EQ(7u, c.getEnum());
    c.setEnum(9);
    EXPECT_EQ(9u, c.getEnum());
    EXPECT_EQ(0u, assertionOf([&] { c.getInt(); }).find("tag == BACNET_APPLICATION_TAG_SIGNED_INT"));
    EXPECT_EQ(0u, assertionOf([&] { c.getBool(); }).find("tag == BACNET_APPLICATION_TAG_BOOLEAN"));
    c.setInt(-3);
    EXPECT_EQ(
        0u,
        assertionOf([&] {
            c.getEnum();
        }).find("tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    EXPECT_EQ(-3.0f, c.getReal(true));
    c.setDouble(2.5);
    EXPECT_EQ(2.5, c.getDouble());
    BN::DataType::Date date;
    date = std::string("2024-01-05 5");
    c.setDate(date);
    BN::DataType::Date outDate;
    c.getDate(outDate);
    EXPECT_EQ(5, outDate.day);
    EXPECT_EQ(0u, assertionOf([&] {
                      BN::DataType::Time t;
                      c.getTime(t);
                  }).find("tag == BACNET_APPLICATION_TAG_TIME"));
    EXPECT_EQ(0u,
              assertionOf([&] { c.getObjectIdentifier(); }).find("tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
    c.setObjectIdentifier(BN::DataType::ObjectIdentifier(static_cast<BACNET_OBJECT_TYPE>(8), 5));
    EXPECT_EQ(5u, c.getObjectIdentifier().getInstance());
    c.setCharString("abc");
    std::string s;
    c.getCharString(s);
    EXPECT_EQ("abc", s);
    EXPECT_EQ(BN::BACNET_DT_CHARACTER_STRING, c.getDataType());

    ASSERT_TRUE(c.setText(BN::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2", false));
    try {
        c.getUInt();
        FAIL();
    } catch (const Poco::BadCastException& e) {
        EXPECT_EQ("Failed to convert between Any types", e.message());
    }
    DataApplicationValue v;
    EXPECT_THROW(c.getValue(v), Poco::BadCastException);
}

TEST(ValueContainerAccess, setApplicationValueFollowsTheDescriptor) {
    ValueContainer c;
    DataApplicationValue a, b, d;
    a.setUInt(1);
    b.setUInt(2);
    d.setUInt(3);
    a.next = &b;
    b.next = &d;
    c.setApplicationValue(a, nullptr);
    EXPECT_EQ(BN::BACNET_DTS_ARRAY, c.getStructure());
    EXPECT_EQ("1|2|3", textOf(ValueContainer(a)));
    EXPECT_EQ(BN::BACNET_DT_UNSIGNED_INT, ValueContainer(d).getDataType());
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, ValueContainer(d).getStructure());
    EXPECT_EQ("1|2|3", textOf(c));
    std::vector<DataApplicationValue> values;
    c.getValues(values);
    EXPECT_EQ(nullptr, values[0].next);  // held copies never point into the caller's chain
    c.setApplicationValueLinks(values);
    EXPECT_EQ(&values[1], values[0].next);
    EXPECT_EQ(&values[2], values[1].next);

    Descriptor enumDescriptor(static_cast<BN::BACnetDataType>(1200), BACNET_APPLICATION_TAG_ENUMERATED,
                              BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    DataApplicationValue e;
    e.setEnum(2);
    c.setApplicationValue(e, &enumDescriptor);
    EXPECT_EQ(1200u, c.getDataType());
    // A different tag is accepted only for Unsigned and Boolean answers.
    c.setApplicationValue(d, &enumDescriptor);
    EXPECT_EQ(BN::BACNET_DT_UNSIGNED_INT, c.getDataType());
    DataApplicationValue real;
    real.setReal(1.0f);
    EXPECT_EQ(0u, assertionOf([&] { c.setApplicationValue(real, &enumDescriptor); })
                      .find("value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT || value.getTag() == "
                            "BACNET_APPLICATION_TAG_BOOLEAN"));
    c.setApplicationValue(DataApplicationValue(), &enumDescriptor);
    EXPECT_EQ(BN::BACNET_DT_NULL, c.getDataType());

    Descriptor any(BN::BACNET_DT_ANY, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    c.setApplicationValue(real, &any);
    EXPECT_EQ(BN::BACNET_DT_REAL, c.getDataType());

    Descriptor recipient(BN::BACNET_DT_RECIPIENT, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_ARRAY, true, 4);
    c.setApplicationValue(d, &recipient);  // an array length
    EXPECT_EQ(3u, c.getUInt());
    testing::internal::CaptureStdout();
    EXPECT_EQ(0u,
              assertionOf([&] { c.setApplicationValue(real, &recipient); })
                  .find("value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT || (pTypeAndStruct->type == "
                        "BACNET_DT_ANY && value.getTag() < MAX_BACNET_APPLICATION_TAG)"));
    EXPECT_NE(std::string::npos,
              testing::internal::GetCapturedStdout().find(
                  "INVALID TAG, CRASH WILL HAPPEN, pTypeAndStruct->type = 1070, value.getTag() = 4"));
    Descriptor none;
    EXPECT_EQ(0u, assertionOf([&] {
                      c.setApplicationValue(d, &none);
                  }).find("pTypeAndStruct->type > BACNET_DT_MAX_APPLICATION_TAG"));

    testing::internal::CaptureStdout();
    c.setApplicationValue(a, &recipient);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStdout().find("UNSUPPORTED COMPLEX TYPE!"));
    EXPECT_EQ("1|2|3", textOf(c));
}

TEST(ValueContainerAccess, stringsForWriteRequests) {
    BACnet_Write_Property_Data data{};
    BN::DataWriteProperty request(data, false);
    ValueContainer c;
    std::vector<std::string> out;
    c.setReal(2.5f);
    EXPECT_TRUE(c.getStrings(out, request));
    EXPECT_EQ(std::vector<std::string>{"2.5"}, out);
    ASSERT_TRUE(c.setText(BN::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2", false));
    try {
        c.getStrings(out, request);
        FAIL();
    } catch (const Poco::NotImplementedException& e) {
        EXPECT_EQ("_structure != BACNET_DTS_SINGLE_VALUE", e.message());
    }
    BACnet_DateTime dt;
    datetime_set_values(&dt, 2024, 3, 7, 8, 30, 0, 0);
    uint8_t bytes[16];
    const int len = bacapp_encode_datetime(bytes, &dt);
    Descriptor descriptor(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE,
                          true, 4);
    BACNET_ERROR_CLASS ec;
    BACNET_ERROR_CODE ecode;
    BN::DataErrorRef error(ec, ecode);
    ASSERT_EQ(len, c.decode(bytes, len, 0, descriptor, -1, error));
    out.clear();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(c.getStrings(out, request));
    EXPECT_NE(std::string::npos,
              testing::internal::GetCapturedStdout().find(
                  "ValueContainer::getStrings() returns ERROR_CLASS_PROPERTY,ERROR_CODE_INVALID_DATA_TYPE"));
    EXPECT_EQ(ERROR_CLASS_PROPERTY, data.error_class);
    EXPECT_EQ(ERROR_CODE_INVALID_DATA_TYPE, data.error_code);
    EXPECT_TRUE(out.empty());
}
