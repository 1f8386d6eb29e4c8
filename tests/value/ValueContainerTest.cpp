#include "TQ/Utility/OctetBuffer.h"
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/DataWriteProperty.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"

#include <cstring>
#include <tuple>
#include <vector>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::ValueContainer;
using TQTest::assertsWith;
using TQTest::messageOf;
using TQTest::stdoutOf;
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
        auto& db = TQTest::Catalogue::open();
        db.seedProperty(TEST_OBJECT, PV, 4, 0, false);
        db.seedProperty(TEST_OBJECT, PRIORITY_ARRAY, 4, 1, true);
        db.seedProperty(TEST_OBJECT, OBJECT_NAME, 7, 0, false);
    }

    int decode(const std::vector<uint8_t>& bytes, BACNET_PROPERTY_ID property, int arrayIndex = -1,
               unsigned maxValues = 0) {
        return container.decode(bytes.data(), static_cast<int>(bytes.size()), maxValues, TEST_OBJECT,
                                property, arrayIndex, error);
    }

    int decodeAs(const Descriptor& descriptor, const std::vector<uint8_t>& bytes) {
        return container.decode(bytes.data(), static_cast<int>(bytes.size()), 0, descriptor, -1, error);
    }

    ValueContainer container;
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    BN::DataErrorRef error{errorClass, errorCode};
};

template <class T, class Encode>
std::vector<uint8_t> encodedAll(std::initializer_list<T> values, Encode encode) {
    std::vector<uint8_t> out;
    uint8_t buffer[8];
    for (T v : values) out.insert(out.end(), buffer, buffer + encode(buffer, v));
    return out;
}
std::vector<uint8_t> reals(std::initializer_list<float> v) {
    return encodedAll(v, encode_application_real);
}
std::vector<uint8_t> unsigneds(std::initializer_list<unsigned> v) {
    return encodedAll(v, encode_application_unsigned);
}

/// A BACnetDateTime of 2024-03-07 08:30 as it arrives in a property value.
std::vector<uint8_t> dateTimeBytes() {
    BACnet_DateTime dt;
    datetime_set_values(&dt, 2024, 3, 7, 8, 30, 0, 0);
    uint8_t bytes[16];
    return std::vector<uint8_t>(bytes, bytes + bacapp_encode_datetime(bytes, &dt));
}
const Descriptor DATE_TIME(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE,
                           true, 4);

std::string textOf(const ValueContainer& c) {
    std::string out;
    return c.getText(out, false);
}

}  // namespace

TEST_F(ValueContainerDecode, singleValuesVectorsAndLimits) {
    const auto three = reals({1.0f, 2.0f, 3.0f});
    const auto SINGLE = BN::BACNET_DTS_SINGLE_VALUE, ARRAY = BN::BACNET_DTS_ARRAY;
    // Run in order on one container, so each row also decodes over what the last one left.
    const struct {
        std::vector<uint8_t> bytes;
        BACNET_PROPERTY_ID property;
        int arrayIndex;
        unsigned maxValues;
        int length;
        const char* text;
        BN::BACnetDataType dataType;
        BN::BACnetDataTypeStructure structure;
    } cases[] = {
        {reals({21.5f}), PV, -1, 0, 5, "21.5", BN::BACNET_DT_REAL, SINGLE},
        {three, PRIORITY_ARRAY, -1, 0, 15, "1|2|3", BN::BACNET_DT_REAL, ARRAY},
        {three, PV, -1, 0, 15, "1|2|3", BN::BACNET_DT_REAL, ARRAY},  // several values make an array
        {three, PV, -1, 1, 5, "1", BN::BACNET_DT_REAL, SINGLE},
        {three, PRIORITY_ARRAY, -1, 2, 10, "1|2", BN::BACNET_DT_REAL, ARRAY},
        // Array index 0 asks for the length: an Unsigned whatever the element type.
        {unsigneds({16}), PRIORITY_ARRAY, 0, 0, 2, "16", BN::BACNET_DT_UNSIGNED_INT, SINGLE},
        {reals({4.0f}), PRIORITY_ARRAY, 3, 0, 5, "4", BN::BACNET_DT_REAL, SINGLE},
        {three, PRIORITY_ARRAY, -1, 0, 15, "1|2|3", BN::BACNET_DT_REAL, ARRAY},
        {reals({9.5f}), PV, -1, 0, 5, "9.5", BN::BACNET_DT_REAL, SINGLE},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.length, decode(c.bytes, c.property, c.arrayIndex, c.maxValues));
        EXPECT_EQ(c.text, textOf(container));
        EXPECT_EQ(c.dataType, container.getDataType());
        EXPECT_EQ(c.structure, container.getStructure());
    }
    EXPECT_EQ(9.5f, container.getReal(false));
    EXPECT_EQ(0, decode({}, PRIORITY_ARRAY));
    EXPECT_EQ("", textOf(container));
}

