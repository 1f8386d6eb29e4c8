#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// A DeleteObject request the gateway's own server received, applied to the stored tree.
class DeleteObject {
public:
    explicit DeleteObject(const DataType::ObjectIdentifier& object) : _object(object) {}

    const DataType::ObjectIdentifier& getObjectIdentifier() const { return _object; }

    /// Deletes the object row under device row `deviceKey`: the rows written; 0 (error object
    /// / unknown-object) when there is no such object; -1 (object /
    /// object-deletion-not-permitted) for the device object, which is never deleted.
    int dbUpdate(int deviceKey, DataError* error = nullptr);

private:
    DataType::ObjectIdentifier _object;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
