#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"

namespace TQ {
namespace BACnet {
namespace WS {

void MarkupFactoryPLAIN::append(const std::string& text) {
    _out.put(',');
    _out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

int MarkupFactoryPLAIN::descMarkup(BaseType, const std::string&, const std::string& value, unsigned int,
                                   const std::vector<MetadataValue>*) {
    _out.write(value.data(), static_cast<std::streamsize>(value.size()));
    return 0;
}

void MarkupFactoryPLAIN::descCloseOpenMarkup(const std::string&, bool) {}

void MarkupFactoryPLAIN::descStringEncode(std::string&) {}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
