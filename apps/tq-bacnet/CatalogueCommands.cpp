// Commands that show the catalogue: data types, a type's definition, the properties of an
// object type and the names of an enumeration or bit string.
#include "Catalogue.h"
#include "Commands.h"
#include "Render.h"

#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnPropertiesInObject.h"
#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace Apps {

namespace {

using BACnet::WS::MarkupFactory;
using BACnet::Entity::BnDataType;
using BACnet::Entity::BnDataTypeConstruct;
using BACnet::Entity::BnDataTypeEnum;
using BACnet::Entity::BnPropertiesInObject;

constexpr unsigned kEnumerationsLow = 5000, kEnumerationsHigh = 6999;

/// A data type by number or by its catalogue name; InputError when the catalogue lacks it.
const BnDataTypeConstruct& dataTypeOf(const std::string& text) {
    const bool number = text.find_first_not_of("0123456789") == std::string::npos && !text.empty();
    const auto type = number ? static_cast<BACnet::BACnetDataType>(parseNumber(text, 0, 0xFFFFFFFEL, "data type"))
                             : BnDataType::findReverse(text);
    const BnDataTypeConstruct* definition = BnDataTypeConstruct::find(type);
    if (definition == nullptr) throw InputError("the catalogue has no data type \"" + text + "\"");
    return *definition;
}

int runTypes(const Args& args, std::ostream& out) {
    args.expectPositionals(0, 0);
    Catalogue catalogue(args);
    std::vector<BnDataType::Record> types;
    BnDataType::retrieveAllUserVisible(types);
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(MarkupFactory::BT_LIST, "types", "", false, false, BACnet::BACNET_DT_NULL, true);
        for (const BnDataType::Record& type : types) {
            factory.markup(MarkupFactory::BT_UNSIGNED, type.name, std::to_string(type.id), true, false,
                           BACnet::BACNET_DT_NULL, false);
        }
        return true;
    });
    return EXIT_OK;
}

int runType(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    const BnDataTypeConstruct& definition = dataTypeOf(args.positionals()[0]);
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        definition.markup(factory, MarkupFactory::MF_ROOT);
        return true;
    });
    return EXIT_OK;
}

int runEnum(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    const BnDataTypeConstruct& definition = dataTypeOf(args.positionals()[0]);
    const auto type = static_cast<unsigned>(definition.getIdBnDataType());
    if (type < kEnumerationsLow || type > kEnumerationsHigh) {
        throw InputError("\"" + args.positionals()[0] + "\" is no enumeration or bit string");
    }
    const bool bits = BnDataTypeEnum::getBitCount(definition.getIdBnDataTypeConstruct()) > 0;
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(bits ? MarkupFactory::BT_NAMED_BITS : MarkupFactory::BT_NAMED_VALUES,
                       BnDataType::find(static_cast<BACnet::BACnetDataType>(definition.getIdBnDataType())), "", false, false, BACnet::BACNET_DT_NULL, true);
        BnDataTypeEnum::markupAll(factory, "", definition.getIdBnDataTypeConstruct(),
                                  bits ? BnDataTypeEnum::BASE_TYPE_BIT_STRING : BnDataTypeEnum::BASE_TYPE_ENUMERATED,
                                  BnDataTypeEnum::ORDER_BY_VALUE, 0);
        return true;
    });
    return EXIT_OK;
}

/// One property with its data type, shape and conformance.
void markupProperty(MarkupFactory& factory, BACNET_OBJECT_TYPE objectType, int property, const char* conformance) {
    const auto id = static_cast<BACNET_PROPERTY_ID>(property);
    const BACnet::DataPropertyInObject0 descriptor = describe(objectType, id);
    static const char* const shapes[] = {"single", "array", "list"};
    factory.markup(MarkupFactory::BT_SEQUENCE, propertyName(id), "", false, false, BACnet::BACNET_DT_NULL, false);
    const auto text = [&factory](const std::string& name, const std::string& value) {
        factory.markup(MarkupFactory::BT_STRING, name, value, true, false, BACnet::BACNET_DT_NULL, false);
    };
    text("datatype", BnDataType::find(descriptor.datatype));
    text("structure", shapes[descriptor.structure % 3]);
    text("conformance", conformance);
    factory.closeOpenMarkup();
}

int runProperties(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    const BACNET_OBJECT_TYPE objectType = parseObjectType(args.positionals()[0]);
    // The listings take exclusive bounds: each pair selects one conformance class.
    const struct {
        BnPropertiesInObject::Optional above, below;
        const char* conformance;
    } classes[] = {
        {BnPropertiesInObject::OPTIONAL_NONE, BnPropertiesInObject::OPTIONAL_REQUIRED_WRITABLE, "R"},
        {BnPropertiesInObject::OPTIONAL_REQUIRED, BnPropertiesInObject::OPTIONAL_OPTIONAL, "W"},
        {BnPropertiesInObject::OPTIONAL_REQUIRED_WRITABLE, BnPropertiesInObject::OPTIONAL_ALL, "O"},
    };
    std::vector<std::pair<int, const char*>> properties;
    for (const auto& cls : classes) {
        std::vector<int> ids;
        BnPropertiesInObject::retrieve(objectType, cls.above, cls.below, ids);
        for (int id : ids) {
            if (id >= 0) properties.emplace_back(id, cls.conformance);
        }
    }
    if (properties.empty()) throw InputError("the catalogue lists no properties of " + objectTypeName(objectType));
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(MarkupFactory::BT_SEQUENCE, objectTypeName(objectType), "", false, false,
                       BACnet::BACNET_DT_NULL, true);
        for (const auto& property : properties) markupProperty(factory, objectType, property.first, property.second);
        return true;
    });
    return EXIT_OK;
}

}  // namespace

std::vector<Command> catalogueCommands() {
    std::vector<OptionInfo> options = renderOptions();
    return {
        {"types", "the data types of the catalogue with their numbers", "[--alt xml|json]", options,
         "tq-bacnet types --alt json", runTypes},
        {"type", "the definition of a data type: members, context tags, member types", "NAME|NUMBER", options,
         "tq-bacnet type BACnetDateTime --alt json", runType},
        {"properties", "the properties of an object type: data type, shape, conformance (R, W, O)", "TYPE",
         options, "tq-bacnet properties analog-value --alt json", runProperties},
        {"enum", "the names of an enumeration or bit string by value", "NAME|NUMBER", options,
         "tq-bacnet enum BACnetEventState --alt json", runEnum},
    };
}

}  // namespace Apps
}  // namespace TQ
