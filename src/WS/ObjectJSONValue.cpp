// ObjectJSON from an ABSTRACT-SYNTAX.&Type value: its primitives as the JSON writer shows them,
// every value quoted.
#include "TQ_BACnet/WS/ObjectJSON.h"

#include "TQ_BACnet/DataType/ANY.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace WS {

void ObjectJSON::setValue(const DataType::ANY& any) {
    clear();
    _descriptor = any.getDescriptor();
    unsigned length = 0;
    const uint8_t* bytes = any.getValue(&length);
    std::vector<std::string> texts;
    for (unsigned position = 0; bytes && position < length;) {
        DataApplicationValue value;
        const int used = value.decode(bytes + position, length - position);
        if (used <= 0 || value.context_specific)
            throw Poco::NotImplementedException("BACnet::WS::ObjectJSON::setValue() the value of data type " +
                                                std::to_string(_descriptor.datatype) + " is not a primitive");
        position += static_cast<unsigned>(used);
        bool ok = true;
        // Bits as booleans: without names, the one form every bit-string reader takes.
        texts.push_back(value.getText(false, _descriptor.datatype, &ok, nullptr, true));
    }
    if (texts.size() == 1 && _descriptor.structure == BACNET_DTS_SINGLE_VALUE) {
        set("$value", texts.front());
        return;
    }
    for (std::size_t i = 0; i < texts.size(); ++i) set(std::to_string(i + 1), texts[i]);
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
