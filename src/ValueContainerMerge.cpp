// Merging two ValueContainers: how the records of a log read in several steps become one value.
#include "TQ_BACnet/ValueContainer.h"

#include "ValueContainerClasses.h"

#include <Poco/NumberFormatter.h>

#include <initializer_list>
#include <iostream>

namespace TQ {
namespace BACnet {

namespace {

template <class T>
BACnetDataType dataTypeOf(const T& object) {
    return static_cast<const DataType::BACnetComplex&>(object).getBACnetDataType();
}

}  // namespace

bool ValueContainer::merge(const ValueContainer& other, unsigned position) {
    std::string reason;
    if (merge(other, position, reason)) return true;
    std::cout << "ValueContainer::merge() " << reason << std::endl;
    return false;
}

bool ValueContainer::merge(const ValueContainer& other, unsigned position, std::string& reason) {
    if (isPrimitive()) return mergeT<DataApplicationValue>(other, position, reason);
    return ContainerClasses::withHeldClass(
        _value, [&](auto c) { return mergeT<typename decltype(c)::type>(other, position, reason); });
}

template <class T>
bool ValueContainer::mergeT(const ValueContainer& other, unsigned position, std::string& reason) {
    if (other.getDataType() != getDataType() || other.getTag() != getTag()) {
        reason = "data type " + std::to_string(other.getDataType()) + " tag " + std::to_string(other.getTag()) +
                 " does not merge into data type " + std::to_string(getDataType()) + " tag " +
                 std::to_string(getTag());
        return false;
    }
    std::vector<T> merged;
    std::vector<T> added;
    try {
        getValues(merged);
        other.getValues(added);
    } catch (const Poco::BadCastException&) {
        reason = "the values are held in different classes";
        return false;
    }
    if (merged.size() < position) {
        reason = "position " + std::to_string(position) + " lies past the " + std::to_string(merged.size()) +
                 " values held";
        return false;
    }
    // Nothing is changed until every check has passed.
    for (size_t i = 0; i < added.size(); ++i) {
        if (position + i < merged.size()) {
            merged[position + i] = added[i];
        } else {
            merged.push_back(added[i]);
        }
    }
    if (merged.empty()) return true;
    if constexpr (std::is_same<T, DataApplicationValue>::value) {
        setApplicationValueLinks(merged);
        merged.back().next = nullptr;
        const DataPropertyInObject own = _descriptor;
        setApplicationValue(merged.front(), &own);
    } else {
        _descriptor.datatype = dataTypeOf(merged.front());
        storeObjects(merged);
        if (_descriptor.structure != BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
    }
    return true;
}

// The typed forms exist for every class a container holds.
namespace ContainerClasses {
template <class... T>
void instantiateMerging(ContainerClasses::ClassList<T...>) {
    (void)std::initializer_list<int>{((void)&ValueContainer::mergeT<T>, 0)...};
}
template void instantiateMerging(HeldClasses);
}  // namespace ContainerClasses

}  // namespace BACnet
}  // namespace TQ
