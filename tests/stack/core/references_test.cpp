#include <gtest/gtest.h>

#include "exact_buffer.h"
#include "tq_stack/references.h"

using Bytes = std::vector<uint8_t>;

TEST(References, DeviceObjectReferenceWithAndWithoutDevice) {
    BACNET_DEVICE_OBJECT_REFERENCE in{{OBJECT_DEVICE, 1234}, {OBJECT_TREND_LOG, 1}};
    const Bytes bytes = encoded([&](uint8_t* p) { return bacapp_encode_device_obj_ref(p, &in); });
    EXPECT_EQ(bytes, (Bytes{0x0C, 0x02, 0x00, 0x04, 0xD2, 0x1C, 0x05, 0x00, 0x00, 0x01}));
    ExactBuffer buf(bytes);
    BACNET_DEVICE_OBJECT_REFERENCE out{};
    ASSERT_EQ(bacapp_decode_device_obj_ref(buf.data(), buf.size(), &out), 10);
    EXPECT_EQ(out.deviceIdentifier.type, OBJECT_DEVICE);
    EXPECT_EQ(out.deviceIdentifier.instance, 1234u);
    EXPECT_EQ(out.objectIdentifier.type, OBJECT_TREND_LOG);
    EXPECT_EQ(out.objectIdentifier.instance, 1u);

    // A device identifier of another type than device is not sent; decoding marks it absent.
    BACNET_DEVICE_OBJECT_REFERENCE noDevice{{0, 0}, {OBJECT_ANALOG_VALUE, 7}};
    ExactBuffer nb(encoded([&](uint8_t* p) { return bacapp_encode_device_obj_ref(p, &noDevice); }));
    EXPECT_EQ(nb.size(), 5u);
    ASSERT_EQ(bacapp_decode_device_obj_ref(nb.data(), nb.size(), &out), 5);
    EXPECT_EQ(out.deviceIdentifier.type, BACNET_NO_DEV_TYPE);
    EXPECT_EQ(out.deviceIdentifier.instance, BACNET_NO_DEV_ID);
    EXPECT_EQ(out.objectIdentifier.instance, 7u);

    ExactBuffer cb(encoded([&](uint8_t* p) { return bacapp_encode_context_device_obj_ref(p, 0, &in); }));
    EXPECT_EQ(cb.size(), 12u);
    ASSERT_EQ(bacapp_decode_context_device_obj_ref(cb.data(), cb.size(), 0, &out), 12);
    EXPECT_EQ(out.deviceIdentifier.instance, 1234u);
    // The object identifier is required.
    ExactBuffer onlyDevice{0x0C, 0x02, 0x00, 0x04, 0xD2};
    EXPECT_EQ(bacapp_decode_device_obj_ref(onlyDevice.data(), onlyDevice.size(), &out), BACNET_STATUS_ERROR);
}

TEST(References, DeviceObjectPropertyReferenceOptionalMembers) {
    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE in{
        {OBJECT_ANALOG_INPUT, 3}, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, {OBJECT_DEVICE, 1234}};
    Bytes bytes = encoded([&](uint8_t* p) { return bacapp_encode_device_obj_property_ref(p, &in); });
    EXPECT_EQ(bytes, (Bytes{0x0C, 0x00, 0x00, 0x00, 0x03, 0x19, 0x55, 0x3C, 0x02, 0x00, 0x04, 0xD2}));
    ExactBuffer buf(bytes);
    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE out{};
    ASSERT_EQ(bacapp_decode_device_obj_property_ref(buf.data(), buf.size(), &out), 12);
    EXPECT_EQ(out.propertyIdentifier, PROP_PRESENT_VALUE);
    EXPECT_EQ(out.arrayIndex, BACNET_ARRAY_ALL);
    EXPECT_EQ(out.deviceIdentifier.instance, 1234u);

    in.arrayIndex = 0;
    in.propertyIdentifier = PROP_PRIORITY_ARRAY;
    in.deviceIdentifier = {BACNET_NO_DEV_TYPE, BACNET_NO_DEV_ID};
    bytes = encoded([&](uint8_t* p) { return bacapp_encode_device_obj_property_ref(p, &in); });
    EXPECT_EQ(bytes, (Bytes{0x0C, 0x00, 0x00, 0x00, 0x03, 0x19, 0x57, 0x29, 0x00}));
    ExactBuffer b2(bytes);
    ASSERT_EQ(bacapp_decode_device_obj_property_ref(b2.data(), b2.size(), &out), 9);
    EXPECT_EQ(out.arrayIndex, 0u);
    EXPECT_EQ(out.deviceIdentifier.type, BACNET_NO_DEV_TYPE);

    // Large property numbers survive, and the enclosed form consumes its closing tag.
    in.propertyIdentifier = BACNET_PROPERTY_ID(4194327);
    ExactBuffer cb(
        encoded([&](uint8_t* p) { return bacapp_encode_context_device_obj_property_ref(p, 1, &in); }));
    ASSERT_EQ(bacapp_decode_context_device_obj_property_ref(cb.data(), cb.size(), 1, &out), int(cb.size()));
    EXPECT_EQ(out.propertyIdentifier, 4194327u);

    // A failed decode leaves the previous value in place.
    const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE before = out;
    ExactBuffer noProperty{0x0C, 0x00, 0x00, 0x00, 0x03, 0x29, 0x00};
    EXPECT_EQ(bacapp_decode_device_obj_property_ref(noProperty.data(), noProperty.size(), &out),
              BACNET_STATUS_ERROR);
    EXPECT_EQ(out.propertyIdentifier, before.propertyIdentifier);
    EXPECT_EQ(out.arrayIndex, before.arrayIndex);
    // A malformed optional member is an error, not an absent one.
    ExactBuffer badIndex{0x0C, 0x00, 0x00, 0x00, 0x03, 0x19, 0x55, 0x2D};
    EXPECT_EQ(bacapp_decode_device_obj_property_ref(badIndex.data(), badIndex.size(), &out),
              BACNET_STATUS_ERROR);
}
