// Constructed values assembled from chains of decoded primitives, and broken down into them.
#include "TQ_BACnet/ValueContainer.h"

#include "ValueContainerClasses.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {

namespace {

using Values = std::vector<DataApplicationValue>;

}  // namespace

void ValueContainer::setEmpty() {
    _descriptor.init();
    _descriptor.structure = BACNET_DTS_LIST;
    reuse<Values>().clear();
}

bool ValueContainer::trySetConstructedValue(const DataApplicationValue& first,
                                            const DataPropertyInObject& descriptor) {
    const DataPropertyInObject before = _descriptor;
    _descriptor = descriptor;
    const bool built = ContainerClasses::withPrimitiveClass(getDataType(), [&](auto c) {
        try {
            return buildObjects<typename decltype(c)::type>(first);
        } catch (const Poco::Exception&) {
            // A class that does not read primitives (the recipient), or a run it cannot read
            // (a peer's wrong first primitive): the caller keeps the primitives instead.
            return false;
        }
    });
    if (!built) _descriptor = before;
    return built;
}

template <class T>
bool ValueContainer::buildObjects(const DataApplicationValue& first) {
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
        _value = T(_descriptor, first, nullptr);
        return true;
    }
    std::vector<T> objects;
    for (const DataApplicationValue* cursor = &first; cursor != nullptr;) {
        const DataApplicationValue* next = cursor;
        objects.emplace_back(_descriptor, *cursor, &next);
        // A class that takes nothing would never reach the end of the run.
        if (next == cursor) return false;
        cursor = next;
    }
    storeObjects(objects);
    return true;
}

std::vector<DataApplicationValue>& ValueContainer::getBACnetPrimitives(Values& out) const {
    if (isPrimitive()) {
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
            out.push_back(single());
        } else {
            const Values& values = held<Values>();
            out.insert(out.end(), values.begin(), values.end());
        }
        return out;
    }
    ContainerClasses::withHeldClass(_value, [&](auto c) {
        using T = typename decltype(c)::type;
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
            held<T>().getBACnetPrimitives(out);
        } else {
            for (const T& object : held<std::vector<T>>()) object.getBACnetPrimitives(out);
        }
    });
    return out;
}

}  // namespace BACnet
}  // namespace TQ
