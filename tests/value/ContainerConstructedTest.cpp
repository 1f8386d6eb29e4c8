// The value container's constructed half: values built from decoded primitives and broken down
// again, printed, rendered and merged.
#include "TQTestCatalogue.h"
#include "TQTestRecordingFactory.h"
#include "TQTestSupport.h"

#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using TQTest::stdoutOf;
using Values = std::vector<DataApplicationValue>;
using Descriptor = ValueContainer::DataPropertyInObject;

Descriptor constructed(unsigned datatype, BACnetDataTypeStructure structure) {
    return Descriptor(static_cast<BACnetDataType>(datatype), BACNET_APPLICATION_TAG_NULL, structure, false,
                      4);
}

// What a decoded chain of primitives becomes under a constructed descriptor.
void build(ValueContainer& c, const Values& chain, unsigned datatype, BACnetDataTypeStructure structure) {
    const Descriptor descriptor = constructed(datatype, structure);
    c.setApplicationValue(chain.front(), &descriptor);
}

// The primitives of `objects` one after another, linked into a chain.
template <class T>
Values chainOf(const std::vector<T>& objects) {
    Values values;
    for (const T& object : objects) object.getBACnetPrimitives(values);
    ValueContainer().setApplicationValueLinks(values);
    return values;
}

BACnetLogRecord record(int second, float value) {
    BACnetLogRecord r;
    r.setTimestamp(Poco::Timestamp(Poco::Timestamp::TimeVal(1700000000 + second) * 1000000));
    r.setReal(value);
    return r;
}

// A log record as the guided decoder yields it: date, time, then [2] the real.
Values recordPrimitives(const std::vector<BACnetLogRecord>& records) {
    Values values;
    for (const BACnetLogRecord& r : records) {
        BACnetDateTime stamp(BACnetDateTime::fromTimestamp(r.getTimestamp()));
        stamp.getBACnetPrimitives(values);
        values.emplace_back();
        values.back().setReal(r.getReal(false));
        values.back().context_specific = true;
        values.back().context_tag = 2;
    }
    ValueContainer().setApplicationValueLinks(values);
    return values;
}

template <class T>
std::vector<T> held(const ValueContainer& c) {
    std::vector<T> out;
    return c.getValues(out);
}

ValueContainer logOf(int first, int count) {
    std::vector<BACnetLogRecord> records;
    for (int i = 0; i < count; ++i) records.push_back(record(first + i, static_cast<float>(first + i)));
    ValueContainer c;
    build(c, recordPrimitives(records), 1054, BACNET_DTS_LIST);
    return c;
}

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);

TEST(ContainerConstructed, BuildsObjectsFromChainsWithTheStructureTheirCountGives) {
    // Two records, and one record although the descriptor says list.
    ValueContainer c;
    build(c, recordPrimitives({record(1, 1.5f), record(2, 2.5f)}), 1054, BACNET_DTS_LIST);
    ASSERT_EQ(BACNET_DTS_LIST, c.getStructure());
    EXPECT_EQ(2.5f, held<BACnetLogRecord>(c).at(1).getReal(false));
    build(c, recordPrimitives({record(1, 1.5f)}), 1054, BACNET_DTS_LIST);
    EXPECT_EQ(BACNET_DTS_SINGLE_VALUE, c.getStructure());
}

TEST(ContainerConstructed, KeepsThePrimitivesOfWhatNoClassReads) {
    // No class for 1029; the recipient refuses primitives; an Error takes none of them, and a
    // reference cannot start with an Unsigned: each falls back without hanging or throwing.
    const Values dor = chainOf<BACnetObjectPropertyReference>({{AI3, PROP_PRESENT_VALUE, 2}});
    Values unsignedFirst{TQTest::uintValue(1), TQTest::uintValue(2)};
    ValueContainer().setApplicationValueLinks(unsignedFirst);
    const struct {
        unsigned datatype;
        const Values& chain;
    } cases[] = {{1029, dor}, {1070, dor}, {1136, dor}, {1060, unsignedFirst}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.datatype);
        ValueContainer c;
        const std::string said = stdoutOf([&] { build(c, k.chain, k.datatype, BACNET_DTS_ARRAY); });
        EXPECT_NE(std::string::npos, said.find("UNSUPPORTED COMPLEX TYPE!"));
        EXPECT_TRUE(c.isPrimitive() && held<DataApplicationValue>(c).size() == k.chain.size());
    }
}

TEST(ContainerConstructed, BreaksDownIntoPrimitivesThatBuildTheSameValue) {
    BACnetAddress remote;
    remote.setNetwork(5);
    const uint8_t router[] = {3};
    remote.setAddr(router, 1);
    std::vector<ValueContainer> originals(3);
    build(
        originals[0],
        chainOf<BACnetDeviceObjectPropertyReference>({{AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234},
                                                      {AI3, PROP_PRIORITY_ARRAY, 3, ObjectIdentifier()}}),
        1028, BACNET_DTS_LIST);
    build(originals[1], chainOf<BACnetDateTime>({BACnetDateTime()}), 1026, BACNET_DTS_SINGLE_VALUE);
    build(originals[2], chainOf<BACnetAddress>({remote}), 1105, BACNET_DTS_SINGLE_VALUE);
    for (const ValueContainer& original : originals) {
        SCOPED_TRACE(original.getDataType());
        Values primitives = held<DataApplicationValue>(original);
        original.setApplicationValueLinks(primitives);
        ValueContainer rebuilt;
        rebuilt.setApplicationValue(primitives.front(), &original.getDescriptor());
        TQ::Utility::OctetBuffer a, b;
        ASSERT_GT(original.encode2(a), 0);
        ASSERT_EQ(original.encode2(a), rebuilt.encode2(b));
        EXPECT_EQ(a.getHexString(false), b.getHexString(false));
    }
}

