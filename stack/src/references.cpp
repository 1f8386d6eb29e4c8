#include "tq_stack/references.h"

#include "enclosed.h"
#include "tq_stack/codec.h"

using namespace tq_stack_detail;

namespace {

// The element of a context-tagged SEQUENCE, whose members all advance one cursor.
class Cursor {
public:
    Cursor(const uint8_t* apdu, uint32_t len) : _apdu(apdu), _len(len) {}

    const uint8_t* at() const { return _apdu + _pos; }
    uint32_t left() const { return _len - _pos; }
    uint32_t pos() const { return _pos; }
    // Advances by a decoder's result; false for a missing (0) or malformed (<0) element.
    bool take(int n) {
        if (n <= 0) return false;
        _pos += uint32_t(n);
        return true;
    }

private:
    const uint8_t* _apdu;
    uint32_t _len;
    uint32_t _pos = 0;
};

bool hasDevice(const BACNET_OBJECT_ID& device) {
    return device.type == OBJECT_DEVICE;
}

void setNoDevice(BACNET_OBJECT_ID& device) {
    device.type = BACNET_NO_DEV_TYPE;
    device.instance = BACNET_NO_DEV_ID;
}

// Optional context element: 0 (absent) is fine, negative is malformed.
bool takeOptional(Cursor& c, int n, bool& present) {
    if (n < 0) return false;
    present = n > 0;
    if (present) c.take(n);
    return true;
}

}  // namespace

int bacapp_encode_device_obj_ref(uint8_t* apdu, const BACNET_DEVICE_OBJECT_REFERENCE* value) {
    if (!value) return 0;
    int len = 0;
    if (hasDevice(value->deviceIdentifier)) {
        len +=
            encode_context_object_id(apdu, 0, value->deviceIdentifier.type, value->deviceIdentifier.instance);
    }
    return len + encode_context_object_id(advance(apdu, len), 1, value->objectIdentifier.type,
                                          value->objectIdentifier.instance);
}

int bacapp_decode_device_obj_ref(const uint8_t* apdu, uint32_t apdu_len,
                                 BACNET_DEVICE_OBJECT_REFERENCE* value) {
    if (!apdu || !value) return BACNET_STATUS_ERROR;
    Cursor c(apdu, apdu_len);
    BACNET_DEVICE_OBJECT_REFERENCE decoded;
    bool device = false;
    if (!takeOptional(c,
                      decode_context_object_id(c.at(), c.left(), 0, &decoded.deviceIdentifier.type,
                                               &decoded.deviceIdentifier.instance),
                      device))
        return BACNET_STATUS_ERROR;
    if (!device) setNoDevice(decoded.deviceIdentifier);
    if (!c.take(decode_context_object_id(c.at(), c.left(), 1, &decoded.objectIdentifier.type,
                                         &decoded.objectIdentifier.instance)))
        return BACNET_STATUS_ERROR;
    *value = decoded;
    return int(c.pos());
}

int bacapp_encode_device_obj_property_ref(uint8_t* apdu,
                                          const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value) {
    if (!value) return 0;
    int len =
        encode_context_object_id(apdu, 0, value->objectIdentifier.type, value->objectIdentifier.instance);
    len += encode_context_enumerated(advance(apdu, len), 1, value->propertyIdentifier);
    if (value->arrayIndex != BACNET_ARRAY_ALL)
        len += encode_context_unsigned(advance(apdu, len), 2, value->arrayIndex);
    if (hasDevice(value->deviceIdentifier)) {
        len += encode_context_object_id(advance(apdu, len), 3, value->deviceIdentifier.type,
                                        value->deviceIdentifier.instance);
    }
    return len;
}

int bacapp_decode_device_obj_property_ref(const uint8_t* apdu, uint32_t apdu_len,
                                          BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value) {
    if (!apdu || !value) return BACNET_STATUS_ERROR;
    Cursor c(apdu, apdu_len);
    BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE decoded;
    if (!c.take(decode_context_object_id(c.at(), c.left(), 0, &decoded.objectIdentifier.type,
                                         &decoded.objectIdentifier.instance)))
        return BACNET_STATUS_ERROR;
    uint32_t property = 0;
    if (!c.take(decode_context_enumerated(c.at(), c.left(), 1, &property))) return BACNET_STATUS_ERROR;
    decoded.propertyIdentifier = BACNET_PROPERTY_ID(property);
    bool present = false;
    if (!takeOptional(c, decode_context_unsigned(c.at(), c.left(), 2, &decoded.arrayIndex), present))
        return BACNET_STATUS_ERROR;
    if (!present) decoded.arrayIndex = BACNET_ARRAY_ALL;
    if (!takeOptional(c,
                      decode_context_object_id(c.at(), c.left(), 3, &decoded.deviceIdentifier.type,
                                               &decoded.deviceIdentifier.instance),
                      present))
        return BACNET_STATUS_ERROR;
    if (!present) setNoDevice(decoded.deviceIdentifier);
    *value = decoded;
    return int(c.pos());
}

using DeviceObjRef =
    Enclosed<BACNET_DEVICE_OBJECT_REFERENCE, bacapp_encode_device_obj_ref, bacapp_decode_device_obj_ref>;
using DeviceObjPropertyRef =
    Enclosed<BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE, bacapp_encode_device_obj_property_ref,
             bacapp_decode_device_obj_property_ref>;

int bacapp_encode_context_device_obj_ref(uint8_t* apdu, uint8_t tag_number,
                                         const BACNET_DEVICE_OBJECT_REFERENCE* value) {
    return DeviceObjRef::encode(apdu, tag_number, value);
}

int bacapp_decode_context_device_obj_ref(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                         BACNET_DEVICE_OBJECT_REFERENCE* value) {
    return DeviceObjRef::decode(apdu, apdu_len, tag_number, value);
}

int bacapp_encode_context_device_obj_property_ref(uint8_t* apdu, uint8_t tag_number,
                                                  const BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value) {
    return DeviceObjPropertyRef::encode(apdu, tag_number, value);
}

int bacapp_decode_context_device_obj_property_ref(const uint8_t* apdu, uint32_t apdu_len, uint8_t tag_number,
                                                  BACNET_DEVICE_OBJECT_PROPERTY_REFERENCE* value) {
    return DeviceObjPropertyRef::decode(apdu, apdu_len, tag_number, value);
}
