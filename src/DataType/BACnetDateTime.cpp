#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "tq_stack/datetime.h"

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

// The wire counts years from 1900, so the default's year 0 travels as 1900. Month 0 and day 0
// name no real date: a 1900 date with both is the default coming back.
void restoreZeroDate(BACnet_Date& date) {
    if (date.year == 1900 && date.month == 0 && date.day == 0) date.year = 0;
}

}  // namespace

BACnetDateTime::BACnetDateTime() : BACnet_DateTime() {
    datetime_set_values(this, 0, 0, 0, 0, 0, 0, 0);
}

BACnetDateTime::BACnetDateTime(const BACnet_DateTime& value) : BACnet_DateTime(value) {}

BACnetDateTime::BACnetDateTime(const BACnet_Date& dateValue, const BACnet_Time& timeValue)
    : BACnet_DateTime{dateValue, timeValue} {}

BACnetDateTime::BACnetDateTime(const DataPropertyInObject0&, const DataApplicationValue& v,
                               const DataApplicationValue** next)
    : BACnetDateTime() {
    if (v.tag != BACNET_APPLICATION_TAG_DATE) return;
    date = v.type.Date;
    restoreZeroDate(date);
    const auto* after = static_cast<const DataApplicationValue*>(v.next);
    if (after && after->tag == BACNET_APPLICATION_TAG_TIME) {
        time = after->type.Time;
        after = static_cast<const DataApplicationValue*>(after->next);
    } else {
        // A lone date stands for its midnight; the following primitive belongs to the caller.
        time = BACnet_Time{0, 0, 0, 0};
    }
    if (next) *next = after;
}

BACnetDateTime& BACnetDateTime::operator=(const BACnet_DateTime& value) {
    static_cast<BACnet_DateTime&>(*this) = value;
    return *this;
}

BACnetDateTime::~BACnetDateTime() = default;

int BACnetDateTime::encode(uint8_t* apdu) const {
    return bacapp_encode_datetime(apdu, this);
}

int BACnetDateTime::decode(const uint8_t* apdu, unsigned length) {
    if (!apdu) return -1;
    const int len = bacapp_decode_datetime(apdu, length, this);
    if (len > 0) restoreZeroDate(date);
    return len;
}

int BACnetDateTime::decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) {
    if (!apdu) return -1;
    // Decoded aside so that a broken closing tag cannot leave half a value behind.
    BACnet_DateTime decoded = *this;
    const int len = bacapp_decode_context_datetime(apdu, length, tag, &decoded);
    // The codec answers 0 for another tag; callers of a constructed value expect -1 for that.
    if (len <= 0) return -1;
    restoreZeroDate(decoded.date);
    static_cast<BACnet_DateTime&>(*this) = decoded;
    return len;
}

void BACnetDateTime::getString(std::string& out) const {
    BACnetComplex::getString(out);
}

bool BACnetDateTime::setString(const std::string& text) {
    return BACnetComplex::setString(text);
}

void BACnetDateTime::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    out.emplace_back();
    out.back().setDate(Date(date));
    out.emplace_back();
    out.back().setTime(Time(time));
}

bool BACnetDateTime::operator==(const BACnetDateTime& other) const {
    return date.year == other.date.year && date.month == other.date.month && date.day == other.date.day &&
           date.wday == other.date.wday && time.hour == other.time.hour && time.min == other.time.min &&
           time.sec == other.time.sec && time.hundredths == other.time.hundredths;
}

bool BACnetDateTime::operator<(const BACnetDateTime& other) const {
    return datetime_compare(this, &other) < 0;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
