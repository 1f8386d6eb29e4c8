#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <string>

namespace TQ {
namespace BACnet {
namespace WS {

static_assert(MarkupFactory::BT_MAX <= 0x80, "a base type packs into seven bits");

std::size_t MarkupFactory::descElements(const DataApplicationValue*, std::size_t, std::size_t) {
    return 0;
}

bool MarkupFactory::descPrimitive(const DataApplicationValue&, const std::string&) {
    return false;
}

bool MarkupFactory::markupPrimitive(const DataApplicationValue& value, const std::string& name) {
    if (!descPrimitive(value, name)) return false;
    ++_markupCount;
    return true;
}

void MarkupFactory::markupElements(const DataApplicationValue* values, std::size_t count, BACnetDataType dataType,
                                   bool bitsAsBooleans, std::size_t firstNumber) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t written = descElements(values + done, count - done, firstNumber + done);
        _markupCount += written;
        done += written;
        if (done == count) break;
        // What the writer leaves (a string, a NaN, a pretty or annotated document) takes the
        // general way, one element at a time.
        values[done].markup(*this, std::to_string(firstNumber + done), false, dataType, false, -1, bitsAsBooleans);
        ++done;
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
