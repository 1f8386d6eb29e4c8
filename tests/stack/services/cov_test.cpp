// SubscribeCOV and the COV notifications byte for byte (worked out from the encoding rules),
// both ways, then every cut of a notification and the refusals.
#include <gtest/gtest.h>

#include "TQTestCodec.h"
#include "tq_stack/cov.h"

using namespace TQTest;

namespace {

BACNET_SUBSCRIBE_COV_DATA subscription(bool cancel, bool confirmed, bool withLifetime, uint32_t lifetime) {
    return BACNET_SUBSCRIBE_COV_DATA{18, OBJECT_ANALOG_INPUT, 10, cancel, confirmed, withLifetime, lifetime};
}

const uint8_t kReal65[] = {0x44, 0x42, 0x82, 0x00, 0x00};
const uint8_t kFlagsClear[] = {0x82, 0x04, 0x00};
// Process 18, device 4 notifies analog-input 10: present-value 65.0, status-flags clear.
const char* const kHead = "09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 ";
const std::string kNotification = std::string(kHead) + "4E 09 55 2E 44 42 82 00 00 2F 09 6F 2E 82 04 00 2F 4F";

// Decodes into room for four values; the count stays 0 unless it succeeds.
int decode(const std::string& hexIn, std::size_t cut, BACNET_COV_DATA& d, BACNET_PROPERTY_VALUE_REF* values) {
    d = BACNET_COV_DATA{};
    d.values = values;
    d.capacity = 4;
    const ExactBuffer buf(hex(hexIn), cut);
    return cov_notify_decode_service_request(buf.data(), buf.size(), &d);
}

}  // namespace

TEST(SubscribeCov, RequestsEncodeAndDecodeBothWays) {
    const std::pair<const char*, BACNET_SUBSCRIBE_COV_DATA> cases[] = {
        {"09 12 1C 00 00 00 0A 29 01 39 00", subscription(false, true, true, 0)},
        {"09 12 1C 00 00 00 0A 29 00 3A 01 2C", subscription(false, false, true, 300)},
        {"09 12 1C 00 00 00 0A 29 00", subscription(false, false, false, 0)},
        {"09 12 1C 00 00 00 0A", subscription(true, false, false, 0)},
    };
    for (const auto& c : cases)
        bothWays(c.first, c.second, RECORD_ENCODER(cov_subscribe_encode_service_request),
                 RECORD_DECODER(cov_subscribe_decode_service_request));
    const BACNET_SUBSCRIBE_COV_DATA d = subscription(false, true, true, 0);
    EXPECT_EQ("00 05 0F 05 09 12 1C 00 00 00 0A 29 01 39 00", ENCODED_HEX(cov_subscribe_encode_apdu(p, 15, &d)));

    // Cut, reordered, a lifetime without the confirmation choice, trailing bytes.
    BACNET_SUBSCRIBE_COV_DATA out = subscription(false, true, true, 7);
    for (const char* bad : {"", "09 12", "1C 00 00 00 0A 09 12", "09 12 1C 00 00 00 0A 39 00",
                            "09 12 1C 00 00 00 0A 29 01 39 00 00"})
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(bad, cov_subscribe_decode_service_request(p, n, &out))) << bad;
    EXPECT_EQ(7u, out.lifetime);
    out.monitored_object_instance = BACNET_MAX_INSTANCE + 1;
    EXPECT_EQ(BACNET_STATUS_ERROR, cov_subscribe_encode_apdu(nullptr, 0, &out));
}

TEST(CovNotification, ConfirmedAndUnconfirmedCarryTheSameData) {
    BACNET_PROPERTY_VALUE_REF values[4] = {
        {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, kReal65, sizeof kReal65, BACNET_NO_PRIORITY},
        {PROP_STATUS_FLAGS, BACNET_ARRAY_ALL, kFlagsClear, sizeof kFlagsClear, BACNET_NO_PRIORITY}};
    BACNET_COV_DATA in{18, 4, OBJECT_ANALOG_INPUT, 10, 0, values, 4, 2};
    EXPECT_EQ(kNotification, ENCODED_HEX(cov_notify_encode_service_request(p, &in)));
    EXPECT_EQ("00 05 01 01 " + kNotification, ENCODED_HEX(cov_notify_encode_apdu(p, 1, &in)));
    EXPECT_EQ("10 02 " + kNotification, ENCODED_HEX(ucov_notify_encode_apdu(p, &in)));

    // Decoded and encoded again, an index, a priority and the time remaining come through.
    values[0].array_index = 3;
    values[0].priority = 8;
    in.count = 1;
    in.time_remaining = 300;
    const std::string indexed =
        "09 12 1C 02 00 00 04 2C 00 00 00 0A 3A 01 2C 4E 09 55 19 03 2E 44 42 82 00 00 2F 39 08 4F";
    for (const std::string& example : {kNotification, indexed}) {
        // The values point into the decoded bytes, which must outlive them.
        const ExactBuffer buf(example);
        BACNET_PROPERTY_VALUE_REF got[4];
        BACNET_COV_DATA out{0, 0, OBJECT_DEVICE, 0, 0, got, 4, 0};
        ASSERT_EQ(int(buf.size()), cov_notify_decode_service_request(buf.data(), buf.size(), &out));
        EXPECT_EQ(example, ENCODED_HEX(cov_notify_encode_service_request(p, &out)));
    }
    EXPECT_EQ(indexed, ENCODED_HEX(cov_notify_encode_service_request(p, &in)));
    values[0].value_len = 0;
    EXPECT_EQ(BACNET_STATUS_ERROR, cov_notify_encode_apdu(nullptr, 0, &in));
}

TEST(CovNotification, EveryCutAndEveryBadInputIsRefused) {
    BACNET_PROPERTY_VALUE_REF values[4];
    BACNET_COV_DATA out;
    for (std::size_t cut = 0; cut < hex(kNotification).size(); ++cut) {
        EXPECT_EQ(BACNET_STATUS_ERROR, decode(kNotification, cut, out, values)) << cut;
        EXPECT_EQ(0u, out.count);
    }
    std::string five = "4E";
    for (int i = 0; i < 5; ++i) five += " 09 55 2E 00 2F";
    five += " 4F";
    const std::pair<std::string, int> bad[] = {
        // The initiating identifier names an analog input.
        {"09 12 1C 00 00 00 04 2C 00 00 00 0A 39 00 4E 4F", BACNET_STATUS_ERROR},
        {kHead + std::string("4E 09 55 2E 2F 4F"), BACNET_STATUS_ERROR},  // an empty value
        {kHead + std::string("4E 09 55 2E 91 00 2F 39 11 4F"), BACNET_STATUS_REJECT},  // priority 17
        {kHead + std::string("4E 4F 00"), BACNET_STATUS_ERROR},
        {kHead + five, BACNET_STATUS_REJECT},  // five values for four places
    };
    for (const auto& b : bad) {
        EXPECT_EQ(b.second, decode(b.first, SIZE_MAX, out, values)) << b.first;
        EXPECT_EQ(0u, out.count);
    }
    // An empty list is a notification without values.
    EXPECT_EQ(16, decode(kHead + std::string("4E 4F"), SIZE_MAX, out, values));
}
