// Guided decoding of constructed values: the guide below plays the catalogue with a small table
// of members and manages its records the way the library's lookup does (a new child replaces
// the parent's previous one).
#include <gtest/gtest.h>

#include <iterator>
#include <tuple>
#include <vector>

#include "hex.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/strings.h"

using namespace svc_test;

namespace {

struct Member {
    int parentType;
    int contextTag;
    int datatype;
    unsigned markup;
};

// A log record: [0] date-time (sequence), [1] datum (choice: [1] boolean, [2] REAL, [10]
// unsigned as a catalogued unsigned type), [2] status flags (a bit-string type), [3] a member the
// catalogue knows without a type.
const Member kMembers[] = {
    {1054, 0, 1026, BACNET_MARKUP_SEQUENCE},
    {1054, 1, 1055, BACNET_MARKUP_CHOICE},
    {1054, 2, 1100, 8},
    {1054, 3, BACNET_DATATYPE_NONE, BACNET_MARKUP_NONE},
    {1055, 1, 1, BACNET_MARKUP_NONE},
    {1055, 2, 4, 4},
    {1055, 10, 2100, BACNET_APPLICATION_TAG_UNSIGNED_INT},
};

struct LookupLog {
    std::vector<int> parentTypes;
    std::vector<int> tags;
} g_log;

void freeTree(BACnet_Datatype_By_Context_Tag* r) {
    if (!r) return;
    freeTree(r->child);
    freeTree(r->second);
    delete r;
}

BACnet_Datatype_By_Context_Tag* lookup(BACnet_Datatype_By_Context_Tag* parent, int contextTag) {
    g_log.parentTypes.push_back(parent->datatype);
    g_log.tags.push_back(contextTag);
    for (const auto& m : kMembers) {
        if (m.parentType != parent->datatype || m.contextTag != contextTag) continue;
        parent->context_tag = uint8_t(contextTag);
        auto* rec = new BACnet_Datatype_By_Context_Tag;
        init_bacnet_datatype_by_context_tag(rec);
        rec->datatype = m.datatype;
        rec->markup = m.markup;
        rec->parent = parent;
        freeTree(parent->child);
        parent->child = rec;
        return rec;
    }
    return nullptr;
}

struct Decoded {
    BACNET_APPLICATION_DATA_VALUE* head = nullptr;
    ~Decoded() { bacapp_value_list_free(head); }
    std::vector<const BACNET_APPLICATION_DATA_VALUE*> list() const {
        std::vector<const BACNET_APPLICATION_DATA_VALUE*> out;
        for (auto* v = head; v; v = v->next) out.push_back(v);
        return out;
    }
};

void expectTag(const BACNET_APPLICATION_DATA_VALUE* v, uint8_t tag, bool context, uint8_t contextTag) {
    EXPECT_EQ(tag, v->tag);
    EXPECT_EQ(context, v->context_specific);
    if (context) {
        EXPECT_EQ(contextTag, v->context_tag);
    }
}

}  // namespace

TEST(ContextDecode, RecordInitialisation) {
    BACnet_Datatype_By_Context_Tag r;
    r.parent = &r;
    init_bacnet_datatype_by_context_tag(&r);
    using Rec = BACnet_Datatype_By_Context_Tag*;
    EXPECT_EQ(std::make_tuple(int(BACNET_DATATYPE_NONE), unsigned(BACNET_MARKUP_NONE),
                              int(BACNET_CONTEXT_TAG_NONE), Rec(nullptr), Rec(nullptr), Rec(nullptr)),
              std::make_tuple(int(r.datatype), unsigned(r.markup), int(r.context_tag), r.parent, r.child,
                              r.second));
    init_bacnet_datatype_by_context_tag(&r, 1054);
    EXPECT_EQ(1054, r.datatype);
    init_bacnet_datatype_by_context_tag(nullptr);  // harmless
}

