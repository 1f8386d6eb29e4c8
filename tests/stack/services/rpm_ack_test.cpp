// ReadPropertyMultiple-ACK decoding into record chains, and their release after success and
// after failures at every point (the sanitizer build's leak checker watches every case).
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "hex.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"
#include "tq_stack/strings.h"

using namespace svc_test;

namespace {

// Three objects: values of several kinds, a constructed value, an empty list, an error.
const char* kAck =
    "0C 00 00 00 01"                           // analog-input 1
    " 1E 29 4D 4E 75 06 00 4F 75 74 65 72 4F"  // object-name "Outer"
    " 29 6F 4E 82 04 00 4F"                    // status-flags
    " 29 57 39 03 4E 00 4F"                    // priority-array[3] NULL
    " 1F"
    " 0C 02 00 00 07"                                      // device 7
    " 1E 29 38 4E 0E A4 7C 05 1E 03 B4 0A 0B 0C 0D 0F 4F"  // a constructed date-time
    " 29 4C 4E 4F"                                         // an empty list
    " 29 1C 5E 91 02 91 20 5F 1F"                          // description: unknown-property
    " 0C 00 80 00 02 1E 29 55 4E 44 00 00 00 00 4F 1F";

using Ref = const BACNET_PROPERTY_REFERENCE*;
using Value = const BACNET_APPLICATION_DATA_VALUE*;

int decodeAndFree(const std::vector<uint8_t>& in) {
    std::unique_ptr<uint8_t[]> exact(new uint8_t[in.size() ? in.size() : 1]);
    std::copy(in.begin(), in.end(), exact.get());
    BACNET_READ_ACCESS_DATA rad;
    const int r = rpm_ack_decode_service_request(exact.get(), uint32_t(in.size()), &rad);
    if (r < 0) {
        // A failed decode leaves nothing linked.
        EXPECT_EQ(nullptr, rad.listOfProperties);
        EXPECT_EQ(nullptr, rad.next);
    }
    rpm_ack_free_all(&rad);
    rpm_ack_free_all(&rad);  // twice is harmless
    return r;
}

}  // namespace

TEST(RpmAck, ChainOfThreeObjectsInOrder) {
    const auto in = bytes(kAck);
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(in.size()), rpm_ack_decode_service_request(in.data(), uint32_t(in.size()), &rad));

    EXPECT_EQ(OBJECT_ANALOG_INPUT, rad.object_type);
    const BACNET_PROPERTY_REFERENCE* p = rad.listOfProperties;
    ASSERT_TRUE(p && p->value && p->next && p->next->next);
    EXPECT_EQ(PROP_OBJECT_NAME, p->propertyIdentifier);
    EXPECT_TRUE(characterstring_ansi_same(&p->value->type.Character_String, "Outer"));
    EXPECT_EQ(BACNET_APPLICATION_TAG_BIT_STRING, p->next->value->tag);
    p = p->next->next;
    EXPECT_EQ(std::make_tuple(PROP_PRIORITY_ARRAY, 3u, uint8_t(BACNET_APPLICATION_TAG_NULL), Ref(nullptr)),
              std::make_tuple(p->propertyIdentifier, p->propertyArrayIndex, uint8_t(p->value->tag), p->next));

    const BACNET_READ_ACCESS_DATA* device = rad.next;
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(std::make_pair(OBJECT_DEVICE, 7u),
              std::make_pair(device->object_type, device->object_instance));
    p = device->listOfProperties;
    ASSERT_TRUE(p && p->next && p->next->next);
    // The constructed value arrives as opening tag, primitives, closing tag.
    std::vector<uint8_t> tags;
    for (auto* v = p->value; v; v = v->next) tags.push_back(v->tag);
    EXPECT_EQ((std::vector<uint8_t>{BACNET_PSEUDO_TAG_OPENING, BACNET_APPLICATION_TAG_DATE,
                                    BACNET_APPLICATION_TAG_TIME, BACNET_PSEUDO_TAG_CLOSING}),
              tags);
    EXPECT_EQ(0, p->value->context_tag);
    EXPECT_EQ(2024, p->value->next->type.Date.year);
    p = p->next;  // an empty list, not an error
    EXPECT_EQ(std::make_tuple(PROP_OBJECT_LIST, Value(nullptr), false),
              std::make_tuple(p->propertyIdentifier, p->value, p->has_error));
    p = p->next;
    EXPECT_EQ(std::make_tuple(true, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY),
              std::make_tuple(p->has_error, p->error_class, p->error_code));

    const BACNET_READ_ACCESS_DATA* last = device->next;
    ASSERT_NE(nullptr, last);
    EXPECT_EQ(OBJECT_ANALOG_VALUE, last->object_type);
    EXPECT_EQ(nullptr, last->next);
    rpm_ack_free_all(&rad);
    EXPECT_EQ(nullptr, rad.next);
    EXPECT_EQ(nullptr, rad.listOfProperties);
}

