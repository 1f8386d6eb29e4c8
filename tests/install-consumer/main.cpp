// Builds against the installed package only: proves headers, libraries and config are complete,
// down to a property value decoded into a constructed class.
#include <TQ_BACnet/DataErrorRef.h>
#include <TQ_BACnet/DataType/BACnetDateTime.h>
#include <TQ_BACnet/ValueContainer.h>
#include <TQ_BACnet/Version.h>
#include <TQ_BACnet/WS/MarkupFactory.h>

#include <cstdio>
#include <cstring>
#include <string>

int main() {
    using namespace TQ::BACnet;
    const char* v = version();
    std::printf("installed TQ_BACnet %s\n", v);

    // 2024-03-07 (Thursday) 08:30:00.00 as a ReadProperty-ACK carries it.
    const uint8_t bytes[] = {0xA4, 0x7C, 0x03, 0x07, 0x04, 0xB4, 0x08, 0x1E, 0x00, 0x00};
    const ValueContainer::DataPropertyInObject descriptor(BACNET_DT_DATE_TIME, BACNET_APPLICATION_TAG_NULL,
                                                          BACNET_DTS_SINGLE_VALUE, true, 4);
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef error(errorClass, errorCode);
    ValueContainer container;
    if (container.decode(bytes, sizeof bytes, 0, descriptor, -1, error) != sizeof bytes) return 1;
    DataType::BACnetDateTime dateTime;
    container.getValue(dateTime);
    std::printf("decoded %u-%02u-%02u %02u:%02u, markup kind %s\n", dateTime.date.year, dateTime.date.month,
                dateTime.date.day, dateTime.time.hour, dateTime.time.min,
                WS::MarkupFactory::getBaseTypeName(WS::MarkupFactory::BT_DATE_TIME).c_str());
    return std::strlen(v) > 0 && dateTime.time.min == 30 ? 0 : 1;
}
