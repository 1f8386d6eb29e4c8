#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/Entity/Bn.h"

#include "tq_stack/enums.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>
#include <Poco/Nullable.h>

#include <string>
#include <vector>

struct BACnet_Datatype_By_Context_Tag;

namespace TQ {
namespace Utility {
namespace Data {
class EntityServer;
}
}  // namespace Utility
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace Entity {

/// How a data type is built (bn_datatype_construct): the type's top row, with the markup kind
/// that renders it, and its members in order, each pointing at the loaded definition of its
/// own type. Definitions are loaded once per type into a process-wide cache that owns them;
/// the whole tree of a type is reachable from the one pointer `find` returns.
class BnDataTypeConstruct : public Bn {
public:
    static const std::vector<const std::string*> _colNames;
    static constexpr int _COL_ID_BN_DATATYPE_CONSTRUCT = 0;
    static constexpr int _COL_ID_PARENT = 1;
    static constexpr int _COL_ID_BN_DATATYPE = 2;
    static constexpr int _COL_ID_BN_DATATYPE_INTERNAL = 3;
    static constexpr int _COL_CONTEXT_NR = 4;
    static constexpr int _COL_ID_BN_MARKUP = 5;
    static constexpr int _COL_NAME = 6;
    static constexpr int _COL_OPTIONAL = 7;
    static constexpr int _COL_SORT = 8;

    /// The keys of a definition made from a member list rather than read from the catalogue.
    static constexpr int kSyntheticId = 2147483647;

    /// One member of a constructed type.
    struct DataTypeAndName {
        DataTypeAndName() = default;
        DataTypeAndName(const BnDataTypeConstruct* pDTC, const std::string& name,
                        const Poco::Nullable<unsigned int>& idBnMarkup,
                        const Poco::Nullable<unsigned char>& contextNr, unsigned int idBnDataTypeConstruct,
                        unsigned int idParent, bool optional);

        void printIt(int level) const;
        /// Four blanks per level.
        static void printIndents(int level);

        std::string name;  ///< empty when the catalogue gives none
        Poco::Nullable<unsigned int> idBnMarkup;
        Poco::Nullable<unsigned char> contextNr;
        unsigned int idBnDataTypeConstruct = 0;
        unsigned int idParent = 0;
        bool optional = false;
        /// The member type's definition, owned by the cache; null when the member has no type
        /// or its type is not catalogued.
        const BnDataTypeConstruct* pDTC = nullptr;
    };

    explicit BnDataTypeConstruct(bool isNew = false);
    /// A definition that is not in the catalogue: copies of `members`, keys kSyntheticId.
    explicit BnDataTypeConstruct(const std::vector<DataTypeAndName>& members);

    const std::string& getTableName() const override;
    const std::vector<const std::string*>& getColNames() const override;
    void setPK(int pk, bool flag) override;

    int getIdBnDataTypeConstruct() const;
    Poco::Nullable<int> getIdParent() const;
    int getIdBnDataType() const;
    Poco::Nullable<unsigned int> getIdBnDataTypeInternal() const;
    Poco::Nullable<unsigned char> getContextNr() const;
    Poco::Nullable<unsigned int> getIdBnMarkup() const;
    Poco::Nullable<std::string> getName() const;
    bool isOptional() const;
    unsigned int getSort() const;
    const std::vector<DataTypeAndName>& getInternalBDTCs() const noexcept { return _internalBDTCs; }

    /// The cached definition of `type`, loaded on first use; null when the catalogue has no
    /// row for it.
    static const BnDataTypeConstruct* find(BACnetDataType type,
                                           TQ::Utility::Data::EntityServer* server = nullptr);
    static const BnDataTypeConstruct* retrieve(BACnetDataType type, TQ::Utility::Data::EntityServer& server);
    /// Frees every cached definition. Pointers handed out before are invalid afterwards, so no
    /// other thread may hold one.
    static void clearCash();

    /// The data type of a property as the catalogue gives it (0 when it does not know it).
    static BACnetDataType get_datatype(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID property);
    /// The record of the member tagged `contextTag` inside the type of `parent`, which becomes
    /// its owner (a previous child of `parent` is freed); null, leaving `parent` unchanged,
    /// when the type or such a member is unknown.
    static BACnet_Datatype_By_Context_Tag* get_datatype_by_context(BACnet_Datatype_By_Context_Tag* parent,
                                                                   int contextTag);
    /// Frees a record with everything it owns and nulls the pointer.
    static void deleteBdbct(BACnet_Datatype_By_Context_Tag** record);

    void printIt(int level) const;

    /// Writes the definition as a type description: one markup of the type's kind named after
    /// the type, holding its members (or, for an enumeration or bit string, its names).
    void markup(WS::MarkupFactory& factory, unsigned int flags) const;
    /// The members, each with its type and that type's own description.
    void markupInternals(WS::MarkupFactory& factory) const;

    /// The members in sort order; empty for a primitive or enumerated type. Walked by the
    /// renderer and the JSON encoder.
    std::vector<DataTypeAndName> _internalBDTCs;

private:
    static const BnDataTypeConstruct* load(BACnetDataType type, TQ::Utility::Data::EntityServer& server);

    static Poco::HashMap<int, const BnDataTypeConstruct*> _bdtc;
    static Poco::Mutex _mutexBdtc;
};

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
