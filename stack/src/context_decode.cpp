#include "tq_stack/context_decode.h"

#include <cstdlib>

#include "service_common.h"
#include "tq_stack/bacapp.h"
#include "tq_stack/codec.h"
#include "tq_stack/strings.h"

using namespace tq_stack_detail;

namespace {

using Record = BACnet_Datatype_By_Context_Tag;

constexpr uint8_t kValueTag = 3;

// Builds the chain in input order.
struct Chain {
    BACNET_APPLICATION_DATA_VALUE* head = nullptr;
    BACNET_APPLICATION_DATA_VALUE** tail = &head;

    // Values are not cleared: decoders write the fields a value uses, and a value is ~1.5 KB.
    static BACNET_APPLICATION_DATA_VALUE* make() {
        auto* v =
            static_cast<BACNET_APPLICATION_DATA_VALUE*>(std::malloc(sizeof(BACNET_APPLICATION_DATA_VALUE)));
        if (v) bacapp_value_init(v);
        return v;
    }
    void append(BACNET_APPLICATION_DATA_VALUE* v) {
        *tail = v;
        tail = &v->next;
    }
    void release() {
        bacapp_value_list_free(head);
        head = nullptr;
        tail = &head;
    }
};

// The application tag whose rules a guided member's content follows, or -1 when the guide does
// not say. The data type wins; enumerated and bit-string types answer through their markup kind.
int guidedTag(const Record* member) {
    if (!member) return -1;
    if (member->datatype >= 0 && member->datatype <= int(BACNET_APPLICATION_TAG_OBJECT_ID))
        return member->datatype;
    if (member->markup >= 1 && member->markup <= BACNET_APPLICATION_TAG_OBJECT_ID) return int(member->markup);
    return -1;
}

// A context-tagged primitive kept as its content bytes.
int decodeRaw(const uint8_t* apdu, uint32_t apduLen, BACNET_APPLICATION_DATA_VALUE* value) {
    BACNET_TAG tag;
    const int h = bacnet_tag_decode(apdu, apduLen, &tag);
    if (h < 0 || !tag.context || tag.len_value_type > MAX_OCTET_STRING_BYTES) return BACNET_STATUS_ERROR;
    if (!octetstring_init(&value->type.Octet_String, apdu + h, tag.len_value_type))
        return BACNET_STATUS_ERROR;
    value->context_specific = true;
    value->context_tag = tag.number;
    value->tag = BACNET_APPLICATION_TAG_OCTET_STRING;
    return h + int(tag.len_value_type);
}

// The walk: one value per tag; opening tags push the record the guide gives for them.
class Walker {
public:
    Walker(Record* guide, BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup, unsigned* budget)
        : lookup_(lookup), budget_(budget) {
        records_[0] = guide;
    }

    int run(const uint8_t* apdu, uint32_t apduLen, Chain& chain) {
        Reader r(apdu, apduLen);
        while (!r.atEnd()) {
            BACNET_TAG tag;
            const int h = bacnet_tag_decode(r.at(), r.left(), &tag);
            if (h < 0 || *budget_ == 0) return BACNET_STATUS_ERROR;
            --*budget_;
            BACNET_APPLICATION_DATA_VALUE* v = Chain::make();
            if (!v) return BACNET_STATUS_ERROR;
            chain.append(v);
            int n;
            if (tag.opening) {
                n = open(tag.number, v) ? h : BACNET_STATUS_ERROR;
            } else if (tag.closing) {
                n = close(tag.number, v) ? h : BACNET_STATUS_ERROR;
            } else if (tag.application) {
                n = bacapp_decode_application_data(r.at(), r.left(), v);
            } else {
                n = decodeContext(r.at(), r.left(), tag.number, v);
            }
            if (!r.need(n)) return BACNET_STATUS_ERROR;
        }
        return depth_ == 0 ? int(r.pos) : BACNET_STATUS_ERROR;
    }

private:
    Record* member(uint8_t number) {
        Record* parent = records_[depth_];
        return parent && lookup_ ? lookup_(parent, number) : nullptr;
    }

    int decodeContext(const uint8_t* apdu, uint32_t apduLen, uint8_t number,
                      BACNET_APPLICATION_DATA_VALUE* v) {
        const int appTag = guidedTag(member(number));
        if (appTag >= 0) {
            const int n = bacapp_decode_context_data(apdu, apduLen, v, uint8_t(appTag));
            if (n > 0) return n;
        }
        return decodeRaw(apdu, apduLen, v);
    }

    static void pseudo(BACNET_APPLICATION_DATA_VALUE* v, uint8_t pseudoTag, uint8_t number) {
        v->context_specific = true;
        v->context_tag = number;
        v->tag = pseudoTag;
    }

    bool open(uint8_t number, BACNET_APPLICATION_DATA_VALUE* v) {
        if (depth_ == BACNET_MAX_NESTING_DEPTH) return false;
        Record* inner = member(number);
        numbers_[depth_] = number;
        records_[++depth_] = inner;
        pseudo(v, BACNET_PSEUDO_TAG_OPENING, number);
        return true;
    }