TEST(ContextDecode, GuidedLogRecordWithNestingAndRawMembers) {
    // timestamp, datum [1] { real [2] 18.0 }, status flags, then [3] and [7] the guide cannot type.
    const auto in = bytes("0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00 39 07 7A 01 02");
    BACnet_Datatype_By_Context_Tag root;
    init_bacnet_datatype_by_context_tag(&root, 1054);
    g_log = {};
    Decoded d;
    ASSERT_EQ(int(in.size()),
              bacapp_decode_by_context(in.data(), uint32_t(in.size()), &root, lookup, &d.head));
    const auto v = d.list();
    // Inside [1] the choice's own members answer: [2] is its REAL. Back at the top [2] is the
    // status flags again, by the bit-string markup. [3] has no catalogued type and [7] is
    // unknown: both are kept as their content bytes.
    const std::tuple<uint8_t, bool, uint8_t> expected[] = {
        {BACNET_PSEUDO_TAG_OPENING, true, 0},           {BACNET_APPLICATION_TAG_DATE, false, 0},
        {BACNET_APPLICATION_TAG_TIME, false, 0},        {BACNET_PSEUDO_TAG_CLOSING, true, 0},
        {BACNET_PSEUDO_TAG_OPENING, true, 1},           {BACNET_APPLICATION_TAG_REAL, true, 2},
        {BACNET_PSEUDO_TAG_CLOSING, true, 1},           {BACNET_APPLICATION_TAG_BIT_STRING, true, 2},
        {BACNET_APPLICATION_TAG_OCTET_STRING, true, 3}, {BACNET_APPLICATION_TAG_OCTET_STRING, true, 7}};
    ASSERT_EQ(std::size(expected), v.size());
    for (size_t i = 0; i < v.size(); ++i) {
        SCOPED_TRACE(i);
        expectTag(v[i], std::get<0>(expected[i]), std::get<1>(expected[i]), std::get<2>(expected[i]));
    }
    EXPECT_EQ(1998, v[1]->type.Date.year);
    EXPECT_FLOAT_EQ(18.0f, v[5]->type.Real);
    EXPECT_EQ(4, v[7]->type.Bit_String.bits_used);
    ASSERT_EQ(1u, v[8]->type.Octet_String.length);
    EXPECT_EQ(0x07, v[8]->type.Octet_String.value[0]);
    ASSERT_EQ(2u, v[9]->type.Octet_String.length);
    EXPECT_EQ(0x02, v[9]->type.Octet_String.value[1]);
    EXPECT_EQ(nullptr, v[9]->next);
    // Lookups went to the right parents: root for 0, 1, 2, 3, 7; the choice for its [2].
    const std::vector<int> tags{0, 1, 2, 2, 3, 7};
    const std::vector<int> parents{1054, 1054, 1055, 1054, 1054, 1054};
    EXPECT_EQ(tags, g_log.tags);
    EXPECT_EQ(parents, g_log.parentTypes);
    freeTree(root.child);
}

TEST(ContextDecode, WrongGuideAndNoGuideKeepBytes) {
    // The choice says [2] is a REAL, but two octets arrive; [10] is an unsigned type by markup.
    const auto in = bytes("1E 2A 01 02 1F 1E A9 2A 1F");
    BACnet_Datatype_By_Context_Tag root;
    init_bacnet_datatype_by_context_tag(&root, 1054);
    {
        Decoded d;
        ASSERT_EQ(int(in.size()),
                  bacapp_decode_by_context(in.data(), uint32_t(in.size()), &root, lookup, &d.head));
        const auto v = d.list();
        ASSERT_EQ(6u, v.size());
        expectTag(v[1], BACNET_APPLICATION_TAG_OCTET_STRING, true, 2);
        EXPECT_EQ(2u, v[1]->type.Octet_String.length);
        expectTag(v[4], BACNET_APPLICATION_TAG_UNSIGNED_INT, true, 10);
        EXPECT_EQ(42u, v[4]->type.Unsigned_Int);
    }
    freeTree(root.child);
    root.child = nullptr;
    // Without a guide every context primitive is raw; application values still decode.
    const auto mixed = bytes("0E 91 05 2C 41 90 00 00 0F");
    Decoded d;
    ASSERT_EQ(int(mixed.size()),
              bacapp_decode_by_context(mixed.data(), uint32_t(mixed.size()), nullptr, nullptr, &d.head));
    const auto v = d.list();
    ASSERT_EQ(4u, v.size());
    expectTag(v[1], BACNET_APPLICATION_TAG_ENUMERATED, false, 0);
    EXPECT_EQ(5u, v[1]->type.Enumerated);
    expectTag(v[2], BACNET_APPLICATION_TAG_OCTET_STRING, true, 2);
    EXPECT_EQ(4u, v[2]->type.Octet_String.length);
}

