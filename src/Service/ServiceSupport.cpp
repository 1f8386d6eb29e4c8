#include "ServiceSupport.h"

#include "../ValueContainerClasses.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace Detail {

int checkAckHeader(const uint8_t* apdu, unsigned length, uint8_t service, uint8_t* invokeId,
                   DataError* error) {
    if (!apdu || length < 1) return -1;
    if (apdu[0] == ERROR_PDU) {
        uint8_t id = 0;
        uint8_t choice = 0;
        BACNET_ERROR_CLASS errorClass{};
        BACNET_ERROR_CODE errorCode{};
        if (apdu_decode_error(apdu, length, &id, &choice, &errorClass, &errorCode) > 0 && choice == service) {
            if (invokeId) *invokeId = id;
            if (error) error->setError(errorClass, errorCode);
        }
        return -1;
    }
    if (apdu[0] != COMPLEX_ACK) return -1;
    if (length < 2) return 0;
    if (invokeId) *invokeId = apdu[1];
    if (length < 3) return 0;
    if (apdu[2] != service) return -1;
    return length < 4 ? 0 : 1;
}

int decodeValue(ValueContainer& container, const uint8_t* bytes, int length, BACNET_OBJECT_TYPE objectType,
                BACNET_PROPERTY_ID property, uint32_t arrayIndex, DataError* error) {
    BACNET_ERROR_CLASS errorClass = DataError::NO_ERROR_CLASS;
    BACNET_ERROR_CODE errorCode = static_cast<BACNET_ERROR_CODE>(65535);
    DataErrorRef reference(errorClass, errorCode);
    const int result =
        container.decode(bytes, length, 0, objectType, property, static_cast<int>(arrayIndex), reference);
    if (error && result < 0) {
        // An unknown object type and property pair leaves the error as it was.
        if (errorClass == DataError::NO_ERROR_CLASS)
            error->setError(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
        else
            error->setError(errorClass, errorCode);
    }
    return result;
}

std::size_t countValues(const ValueContainer& container) {
    if (container.getAny().empty()) return 0;
    if (container.getStructure() == BACNET_DTS_SINGLE_VALUE) return 1;
    try {
        if (container.isPrimitive()) {
            std::vector<DataApplicationValue> values;
            return container.getValues(values).size();
        }
        return ContainerClasses::withClass(container.getDataType(), [&](auto held) {
            std::vector<typename decltype(held)::type> values;
            return container.getValues(values).size();
        });
    } catch (const Poco::BadCastException&) {
        return 0;
    }
}

}  // namespace Detail
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