TEST_F(ValueContainerDecode, badInputReportsProtocolErrors) {
    // Unknown pair: -1 and the error left alone; a NULL passes whatever the descriptor.
    EXPECT_EQ(-1, decode(reals({1.0f}), UNKNOWN));
    EXPECT_EQ(1, decode({0x00}, PV));
    EXPECT_EQ("NULL", textOf(container));
    EXPECT_EQ(ERROR_CLASS_DEVICE, errorClass);
    EXPECT_EQ(-1, decode(unsigneds({3}), PV));
    EXPECT_EQ(std::make_tuple(ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE),
              std::make_tuple(errorClass, errorCode));

    // Every truncation of a valid value list fails without reading past its end.
    const auto bytes = reals({1.0f, 2.0f});
    for (size_t cut = 1; cut < bytes.size(); ++cut) {
        if (cut == 5) continue;  // a whole first value
        errorCode = ERROR_CODE_OTHER;
        EXPECT_EQ(-1, decode(std::vector<uint8_t>(bytes.begin(), bytes.begin() + cut), PRIORITY_ARRAY))
            << cut;
        EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
    }
    // A failed decode leaves an empty container behind, not half a vector.
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, container.getStructure());
    DataApplicationValue held;
    EXPECT_TRUE(container.getValue(held).isNull());

    // Dates and times the text form cannot show are refused as out of range; wildcards pass.
    const Descriptor date(BN::BACNET_DT_DATE, BACNET_APPLICATION_TAG_DATE, BN::BACNET_DTS_SINGLE_VALUE, true,
                          4);
    const Descriptor time(BN::BACNET_DT_TIME, BACNET_APPLICATION_TAG_TIME, BN::BACNET_DTS_SINGLE_VALUE, true,
                          4);
    const std::tuple<const Descriptor&, std::vector<uint8_t>, const char*> primitives[] = {
        {date, {0xA4, 0x7C, 0x02, 0x7C, 0x00}, nullptr},
        {date, {0xA4, 0x7C, 0x02, 0xFF, 0xFF}, "2024-02-*"},
        {time, {0xB4, 24, 0, 0, 0}, nullptr},
        {time, {0xB4, 12, 0, 0, 0xFF}, "12.00.00.*"},
    };
    for (const auto& [descriptor, value, text] : primitives) {
        errorCode = ERROR_CODE_OTHER;
        EXPECT_EQ(text ? 5 : -1, decodeAs(descriptor, value));
        EXPECT_EQ(text ? ERROR_CODE_OTHER : ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
        EXPECT_TRUE(!text || textOf(container) == text) << textOf(container);
    }

    // An empty string where none is allowed.
    EXPECT_EQ(-1, decode({0x71, 0x00}, OBJECT_NAME));
    EXPECT_EQ(ERROR_CODE_VALUE_OUT_OF_RANGE, errorCode);
    EXPECT_EQ(-1, container.decode(nullptr, 5, 0, date, -1, error));
    EXPECT_EQ(-1, container.decode(bytes.data(), -1, 0, date, -1, error));
}

