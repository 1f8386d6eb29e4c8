#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"

namespace TQ {
namespace BACnet {
namespace WS {

void MarkupFactoryPLAIN::append(const std::string& text) {
    write(',');
    write(text);
}

int MarkupFactoryPLAIN::descMarkup(BaseType, const std::string&, const std::string& value, unsigned int,
                                   const std::vector<MetadataValue>*) {
    write(value);
    return 0;
}

void MarkupFactoryPLAIN::descCloseOpenMarkup(const std::string&, bool) {}

void MarkupFactoryPLAIN::descStringEncode(std::string&) {}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
