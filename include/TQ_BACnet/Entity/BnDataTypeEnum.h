#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/Entity/Bn.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>

#include <string>
#include <vector>

namespace TQ {
namespace Utility {
class BitBuffer;
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace Entity {

/// The names of enumeration values and bit numbers (bn_datatype_enum), per construct row of
/// the enumerated or bit-string type. Lookups are answered from process-wide caches that only
/// grow; misses go to the database every time. Construct 121 (the object types supported)
/// shares the names of construct 120 (the object types).
class BnDataTypeEnum : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DATATYPE_ENUM = 0;
    static constexpr int _COL_ID_BN_DATATYPE_CONSTRUCT = 1;
    static constexpr int _COL_VALUE = 2;
    static constexpr int _COL_NAME = 3;

    /// Constructs other parts of the library name by number.
    static constexpr unsigned int kObjectTypes = 120;
    static constexpr unsigned int kObjectTypesSupported = 121;
    static constexpr unsigned int kPropertyIdentifiers = 51;
    static constexpr unsigned int kNotFound = 0xFFFFFFFFu;

    /// ORDER_BY_VALUE lists by value (bit number), any other value by name.
    enum ORDER_BY { ORDER_BY_NAME = 0, ORDER_BY_VALUE = 1 };
    /// The kind of names listed: an enumeration's or a bit string's.
    enum BASE_TYPE { BASE_TYPE_ENUMERATED = 0, BASE_TYPE_BIT_STRING = 1 };

    explicit BnDataTypeEnum(bool isNew = false);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnDataTypeEnum() const;
    unsigned int getIdBnDataTypeConstruct() const;
    unsigned int getValue() const;
    std::string getName() const;

    /// The construct in the upper bits, the low 16 bits of the value below.
    static unsigned int getHashKey(unsigned int idConstruct, unsigned int value) noexcept {
        return (idConstruct << 16) | (value & 0xFFFFu);
    }
    /// The construct in upper-case hexadecimal of at least four digits, then the name.
    static std::string getHashKeyReverse(unsigned int idConstruct, const std::string& name);

    /// The name of `value` in construct `idConstruct`, or empty.
    static std::string find(unsigned int idConstruct, unsigned int value,
                            TQ::Utility::Data::EntityServer* server = nullptr);
    static std::string retrieve(unsigned int idConstruct, unsigned int value,
                                TQ::Utility::Data::EntityServer& server);
    /// The value called exactly `name` in construct `idConstruct`, or kNotFound.
    static unsigned int findReverse(unsigned int idConstruct, const std::string& name,
                                    TQ::Utility::Data::EntityServer* server = nullptr);
    static unsigned int retrieveReverse(unsigned int idConstruct, const std::string& name,
                                        TQ::Utility::Data::EntityServer& server);

    /// The name, or the value in decimal when there is none; `*found` tells which.
    static std::string getEnumNameById(unsigned int idConstruct, unsigned int value,
                                       TQ::Utility::Data::EntityServer* server = nullptr,
                                       bool* found = nullptr);
    /// As `getEnumNameById` for the construct of data type `type`.
    static std::string getEnumNameByType(BACnetDataType type, unsigned int value,
                                         TQ::Utility::Data::EntityServer* server = nullptr,
                                         bool* found = nullptr);
    static unsigned int getEnumValueById(unsigned int idConstruct, const std::string& name,
                                         TQ::Utility::Data::EntityServer* server = nullptr);
    /// kNotFound when the type has no construct or no such name.
    static unsigned int getEnumValueByType(BACnetDataType type, const std::string& name,
                                           TQ::Utility::Data::EntityServer* server = nullptr);

    /// The bit count of a bit-string construct (its highest bit number plus one), or -1.
    static int getBitCount(unsigned int idConstruct, TQ::Utility::Data::EntityServer* server = nullptr);
    static int retrieveBitCount(unsigned int idConstruct, TQ::Utility::Data::EntityServer& server);

    /// Sizes `bits` to the construct's bit count and sets the bits named in `names`
    /// (separated by ";"). False for an unknown construct, or at the first empty or unknown
    /// name (bits set before it stay set).
    static bool getBitString(unsigned int idConstruct, const std::string& names, TQ::Utility::BitBuffer& bits,
                             TQ::Utility::Data::EntityServer* server = nullptr);
    /// The same, giving the bits as text ("true,false,..."); `text` is untouched on failure.
    static bool getBitString(unsigned int idConstruct, const std::string& names, std::string& text,
                             TQ::Utility::Data::EntityServer* server = nullptr);

    /// All rows of a construct in the given order; the row count.
    static int retrieve(unsigned int idConstruct, ORDER_BY order, std::vector<BnDataTypeEnum>& out,
                        TQ::Utility::Data::EntityServer* server = nullptr);

    void printIt() const;

    /// This row as one complete Unsigned markup: its name, its value.
    void markup(WS::MarkupFactory& factory, unsigned int level) const;
    /// Every row of a construct; grouped under a NamedValues (or NamedBits) markup called `name`
    /// when the factory shows the value or encoding categories.
    static void markupAll(WS::MarkupFactory& factory, const std::string& name, unsigned int idConstruct,
                          BASE_TYPE base, ORDER_BY order, unsigned int level);

private:
    static unsigned int alias(unsigned int idConstruct) noexcept {
        return idConstruct == kObjectTypesSupported ? kObjectTypes : idConstruct;
    }
    static void remember(unsigned int idConstruct, unsigned int value, const std::string& name);
    static Poco::UInt64 getWideKey(unsigned int idConstruct, unsigned int value) noexcept {
        return (static_cast<Poco::UInt64>(idConstruct) << 32) | value;
    }

    static Poco::HashMap<unsigned int, std::string> _enums;
    // Values above 0xFFFF (proprietary ones) do not fit the 16-bit key: they are kept apart,
    // keyed by the construct and the whole value.
    static Poco::HashMap<Poco::UInt64, std::string> _enumsWide;
    static Poco::HashMap<std::string, unsigned int> _enumsReverse;
    static Poco::HashMap<unsigned int, int> _bitCnt;
    static Poco::FastMutex _mutexEnums;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