TEST(ContextDecode, FailuresReleaseEverything) {
    const char* bad[] = {
        "0E 91 05",        // opening tag never closed
        "0E 91 05 1F",     // closed with another number
        "1F",              // closing without opening
        "91 05 2D 05 01",  // context content shorter than declared
        "91",              // application tag without content
        "D1 00",           // reserved application tag 13
    };
    for (const char* h : bad) {
        const auto in = bytes(h);
        BACNET_APPLICATION_DATA_VALUE* head = reinterpret_cast<BACNET_APPLICATION_DATA_VALUE*>(1);
        EXPECT_EQ(BACNET_STATUS_ERROR,
                  bacapp_decode_by_context(in.data(), uint32_t(in.size()), nullptr, nullptr, &head))
            << h;
        EXPECT_EQ(nullptr, head) << h;
    }
    // The value budget: one APDU's worth decodes, a larger run of values is refused.
    std::vector<uint8_t> nulls(BACNET_MAX_DECODED_VALUES, 0x00);
    BACNET_APPLICATION_DATA_VALUE* head = nullptr;
    EXPECT_EQ(int(nulls.size()),
              bacapp_decode_by_context(nulls.data(), uint32_t(nulls.size()), nullptr, nullptr, &head));
    bacapp_value_list_free(head);
    nulls.push_back(0x00);
    EXPECT_EQ(BACNET_STATUS_ERROR,
              bacapp_decode_by_context(nulls.data(), uint32_t(nulls.size()), nullptr, nullptr, &head));
    EXPECT_EQ(nullptr, head);
    EXPECT_EQ(0, bacapp_decode_by_context(nullptr, 0, nullptr, nullptr, &head));
    EXPECT_EQ(nullptr, head);
    EXPECT_EQ(BACNET_STATUS_ERROR, bacapp_decode_by_context(nullptr, 3, nullptr, nullptr, &head));
    EXPECT_EQ(BACNET_STATUS_ERROR, bacapp_decode_by_context(nullptr, 0, nullptr, nullptr, nullptr));
}

TEST(ContextDecode, FullyDecodedReadPropertyAck) {
    // analog-input 5, status-flags [3] { bit string }, array index 2.
    const auto ack = bytes("0C 00 00 00 05 19 6F 29 02 3E 82 04 40 3F");
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(ack.size()),
              rp_ack_fully_decode_service_request(ack.data(), uint32_t(ack.size()), nullptr, nullptr, &rad));
    EXPECT_EQ(std::make_tuple(OBJECT_ANALOG_INPUT, 5u, (BACNET_READ_ACCESS_DATA*)nullptr),
              std::make_tuple(rad.object_type, rad.object_instance, rad.next));
    ASSERT_TRUE(rad.listOfProperties && rad.listOfProperties->value);
    EXPECT_EQ(
        std::make_tuple(PROP_STATUS_FLAGS, 2u, false, uint8_t(BACNET_APPLICATION_TAG_BIT_STRING)),
        std::make_tuple(rad.listOfProperties->propertyIdentifier, rad.listOfProperties->propertyArrayIndex,
                        rad.listOfProperties->has_error, uint8_t(rad.listOfProperties->value->tag)));
    EXPECT_TRUE(bitstring_bit(&rad.listOfProperties->value->type.Bit_String, 1));
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
    EXPECT_EQ(nullptr, rad.listOfProperties);

    // An empty value gives a property node without values; a broken one leaves nothing behind.
    const auto empty = bytes("0C 00 00 00 05 19 55 3E 3F");
    ASSERT_EQ(int(empty.size()), rp_ack_fully_decode_service_request(empty.data(), uint32_t(empty.size()),
                                                                     nullptr, nullptr, &rad));
    ASSERT_NE(nullptr, rad.listOfProperties);
    EXPECT_EQ(nullptr, rad.listOfProperties->value);
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
    const auto broken = bytes("0C 00 00 00 05 19 55 3E 0E 3F");
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_fully_decode_service_request(broken.data(), uint32_t(broken.size()),
                                                                       nullptr, nullptr, &rad));
    EXPECT_EQ(nullptr, rad.listOfProperties);

    // The bare-value form keeps the caller's reference.
    const auto value = bytes("44 42 90 99 9A 44 00 00 00 00");
    ASSERT_EQ(10, bacapp_fully_decode_value(value.data(), 10, OBJECT_ANALOG_VALUE, 9, PROP_PRESENT_VALUE,
                                            BACNET_ARRAY_ALL, nullptr, nullptr, &rad));
    EXPECT_EQ(OBJECT_ANALOG_VALUE, rad.object_type);
    ASSERT_NE(nullptr, rad.listOfProperties->value);
    ASSERT_NE(nullptr, rad.listOfProperties->value->next);
    EXPECT_FLOAT_EQ(0.0f, rad.listOfProperties->value->next->type.Real);
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
}