TEST_F(ValueContainerDecode, constructedValuesDecodeIntoTheirClasses) {
    const auto bytes = dateTimeBytes();
    const int len = static_cast<int>(bytes.size());
    auto& c = container;
    ASSERT_EQ(len, decodeAs(DATE_TIME, bytes));
    BN::DataType::BACnetDateTime dateTime;
    c.getValue(dateTime);
    EXPECT_EQ(BN::DataType::BACnetDateTime(BACnet_Date{2024, 3, 7, 4}, BACnet_Time{8, 30, 0, 0}), dateTime);
    const std::string text = textOf(c);
    EXPECT_EQ("A4 7C 03 07 04 B4 08 1E 00 00", text);
    uint8_t out[MAX_APDU];
    ASSERT_EQ(len, c.encode(out));
    EXPECT_EQ(0, std::memcmp(bytes.data(), out, len));

    ValueContainer back;
    EXPECT_TRUE(back.setText(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, text, false) &&
                textOf(back) == text);
    EXPECT_FALSE(back.setText(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, "A4 7", false));
    EXPECT_EQ("NULL", textOf(back));
    // The list form reads the class's own text; an unreadable one leaves nothing half-set.
    EXPECT_TRUE(back.setStrings(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL,
                                {"A47C030704B4081E0000"}, false));
    EXPECT_TRUE(back.getValue(dateTime) == c.getValue(dateTime));
    EXPECT_FALSE(back.setStrings(BN::BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL, {"zz"}, false));
    EXPECT_EQ(BN::BACNET_DT_NULL, back.getDataType());
    EXPECT_FALSE(
        back.setStrings(static_cast<BN::BACnetDataType>(1129), BACNET_APPLICATION_TAG_NULL, {"09"}, false));

    // Several objects make a vector, a limit of one keeps the first.
    auto twice = bytes;
    twice.insert(twice.end(), bytes.begin(), bytes.end());
    ASSERT_EQ(2 * len, decodeAs(DATE_TIME, twice));
    std::vector<BN::DataType::BACnetDateTime> all;
    EXPECT_TRUE(c.getStructure() == BN::BACNET_DTS_ARRAY && c.getValues(all).size() == 2 &&
                c.encode(out) == 2 * len);
    EXPECT_EQ(len, c.decode(twice.data(), static_cast<int>(twice.size()), 1, DATE_TIME, -1, error));
    EXPECT_EQ(BN::BACNET_DTS_SINGLE_VALUE, c.getStructure());

    // Broken encodings are a services error, whichever class reads them.
    const Descriptor list(static_cast<BN::BACnetDataType>(1129), BACNET_APPLICATION_TAG_NULL,
                          BN::BACNET_DTS_LIST, true, 4);
    const std::vector<std::pair<Descriptor, std::vector<uint8_t>>> broken{{DATE_TIME, {0xA4, 0x7C, 0x03}},
                                                                          {DATE_TIME, {0x21, 0x01}},
                                                                          {list, {0x0E, 0x21, 0x01}},
                                                                          {list, {0x0E, 0x1C, 0x01, 0x0F}},
                                                                          {list, {0x0F}}};
    for (const auto& b : broken) {
        errorClass = ERROR_CLASS_DEVICE;
        EXPECT_GT(0, decodeAs(b.first, b.second));
        EXPECT_EQ(std::make_tuple(ERROR_CLASS_SERVICES, ERROR_CODE_OTHER),
                  std::make_tuple(errorClass, errorCode));
        // What is left reads as no value, not as a class that is not held.
        EXPECT_TRUE(textOf(c) == "NULL" && c.getDataType() == BN::BACNET_DT_NULL);
    }

    // A type without a class of its own is held whole, as its encoding with its descriptor.
    ASSERT_EQ(9, decodeAs(list, {0x09, 0x55, 0x3E, 0x44, 0x41, 0xAC, 0x00, 0x00, 0x3F}));
    BN::DataType::ANY any;
    EXPECT_EQ(BN::BACNET_DTS_LIST, c.getValue(any).getDescriptor().structure);
    TQ::Utility::OctetBuffer encoded;
    EXPECT_TRUE(c.encode2(encoded) == 9 && encoded.getHexString(false) == "09553E4441AC00003F");
    // Its extent as the catalogue-guided decoder sees it; no value at all is told apart.
    EXPECT_EQ(9, any.getValueLength());
    EXPECT_EQ(-202, BN::DataType::ANY(list, nullptr, 0).getValueLength());
}

