#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace Entity {

using WS::MarkupFactory;

void BnDataTypeEnum::markup(WS::MarkupFactory& factory, unsigned int) const {
    factory.markupNew(MarkupFactory::BT_UNSIGNED, getName(), std::to_string(getValue()),
                      MarkupFactory::MF_COMPLETE | MarkupFactory::MF_OMIT_EMPTY, nullptr);
}

void BnDataTypeEnum::markupAll(WS::MarkupFactory& factory, const std::string& name, unsigned int idConstruct,
                               BASE_TYPE base, ORDER_BY order, unsigned int) {
    std::vector<BnDataTypeEnum> rows;
    if (retrieve(idConstruct, order, rows) < 0) return;
    const bool group = factory.isMetadata(WS::Metadata::METADATA_CAT_VALUE) ||
                       factory.isMetadata(WS::Metadata::METADATA_CAT_ENCODING);
    if (group)
        factory.markupNew(
            base == BASE_TYPE_ENUMERATED ? MarkupFactory::BT_NAMED_VALUES : MarkupFactory::BT_NAMED_BITS,
            name, "", MarkupFactory::MF_OMIT_EMPTY, nullptr);
    for (const BnDataTypeEnum& row : rows) row.markup(factory, 1);
    if (group) factory.closeOpenMarkup();
}

}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
