// How the primitive wrappers and the date-time render for the web services: each is one
// complete markup of its kind.
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/CharacterString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Exception.h>
#include <Poco/LocalDateTime.h>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

using WS::MarkupFactory;

template <class Setter>
void markupPrimitive(MarkupFactory& factory, const std::string& name, bool arrayMarker, BACnetDataType dataType,
                     Setter set) {
    DataApplicationValue value;
    set(value);
    value.markup(factory, name, arrayMarker, dataType, false, -1, true);
}

}  // namespace

void Date::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    markupPrimitive(factory, name, arrayMarker, BACNET_DT_NULL, [this](DataApplicationValue& v) { v.setDate(*this); });
}

void Time::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    markupPrimitive(factory, name, arrayMarker, BACNET_DT_NULL, [this](DataApplicationValue& v) { v.setTime(*this); });
}

void CharacterString::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    markupPrimitive(factory, name, arrayMarker, BACNET_DT_CHARACTER_STRING,
                    [this](DataApplicationValue& v) { v.setCharString(getString()); });
}

void ObjectIdentifier::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker,
                              const std::string& comment) const {
    DataApplicationValue value;
    value.setObjectIdentifier(*this);
    const std::string text = value.getText(factory.getUseNames(), BACNET_DT_OBJECT_TYPE, nullptr, nullptr, true);
    factory.markup(MarkupFactory::BT_OBJECT_IDENTIFIER, name, text, true, arrayMarker, BACNET_DT_OBJECT_ID, false,
                   comment);
}

void BACnetDateTime::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    std::string text;
    BACnetDateTime known(*this);
    if (known.time.hundredths == 255) known.time.hundredths = 0;  // blurs the moment, no more
    Poco::Timestamp moment;
    if (toTimestamp(known, moment)) {
        Poco::LocalDateTime local;  // assigned fields bring the zone of their own date
        known.getLocalDateTime(local);
        text = Poco::DateTimeFormatter::format(local, Poco::DateTimeFormat::ISO8601_FORMAT);
    } else {
        try {
            text = getDate().getString() + ' ' + getTime().getString();
        } catch (const Poco::RangeException&) {
            text = "???";  // as a primitive whose text cannot be made
        }
    }
    factory.markup(MarkupFactory::BT_DATE_TIME, name, text, true, arrayMarker, BACNET_DT_NULL, false);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
