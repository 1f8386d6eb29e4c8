// The codec pieces of the network path: BVLC, NPDU, segment headers, CreateObject/DeleteObject
// and the server side of ReadPropertyMultiple. Decoders get exact-size heap copies, so a read
// past the end is caught under the address sanitizer.
#include "tq_stack/apdu.h"
#include "tq_stack/bvlc.h"
#include "tq_stack/codec.h"
#include "tq_stack/create_object.h"
#include "tq_stack/npdu.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rpm_server.h"
#include "tq_stack/segment.h"

#include "TQTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using TQTest::Bytes;
using TQTest::hex;

// The first n bytes in a block of exactly that size.
uint8_t* exact(const Bytes& b, size_t n) {
    static std::unique_ptr<TQTest::ExactBuffer> last;
    last.reset(new TQTest::ExactBuffer(b, n));
    return const_cast<uint8_t*>(last->data());
}

TEST(Bvlc, DecodesEachFunctionsShapeAndRejectsTheRest) {
    // frame, fixed part (or -1), function, payload length
    const struct { const char* frame; int result; uint8_t function; uint32_t payload; } cases[] = {
        {"81 0A 00 06 01 00", 4, BVLC_ORIGINAL_UNICAST_NPDU, 2},
        {"81 0B 00 06 01 00", 4, BVLC_ORIGINAL_BROADCAST_NPDU, 2},
        {"81 04 00 0C 7F 00 00 02 BA C0 01 00", 10, BVLC_FORWARDED_NPDU, 2},
        {"81 00 00 06 00 30", 6, BVLC_RESULT, 0},
        {"81 05 00 06 00 3C", 6, BVLC_REGISTER_FOREIGN_DEVICE, 0},
        {"81 02 00 04", 4, BVLC_READ_BROADCAST_DISTRIBUTION_TABLE, 0},
        {"81 03 00 0E 7F 00 00 02 BA C0 FF FF FF FF", 4, BVLC_READ_BROADCAST_DISTRIBUTION_TABLE_ACK, 10},
        {"81 0E 00 05 00", 4, 0x0E, 1},  // unknown functions decode; the caller decides
        // Lengths that disagree with the datagram and a result of the wrong size: HostileTest, end to end.
        {"81 05 00 07 00 3C 00", -1, 0, 0},
        {"81 04 00 09 7F 00 00 02 BA", -1, 0, 0},  // Forwarded-NPDU without its whole source
        {"81 03 00 0D 7F 00 00 02 BA C0 FF FF FF", -1, 0, 0},  // a broken table entry
        {"81 02 00 05 00", -1, 0, 0},
        {"91 0A 00 06 01 00", -1, 0, 0},
        {"81 0A 00", -1, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.frame);
        const Bytes b = hex(c.frame);
        BACNET_BVLC_MESSAGE m{};
        ASSERT_EQ(bvlc_decode(exact(b, b.size()), uint32_t(b.size()), &m), c.result);
        if (c.result < 0) continue;
        EXPECT_EQ(m.function, c.function);
        EXPECT_EQ(m.payload_len, c.payload);
    }
    const Bytes forwarded = hex("81 04 00 0C 7F 00 00 02 BA C0 01 00");
    BACNET_BVLC_MESSAGE m{};
    bvlc_decode(forwarded.data(), uint32_t(forwarded.size()), &m);
    EXPECT_EQ(Bytes(m.source, m.source + 6), hex("7F 00 00 02 BA C0"));
}

TEST(Bvlc, EncodersWriteWhatTheDecoderReads) {
    uint8_t frame[16];
    const uint8_t source[6] = {127, 0, 0, 9, 0xBA, 0xC1};
    EXPECT_EQ(bvlc_encode_result(frame, BVLC_RESULT_DISTRIBUTE_BROADCAST_TO_NETWORK_NAK), 6);
    EXPECT_EQ(Bytes(frame, frame + 6), hex("81 00 00 06 00 60"));
    EXPECT_EQ(bvlc_encode_register_foreign_device(frame, 300), 6);
    EXPECT_EQ(Bytes(frame, frame + 6), hex("81 05 00 06 01 2C"));
    EXPECT_EQ(bvlc_encode_forwarded_npdu_header(frame, source, 2), 10);
    EXPECT_EQ(Bytes(frame, frame + 10), hex("81 04 00 0C 7F 00 00 09 BA C1"));
    EXPECT_EQ(bvlc_encode_npdu_header(frame, BVLC_DISTRIBUTE_BROADCAST_TO_NETWORK, 1472), 4);
    EXPECT_EQ(Bytes(frame, frame + 4), hex("81 09 05 C4"));
    EXPECT_EQ(bvlc_encode_npdu_header(frame, BVLC_FORWARDED_NPDU, 2), BACNET_STATUS_ERROR);
    EXPECT_EQ(bvlc_encode_npdu_header(frame, BVLC_ORIGINAL_UNICAST_NPDU, 65532), BACNET_STATUS_ERROR);
    EXPECT_EQ(bvlc_nak_for_function(BVLC_READ_FOREIGN_DEVICE_TABLE), BVLC_RESULT_READ_FDT_NAK);
    EXPECT_EQ(bvlc_nak_for_function(BVLC_ORIGINAL_UNICAST_NPDU), 0);
}

