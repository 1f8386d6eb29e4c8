// The guide through which the protocol stack learns, while it decodes a constructed value,
// which data type each context-tagged member has.

#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include "tq_stack/context_decode.h"

#include <exception>

namespace TQ {
namespace BACnet {
namespace Entity {

namespace {

const BnDataTypeConstruct::DataTypeAndName* memberByContext(const BnDataTypeConstruct& definition,
                                                            int contextTag) {
    for (const BnDataTypeConstruct::DataTypeAndName& member : definition.getInternalBDTCs())
        if (!member.contextNr.isNull() && member.contextNr.value() == contextTag) return &member;
    return nullptr;
}

}  // namespace

BACnet_Datatype_By_Context_Tag* BnDataTypeConstruct::get_datatype_by_context(
    BACnet_Datatype_By_Context_Tag* parent, int contextTag) {
    if (!parent || parent->datatype < 0) return nullptr;
    const BnDataTypeConstruct* definition = nullptr;
    try {
        definition = find(static_cast<BACnetDataType>(parent->datatype));
    } catch (const std::exception&) {
        // The stack calls this in the middle of a decode and cannot pass an exception on
        // without leaking what it decoded so far; an unreadable catalogue makes the member
        // unknown, which the stack keeps as raw bytes.
        return nullptr;
    }
    if (!definition) return nullptr;
    const DataTypeAndName* member = memberByContext(*definition, contextTag);
    if (!member) return nullptr;

    parent->context_tag = static_cast<uint8_t>(contextTag);
    BACnet_Datatype_By_Context_Tag* record = new BACnet_Datatype_By_Context_Tag;
    init_bacnet_datatype_by_context_tag(record);
    if (!member->pDTC) {
        record->datatype = BACNET_DT_UNKNOWN;
        record->markup = member->idBnMarkup.isNull() ? BACNET_MARKUP_NONE : member->idBnMarkup.value();
    } else {
        record->datatype = member->pDTC->getIdBnDataType();
        Poco::Nullable<unsigned int> markup = member->pDTC->getIdBnMarkup();
        record->markup = markup.isNull() ? BACNET_MARKUP_NONE : markup.value();
    }
    record->parent = parent;
    deleteBdbct(&parent->child);
    parent->child = record;
    return record;
}

void BnDataTypeConstruct::deleteBdbct(BACnet_Datatype_By_Context_Tag** record) {
    if (!record || !*record) return;
    deleteBdbct(&(*record)->child);
    deleteBdbct(&(*record)->second);
    delete *record;
    *record = nullptr;
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