    bool close(uint8_t number, BACNET_APPLICATION_DATA_VALUE* v) {
        if (depth_ == 0 || numbers_[depth_ - 1] != number) return false;
        --depth_;
        pseudo(v, BACNET_PSEUDO_TAG_CLOSING, number);
        return true;
    }

    BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup_;
    unsigned* budget_;
    unsigned depth_ = 0;
    Record* records_[BACNET_MAX_NESTING_DEPTH + 1] = {};
    uint8_t numbers_[BACNET_MAX_NESTING_DEPTH] = {};
};

BACNET_PROPERTY_REFERENCE* makeResult(uint32_t property, uint32_t index,
                                      BACNET_APPLICATION_DATA_VALUE* values) {
    auto* node = static_cast<BACNET_PROPERTY_REFERENCE*>(std::calloc(1, sizeof(BACNET_PROPERTY_REFERENCE)));
    if (!node) return nullptr;
    node->propertyIdentifier = BACNET_PROPERTY_ID(property);
    node->propertyArrayIndex = index;
    node->value = values;
    node->error_class = ERROR_CLASS_DEVICE;
    node->error_code = ERROR_CODE_OTHER;
    return node;
}

}  // namespace

void init_bacnet_datatype_by_context_tag(BACnet_Datatype_By_Context_Tag* record, int datatype) {
    if (!record) return;
    record->datatype = datatype;
    record->context_tag = BACNET_CONTEXT_TAG_NONE;
    record->markup = BACNET_MARKUP_NONE;
    record->parent = nullptr;
    record->child = nullptr;
    record->second = nullptr;
    record->user = nullptr;
}

int tq_stack_detail::decodeValueChain(const uint8_t* apdu, uint32_t apduLen,
                                      BACnet_Datatype_By_Context_Tag* guide,
                                      BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                                      BACNET_APPLICATION_DATA_VALUE** values, unsigned* budget) {
    if (!values) return BACNET_STATUS_ERROR;
    *values = nullptr;
    if (!apdu && apduLen) return BACNET_STATUS_ERROR;
    Chain chain;
    Walker walker(guide, lookup, budget);
    const int n = walker.run(apdu, apduLen, chain);
    if (n < 0) {
        chain.release();
        return BACNET_STATUS_ERROR;
    }
    *values = chain.head;
    return n;
}

int bacapp_decode_by_context(const uint8_t* apdu, uint32_t apdu_len, BACnet_Datatype_By_Context_Tag* guide,
                             BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                             BACNET_APPLICATION_DATA_VALUE** values) {
    unsigned budget = BACNET_MAX_DECODED_VALUES;
    return decodeValueChain(apdu, apdu_len, guide, lookup, values, &budget);
}

int bacapp_fully_decode_value(const uint8_t* apdu, uint32_t apdu_len, BACNET_OBJECT_TYPE object_type,
                              uint32_t object_instance, BACNET_PROPERTY_ID property, uint32_t array_index,
                              BACnet_Datatype_By_Context_Tag* guide, BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                              BACNET_READ_ACCESS_DATA* data) {
    if (!data) return BACNET_STATUS_ERROR;
    data->listOfProperties = nullptr;
    data->next = nullptr;
    BACNET_APPLICATION_DATA_VALUE* values = nullptr;
    const int n = bacapp_decode_by_context(apdu, apdu_len, guide, lookup, &values);
    if (n < 0) return BACNET_STATUS_ERROR;
    BACNET_PROPERTY_REFERENCE* node = makeResult(property, array_index, values);
    if (!node) {
        bacapp_value_list_free(values);
        return BACNET_STATUS_ERROR;
    }
    data->object_type = object_type;
    data->object_instance = object_instance;
    data->listOfProperties = node;
    return n;
}

int rp_ack_fully_decode_service_request(const uint8_t* apdu, uint32_t apdu_len,
                                        BACnet_Datatype_By_Context_Tag* guide,
                                        BACNET_DATATYPE_BY_CONTEXT_LOOKUP lookup,
                                        BACNET_READ_ACCESS_DATA* data) {
    if (!data) return BACNET_STATUS_ERROR;
    data->listOfProperties = nullptr;
    data->next = nullptr;
    if (!apdu) return BACNET_STATUS_ERROR;
    Reader r(apdu, apdu_len);
    ObjectPropertyRef ref;
    if (!decodeObjectPropertyRef(r, &ref)) return BACNET_STATUS_ERROR;
    const int inner = enclosedLength(r.at(), r.left());
    if (inner < 0 || !r.opening(kValueTag)) return BACNET_STATUS_ERROR;
    const uint8_t* value = r.at();
    r.pos += uint32_t(inner);
    if (!r.closing(kValueTag) || !r.atEnd()) return BACNET_STATUS_ERROR;
    const int n =
        bacapp_fully_decode_value(value, uint32_t(inner), BACNET_OBJECT_TYPE(ref.type), ref.instance,
                                  BACNET_PROPERTY_ID(ref.property), ref.index, guide, lookup, data);
    return n < 0 ? BACNET_STATUS_ERROR : int(r.pos);
}
