#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

#include <algorithm>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {

using WS::MarkupFactory;

namespace {

// Enumerations and bit strings of the catalogue's own numbering.
constexpr int kNamedTypesBegin = 5000;
constexpr int kNamedTypesEnd = 6999;

// The types being described on this thread, outermost first: a type that contains itself is
// named again but not expanded again.
thread_local std::vector<int> describing;

bool listsNames(unsigned int kind) {
    return kind == MarkupFactory::BT_BIT_STRING || kind == MarkupFactory::BT_ENUMERATED;
}

BnDataTypeEnum::BASE_TYPE nameKind(unsigned int kind) {
    return kind == MarkupFactory::BT_ENUMERATED ? BnDataTypeEnum::BASE_TYPE_ENUMERATED
                                                : BnDataTypeEnum::BASE_TYPE_BIT_STRING;
}

// Opens one markup and reports whether it was (an invalid kind writes and opens nothing).
bool open(MarkupFactory& factory, unsigned int kind, const std::string& name, unsigned int flags,
          const std::vector<WS::MetadataValue>* metadata) {
    const std::size_t before = factory.getOpenMarkupCount();
    factory.markupNew(static_cast<MarkupFactory::BaseType>(kind), name, "", flags, metadata);
    return factory.getOpenMarkupCount() > before;
}

}  // namespace

void BnDataTypeConstruct::markup(WS::MarkupFactory& factory, unsigned int flags) const {
    const Poco::Nullable<unsigned int> markupKind = getIdBnMarkup();
    const unsigned int kind = markupKind.isNull() ? 0u : markupKind.value();
    const int type = getIdBnDataType();
    if (!open(factory, kind, BnDataType::find(static_cast<BACnetDataType>(type)),
              (flags & ~(MarkupFactory::MF_COMPLETE | MarkupFactory::MF_OMIT_EMPTY)) |
                  MarkupFactory::MF_OMIT_EMPTY,
              nullptr))
        return;
    if (listsNames(kind)) {
        BnDataTypeEnum::markupAll(factory, "", static_cast<unsigned int>(getIdBnDataTypeConstruct()),
                                  nameKind(kind), BnDataTypeEnum::ORDER_BY_VALUE, 0);
    } else if (std::find(describing.begin(), describing.end(), type) == describing.end()) {
        describing.push_back(type);
        markupInternals(factory);
        describing.pop_back();
    }
    factory.closeOpenMarkup();
}

void BnDataTypeConstruct::markupInternals(WS::MarkupFactory& factory) const {
    for (const DataTypeAndName& member : _internalBDTCs) {
        unsigned int kind = 0;
        if (!member.idBnMarkup.isNull() && member.idBnMarkup.value() != 0) {
            kind = member.idBnMarkup.value();
        } else if (member.pDTC != nullptr) {
            const Poco::Nullable<unsigned int> own = member.pDTC->getIdBnMarkup();
            kind = own.isNull() ? 0u : own.value();
        }
        // A member without a catalogued type (an inline group's head) is named with its kind only.
        const int type = member.pDTC ? member.pDTC->getIdBnDataType() : -1;
        if (listsNames(kind) && type >= kNamedTypesBegin && type <= kNamedTypesEnd) {
            if (!open(factory, kind, member.name, MarkupFactory::MF_OMIT_EMPTY, nullptr)) continue;
            BnDataTypeEnum::markupAll(factory, "",
                                      static_cast<unsigned int>(member.pDTC->getIdBnDataTypeConstruct()),
                                      nameKind(kind), BnDataTypeEnum::ORDER_BY_VALUE, 0);
            factory.closeOpenMarkup();
            continue;
        }
        std::vector<WS::MetadataValue> metadata;
        if (type >= 0) {
            const auto item = MarkupFactory::isCollection(static_cast<MarkupFactory::BaseType>(kind))
                                  ? WS::Metadata::METADATA_MEMBER_TYPE
                                  : WS::Metadata::METADATA_TYPE;
            metadata.emplace_back(item, BnDataType::find(static_cast<BACnetDataType>(type)));
        }
        if (!open(factory, kind, member.name, MarkupFactory::MF_OMIT_EMPTY,
                  metadata.empty() ? nullptr : &metadata))
            continue;
        if (member.pDTC != nullptr && type > static_cast<int>(BACNET_DT_MAX_APPLICATION_TAG))
            member.pDTC->markup(factory, 0);
        factory.closeOpenMarkup();
    }
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