TEST_F(ValueContainerDecode, logRecordsGiveTheTimeOfTheLastOne) {
    // Two records of a REAL, at 08:30 and 08:31, the second with status flags.
    const std::vector<uint8_t> log{0x0E, 0xA4, 0x7C, 0x03, 0x07, 0x04, 0xB4, 0x08, 0x1E, 0x00, 0x00,
                                   0x0F, 0x1E, 0x2C, 0x41, 0xA0, 0x00, 0x00, 0x1F, 0x0E, 0xA4, 0x7C,
                                   0x03, 0x07, 0x04, 0xB4, 0x08, 0x1F, 0x00, 0x00, 0x0F, 0x1E, 0x2C,
                                   0x41, 0xA8, 0x00, 0x00, 0x1F, 0x2A, 0x04, 0x00};
    const Descriptor records(BN::BACNET_DT_LOG_RECORD, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_LIST, true,
                             4);
    auto& c = container;
    ASSERT_EQ(static_cast<int>(log.size()), decodeAs(records, log));
    std::vector<BN::DataType::BACnetLogRecord> held;
    ASSERT_EQ(2u, c.getValues(held).size());
    EXPECT_FLOAT_EQ(21.0f, held[1].getReal(false));
    EXPECT_EQ(std::make_tuple(held[1].getTimestamp(), 60 * Poco::Timestamp::resolution()),
              std::make_tuple(c.getLastTimeStamp(), held[1].getTimestamp() - held[0].getTimestamp()));
    uint8_t out[MAX_APDU];
    ASSERT_EQ(static_cast<int>(log.size()), c.encode(out));
    EXPECT_EQ(0, std::memcmp(log.data(), out, log.size()));

    ASSERT_EQ(19, c.decode(log.data(), static_cast<int>(log.size()), 1, records, -1, error));
    EXPECT_EQ(held[0].getTimestamp(), c.getLastTimeStamp());
    c.setReal(1.0f);
    EXPECT_EQ(Poco::Timestamp(0), c.getLastTimeStamp());
}

TEST(ValueContainerText, primitiveTextsRoundTrip) {
    ValueContainer c;
    EXPECT_EQ("NULL", textOf(c));
    // Blanks around a value are ignored; null and empty texts clear the value.
    const std::pair<const char*, const char*> reals[] = {{" 21.5 ", "21.5"}, {"null", "NULL"}, {"", "NULL"}};
    for (const auto& [in, out] : reals) {
        EXPECT_TRUE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, in, false)) << in;
        EXPECT_EQ(out, textOf(c));
    }
    EXPECT_EQ(BN::BACNET_DT_NULL, c.getDataType());
    for (const char* bad : {"warm", "1|x"})
        EXPECT_FALSE(c.setText(BN::BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, bad, false));

    const std::pair<BACNET_APPLICATION_TAG, std::string> cases[] = {
        {BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2|3"}, {BACNET_APPLICATION_TAG_REAL, "21.5"},
        {BACNET_APPLICATION_TAG_BOOLEAN, "true|false"}, {BACNET_APPLICATION_TAG_CHARACTER_STRING, "Hall 1"},
        {BACNET_APPLICATION_TAG_OBJECT_ID, "8,1|0,3"},  {BACNET_APPLICATION_TAG_OCTET_STRING, "0AFF|NULL"},
    };
    for (const auto& [tag, text] : cases) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(c.setText(static_cast<BN::BACnetDataType>(tag), tag, text, false));
        EXPECT_EQ(text.find('|') == std::string::npos ? BN::BACNET_DTS_SINGLE_VALUE : BN::BACNET_DTS_ARRAY,
                  c.getStructure());
        ValueContainer again;
        ASSERT_TRUE(again.setText(c.getDataType(), c.getTag(), textOf(c), false));
        EXPECT_EQ(text, textOf(again));
        uint8_t a[MAX_APDU], b[MAX_APDU];
        const int len = c.encode(a);
        ASSERT_EQ(len, again.encode(b));
        EXPECT_EQ(0, std::memcmp(a, b, len));
    }

    const auto SIGNED = BACNET_APPLICATION_TAG_SIGNED_INT;
    EXPECT_TRUE(c.setStrings(BN::BACNET_DT_SIGNED_INT, SIGNED, {"-1", "2"}, false) && textOf(c) == "-1|2");
    EXPECT_TRUE(c.setStrings(BN::BACNET_DT_SIGNED_INT, SIGNED, {"-1"}, false) && c.getInt() == -1);
    EXPECT_TRUE(c.setStrings(BN::BACNET_DT_SIGNED_INT, SIGNED, {}, false) && textOf(c) == "NULL");
    EXPECT_FALSE(c.setStrings(BN::BACNET_DT_RECIPIENT, BACNET_APPLICATION_TAG_NULL, {"x"}, false));
}

