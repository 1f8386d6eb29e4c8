#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/Nullable.h>

#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

class BnPropertiesInObject;

/// One configured property of a stored object with its stored value
/// (bn_device_object_property). It is read joined with its catalogue row, so a property whose
/// catalogue row is gone is not read at all. Maps of properties are keyed by property
/// identifier.
class BnDeviceObjectProperty : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DEVICE_OBJECT_PROPERTY = 0;
    static constexpr int _COL_ID_BN_PROPERTY_TYPE = 1;
    static constexpr int _COL_ID_BN_DEVICE_OBJECT = 2;
    static constexpr int _COL_ID_BN_PROPERTIES_IN_OBJECT = 3;
    static constexpr int _COL_ID_DV_PORT = 4;
    static constexpr int _COL_VALUE = 5;
    static constexpr int _COL_POLL_RATE_SEC = 6;

    /// The property identifier is never written by an UPDATE.
    explicit BnDeviceObjectProperty(bool isNew = false);
    /// Copies the row; a catalogue row that the source owns is not shared but read again on
    /// demand, one it merely refers to is referred to by the copy as well.
    BnDeviceObjectProperty(const BnDeviceObjectProperty& other);
    BnDeviceObjectProperty& operator=(const BnDeviceObjectProperty& other);
    ~BnDeviceObjectProperty() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;
    /// The property identifier, so that property maps are keyed by it.
    int operator()() const override;
    /// Compares property identifiers; against an entity of another class the keys.
    bool operator<(const TQ::Utility::Data::Entity& other) const override;
    std::string sqlFrom() const override;
    std::string sqlJoin() const override;
    /// "2": the second selected column, the property identifier.
    std::string sqlOrderBy() const override;

    int getIdBnDeviceObjectProperty() const;
    int getIdBnPropertyType() const;
    int getIdBnDeviceObject() const;
    void setIdBnDeviceObject(int idBnDeviceObject);
    Poco::Nullable<int> getIdBnPropertiesInObject() const;
    Poco::Nullable<int> getIdDvPort() const;
    void setIdDvPort(int idDvPort);
    /// The stored value text; null when the column is NULL.
    Poco::Nullable<std::string> getValueText() const;
    void setValueText(const std::string& text);
    Poco::Nullable<int> getPollRateSec() const;
    /// A null rate stores NULL.
    void setPollRateSec(const Poco::Nullable<int>& seconds);

    /// Makes `row` the catalogue row of this property and copies its key into
    /// id_bn_properties_in_object. A row handed in is not owned; a current row that this
    /// property loaded itself is freed.
    void setBnPropertiesInObject(BnPropertiesInObject* row);
    /// The catalogue row named by id_bn_properties_in_object, read from the database unless a
    /// caller handed one in; null when there is none.
    BnPropertiesInObject* retrieveBnPropertiesInObject();
    /// As `retrieveBnPropertiesInObject`, but only reads when no row is held.
    BnPropertiesInObject* getBnPropertiesInObject();

    /// Columns 0, 1, 2, 3 and 5.
    void printIt() const;

private:
    friend class BnPropertiesInObject;
    /// Points at the catalogue row whose property map holds this entity, leaving the columns
    /// untouched.
    void attachBnPropertiesInObject(BnPropertiesInObject* row);
    void releaseBnPropertiesInObject();

    BnPropertiesInObject* _pBnPropertiesInObject = nullptr;
    bool _ownsBnPropertiesInObject = true;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