TEST(ContainerConstructed, PrintsObjectsOrTheirTaggedPrimitives) {
    ValueContainer c;
    build(c, chainOf<BACnetObjectPropertyReference>({{AI3, PROP_PRESENT_VALUE, 2}}), 1060,
          BACNET_DTS_SINGLE_VALUE);
    std::string out;
    EXPECT_EQ("[0] 0,3 | [1] 85 | [2] 2", c.getString(out, " | ", true));
    EXPECT_EQ("0C0000000319552902", c.getString(out, " | ", false));
    build(c, recordPrimitives({record(1, 1.5f), record(2, 2.5f)}), 1054, BACNET_DTS_LIST);
    std::string one, two;
    held<BACnetLogRecord>(c)[0].getString(one);
    held<BACnetLogRecord>(c)[1].getString(two);
    EXPECT_EQ(one + ", " + two, c.getString(out, "-", false));
    c.init();
    EXPECT_EQ("NULL", c.getString(out, "-", true));
}

TEST(ContainerConstructed, MergesLogStepsAtAPosition) {
    const struct {
        unsigned position;
        bool merged;
        size_t count;
        float atPosition;
    } cases[] = {{5, true, 8, 100}, {4, true, 7, 100}, {0, true, 5, 100}, {6, false, 5, 0}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.position);
        ValueContainer log = logOf(0, 5);
        const ValueContainer step = logOf(100, 3);
        std::string reason;
        ASSERT_EQ(k.merged, log.merge(step, k.position, reason)) << reason;
        const auto records = held<BACnetLogRecord>(log);
        ASSERT_EQ(k.count, records.size());
        if (k.merged) {
            EXPECT_EQ(k.atPosition, records[k.position].getReal(false));
            EXPECT_EQ(BACNET_DTS_ARRAY, log.getStructure());
        } else {
            EXPECT_NE(std::string::npos, reason.find("past"));
        }
    }
}

TEST(ContainerConstructed, MergeRefusesOtherTypesAndLeavesBothAlone) {
    ValueContainer log = logOf(0, 2);
    ValueContainer reals;
    ASSERT_TRUE(reals.setText(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "1|2", false));
    ValueContainer single;
    single.setReal(3);
    std::string reason, text;
    EXPECT_FALSE(log.merge(reals, 0, reason));
    EXPECT_NE(std::string::npos, reason.find("does not merge"));
    EXPECT_FALSE(reals.merge(log, 0, reason));
    EXPECT_TRUE(held<BACnetLogRecord>(log).size() == 2 && reals.getText(text, false) == "1|2");
    // Primitives merge alike: a single value is a vector of one.
    EXPECT_TRUE(reals.merge(single, 2, reason)) << reason;
    EXPECT_EQ("1|2|3", reals.getText(text, false));
    EXPECT_TRUE(single.merge(reals, 1, reason)) << reason;
    EXPECT_TRUE(single.getText(text, false) == "3|1|2|3" && single.getStructure() == BACNET_DTS_ARRAY);
}

TEST(ContainerConstructed, RendersOneObjectBareAndSeveralAsAList) {
    std::ostringstream out;
    TQTest::RecordingFactory f(out);
    ValueContainer c;
    build(c, chainOf<BACnetDateTime>({BACnetDateTime()}), 1026, BACNET_DTS_SINGLE_VALUE);
    c.markup(f, "v", false, BACNET_DT_NULL);
    ValueContainer pair;
    const BACnetDateTime a(BACnet_Date{2024, 3, 7, 4}, BACnet_Time{12, 0, 0, 0});
    build(pair, chainOf<BACnetDateTime>({a, a}), 1026, BACNET_DTS_LIST);
    pair.markup(f, "w", false, BACNET_DT_NULL);
    ValueContainer none;
    none.markup(f, "n", false, BACNET_DT_NULL);
    ASSERT_EQ(5u, f.opened.size());
    using M = TQ::BACnet::WS::MarkupFactory;
    EXPECT_EQ(
        std::make_tuple(M::BT_DATE_TIME, std::string("v"), M::BT_LIST, std::string("2"), M::BT_NULL, 0u),
        std::make_tuple(f.opened[0].baseType, f.opened[0].name, f.opened[1].baseType, f.opened[3].name,
                        f.opened[4].baseType, unsigned(f.getOpenMarkupCount())));
    ValueContainer reals;
    reals.setText(BACNET_DT_REAL, BACNET_APPLICATION_TAG_REAL, "1|2", false);
    EXPECT_THROW(reals.markup(f, "r", false, BACNET_DT_REAL), Poco::BadCastException);
}

TEST(ContainerLooseEnds, CatalogueFailureInDecodeIsAnError) {
    TQTest::Catalogue::open();
    auto* session = TQ::Utility::Data::pDB;
    TQ::Utility::Data::pDB = nullptr;
    ValueContainer c;
    c.setReal(1);
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_PROPERTY;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef error(errorClass, errorCode);
    const TQTest::Bytes real = TQTest::hex("44 41AC0000");
    int result = 0;
    EXPECT_NO_THROW(result = c.decode(real.data(), 5, 0, static_cast<BACNET_OBJECT_TYPE>(57),
                                      static_cast<BACNET_PROPERTY_ID>(4000), -1, error));
    TQ::Utility::Data::pDB = session;
    EXPECT_EQ(std::make_tuple(-1, ERROR_CLASS_DEVICE, ERROR_CODE_OPERATIONAL_PROBLEM, 1.0f),
              std::make_tuple(result, errorClass, errorCode, c.getReal(false)));
}

}  // namespace
