#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/ValueContainer.h"

#include <Poco/Nullable.h>

#include <vector>

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

/// A CreateObject request the gateway's own server received, applied to the stored tree:
/// the object under a device with its initial property values.
class CreateObject {
public:
    using iterator = std::vector<DataType::BACnetPropertyValue>::iterator;

    CreateObject() = default;
    CreateObject(DataType::ObjectIdentifier object, bool updateExisting)
        : _updateExisting(updateExisting), _object(object) {}

    const DataType::ObjectIdentifier& getObjectIdentifier() const { return _object; }
    bool getUpdateExisting() const { return _updateExisting; }
    const std::vector<DataType::BACnetPropertyValue>& getInitialValues() const { return _initialValues; }

    /// The first initial value of `property`, or the end of the list.
    iterator findInitialValue(BACNET_PROPERTY_ID property);
    iterator endInitialValues() { return _initialValues.end(); }
    /// Appends a copy (duplicates are not checked).
    void addInitialValue(const DataType::BACnetPropertyValue& value);
    /// Appends `value` for `property`: no array index, no priority.
    void addInitialValue(BACNET_PROPERTY_ID property, const ValueContainer& value);
    /// Appends the Error as the value of `property`.
    void addInitialValue(BACNET_PROPERTY_ID property, const DataType::Error& error);
    /// Appends `property` with an empty value.
    void addInitialValue(BACNET_PROPERTY_ID property);

    /// Stores the object under device row `deviceKey` (enabled when `enabled` is not 0) with
    /// its initial values, in one transaction of the process-wide session: a property the
    /// object has gets the new value, others are added, present-value with host port
    /// `presentValueArg` and poll rate `presentValueOption`, any other with port -1 and no
    /// poll rate. Returns the rows written, or -1 and nothing written when the object exists
    /// and may not be updated (error object / object-identifier-already-exists), when the
    /// catalogue has no such property for the object type (property / unknown-property) or
    /// when a value is not of the property's type (property / invalid-data-type). A failure
    /// of the database rolls the whole write back and passes on.
    int dbUpdate(int deviceKey, int enabled, int presentValueArg,
                 const Poco::Nullable<int>& presentValueOption, DataError* error = nullptr);

private:
    /// -1 with `error` set when an initial value cannot be stored under the object.
    int checkInitialValues(DataError* error) const;

    bool _updateExisting = false;
    DataType::ObjectIdentifier _object;
    std::vector<DataType::BACnetPropertyValue> _initialValues;
};

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