TEST(ValueContainerEncode, vectorsStopAtOneApdu) {
    ValueContainer c;
    const auto CHARS = BACNET_APPLICATION_TAG_CHARACTER_STRING;
    ASSERT_TRUE(c.setStrings(BN::BACNET_DT_CHARACTER_STRING, CHARS,
                             {std::string(733, 'a'), std::string(734, 'b')}, false));
    uint8_t apdu[2 * MAX_APDU];
    EXPECT_NE(std::string::npos,
              stdoutOf([&] { EXPECT_EQ(0, c.encode(apdu)); }).find(" ValueContainer::encodeT() failure"));
    TQ::Utility::OctetBuffer buffer;
    EXPECT_TRUE(c.encode2(buffer) == 1477 && buffer.size() == 1477);  // the buffer form grows instead
    ASSERT_TRUE(c.setStrings(BN::BACNET_DT_CHARACTER_STRING, CHARS,
                             {std::string(733, 'a'), std::string(733, 'b')}, false));
    EXPECT_EQ(1476, c.encode(apdu));
    EXPECT_EQ(0, c.encode(nullptr));

    c.setReal(1.0f);
    EXPECT_TRUE(c.encode2(buffer) == 5 && buffer.getHexString(false) == "443F800000");
    EXPECT_EQ("ValueContainer::encodeContext()",
              messageOf<Poco::NotImplementedException>([&] { c.encodeContext(apdu, 1); }));
}

