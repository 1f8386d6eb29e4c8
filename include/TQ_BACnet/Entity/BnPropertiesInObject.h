#pragma once

#include "TQ_BACnet/Entity/Bn.h"
#include "TQ_BACnet/Entity/BnDeviceObjectProperty.h"

#include "tq_stack/enums.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/Nullable.h>

#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

/// The catalogue of which properties each object type has and how each is typed
/// (bn_properties_in_object).
class BnPropertiesInObject : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_PROPERTIES_IN_OBJECT = 0;
    static constexpr int _COL_ID_BN_OBJECT_TYPE = 1;
    static constexpr int _COL_ID_BN_PROPERTY_TYPE = 2;
    static constexpr int _COL_OPTIONAL = 3;
    static constexpr int _COL_EMPTY_ALLOWED = 4;
    static constexpr int _COL_DEFAULT_VALUE = 5;
    static constexpr int _COL_ID_BN_DATATYPE = 6;
    static constexpr int _COL_TAG = 7;
    static constexpr int _COL_TAG_STRUCTURE = 8;
    static constexpr int _COL_LIST_REQUEST_TYPES = 9;
    static constexpr int _COL_DESCRIPTION = 10;
    static constexpr int _COL_MANAGED_INTERNALLY = 11;

    /// The class of a property held in the optional column. The listings take two of them as
    /// exclusive bounds: (OPTIONAL_NONE, OPTIONAL_OPTIONAL) gives the required properties,
    /// writable or not, (OPTIONAL_NONE, OPTIONAL_ALL) every property.
    enum Optional : int {
        OPTIONAL_NONE = 0,
        OPTIONAL_REQUIRED = 1,
        OPTIONAL_REQUIRED_WRITABLE = 2,
        OPTIONAL_OPTIONAL = 3,
        OPTIONAL_ALL = 1000
    };

    explicit BnPropertiesInObject(bool isNew = false);
    /// Copies the row and its loaded property map; the copied properties belong to the copy.
    BnPropertiesInObject(const BnPropertiesInObject& other);
    BnPropertiesInObject& operator=(const BnPropertiesInObject& other);
    ~BnPropertiesInObject() override;

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    /// Also writes the key into id_bn_properties_in_object of every loaded stored property.
    void setPK(int pk, bool flag) override;

    /// Reads the catalogue row of this object type and property into this entity (dropping a
    /// loaded property map); returns the row count, below 1 when the catalogue has none.
    int retrieve(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property);

    /// The property identifiers of `objectType` whose class lies strictly between `above` and
    /// `below`, in display order, followed by -1; the property list (371) is never listed.
    /// Returns the count without the terminator.
    static int retrieve(BACNET_OBJECT_TYPE objectType, Optional above, Optional below,
                        std::vector<int>& propertyIds);

    /// True for a single Unsigned, Signed, Real or Double; null when the catalogue lacks the
    /// property.
    static Poco::Nullable<bool> isNumeric(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property);

    /// The stored properties that use this catalogue row, keyed by property identifier, read
    /// on first use; null when there are none.
    std::map<int, BnDeviceObjectProperty>* getBnDeviceObjectProperties();
    /// (Re)reads that map, narrowed by `where` (ANDed) with its `binds` when given.
    std::map<int, BnDeviceObjectProperty>* retrieveBnDeviceObjectProperties(
        std::string* where = nullptr, const std::vector<Poco::Dynamic::Var>* binds = nullptr);
    /// The stored property with key `id` (its property identifier), or null.
    BnDeviceObjectProperty* findBnDeviceObjectProperty(int id);

    int getIdBnPropertiesInObject() const;
    int getIdBnObjectType() const;
    int getIdBnPropertyType() const;
    int getOptional() const;
    bool isEmptyAllowed() const;
    const Poco::Dynamic::Var& getDefaultValue() const;
    int getIdBnDataType() const;
    int getTag() const;
    int getTagStructure() const;
    const Poco::Dynamic::Var& getListRequestTypes() const;
    Poco::Nullable<std::string> getDescription() const;
    int getManagedInternally() const;

    void printIt() const;

private:
    void dropBnDeviceObjectProperties();
    void copyBnDeviceObjectProperties(const BnPropertiesInObject& other);

    std::map<int, BnDeviceObjectProperty>* _pBnDeviceObjectProperties = nullptr;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
