// How addresses and recipients render for the web services.
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <Poco/NumberFormatter.h>

namespace TQ {
namespace BACnet {
namespace DataType {

using WS::MarkupFactory;

void BACnetAddress::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    const auto member = [&](MarkupFactory::BaseType type, const char* memberName, const std::string& text) {
        factory.markup(type, memberName, text, true, arrayMarker, BACNET_DT_NULL, false);
    };
    factory.markup(MarkupFactory::BT_SEQUENCE, name, "", false, false, getBACnetDataType(), false);
    member(MarkupFactory::BT_UNSIGNED, "network-number", Poco::NumberFormatter::format(net));
    std::string text;
    getString(mac, mac_len, text);
    member(MarkupFactory::BT_STRING, "mac-address", text);
    if (net != 0) {
        getString(adr, len, text);
        member(MarkupFactory::BT_STRING, "router-address", text);
    }
    factory.closeOpenMarkup();
}

void BACnetRecipient::markup(MarkupFactory& factory, const std::string& name, bool) const {
    factory.markup(MarkupFactory::BT_CHOICE, name, "", false, false, getBACnetDataType(), false);
    if (_choice == CHOICE_DEVICE) {
        _device.markup(factory, "device", false, "");
    } else {
        _address.markup(factory, "address", false);
    }
    factory.closeOpenMarkup();
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