TEST(ValueContainerAccess, typedGettersCheckTheTag) {
    ValueContainer c;
    c.setBool(true);
    EXPECT_TRUE(c.getBool() && c.getDataType() == BN::BACNET_DT_BOOLEAN);
    EXPECT_TRUE(assertsWith([&] { c.getUInt(); }, "tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    EXPECT_EQ(7u, (c.setUInt(7), c.getEnum()));  // an Unsigned answers for an enumeration
    c.setEnum(9);
    EXPECT_TRUE(assertsWith([&] { c.getInt(); }, "tag == BACNET_APPLICATION_TAG_SIGNED_INT"));
    EXPECT_TRUE(assertsWith([&] { c.getBool(); }, "tag == BACNET_APPLICATION_TAG_BOOLEAN"));
    c.setInt(-3);
    EXPECT_TRUE(assertsWith(
        [&] { c.getEnum(); },
        "tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT"));
    EXPECT_EQ(-3.0f, c.getReal(true));
    BN::DataType::Date date;
    BN::DataType::Time time;
    c.setDate(BN::DataType::Date(BACnet_Date{2024, 1, 5, 5}));
    c.getDate(date);
    EXPECT_EQ(5, date.day);
    EXPECT_TRUE(assertsWith([&] { c.getTime(time); }, "tag == BACNET_APPLICATION_TAG_TIME"));
    EXPECT_TRUE(assertsWith([&] { c.getObjectIdentifier(); }, "tag == BACNET_APPLICATION_TAG_OBJECT_ID"));
    EXPECT_EQ(BN::BACNET_DT_CHARACTER_STRING, (c.setCharString("abc"), c.getDataType()));

    ASSERT_TRUE(c.setText(BN::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2", false));
    EXPECT_EQ("Failed to convert between Any types", messageOf<Poco::BadCastException>([&] { c.getUInt(); }));
    DataApplicationValue v;
    EXPECT_THROW(c.getValue(v), Poco::BadCastException);
}

TEST(ValueContainerAccess, setApplicationValueFollowsTheDescriptor) {
    ValueContainer c;
    DataApplicationValue a = TQTest::uintValue(1), b = TQTest::uintValue(2), d = TQTest::uintValue(3),
                         e = TQTest::enumValue(2), real = TQTest::realValue(1.0f);
    a.next = &b;
    b.next = &d;
    c.setApplicationValue(a, nullptr);
    EXPECT_EQ(BN::BACNET_DTS_ARRAY, c.getStructure());
    EXPECT_EQ("1|2|3", textOf(c));
    EXPECT_EQ("1|2|3", textOf(ValueContainer(a)));
    EXPECT_EQ(std::make_tuple(BN::BACNET_DT_UNSIGNED_INT, BN::BACNET_DTS_SINGLE_VALUE),
              std::make_tuple(ValueContainer(d).getDataType(), ValueContainer(d).getStructure()));
    std::vector<DataApplicationValue> values;
    c.getValues(values);
    EXPECT_EQ(nullptr, values[0].next);  // held copies never point into the caller's chain
    c.setApplicationValueLinks(values);
    EXPECT_TRUE(values[0].next == &values[1] && values[1].next == &values[2]);

    Descriptor enumDescriptor(static_cast<BN::BACnetDataType>(1200), BACNET_APPLICATION_TAG_ENUMERATED,
                              BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    c.setApplicationValue(e, &enumDescriptor);
    EXPECT_EQ(1200u, c.getDataType());
    // A different tag is accepted only for Unsigned and Boolean answers.
    c.setApplicationValue(d, &enumDescriptor);
    EXPECT_EQ(BN::BACNET_DT_UNSIGNED_INT, c.getDataType());
    EXPECT_TRUE(assertsWith([&] { c.setApplicationValue(real, &enumDescriptor); },
                            "value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT || value.getTag() == "
                            "BACNET_APPLICATION_TAG_BOOLEAN"));
    c.setApplicationValue(DataApplicationValue(), &enumDescriptor);
    EXPECT_EQ(BN::BACNET_DT_NULL, c.getDataType());
    Descriptor any(BN::BACNET_DT_ANY, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    c.setApplicationValue(real, &any);
    EXPECT_EQ(BN::BACNET_DT_REAL, c.getDataType());

    Descriptor recipient(BN::BACNET_DT_RECIPIENT, BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_ARRAY, true, 4);
    c.setApplicationValue(d, &recipient);  // an array length
    EXPECT_EQ(3u, c.getUInt());
    const std::string printed = stdoutOf([&] {
        EXPECT_TRUE(
            assertsWith([&] { c.setApplicationValue(real, &recipient); },
                        "value.getTag() == BACNET_APPLICATION_TAG_UNSIGNED_INT || (pTypeAndStruct->type == "
                        "BACNET_DT_ANY && value.getTag() < MAX_BACNET_APPLICATION_TAG)"));
    });
    EXPECT_NE(
        std::string::npos,
        printed.find("INVALID TAG, CRASH WILL HAPPEN, pTypeAndStruct->type = 1070, value.getTag() = 4"));
    Descriptor none;
    EXPECT_TRUE(assertsWith([&] { c.setApplicationValue(d, &none); },
                            "pTypeAndStruct->type > BACNET_DT_MAX_APPLICATION_TAG"));
    EXPECT_NE(std::string::npos,
              stdoutOf([&] { c.setApplicationValue(a, &recipient); }).find("UNSUPPORTED COMPLEX TYPE!"));
    EXPECT_EQ("1|2|3", textOf(c));
}

TEST_F(ValueContainerDecode, stringsForWriteRequests) {
    BACnet_Write_Property_Data data{};
    BN::DataWriteProperty request(data, false);
    auto& c = container;
    std::vector<std::string> out;
    c.setReal(2.5f);
    EXPECT_TRUE(c.getStrings(out, request) && out == std::vector<std::string>{"2.5"});
    ASSERT_TRUE(c.setText(BN::BACNET_DT_UNSIGNED_INT, BACNET_APPLICATION_TAG_UNSIGNED_INT, "1|2", false));
    EXPECT_EQ("_structure != BACNET_DTS_SINGLE_VALUE",
              messageOf<Poco::NotImplementedException>([&] { c.getStrings(out, request); }));

    // A date-time is written through its text; other constructed types have none.
    ASSERT_GT(decodeAs(DATE_TIME, dateTimeBytes()), 0);
    out.clear();
    EXPECT_TRUE(c.getStrings(out, request) && out == std::vector<std::string>{"A47C030704B4081E0000"});
    const Descriptor list(static_cast<BN::BACnetDataType>(1129), BACNET_APPLICATION_TAG_NULL,
                          BN::BACNET_DTS_SINGLE_VALUE, true, 4);
    ASSERT_GT(decodeAs(list, {0x09, 0x55}), 0);
    out.clear();
    EXPECT_NE(std::string::npos, stdoutOf([&] { EXPECT_FALSE(c.getStrings(out, request)); })
                                     .find("ValueContainer::getStrings() returns "
                                           "ERROR_CLASS_PROPERTY,ERROR_CODE_INVALID_DATA_TYPE"));
    EXPECT_TRUE(data.error_class == ERROR_CLASS_PROPERTY && data.error_code == ERROR_CODE_INVALID_DATA_TYPE);
    EXPECT_TRUE(out.empty());
}
