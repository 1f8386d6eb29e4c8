// SubscribeCOV and the COV notifications byte for byte (worked out from the encoding rules),
// both ways, then every cut of each and the refusals.
#include <gtest/gtest.h>

#include "TQTestCodec.h"
#include "tq_stack/cov.h"

using namespace TQTest;

namespace {

BACNET_SUBSCRIBE_COV_DATA subscription(bool cancel, bool confirmed, bool withLifetime, uint32_t lifetime) {
    BACNET_SUBSCRIBE_COV_DATA d{};
    d.subscriber_process_identifier = 18;
    d.monitored_object_type = OBJECT_ANALOG_INPUT;
    d.monitored_object_instance = 10;
    d.cancellation_request = cancel;
    d.issue_confirmed_notifications = confirmed;
    d.lifetime_present = withLifetime;
    d.lifetime = lifetime;
    return d;
}

const uint8_t kReal65[] = {0x44, 0x42, 0x82, 0x00, 0x00};
const uint8_t kFlagsClear[] = {0x82, 0x04, 0x00};
// Process 18, device 4 notifies analog-input 10: present-value 65.0, status-flags clear.
const char* const kNotification = "09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 "
                                  "4E 09 55 2E 44 42 82 00 00 2F 09 6F 2E 82 04 00 2F 4F";

struct Notification {
    BACNET_PROPERTY_VALUE_REF values[4];
    BACNET_COV_DATA data{};
    Notification() {
        data.values = values;
        data.capacity = 4;
    }
};

int decodeNotification(const Bytes& bytes, std::size_t length, Notification& n) {
    const ExactBuffer buf(bytes, length);
    return cov_notify_decode_service_request(buf.data(), buf.size(), &n.data);
}

}  // namespace

TEST(SubscribeCov, RequestsEncodeAndDecodeBothWays) {
    const struct {
        const char* bytes;
        BACNET_SUBSCRIBE_COV_DATA data;
    } cases[] = {
        {"09 12 1C 00 00 00 0A 29 01 39 00", subscription(false, true, true, 0)},
        {"09 12 1C 00 00 00 0A 29 00 3A 01 2C", subscription(false, false, true, 300)},
        {"09 12 1C 00 00 00 0A 29 00", subscription(false, false, false, 0)},
        {"09 12 1C 00 00 00 0A", subscription(true, false, false, 0)},
    };
    for (const auto& c : cases)
        bothWays(c.bytes, c.data, RECORD_ENCODER(cov_subscribe_encode_service_request),
                 RECORD_DECODER(cov_subscribe_decode_service_request));
    const BACNET_SUBSCRIBE_COV_DATA d = subscription(false, true, true, 0);
    EXPECT_EQ("00 05 0F 05 09 12 1C 00 00 00 0A 29 01 39 00", ENCODED_HEX(cov_subscribe_encode_apdu(p, 15, &d)));
}

TEST(SubscribeCov, BadRequestsAreRefused) {
    BACNET_SUBSCRIBE_COV_DATA out = subscription(false, true, true, 7);
    for (const char* bad : {"", "09 12", "1C 00 00 00 0A 09 12", "09 12 1C 00 00 00 0A 39 00",
                            "09 12 1C 00 00 00 0A 29 01 39 00 00", "09 12 1C 00 00 00 0A 39 00 29 01"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(bad, cov_subscribe_decode_service_request(p, n, &out)));
    }
    EXPECT_EQ(7u, out.lifetime);
    BACNET_SUBSCRIBE_COV_DATA wrong = subscription(false, true, true, 0);
    wrong.monitored_object_instance = BACNET_MAX_INSTANCE + 1;
    EXPECT_EQ(BACNET_STATUS_ERROR, cov_subscribe_encode_apdu(nullptr, 0, &wrong));
    EXPECT_EQ(BACNET_STATUS_ERROR, cov_subscribe_encode_apdu(nullptr, 0, nullptr));
}

