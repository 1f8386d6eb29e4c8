#pragma once

#include "TQ_BACnet/Entity/Bn.h"

#include "TQ/Utility/Data/DataAutoIncrement.h"
#include "tq_stack/enums.h"

#include <Poco/Nullable.h>

#include <string>
#include <vector>

namespace Poco {
namespace Data {
class Statement;
}
}  // namespace Poco

namespace TQ {
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {

class ValueContainer;

namespace Entity {

class BnDeviceObject;
class BnDeviceObjectPropertyValue;
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

    /// Property classes as bounds of `retrievePropertyIDs`: the values of
    /// BnPropertiesInObject::Optional (checked where both are known).
    enum Optional : int {
        OPTIONAL_NONE = 0,
        OPTIONAL_REQUIRED = 1,
        OPTIONAL_REQUIRED_WRITABLE = 2,
        OPTIONAL_OPTIONAL = 3,
        OPTIONAL_ALL = 1000
    };

    /// The property identifier is never written by an UPDATE.
    explicit BnDeviceObjectProperty(bool isNew = false);
    /// Copies the row and the value row; a catalogue row or object that the source owns is not
    /// shared but read again on demand, one it merely refers to is referred to by the copy.
    BnDeviceObjectProperty(const BnDeviceObjectProperty& other);
    BnDeviceObjectProperty& operator=(const BnDeviceObjectProperty& other);
    ~BnDeviceObjectProperty() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    /// Also writes the key into id_bn_device_object_property of the held value row.
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

    /// Links the property to catalogue row `id`: column 1 takes that row's property identifier
    /// and column 3 the key. An unknown row changes nothing.
    void setIdBnPropertiesInObject(int id);
    /// Links the property to the catalogue row of its object's type and `property`; nothing
    /// changes when the object or that row is missing.
    void setPropertyIdentifier(BACNET_PROPERTY_ID property);
    /// Stores the value's text form.
    void setValue(const ValueContainer& value);
    /// The stored text read back with the catalogue row's data type and tag. Without a
    /// catalogue row Poco::NullPointerException.
    ValueContainer& getValue(ValueContainer& value);

    /// The object: one handed in is not owned (null: none); its key goes into
    /// id_bn_device_object.
    void setBnDeviceObject(BnDeviceObject* object);
    BnDeviceObject* retrieveBnDeviceObject();
    BnDeviceObject* getBnDeviceObject();

    /// Replaces the held value row by a copy of `row` that points at this property.
    void addBnDeviceObjectPropertyValue(const BnDeviceObjectPropertyValue& row);
    /// Reads the value row of this property; null when there is none.
    BnDeviceObjectPropertyValue* retrieveBnDeviceObjectPropertyValue();
    BnDeviceObjectPropertyValue* getBnDeviceObjectPropertyValue();

    /// Writes this property and its value row; the rows written.
    int updateAll(TQ::Utility::Data::EntityServer& server,
                  std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements);

    /// Sets the value column of row `id`. With `statement` null a statement is made for this
    /// call; otherwise `statement` is prepared on its first call and re-executed on every
    /// later one, so the caller passes the same statement object again and keeps it alive
    /// (a different object, e.g. one made after the first failed, is prepared anew). Returns 1.
    static int dbUpdatePropertyValue(int id, const std::string& value, Poco::Data::Statement* statement);
    /// The value text of row `id` ("NULL" for a NULL value); false, `value` untouched, when
    /// there is no such row.
    static bool dbGetPropertyValue(int id, std::string& value);
    /// The property identifiers stored for object `idDeviceObject` whose class lies strictly
    /// between `above` and `below`, in display order, followed by -1 (371, the property list,
    /// never appears); the count without the -1.
    static int retrievePropertyIDs(unsigned int idDeviceObject, Optional above, Optional below,
                                   std::vector<int>& propertyIds);

    /// Columns 0, 1, 2, 3 and 5.
    void printIt() const;

private:
    friend class BnPropertiesInObject;
    friend class BnDeviceObject;
    void attachBnDeviceObject(BnDeviceObject* object);
    void linkCatalogueRow(int property, int idPropertiesInObject);
    /// Points at the catalogue row whose property map holds this entity, leaving the columns
    /// untouched.
    void attachBnPropertiesInObject(BnPropertiesInObject* row);
    void releaseBnPropertiesInObject();

    BnPropertiesInObject* _pBnPropertiesInObject = nullptr;
    bool _ownsBnPropertiesInObject = true;
    BnDeviceObject* _pBnDeviceObject = nullptr;
    bool _ownsBnDeviceObject = true;
    BnDeviceObjectPropertyValue* _pValue = nullptr;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
