#pragma once

#include "TQ_BACnet/DataError.h"

#include <cstdint>

namespace TQ {
namespace BACnet {

/// An error tagged with the caller's identifier (an invoke id, a request number).
class DataErrorWithId : public DataError {
public:
    DataErrorWithId() = default;
    DataErrorWithId(BACNET_ERROR_CLASS errorClass, BACNET_ERROR_CODE errorCode, uint32_t id)
        : DataError(errorClass, errorCode), _id(id) {}
    DataErrorWithId(const DataError& error, uint32_t id) : DataError(error), _id(id) {}

    uint32_t getId() const { return _id; }
    void setId(uint32_t id) { _id = id; }

private:
    uint32_t _id = 0;
};

}  // namespace BACnet
}  // namespace TQ
