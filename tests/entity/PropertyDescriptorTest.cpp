// The property datatype descriptor: encoding, primitive types and the cached catalogue lookup.

#include "TestCatalogue.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <vector>

using namespace TQ::BACnet;

namespace {

const char* const kDescriptorQuery = "FROM bn_properties_in_object WHERE id_bn_object_type=";

std::vector<uint8_t> bytes(const uint8_t* data, int length) {
    return std::vector<uint8_t>(data, data + length);
}

std::vector<uint8_t> bytes(const TQ::Utility::OctetBuffer& buffer) {
    return std::vector<uint8_t>(buffer.data(), buffer.data() + buffer.size());
}

int descriptorQueries(int objectType, int property) {
    return TQTest::TestCatalogue::get().queries(std::string(kDescriptorQuery) + std::to_string(objectType) +
                                                " AND id_bn_property_type=" + std::to_string(property));
}

bool lookup(unsigned type, unsigned property, DataPropertyInObject0& out, bool fallback) {
    return DataPropertyInObject0::getValueTypeAndStructure(static_cast<BACNET_OBJECT_TYPE>(type),
                                                           static_cast<BACNET_PROPERTY_ID>(property), out, fallback);
}

}  // namespace

TEST(DataPropertyInObject0, DefaultsEqualityAndInit) {
    DataPropertyInObject0 descriptor;

    DataPropertyInObject0 real(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BACNET_DTS_ARRAY, false, 1);
    DataPropertyInObject0 sameButFlags(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BACNET_DTS_ARRAY, true,
                                       9);
    EXPECT_TRUE(real == sameButFlags);
    EXPECT_FALSE(real == DataPropertyInObject0(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, BACNET_DTS_LIST,
                                               false, 1));
    EXPECT_FALSE(real == DataPropertyInObject0(BACNET_DT_DOUBLE, BACNET_APPLICATION_TAG_REAL,
                                               BACNET_DTS_ARRAY, false, 1));
    EXPECT_TRUE(real != descriptor);
    real.init();
    EXPECT_TRUE(real == descriptor);
    EXPECT_TRUE(real.emptyAllowed && real.managedInternally == 4) << "init restores the defaults";
}

TEST(DataPropertyInObject0, EncodesFiveContextTagsAndEnclosesThemOnRequest) {
    uint8_t apdu[64] = {};
    DataPropertyInObject0 descriptor;
    int length = descriptor.encode(apdu);
    EXPECT_EQ(bytes(apdu, length),
              (std::vector<uint8_t>{0x09, 0x00, 0x19, 0x00, 0x29, 0x00, 0x39, 0x01, 0x49, 0x04}));
    EXPECT_EQ(descriptor.encode(static_cast<uint8_t*>(nullptr)), 0);
    EXPECT_EQ(descriptor.encodeContext(static_cast<uint8_t*>(nullptr), 3), 0);

    DataPropertyInObject0 wide(BACNET_DT_PROPERTY_DESCRIPTOR, BACNET_APPLICATION_TAG_ENUMERATED,
                               BACNET_DTS_LIST, false, -2);
    length = wide.encodeContext(apdu, 3);
    EXPECT_EQ(bytes(apdu, length), (std::vector<uint8_t>{0x3E, 0x0A, 0x27, 0x10, 0x19, 0x09, 0x29, 0x02, 0x39,
                                                         0x00, 0x49, 0xFE, 0x3F}));

    TQ::Utility::OctetBuffer buffer;
    buffer.append(0xAA);
    EXPECT_EQ(descriptor.encode(buffer), 10);
    EXPECT_EQ(wide.encodeContext(buffer, 3), 13);
    ASSERT_EQ(buffer.size(), 24u);
    EXPECT_EQ(buffer[0], 0xAA);
    EXPECT_EQ(buffer[1], 0x09);
    EXPECT_EQ(buffer[11], 0x3E);
    EXPECT_EQ(buffer[23], 0x3F);

    uint8_t storage[4];
    TQ::Utility::OctetBuffer borrowed = TQ::Utility::OctetBuffer::over(storage, sizeof storage);
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([&] { descriptor.encode(borrowed); }),
              "Cannot resize buffer which does not own its storage.");
    uint8_t roomy[16];
    TQ::Utility::OctetBuffer fits = TQ::Utility::OctetBuffer::over(roomy, sizeof roomy);
    EXPECT_EQ(descriptor.encode(fits), 10);
    EXPECT_EQ(bytes(fits), bytes(roomy, 10));
}

TEST(DataPropertyInObject0, PrimitiveTypesOfTagsFixedTypesAndCatalogueTypes) {
    TQTest::TestCatalogue::get();
    // Tags, the fixed table, and from the markup kind of the type's top row (none means NULL).
    const std::pair<unsigned, BACNET_APPLICATION_TAG> cases[] = {
        {BACNET_DT_ENUMERATED, BACNET_APPLICATION_TAG_ENUMERATED}, {BACNET_DT_RESERVE3, BACNET_APPLICATION_TAG_RESERVE3},
        {BACNET_DT_DATE_1179, BACNET_APPLICATION_TAG_DATE},         {BACNET_DT_TIME_1180, BACNET_APPLICATION_TAG_TIME},
        {BACNET_DT_UNSIGNED_1088, BACNET_APPLICATION_TAG_UNSIGNED_INT}, {BACNET_DT_SIGNED_1178, BACNET_APPLICATION_TAG_SIGNED_INT},
        {2200, BACNET_APPLICATION_TAG_UNSIGNED_INT}, {2300, BACNET_APPLICATION_TAG_NULL},
        {BACNET_DT_OBJECT_TYPE, BACNET_APPLICATION_TAG_ENUMERATED}};
    for (const auto& c : cases)
        EXPECT_EQ(DataPropertyInObject0::getPrimitiveType(static_cast<BACnetDataType>(c.first)), c.second) << c.first;
    EXPECT_EQ(TQTest::messageOf<Poco::DataException>([] { DataPropertyInObject0::getPrimitiveType(BACnetDataType(9999)); }),
              "Unknown datatype id 9999 in database (by key bn_datatype_construct.id_bn_datatype)");
    EXPECT_THROW(DataPropertyInObject0::getPrimitiveType(BACnetDataType(2400)), Poco::BadCastException);
}

