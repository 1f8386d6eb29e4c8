// A ValueContainer shown to people: rendered for the web services and printed on one line.
#include "TQ_BACnet/ValueContainer.h"

#include "TQ_BACnet/WS/MarkupFactory.h"
#include "ValueContainerClasses.h"
#include "tq_stack/context_decode.h"

#include <Poco/NumberFormatter.h>

#include <initializer_list>

namespace TQ {
namespace BACnet {

namespace {

using WS::MarkupFactory;

// Through the base: some classes hide the virtual forms behind their own overloads.
const DataType::BACnetComplex& base(const DataType::BACnetComplex& object) {
    return object;
}

void appendPrimitive(std::string& out, const DataApplicationValue& value) {
    if (value.context_specific) {
        out += '[';
        Poco::NumberFormatter::append(out, static_cast<unsigned>(value.context_tag));
        out += "] ";
    }
    if (value.tag == static_cast<BACNET_APPLICATION_TAG>(BACNET_PSEUDO_TAG_OPENING)) {
        out += '{';
    } else if (value.tag == static_cast<BACNET_APPLICATION_TAG>(BACNET_PSEUDO_TAG_CLOSING)) {
        out += '}';
    } else {
        try {
            out += value.getText(false, BACNET_DT_NOT_FOUND, nullptr, nullptr, true);
        } catch (const Poco::Exception&) {
            out += "???";  // a value off the wire that has no text (a time out of range) is still shown
        }
    }
}

}  // namespace

void ValueContainer::markup(MarkupFactory& factory, const std::string& name, bool arrayMarker,
                            BACnetDataType dataType) const {
    if (getDataType() == BACNET_DT_NULL) {
        factory.markup(MarkupFactory::BT_NULL, name, "", true, arrayMarker, BACNET_DT_NULL, false, "", 0, "", "",
                       "", false, "", "", "", "", "", "", false, -1);
    } else if (isPrimitive()) {
        single().markup(factory, name, arrayMarker, dataType, false, -1, true);
    } else {
        ContainerClasses::withHeldClass(
            _value, [&](auto c) { markupT<typename decltype(c)::type>(factory, name, arrayMarker); });
    }
}

template <class T>
void ValueContainer::markupT(MarkupFactory& factory, const std::string& name, bool arrayMarker) const {
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
        base(held<T>()).markup(factory, name, arrayMarker);
        return;
    }
    const std::vector<T>& objects = held<std::vector<T>>();
    // One object needs no list around it; an empty log still shows as an (empty) list.
    const bool list = objects.size() != 1;
    if (list) factory.markup(MarkupFactory::BT_LIST, name, "", false, arrayMarker, getDataType(), false);
    for (size_t i = 0; i < objects.size(); ++i) {
        base(objects[i]).markup(factory, Poco::NumberFormatter::format(i + 1), false);
    }
    if (list) factory.closeOpenMarkup();
}

template <class T>
std::string& ValueContainer::getTypedString(std::string& out, const std::string& separator) const {
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
        base(held<T>()).getString(out);
        return out;
    }
    const std::vector<T>& objects = held<std::vector<T>>();
    out.clear();
    for (size_t i = 0; i < objects.size(); ++i) {
        if (i) out += separator;
        // Each object is handed its position; the classes replace it with their own text.
        std::string text = Poco::NumberFormatter::format(i + 1);
        base(objects[i]).getString(text);
        out += text;
    }
    return out;
}

std::string& ValueContainer::getString(std::string& out, const std::string& separator, bool asPrimitives) const {
    if (getDataType() == BACNET_DT_NULL) {
        out = "NULL";
        return out;
    }
    if (isPrimitive() || asPrimitives) {
        if (isPrimitive() && getStructure() == BACNET_DTS_SINGLE_VALUE) {
            out = single().getText(false, BACNET_DT_NOT_FOUND, nullptr, nullptr, true);
            return out;
        }
        std::vector<DataApplicationValue> primitives;
        getBACnetPrimitives(primitives);
        out.clear();
        for (size_t i = 0; i < primitives.size(); ++i) {
            if (i) out += separator;
            appendPrimitive(out, primitives[i]);
        }
        return out;
    }
    return ContainerClasses::withHeldClass(
        _value, [&](auto c) -> std::string& { return getTypedString<typename decltype(c)::type>(out, ", "); });
}

// The typed forms exist for every class a container holds.
namespace ContainerClasses {
template <class... T>
void instantiateRendering(ContainerClasses::ClassList<T...>) {
    (void)std::initializer_list<int>{((void)&ValueContainer::markupT<T>, (void)&ValueContainer::getTypedString<T>, 0)...};
}
template void instantiateRendering(HeldClasses);
}  // namespace ContainerClasses

}  // namespace BACnet
}  // namespace TQ