TEST(RpmAck, OnlyPrefixesEndingAtObjectBoundariesAreComplete) {
    const auto in = bytes(kAck);
    int accepted = 0;
    for (size_t n = 0; n < in.size(); ++n) {
        const std::vector<uint8_t> prefix(in.begin(), in.begin() + long(n));
        const int r = decodeAndFree(prefix);
        EXPECT_TRUE(r < 0 || r == int(n)) << n;
        if (r > 0) ++accepted;
    }
    // Prefixes ending after an object identifier (a result list is optional) or after a whole
    // object are complete acknowledgements: 3 identifiers + 2 whole objects.
    EXPECT_EQ(5, accepted);
    // Corruption at every byte is covered with the other service decoders (ServiceBadInput).
}

TEST(RpmAck, ManyResultsAndNestedValuesScaleWithInput) {
    // 300 NULL results of one object: one node and one value each.
    std::string many = "0C 00 00 00 01 1E";
    for (int i = 0; i < 300; ++i) many += " 29 55 4E 00 4F";
    many += " 1F";
    const auto in = bytes(many);
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(in.size()), rpm_ack_decode_service_request(in.data(), uint32_t(in.size()), &rad));
    int count = 0;
    for (auto* p = rad.listOfProperties; p; p = p->next) ++count;
    EXPECT_EQ(300, count);
    rpm_ack_free_all(&rad);

    // The value budget spans all results: two results of 2100 values each are too many together.
    std::string big = "0C 00 00 00 01 1E";
    for (int r = 0; r < 2; ++r) {
        big += " 29 4C 4E";
        for (int i = 0; i < 2100; ++i) big += " 00";
        big += " 4F";
    }
    big += " 1F";
    EXPECT_EQ(BACNET_STATUS_ERROR, decodeAndFree(bytes(big)));

    // Nesting beyond the limit inside one result is refused and released.
    std::string deep = "0C 00 00 00 01 1E 29 55 4E";
    for (int i = 0; i < 33; ++i) deep += " 0E";
    for (int i = 0; i < 33; ++i) deep += " 0F";
    deep += " 4F 1F";
    EXPECT_EQ(BACNET_STATUS_ERROR, decodeAndFree(bytes(deep)));

    // Objects without a result list are allowed by the grammar.
    const auto bare = bytes("0C 00 00 00 01 0C 00 00 00 02");
    ASSERT_EQ(10, rpm_ack_decode_service_request(bare.data(), 10, &rad));
    EXPECT_EQ(nullptr, rad.listOfProperties);
    ASSERT_NE(nullptr, rad.next);
    EXPECT_EQ(2u, rad.next->object_instance);
    rpm_ack_free_all(&rad);
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_ack_decode_service_request(bare.data(), 0, &rad));
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_ack_decode_service_request(bare.data(), 10, nullptr));
    rpm_ack_free_all(nullptr);
    free_BACNET_READ_ACCESS_DATA_Internals(nullptr);
}
