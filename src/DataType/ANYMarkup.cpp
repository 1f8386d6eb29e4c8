#include "TQ_BACnet/DataType/ANY.h"

#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/rpm.h"

#include <Poco/Exception.h>

#include <cstring>

namespace TQ {
namespace BACnet {
namespace DataType {

using WS::MarkupFactory;

namespace {

constexpr auto kPriorityArray = static_cast<BACnetDataType>(TQ::Catalogue::DataType::BACnetPriorityArray);

// The held bytes decoded into the codec's chain of values, guided by the catalogue; released
// with the object.
class DecodedRun {
public:
    DecodedRun(const uint8_t* bytes, unsigned length, BACnetDataType type, const ANY::PropertyRef& ref) {
        std::memset(&_data, 0, sizeof _data);
        init_bacnet_datatype_by_context_tag(_guide, static_cast<int>(type));
        if (bytes == nullptr || length == 0) return;
        try {
            _ok = bacapp_fully_decode_value(
                      bytes, length, OBJECT_DEVICE, 0, ref.property, static_cast<uint32_t>(ref.arrayIndex),
                      _guide, &Entity::BnDataTypeConstruct::get_datatype_by_context, &_data) >= 0;
        } catch (const Poco::Exception&) {
            _ok = false;  // a catalogue that cannot be read decodes nothing
        }
    }
    ~DecodedRun() {
        free_BACNET_READ_ACCESS_DATA_Internals(&_data);
        Entity::BnDataTypeConstruct::deleteBdbct(&_guide);
    }
    DecodedRun(const DecodedRun&) = delete;
    DecodedRun& operator=(const DecodedRun&) = delete;

    const BACnet_Application_Data_Value* first() const {
        return _ok && _data.listOfProperties != nullptr ? _data.listOfProperties->value : nullptr;
    }
    unsigned int arrayIndex() const {
        return _ok && _data.listOfProperties != nullptr ? _data.listOfProperties->propertyArrayIndex : 0;
    }

private:
    BACnet_Datatype_By_Context_Tag* _guide = new BACnet_Datatype_By_Context_Tag;
    BACNET_READ_ACCESS_DATA _data;
    bool _ok = false;
};

// A whole-value rendering for single values and for types that are lists of their own (the
// priority array and every other sequence-of type), element by element otherwise.
bool rendersWhole(const DataPropertyInObject0& descriptor) {
    if (descriptor.structure == BACNET_DTS_SINGLE_VALUE || descriptor.datatype == kPriorityArray) return true;
    try {
        const Entity::BnDataTypeConstruct* definition =
            Entity::BnDataTypeConstruct::find(descriptor.datatype);
        const Poco::Nullable<unsigned int> kind =
            definition ? definition->getIdBnMarkup() : Poco::Nullable<unsigned int>();
        return !kind.isNull() && kind.value() == MarkupFactory::BT_SEQUENCE_OF;
    } catch (const Poco::Exception&) {
        return false;
    }
}

bool isCatalogued(BACnetDataType type) {
    try {
        return Entity::BnDataTypeConstruct::find(type) != nullptr;
    } catch (const Poco::Exception&) {
        return false;
    }
}

void markRest(MarkupFactory& factory, const std::string& name, BACnetDataType type, bool root) {
    factory.markup(MarkupFactory::BT_ANY, name, "truncated", true, false, type, root, "",
                   factory.getLastErrorCode(), factory.getLastErrorText(), "", "", true);
}

}  // namespace

void ANY::markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    markup(factory, name, arrayMarker, false, -1);
}

int ANY::markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker, bool root, int) const {
    const DecodedRun run(_value.data(), static_cast<unsigned>(_value.size()), _descriptor.datatype, _ref);
    const BACnet_Application_Data_Value* cursor = run.first();
    if (cursor == nullptr) return 0;
    const BACnetDataType type = _descriptor.datatype;
    if (!isCatalogued(type)) {
        // Rendered as the "truncated" Any that says so; nothing more to mark.
        factory.markup2(type, &cursor, name, root, Poco::Nullable<unsigned char>());
        return 0;
    }

    if (rendersWhole(_descriptor)) {
        const std::size_t before = factory.getMarkupCount();
        const bool ok = factory.markup2(type, &cursor, name, root, Poco::Nullable<unsigned char>());
        if (ok && cursor != nullptr)
            factory.setLastError(MarkupFactory::ERROR_RENDERING,
                                 "ANY::markup() values left over after data-type=" + std::to_string(type));
        // What did not render is marked, where a mark can stand: beside the value, or in its
        // place when nothing was written.
        if (factory.getMarkupCount() == before)
            markRest(factory, name, type, root);
        else if ((!ok || cursor != nullptr) && !root)
            markRest(factory, "truncated", type, false);
        return ok && cursor == nullptr ? 1 : 0;
    }

    const auto collection =
        _descriptor.structure == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
    factory.markup(collection, name, "", false, arrayMarker, type, root);
    bool ok = true;
    for (unsigned int index = MarkupFactory::initArrayIdx(run.arrayIndex()); cursor != nullptr && ok;
         ++index) {
        const BACnet_Application_Data_Value* before = cursor;
        ok = factory.markup2(type, &cursor, MarkupFactory::arrayIndexAsString(index), false,
                             Poco::Nullable<unsigned char>());
        if (cursor == before) ok = false;  // no progress: the rest cannot be read as elements
        if (!ok) markRest(factory, "truncated", type, false);
    }
    factory.closeOpenMarkup();
    return ok ? 1 : 0;
}

void ANY::markupTruncated(WS::MarkupFactory& factory, const std::string& name, bool root, int maxElements,
                          const std::string& comment, const std::string& errorText) const {
    const BACnetDataType type = _descriptor.datatype;
    if (rendersWhole(_descriptor)) {
        const Entity::BnDataTypeConstruct* definition = nullptr;
        try {
            definition = Entity::BnDataTypeConstruct::find(type);
        } catch (const Poco::Exception&) {
        }
        const Poco::Nullable<unsigned int> kind =
            definition ? definition->getIdBnMarkup() : Poco::Nullable<unsigned int>();
        const auto baseType =
            static_cast<MarkupFactory::BaseType>(kind.isNull() ? MarkupFactory::BT_ANY : kind.value());
        const std::string typeName = definition ? Entity::BnDataType::find(type) : std::string();
        factory.markup(baseType, name, "", true, false, type, root, comment, 0, errorText, "", typeName,
                       true);
        return;
    }
    const DecodedRun run(_value.data(), static_cast<unsigned>(_value.size()), type, _ref);
    const BACnet_Application_Data_Value* cursor = run.first();
    const auto collection =
        _descriptor.structure == BACNET_DTS_LIST ? MarkupFactory::BT_LIST : MarkupFactory::BT_ARRAY;
    factory.markup(collection, name, "", false, false, type, root, comment, 0, errorText, "", "", true);
    unsigned int index = MarkupFactory::initArrayIdx(run.arrayIndex());
    for (int shown = 0; cursor != nullptr && shown < maxElements; ++shown, ++index) {
        if (!factory.markup2(type, &cursor, MarkupFactory::arrayIndexAsString(index), false,
                             Poco::Nullable<unsigned char>()))
            break;
    }
    if (cursor != nullptr) markRest(factory, "truncated", type, false);
    factory.closeOpenMarkup();
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