BACNET_ADDRESS network(uint16_t net, const Bytes& adr) {
    BACNET_ADDRESS a{};
    a.net = net;
    a.len = uint8_t(adr.size());
    if (!adr.empty()) std::memcpy(a.adr, adr.data(), adr.size());
    return a;
}

TEST(Npdu, RoundTripsAndKnownBytes) {
    const struct { const char* name; BACNET_ADDRESS dest, src; BACNET_NPDU_DATA data; const char* bytes; } cases[] = {
        {"local, expecting a reply", {}, {}, {false, 0, 0, true, 0, 0}, "01 04"},
        {"to a device behind a router", network(5, {0x07}), {}, {false, 0, 0, true, 0, 255}, "01 24 00 05 01 07 FF"},
        {"global broadcast", network(0xFFFF, {}), {}, {false, 0, 0, false, 0, 255}, "01 20 FF FF 00 FF"},
        {"from a routed device, life safety", {}, network(5, {0x07}), {false, 0, 0, false, 3, 0}, "01 0B 00 05 01 07"},
        {"both, with a network message", network(9, {1, 2}), network(5, {7}), {true, 0x01, 0, false, 0, 7},
         "01 A8 00 09 02 01 02 00 05 01 07 07 01"},
        {"proprietary network message", {}, {}, {true, 0x80, 947, false, 0, 0}, "01 80 80 03 B3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        uint8_t out[NPDU_MAX_HEADER_LEN];
        const int n = npdu_encode(out, &c.dest, &c.src, &c.data);
        ASSERT_EQ(Bytes(out, out + std::max(n, 0)), hex(c.bytes));
        BACNET_ADDRESS dest{}, src{};
        BACNET_NPDU_DATA data{};
        ASSERT_EQ(npdu_decode(exact(hex(c.bytes), size_t(n)), uint32_t(n), &dest, &src, &data), n);
        EXPECT_EQ(dest.net, c.dest.net);
        EXPECT_EQ(Bytes(dest.adr, dest.adr + dest.len), Bytes(c.dest.adr, c.dest.adr + c.dest.len));
        EXPECT_EQ(Bytes(src.adr, src.adr + src.len), Bytes(c.src.adr, c.src.adr + c.src.len));
        EXPECT_EQ(data.hop_count, c.data.hop_count);
        EXPECT_EQ(data.network_message_type, c.data.network_message_type);
        EXPECT_EQ(data.vendor_id, c.data.vendor_id);
        EXPECT_EQ(data.priority, c.data.priority);
        // Every shorter prefix is a truncated header.
        for (int cut = 0; cut < n; ++cut)
            EXPECT_EQ(npdu_decode(exact(hex(c.bytes), size_t(cut)), uint32_t(cut), nullptr, nullptr, nullptr), BACNET_STATUS_ERROR) << cut;
    }
    const BACNET_ADDRESS broadcastSource = network(0xFFFF, {1}), emptySource = network(5, {});
    const BACNET_NPDU_DATA plain{};
    EXPECT_EQ(npdu_encode(nullptr, nullptr, &broadcastSource, &plain), BACNET_STATUS_ERROR);
    EXPECT_EQ(npdu_encode(nullptr, nullptr, &emptySource, &plain), BACNET_STATUS_ERROR);
    for (const char* bad : {"01 20 00 00 00 FF", "01 08 FF FF 01 07", "01 08 00 00 01 07"}) {
        const Bytes b = hex(bad);
        EXPECT_EQ(npdu_decode(b.data(), uint32_t(b.size()), nullptr, nullptr, nullptr), BACNET_STATUS_ERROR) << bad;
    }
}

TEST(Segments, HeadersAndAcknowledgements) {
    uint8_t out[8];
    const BACNET_COMPLEX_ACK_DATA seg{true, true, 9, 3, 16, SERVICE_CONFIRMED_READ_PROPERTY};
    ASSERT_EQ(apdu_encode_complex_ack(out, &seg), 5);
    EXPECT_EQ(Bytes(out, out + 5), hex("3C 09 03 10 0C"));
    BACNET_COMPLEX_ACK_DATA back{};
    ASSERT_EQ(apdu_decode_complex_ack(out, 5, &back), 5);
    EXPECT_TRUE(back.segmented_message && back.more_follows);
    EXPECT_EQ(back.sequence_number, 3);
    EXPECT_EQ(back.proposed_window_size, 16);
    for (const char* bad : {"3C 09 03 00 0C", "3C 09 03 80 0C", "34 09 0C", "38 09 03 10", "20 09 0C"}) {
        const Bytes b = hex(bad);
        EXPECT_EQ(apdu_decode_complex_ack(exact(b, b.size()), uint32_t(b.size()), &back), BACNET_STATUS_ERROR) << bad;
    }
    EXPECT_EQ(apdu_encode_segment_ack(out, true, true, 1, 2, 3), 4);
    EXPECT_EQ(Bytes(out, out + 4), hex("43 01 02 03"));
    bool nak = false, server = false;
    uint8_t id = 0, sequence = 0, window = 0;
    EXPECT_EQ(apdu_decode_segment_ack(out, 4, &nak, &server, &id, &sequence, &window), 4);
    EXPECT_TRUE(nak && server);
    out[3] = 0;
    EXPECT_EQ(apdu_decode_segment_ack(out, 4, &nak, &server, &id, &sequence, &window), BACNET_STATUS_ERROR);
    EXPECT_EQ(apdu_max_segments_code(64), 6);
    EXPECT_EQ(apdu_max_segments_code(3), 2);
    EXPECT_EQ(apdu_max_segments(7), 65u);
}

TEST(CreateObject, RequestsAcknowledgementsAndErrors) {
    const Bytes name = hex("75 04 00 41 42 43"), value = hex("44 42 20 00 00");
    BACNET_PROPERTY_VALUE_REF values[2] = {{PROP_OBJECT_NAME, BACNET_ARRAY_ALL, name.data(), 6, 0},
                                           {PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, value.data(), 5, 8}};
    BACNET_CREATE_OBJECT_DATA request{true, OBJECT_ANALOG_VALUE, 12, values, 2, 2};
    uint8_t apdu[64];
    const int n = create_object_encode_apdu(apdu, 5, &request);
    ASSERT_EQ(Bytes(apdu, apdu + n), hex("00 05 05 0A 0E 1C 00 80 00 0C 0F 1E 09 4D 2E 75 04 00 41 42 43 2F "
                                              "09 55 2E 44 42 20 00 00 2F 39 08 1F"));
    const Bytes body(apdu + 4, apdu + n);
    BACNET_PROPERTY_VALUE_REF got[2];
    BACNET_CREATE_OBJECT_DATA back{false, OBJECT_DEVICE, 0, got, 2, 0};
    ASSERT_EQ(create_object_decode_service_request(body.data(), uint32_t(body.size()), &back), int(body.size()));
    EXPECT_TRUE(back.by_identifier);
    EXPECT_EQ(back.object_instance, 12u);
    ASSERT_EQ(back.count, 2u);
    EXPECT_EQ(Bytes(got[1].value, got[1].value + got[1].value_len), value);
    EXPECT_EQ(got[1].priority, 8);
    // Every prefix is truncated, except the one that ends with the specifier: a whole request.
    for (size_t cut = 0; cut < body.size(); ++cut)
        EXPECT_EQ(create_object_decode_service_request(exact(body, cut), uint32_t(cut), &back), cut == 7 ? 7 : BACNET_STATUS_ERROR) << cut;
    back.capacity = 1;
    EXPECT_EQ(create_object_decode_service_request(body.data(), uint32_t(body.size()), &back), BACNET_STATUS_REJECT);
    // By type only, no initial values.
    const Bytes byType = hex("0E 09 13 0F");
    back.capacity = 0;
    ASSERT_EQ(create_object_decode_service_request(byType.data(), 4, &back), 4);
    EXPECT_FALSE(back.by_identifier);
    EXPECT_EQ(back.object_type, OBJECT_MULTI_STATE_VALUE);

    EXPECT_EQ(create_object_ack_encode_apdu(apdu, 5, OBJECT_ANALOG_VALUE, 12), 8);
    EXPECT_EQ(Bytes(apdu, apdu + 8), hex("30 05 0A C4 00 80 00 0C"));
    BACNET_OBJECT_TYPE type;
    uint32_t instance = 0;
    EXPECT_EQ(create_object_ack_decode(apdu + 3, 5, &type, &instance), 5);
    EXPECT_EQ(create_object_ack_decode(apdu + 3, 4, &type, &instance), BACNET_STATUS_ERROR);
    EXPECT_EQ(delete_object_encode_apdu(apdu, 6, OBJECT_ANALOG_VALUE, 12), 9);
    EXPECT_EQ(Bytes(apdu, apdu + 9), hex("00 05 06 0B C4 00 80 00 0C"));

    const int e = apdu_encode_error_with_element(apdu, 5, SERVICE_CONFIRMED_CREATE_OBJECT, ERROR_CLASS_PROPERTY,
                                                 ERROR_CODE_INVALID_DATA_TYPE, 2);
    ASSERT_EQ(Bytes(apdu, apdu + e), hex("50 05 0A 0E 91 02 91 09 0F 19 02"));
    uint32_t element = 0;
    BACNET_ERROR_CODE code;
    EXPECT_EQ(apdu_decode_error_with_element(apdu, uint32_t(e), nullptr, nullptr, nullptr, &code, &element), e);
    EXPECT_EQ(element, 2u);
    EXPECT_EQ(apdu_decode_error_with_element(apdu, uint32_t(e - 1), nullptr, nullptr, nullptr, &code, &element),
              BACNET_STATUS_ERROR);
}

bool collect(void* context, const BACNET_RPM_REFERENCE* r) {
    static_cast<std::vector<BACNET_RPM_REFERENCE>*>(context)->push_back(*r);
    return true;
}

TEST(RpmServer, DecodesWhatClientsSendAndAnswersWhatTheyDecode) {
    BACNET_PROPERTY_REFERENCE index{PROP_PRIORITY_ARRAY, 8, nullptr, false, {}, {}, nullptr};
    BACNET_PROPERTY_REFERENCE pv{PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, nullptr, false, {}, {}, &index};
    BACNET_PROPERTY_REFERENCE all{PROP_ALL, BACNET_ARRAY_ALL, nullptr, false, {}, {}, nullptr};
    BACNET_READ_ACCESS_DATA second{OBJECT_DEVICE, 7, &all, nullptr};
    BACNET_READ_ACCESS_DATA first{OBJECT_ANALOG_OUTPUT, 1, &pv, &second};
    uint8_t apdu[64];
    const int n = rpm_encode_apdu(apdu, sizeof apdu, 0, &first);
    const Bytes body(apdu + 4, apdu + n);
    std::vector<BACNET_RPM_REFERENCE> refs;
    ASSERT_EQ(rpm_decode_service_request(body.data(), uint32_t(body.size()), collect, &refs), int(body.size()));
    ASSERT_EQ(refs.size(), 3u);
    EXPECT_TRUE(refs[0].first_of_object && !refs[1].first_of_object && refs[2].first_of_object);
    EXPECT_EQ(refs[1].array_index, 8u);
    EXPECT_EQ(refs[2].property, PROP_ALL);
    // Truncated everywhere but after the first object's property list, a whole request.
    for (size_t cut = 0; cut < body.size(); ++cut)
        EXPECT_EQ(rpm_decode_service_request(exact(body, cut), uint32_t(cut), nullptr, nullptr), cut == 13 ? 13 : BACNET_STATUS_ERROR) << cut;
    const Bytes emptyList = hex("0C 00 40 00 01 1E 1F");
    EXPECT_EQ(rpm_decode_service_request(emptyList.data(), 7, nullptr, nullptr), BACNET_STATUS_ERROR);

    Bytes ack(256);
    int len = rpm_ack_encode_object_begin(ack.data(), OBJECT_ANALOG_OUTPUT, 1);
    const uint8_t real[] = {0x44, 0x42, 0x5E, 0x00, 0x00};
    len += rpm_ack_encode_property_value(ack.data() + len, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, real, 5);
    len += rpm_ack_encode_property_error(ack.data() + len, PROP_PRIORITY_ARRAY, 17, ERROR_CLASS_PROPERTY,
                                         ERROR_CODE_INVALID_ARRAY_INDEX);
    len += rpm_ack_encode_object_end(ack.data() + len);
    EXPECT_EQ(rpm_ack_encode_property_value(nullptr, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, real, 5), 9);
    BACNET_READ_ACCESS_DATA decoded{};
    ASSERT_EQ(rpm_ack_decode_service_request(ack.data(), uint32_t(len), &decoded), len);
    ASSERT_TRUE(decoded.listOfProperties && decoded.listOfProperties->next);
    EXPECT_EQ(decoded.listOfProperties->value->type.Real, 55.5f);
    EXPECT_EQ(decoded.listOfProperties->next->propertyArrayIndex, 17u);
    EXPECT_EQ(decoded.listOfProperties->next->error_code, ERROR_CODE_INVALID_ARRAY_INDEX);
    rpm_ack_free_all(&decoded);
}

}  // namespace