TEST(CovNotification, ConfirmedAndUnconfirmedCarryTheSameData) {
    Notification in;
    in.values[0] = {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, kReal65, sizeof kReal65, BACNET_NO_PRIORITY};
    in.values[1] = {PROP_STATUS_FLAGS, BACNET_ARRAY_ALL, kFlagsClear, sizeof kFlagsClear, BACNET_NO_PRIORITY};
    in.data = {18, 4, OBJECT_ANALOG_INPUT, 10, 0, in.values, 4, 2};
    EXPECT_EQ(kNotification, ENCODED_HEX(cov_notify_encode_service_request(p, &in.data)));
    EXPECT_EQ(std::string("00 05 01 01 ") + kNotification, ENCODED_HEX(cov_notify_encode_apdu(p, 1, &in.data)));
    EXPECT_EQ(std::string("10 02 ") + kNotification, ENCODED_HEX(ucov_notify_encode_apdu(p, &in.data)));

    Notification out;
    const Bytes whole = hex(kNotification);
    ASSERT_EQ(int(whole.size()), decodeNotification(whole, whole.size(), out));
    EXPECT_EQ(18u, out.data.subscriber_process_identifier);
    EXPECT_EQ(4u, out.data.initiating_device_instance);
    EXPECT_EQ(OBJECT_ANALOG_INPUT, out.data.monitored_object_type);
    EXPECT_EQ(10u, out.data.monitored_object_instance);
    ASSERT_EQ(2u, out.data.count);
    EXPECT_EQ(PROP_STATUS_FLAGS, out.values[1].property);
    EXPECT_EQ(hexText(Bytes(kReal65, kReal65 + 5)),
              hexText(Bytes(out.values[0].value, out.values[0].value + out.values[0].value_len)));

    // An index and a priority survive the round trip.
    in.values[0].array_index = 3;
    in.values[0].priority = 8;
    in.data.count = 1;
    in.data.time_remaining = 300;
    EXPECT_EQ("09 12 1C 02 00 00 04 2C 00 00 00 0A 3A 01 2C 4E 09 55 19 03 2E 44 42 82 00 00 2F 39 08 4F",
              ENCODED_HEX(cov_notify_encode_service_request(p, &in.data)));
}

TEST(CovNotification, EveryCutAndEveryBadInputIsRefused) {
    const Bytes whole = hex(kNotification);
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        Notification out;
        EXPECT_EQ(BACNET_STATUS_ERROR, decodeNotification(whole, cut, out));
        EXPECT_EQ(0u, out.data.count);
    }
    const struct {
        const char* bytes;
        int result;
    } bad[] = {
        // The initiating identifier names an analog input.
        {"09 12 1C 00 00 00 04 2C 00 00 00 0A 39 00 4E 4F", BACNET_STATUS_ERROR},
        // An empty value, a priority of 17, bytes after the list.
        {"09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 4E 09 55 2E 2F 4F", BACNET_STATUS_ERROR},
        {"09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 4E 09 55 2E 91 00 2F 39 11 4F", BACNET_STATUS_REJECT},
        {"09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 4E 4F 00", BACNET_STATUS_ERROR},
        // Five values for four places.
        {"09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 4E 09 55 2E 00 2F 09 55 2E 00 2F 09 55 2E 00 2F "
         "09 55 2E 00 2F 09 55 2E 00 2F 4F",
         BACNET_STATUS_REJECT},
    };
    for (const auto& b : bad) {
        SCOPED_TRACE(b.bytes);
        Notification out;
        const Bytes bytes = hex(b.bytes);
        EXPECT_EQ(b.result, decodeNotification(bytes, bytes.size(), out));
        EXPECT_EQ(0u, out.data.count);
    }
    // An empty list is a notification without values.
    Notification none;
    const Bytes empty = hex("09 12 1C 02 00 00 04 2C 00 00 00 0A 39 00 4E 4F");
    EXPECT_EQ(int(empty.size()), decodeNotification(empty, empty.size(), none));

    Notification in;
    in.values[0] = {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, kReal65, 0, BACNET_NO_PRIORITY};
    in.data = {1, 4, OBJECT_ANALOG_INPUT, 10, 0, in.values, 4, 1};
    EXPECT_EQ(BACNET_STATUS_ERROR, cov_notify_encode_apdu(nullptr, 0, &in.data));
    in.data.count = 0;
    in.data.initiating_device_instance = BACNET_MAX_INSTANCE + 1;
    EXPECT_EQ(BACNET_STATUS_ERROR, ucov_notify_encode_apdu(nullptr, &in.data));
}
