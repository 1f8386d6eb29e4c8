// Decoding constructed values by context tag.
//
// A value of a constructed type arrives as context-tagged primitives whose content rules depend
// on the member they belong to. The codec does not know the types; a guide does: the caller
// hands in a record describing the value's data type and a lookup that, given the record of the
// enclosing construct and a context tag number, answers with the record of that member (or NULL
// when it does not know it). The decoders turn the bytes into a flat chain of values:
//   - application-tagged primitives as they are;
//   - a context-tagged primitive whose member type is known (markup kind or data type 0..12)
//     decoded by that application tag's rules, context_specific set, context_tag its number;
//   - a context-tagged primitive of unknown type, or whose bytes do not fit the guided type,
//     kept raw: tag BACNET_APPLICATION_TAG_OCTET_STRING holding its content bytes, context fields
//     set, so nothing is lost;
//   - opening and closing tags as values with tag BACNET_PSEUDO_TAG_OPENING / _CLOSING,
//     context_specific set and context_tag the tag number. Members inside an opening tag are
//     looked up with the record the lookup returned for that opening tag.
// Nesting deeper than BACNET_MAX_NESTING_DEPTH, unbalanced or mismatched tags, truncated data and
// more than BACNET_MAX_DECODED_VALUES values in one call are errors.
#pragma once

#include <cstdint>

#include "tq_stack/rpm.h"
#include "tq_stack/values.h"

#define BACNET_PSEUDO_TAG_OPENING 17
#define BACNET_PSEUDO_TAG_CLOSING 18

// Data type numbers of the catalogue that the codec needs to know.
#define BACNET_DATATYPE_MAX_APPLICATION_TAG 16
#define BACNET_DATATYPE_NONE 2000  // no catalogued type for the member

// Markup kinds: 0..12 are the application tags; these are the constructed ones.
#define BACNET_MARKUP_SEQUENCE 22u
#define BACNET_MARKUP_SEQUENCE_OF 24u
#define BACNET_MARKUP_CHOICE 25u
#define BACNET_MARKUP_NONE 0xFFFFFFFFu

#define BACNET_CONTEXT_TAG_NONE 0xFFu

// Every value is one allocation of sizeof(BACNET_APPLICATION_DATA_VALUE) (about 1.5 KB), at
// most one per input octet. One APDU holds fewer than this many values; a larger (reassembled)
// input with more values is refused rather than allowed to claim unbounded memory.
#define BACNET_MAX_DECODED_VALUES 4096u

typedef struct BACnet_Datatype_By_Context_Tag {
    int datatype;         // BACnetDataType of this member, BACNET_DATATYPE_NONE when not catalogued
    uint8_t context_tag;  // context tag of the child most recently looked up, BACNET_CONTEXT_TAG_NONE
    unsigned markup;      // markup kind, BACNET_MARKUP_NONE when none
    struct BACnet_Datatype_By_Context_Tag* parent;  // enclosing record, not owned
    struct BACnet_Datatype_By_Context_Tag* child;   // owned: the member most recently looked up
    struct BACnet_Datatype_By_Context_Tag* second;  // owned, freed with the record; unused by the codec
    void* user;                                     // for the guide's owner; unused by the codec
} BACnet_Datatype_By_Context_Tag;

// The guide. The codec never frees records; the lookup owns them (typically replacing the
// parent's previous child) and the caller frees the tree after decoding.
typedef BACnet_Datatype_By_Context_Tag* (*BACNET_DATATYPE_BY_CONTEXT_LOOKUP)(
    BACnet_Datatype_By_Context_Tag* parent, int context_tag);

// Fields as documented above for an unknown member (or, with datatype, for that type); no
// parent, no children.
void init_bacnet_datatype_by_context_tag(BACnet_Datatype_By_Context_Tag* record,
                                         int datatype = BACNET_DATATYPE_NONE);

// Decodes all apdu_len bytes of a value into a malloc'ed chain at *values (NULL for no bytes).
// guide and lookup may be NULL (then every context-tagged primitive is kept raw). Returns the
// bytes consumed (apdu_len) or BACNET_STATUS_ERROR, *values being NULL then.
// Release the chain with bacapp_value_list_free.
int bacapp_decode_by_context(const uint8_t* apdu, uint32_t apdu_len, BACnet_Datatype_By_Context_Tag* guide,
                             BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                             BACNET_APPLICATION_DATA_VALUE** values);

// A ReadProperty-ACK's service data (after the complex-ACK header) decoded into one record: object
// type and instance, and a single property node with property, array index and the value chain.
// The record's list and next are cleared on entry. Returns the bytes consumed or
// BACNET_STATUS_ERROR (nothing allocated then). Release with free_BACNET_READ_ACCESS_DATA_Internals.
int rp_ack_fully_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                        BACnet_Datatype_By_Context_Tag* guide,
                                        BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                                        BACNET_READ_ACCESS_DATA* data);

// The same for bare value bytes whose reference the caller already knows.
int bacapp_fully_decode_value(const uint8_t* apdu, uint32_t apdu_len, BACNET_OBJECT_TYPE object_type,
                              uint32_t object_instance, BACNET_PROPERTY_ID property, uint32_t array_index,
                              BACnet_Datatype_By_Context_Tag* guide, BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                              BACNET_READ_ACCESS_DATA* data);
