// Guided decoding of constructed values: the guide below plays the catalogue with a small table
// of members and manages its records the way the library's lookup does (a new child replaces
// the parent's previous one).
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "TQTestCodec.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/strings.h"

using namespace TQTest;

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
};

// Decodes an exactly-sized copy of `in`, guided by `root` when given.
int byContext(const Bytes& in, BACnet_Datatype_By_Context_Tag* root, BACNET_APPLICATION_DATA_VALUE** head) {
    ExactBuffer buf(in);
    return bacapp_decode_by_context(buf.data(), buf.size(), root, root ? lookup : nullptr, head);
}

}  // namespace

TEST(ContextDecode, GuidedLogRecordWithNestingAndRawMembers) {
    // timestamp, datum [1] { real [2] 18.0 }, status flags, then [3] and [7] the guide cannot type.
    const auto in = hex("0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00 39 07 7A 01 02");
    // A fresh record is empty and unlinked, whatever it held before.
    BACnet_Datatype_By_Context_Tag root;
    root.parent = root.child = root.second = &root;
    init_bacnet_datatype_by_context_tag(&root);
    using Rec = BACnet_Datatype_By_Context_Tag*;
    EXPECT_EQ(std::make_tuple(int(BACNET_DATATYPE_NONE), unsigned(BACNET_MARKUP_NONE),
                              int(BACNET_CONTEXT_TAG_NONE), Rec(nullptr), Rec(nullptr), Rec(nullptr)),
              std::make_tuple(int(root.datatype), unsigned(root.markup), int(root.context_tag), root.parent,
                              root.child, root.second));
    init_bacnet_datatype_by_context_tag(nullptr);  // harmless
    init_bacnet_datatype_by_context_tag(&root, 1054);
    EXPECT_EQ(1054, root.datatype);
    g_log = {};
    Decoded d;
    ASSERT_EQ(int(in.size()), byContext(in, &root, &d.head));
    // Inside [1] the choice's own members answer: [2] is its REAL. Back at the top [2] is the
    // status flags again, by the bit-string markup. [3] has no catalogued type and [7] is
    // unknown: both are kept as their content bytes.
    EXPECT_EQ("[0]{ d1998-3-23 t19:52:34.0 [0]} [1]{ [2]r18 [1]} [2]b0000 [3]x07 [7]x01 02",
              describe(d.head));
    // Lookups went to the right parents: root for 0, 1, 2, 3, 7; the choice for its [2].
    EXPECT_EQ(std::vector<int>({0, 1, 2, 2, 3, 7}), g_log.tags);
    EXPECT_EQ(std::vector<int>({1054, 1054, 1055, 1054, 1054, 1054}), g_log.parentTypes);
    freeTree(root.child);
}

TEST(ContextDecode, WrongGuideAndNoGuideKeepBytes) {
    // The choice says [2] is a REAL, but two octets arrive; [10] is an unsigned type by markup.
    const auto in = hex("1E 2A 01 02 1F 1E A9 2A 1F");
    BACnet_Datatype_By_Context_Tag root;
    init_bacnet_datatype_by_context_tag(&root, 1054);
    {
        Decoded d;
        ASSERT_EQ(int(in.size()), byContext(in, &root, &d.head));
        EXPECT_EQ("[1]{ [2]x01 02 [1]} [1]{ [10]u42 [1]}", describe(d.head));
    }
    freeTree(root.child);
    // Without a guide every context primitive is raw; application values still decode.
    Decoded d;
    ASSERT_EQ(9, byContext(hex("0E 91 05 2C 41 90 00 00 0F"), nullptr, &d.head));
    EXPECT_EQ("[0]{ e5 [2]x41 90 00 00 [0]}", describe(d.head));
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
        const auto in = hex(h);
        BACNET_APPLICATION_DATA_VALUE* head = reinterpret_cast<BACNET_APPLICATION_DATA_VALUE*>(1);
        EXPECT_TRUE(byContext(in, nullptr, &head) == BACNET_STATUS_ERROR && head == nullptr) << h;
    }
    // The value budget: one APDU's worth decodes, a larger run of values is refused.
    std::vector<uint8_t> nulls(BACNET_MAX_DECODED_VALUES, 0x00);
    BACNET_APPLICATION_DATA_VALUE* head = nullptr;
    EXPECT_EQ(int(nulls.size()), byContext(nulls, nullptr, &head));
    bacapp_value_list_free(head);
    nulls.push_back(0x00);
    EXPECT_TRUE(byContext(nulls, nullptr, &head) == BACNET_STATUS_ERROR && head == nullptr);
    EXPECT_TRUE(bacapp_decode_by_context(nullptr, 0, nullptr, nullptr, &head) == 0 && head == nullptr);
    EXPECT_EQ(BACNET_STATUS_ERROR, bacapp_decode_by_context(nullptr, 3, nullptr, nullptr, &head));
    EXPECT_EQ(BACNET_STATUS_ERROR, bacapp_decode_by_context(nullptr, 0, nullptr, nullptr, nullptr));
}

TEST(ContextDecode, FullyDecodedReadPropertyAck) {
    // analog-input 5, status-flags [3] { bit string }, array index 2.
    ExactBuffer ack("0C 00 00 00 05 19 6F 29 02 3E 82 04 40 3F");
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(ack.size()),
              rp_ack_fully_decode_service_request(ack.data(), ack.size(), nullptr, nullptr, &rad));
    EXPECT_EQ("0,5: 111[2]=(b0100)", describe(&rad));
    EXPECT_EQ(nullptr, (free_BACNET_READ_ACCESS_DATA_Internals(&rad), rad.listOfProperties));

    // An empty value gives a property node without values; a broken one leaves nothing behind.
    ExactBuffer empty("0C 00 00 00 05 19 55 3E 3F");
    ASSERT_EQ(int(empty.size()),
              rp_ack_fully_decode_service_request(empty.data(), empty.size(), nullptr, nullptr, &rad));
    EXPECT_EQ("0,5: 85=()", describe(&rad));
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
    ExactBuffer broken("0C 00 00 00 05 19 55 3E 0E 3F");
    EXPECT_EQ(BACNET_STATUS_ERROR,
              rp_ack_fully_decode_service_request(broken.data(), broken.size(), nullptr, nullptr, &rad));
    EXPECT_EQ(nullptr, rad.listOfProperties);

    // The bare-value form keeps the caller's reference.
    ExactBuffer value("44 42 90 99 9A 44 00 00 00 00");
    ASSERT_EQ(10, bacapp_fully_decode_value(value.data(), 10, OBJECT_ANALOG_VALUE, 9, PROP_PRESENT_VALUE,
                                            BACNET_ARRAY_ALL, nullptr, nullptr, &rad));
    EXPECT_EQ("2,9: 85=(r72.3 r0)", describe(&rad));
    free_BACNET_READ_ACCESS_DATA_Internals(&rad);
}