TEST(DataPropertyInObject0, LookupsQueryOncePerPairAndCopyTheCatalogueRow) {
    TQTest::TestCatalogue::get();
    DataPropertyInObject0 out;
    ASSERT_TRUE(lookup(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE, out, false));
    EXPECT_EQ(out.datatype, BACNET_DT_REAL);
    EXPECT_EQ(out.tag, BACNET_APPLICATION_TAG_REAL);
    EXPECT_EQ(out.structure, BACNET_DTS_SINGLE_VALUE);
    EXPECT_FALSE(out.emptyAllowed);
    EXPECT_EQ(out.managedInternally, 1);
    DataPropertyInObject0 again;
    ASSERT_TRUE(lookup(OBJECT_ANALOG_INPUT, PROP_PRESENT_VALUE, again, true));
    EXPECT_EQ(again.managedInternally, 1);
    EXPECT_EQ(descriptorQueries(0, 85), 1);

    DataPropertyInObject0 bits;
    ASSERT_TRUE(lookup(OBJECT_ANALOG_INPUT, PROP_STATUS_FLAGS, bits, false));
    EXPECT_EQ(bits.datatype, 5001u);
    EXPECT_TRUE(bits.emptyAllowed);
    EXPECT_EQ(bits.managedInternally, 4);

    // Identifiers beyond 22 bits stay apart from the object type: (0, 0x400055) is not (1, 85).
    DataPropertyInObject0 aoPresentValue;
    ASSERT_TRUE(lookup(OBJECT_ANALOG_OUTPUT, PROP_PRESENT_VALUE, aoPresentValue, false));
    DataPropertyInObject0 wide(BACNET_DT_DATE, BACNET_APPLICATION_TAG_DATE, BACNET_DTS_LIST, false, 9);
    EXPECT_FALSE(lookup(OBJECT_ANALOG_INPUT, 0x400055, wide, false));
    EXPECT_EQ(wide.datatype, BACNET_DT_DATE);

    DataPropertyInObject0 list;
    ASSERT_TRUE(lookup(OBJECT_ANALOG_INPUT, PROP_PROPERTY_LIST, list, false));
    EXPECT_EQ(list.structure, BACNET_DTS_ARRAY);
}

TEST(DataPropertyInObject0, UnknownPairsAreFalseAndOnlyTheFallbackTouchesTheOutput) {
    TQTest::TestCatalogue::get();

    const DataPropertyInObject0 marker(static_cast<BACnetDataType>(77), BACNET_APPLICATION_TAG_DATE,
                                       BACNET_DTS_LIST, false, 9);
    DataPropertyInObject0 out = marker;

    // Out of range: no query at all.
    int before = TQTest::TestCatalogue::get().queries(kDescriptorQuery);
    EXPECT_FALSE(lookup(1024, PROP_PRESENT_VALUE, out, true));
    EXPECT_FALSE(lookup(OBJECT_ANALOG_INPUT, 16777215, out, true));
    EXPECT_EQ(TQTest::TestCatalogue::get().queries(kDescriptorQuery), before);
    EXPECT_TRUE(out == marker);
    EXPECT_EQ(out.managedInternally, 9);

    // Unknown without fallback: untouched, and asked again next time.
    EXPECT_FALSE(lookup(5, PROP_RELINQUISH_DEFAULT, out, false));
    EXPECT_FALSE(lookup(5, PROP_RELINQUISH_DEFAULT, out, false));
    EXPECT_EQ(descriptorQueries(5, 104), 2);
    EXPECT_TRUE(out == marker);

    // With fallback: the Analog Output's descriptor, still reported as not found.
    EXPECT_FALSE(lookup(5, PROP_RELINQUISH_DEFAULT, out, true));
    EXPECT_EQ(out.datatype, BACNET_DT_REAL);
    EXPECT_EQ(out.managedInternally, 2);
    EXPECT_EQ(descriptorQueries(1, 104), 1);

    // Present_Value never falls back.
    out = marker;
    EXPECT_FALSE(lookup(6, PROP_PRESENT_VALUE, out, true));
    EXPECT_TRUE(out == marker);

    // Unknown to the Analog Output as well: marked as of no known type.
    out = marker;
    EXPECT_FALSE(lookup(6, PROP_DESCRIPTION, out, true));
    EXPECT_EQ(out.datatype, BACNET_DT_UNKNOWN);
    EXPECT_EQ(out.tag, BACNET_APPLICATION_TAG_DATE);

    // A catalogue row with data type 0 counts as unknown and is not cached.
    out = marker;
    EXPECT_FALSE(lookup(2, PROP_OBJECT_TYPE, out, false));
    EXPECT_FALSE(lookup(2, PROP_OBJECT_TYPE, out, false));
    EXPECT_EQ(descriptorQueries(2, 79), 2);
    EXPECT_TRUE(out == marker);
}
