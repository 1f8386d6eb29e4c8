#pragma once

#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

/// Bare values: no names, types, metadata or closing; appended texts are comma-separated.
class MarkupFactoryPLAIN : public MarkupFactory {
public:
    MarkupFactoryPLAIN(std::ostream& out, bool pretty, bool useNames, int compression)
        : MarkupFactory(out, pretty, useNames, compression) {}

    void append(const std::string& text) override;
    bool allowArrays() const override { return false; }
    int descMarkup(BaseType baseType, const std::string& name, const std::string& value, unsigned int flags,
                   const std::vector<MetadataValue>* metadata) override;
    void descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) override;
    void descStringEncode(std::string& text) override;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
