#include "TQ_BACnet/WS/MetadataValue.h"

#include <Poco/Exception.h>
#include <Poco/String.h>

#include <iostream>

namespace TQ {
namespace BACnet {
namespace WS {

MetadataValue::MetadataValue(Metadata::METADATA metadata, const Poco::Dynamic::Var& value)
    : _metadata(metadata), _value(value.convert<std::string>()) {}

std::string MetadataValue::getName(const std::string& before, const std::string& after) const {
    std::string name;
    try {
        name = Metadata::getMetadataName(_metadata);
    } catch (const Poco::Exception&) {
        std::cerr << "MetadataValue::getName(), unknown metadata type: "
                  << static_cast<unsigned int>(_metadata) << std::endl;
        return std::string();
    }
    // Writers skip an item whose name is empty, so an unnamed item must not come back as the
    // bare decoration.
    if (name.empty()) return name;
    return before + name + after;
}

bool MetadataValue::isBoolean() const {
    return Poco::icompare(_value, "true") == 0 || Poco::icompare(_value, "false") == 0;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
