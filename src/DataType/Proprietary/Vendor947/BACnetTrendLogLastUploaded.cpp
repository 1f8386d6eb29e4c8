#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"


namespace TQ {
namespace BACnet {
namespace DataType {
namespace Proprietary {
namespace Vendor947 {

BACnetTrendLogLastUploaded::BACnetTrendLogLastUploaded() : _uploaded(BACnetDateTime::toHundredths(Poco::Timestamp())) {}

BACnetTrendLogLastUploaded::BACnetTrendLogLastUploaded(ObjectIdentifier device, ObjectIdentifier object,
                                                       const Poco::Timestamp& uploaded)
    : BACnetDeviceObjectReference(device, object), _uploaded(BACnetDateTime::toHundredths(uploaded)) {}

BACnetTrendLogLastUploaded::BACnetTrendLogLastUploaded(const DataPropertyInObject0&,
                                                       const DataApplicationValue& v,
                                                       const DataApplicationValue** next)
    : _uploaded(BACnetDateTime::toHundredths(Poco::Timestamp())) {
    const DataApplicationValue* last = &v;
    takePrimitives(v, &last);
    // The reference's walk stops on the last primitive it looked at; step past it when taken.
    const DataApplicationValue* current = last->tag == BACNET_APPLICATION_TAG_OBJECT_ID
                                              ? static_cast<const DataApplicationValue*>(last->next)
                                              : last;
    if (current != nullptr && current->tag == BACNET_APPLICATION_TAG_DATE) {
        BACNET_DATE_TIME uploaded;
        uploaded.date = current->type.Date;
        datetime_set_time(&uploaded.time, 0, 0, 0, 0);
        current = static_cast<const DataApplicationValue*>(current->next);
        if (current != nullptr && current->tag == BACNET_APPLICATION_TAG_TIME) {
            uploaded.time = current->type.Time;
            current = static_cast<const DataApplicationValue*>(current->next);
        }
        Poco::Timestamp moment;
        if (BACnetDateTime::toTimestamp(uploaded, moment)) _uploaded = BACnetDateTime::toHundredths(moment);
    }
    if (next) *next = current;
}

BACnetTrendLogLastUploaded::~BACnetTrendLogLastUploaded() = default;

void BACnetTrendLogLastUploaded::setTimestamp(const Poco::Timestamp& uploaded) {
    _uploaded = BACnetDateTime::toHundredths(uploaded);
}

void BACnetTrendLogLastUploaded::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    BACnetDeviceObjectReference::getBACnetPrimitives(out);
    BACnetDateTime uploaded;
    uploaded.setTimestamp(_uploaded);
    uploaded.getBACnetPrimitives(out);
}

int BACnetTrendLogLastUploaded::encode(uint8_t* apdu) const {
    const int len = BACnetDeviceObjectReference::encode(apdu);
    if (len < 0) return len;
    BACnetDateTime uploaded;
    uploaded.setTimestamp(_uploaded);
    return len + bacapp_encode_datetime(apdu ? apdu + len : nullptr, &uploaded);
}

int BACnetTrendLogLastUploaded::decode(const uint8_t* apdu, unsigned length) {
    if (apdu == nullptr) return -1;
    BACNET_DEVICE_OBJECT_REFERENCE reference;
    const int len = bacapp_decode_device_obj_ref(apdu, length, &reference);
    if (len <= 0) return -1;
    BACNET_DATE_TIME uploaded;
    const int timeLen = bacapp_decode_datetime(apdu + len, length - len, &uploaded);
    Poco::Timestamp moment;
    if (timeLen <= 0 || !BACnetDateTime::toTimestamp(uploaded, moment)) return -1;
    // Through the reference's own decoder, so "no device" reads as it does there.
    BACnetDeviceObjectReference::decode(apdu, static_cast<unsigned>(len));
    _uploaded = BACnetDateTime::toHundredths(moment);
    return len + timeLen;
}

int BACnetTrendLogLastUploaded::decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) {
    // The reference's own context decoder would stop before the date-time.
    return BACnetComplex::decodeContext(apdu, length, tag);
}

bool BACnetTrendLogLastUploaded::operator==(const BACnetTrendLogLastUploaded& other) const {
    return BACnetDeviceObjectReference::operator==(other) && _uploaded == other._uploaded;
}

}  // namespace Vendor947
}  // namespace Proprietary
}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
