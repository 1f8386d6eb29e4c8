#include "TQ/Utility/LogHelper.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "tq_stack/context_decode.h"

#include <Poco/Exception.h>

#include <charconv>
#include <iostream>
#include <sstream>

namespace TQ {
namespace BACnet {
namespace WS {

using Entity::BnDataTypeConstruct;

namespace {

// Deeper nesting than any catalogued type needs means a type that recurses without consuming
// a value; the walk gives up instead of overflowing the stack.
constexpr int kMaxWalkDepth = 48;

constexpr unsigned int kNone = 0xFFFFFFFFu;

bool isOpening(const BACnet_Application_Data_Value* v) {
    return v != nullptr && v->tag == BACNET_PSEUDO_TAG_OPENING;
}
bool isClosing(const BACnet_Application_Data_Value* v) {
    return v != nullptr && v->tag == BACNET_PSEUDO_TAG_CLOSING;
}

void advance(MarkupFactory::ValueCursor cursor) {
    if (*cursor != nullptr) *cursor = (*cursor)->next;
}

// Data type of a member's type definition; BACNET_DT_UNKNOWN without one.
BACnetDataType memberType(const BnDataTypeConstruct::DataTypeAndName& member) {
    return member.pDTC ? static_cast<BACnetDataType>(member.pDTC->getIdBnDataType()) : BACNET_DT_UNKNOWN;
}

unsigned int markupKind(const BnDataTypeConstruct::DataTypeAndName& member) {
    return member.idBnMarkup.isNull() ? kNone : member.idBnMarkup.value();
}

bool readsAsUnsigned(const std::string& text) {
    if (text.empty()) return false;
    for (const char c : text)
        if (c < '0' || c > '9') return false;
    return true;
}

void say(const std::string& text) {
    std::cout << TQ::Utility::LogHelper::timeStamp(false) << ' ' << text << std::endl;
}

// Counts the walk's nesting for the duration of one member.
class DepthGuard {
public:
    explicit DepthGuard(int& depth) : _depth(depth) { ++_depth; }
    ~DepthGuard() { --_depth; }
    bool tooDeep() const { return _depth > kMaxWalkDepth; }

private:
    int& _depth;
};

thread_local int walkDepth = 0;

}  // namespace

bool MarkupFactory::markup2(BACnetDataType type, DataApplicationValue** cursor, const std::string& name,
                            bool root, const Poco::Nullable<unsigned char>& contextNr) {
    if (cursor == nullptr) return false;
    const BACnet_Application_Data_Value* position = *cursor;
    const bool outer = _runOfApplicationValues;
    _runOfApplicationValues = true;
    const bool result = markup2(type, &position, name, root, contextNr);
    _runOfApplicationValues = outer;
    // The links of a DataApplicationValue chain point at DataApplicationValue objects.
    *cursor = const_cast<DataApplicationValue*>(static_cast<const DataApplicationValue*>(position));
    return result;
}

bool MarkupFactory::markup2(BACnetDataType type, ValueCursor cursor, const std::string& name, bool root,
                            const Poco::Nullable<unsigned char>& contextNr) {
    const BnDataTypeConstruct* definition = nullptr;
    try {
        definition = BnDataTypeConstruct::find(type);
    } catch (const Poco::Exception&) {
        definition = nullptr;  // a catalogue that cannot be read knows no type
    }
    if (definition == nullptr) return markupUnknownType(type, name, root);

    const Poco::Nullable<int> parent = definition->getIdParent();
    const DataTypeAndName member(definition, name, definition->getIdBnMarkup(),
                                 contextNr.isNull() ? definition->getContextNr() : contextNr,
                                 static_cast<unsigned int>(definition->getIdBnDataTypeConstruct()),
                                 parent.isNull() ? 0u : static_cast<unsigned int>(parent.value()),
                                 definition->isOptional());
    const bool result = markup3(member, cursor, root, contextNr.isNull(), true);
    if (!result && _lastErrorCode != ERROR_UNKNOWN_TYPE)
        setLastError(ERROR_RENDERING, "MarkupFactory::markup3() failed for data-type=" +
                                          std::to_string(type) + " by unknown reason");
    return result;
}

bool MarkupFactory::markupUnknownType(BACnetDataType type, const std::string& name, bool root) {
    const std::string text = "MarkupFactory::markup2() data-type=" + std::to_string(type) +
                             " is not supported in MERLO-Stack DB (in DB-table bn_datatype_construct)";
    setLastError(ERROR_UNKNOWN_TYPE, text);
    say(text);
    markup(BT_ANY, name, "truncated", true, false, type, root, "Unsupported BACnet datatype",
           ERROR_UNKNOWN_TYPE, text);
    return true;
}

bool MarkupFactory::markup3(const DataTypeAndName& member, ValueCursor cursor, bool root, bool checkContext,
                            bool renderMismatch) {
    const BACnet_Application_Data_Value* start = *cursor;
    if (start == nullptr) return false;
    DepthGuard depth(walkDepth);
    if (depth.tooDeep()) return false;

    // A context-tagged member is present only under its own tag; an opening tag is consumed here
    // and its closing tag at the end.
    bool opened = false;
    if (checkContext && !member.contextNr.isNull()) {
        if (!start->context_specific || start->context_tag != member.contextNr.value()) return false;
        if (isOpening(start)) {
            opened = true;
            advance(cursor);
        }
    }

    bool result = false;
    const BACnetDataType t = memberType(member);
    const unsigned int kind = markupKind(member);
    if (member.pDTC == nullptr) {
        say("MarkupFactory::markup3() member \"" + member.name + "\" has no catalogued type");
    } else if (t < BACNET_DT_MAX_APPLICATION_TAG) {
        result = markupMismatch(member, cursor, t, renderMismatch);
    } else if (kind != kNone) {
        result = markupConstructed(member, *member.pDTC, kind, cursor, root);
    } else if (t != BACNET_DT_ANY) {
        result = markup2(t, cursor, member.name, root, member.contextNr);
    } else if (opened && *cursor != nullptr && !isClosing(*cursor) && !isClosing((*cursor)->next)) {
        result = markupAbstractRun(member, cursor);
    } else if (*cursor == nullptr || (*cursor)->tag > BACNET_DT_RESERVE3) {
        say("MarkupFactory::markup3() \"ABSTRACT-SYNTAX.&Type\" unrecognized constructed value");
    } else if (member.optional && !opened && (*cursor)->context_specific) {
        // Outside tags of its own the value is application-tagged: a context-tagged item is the
        // next member's (BACnetNameValue's next name), and this optional value is absent.
    } else {
        // The value's own base type is the only type information an ABSTRACT-SYNTAX value has.
        const bool showType = _metadata.getCategories() == 0;
        if (showType) _metadata.setCategory(Metadata::METADATA_CAT_EXTENSIONS, true);
        result = markupPrimitiveInternal(member, cursor, root);
        if (showType) _metadata.setCategory(Metadata::METADATA_CAT_EXTENSIONS, false);
    }

    if (opened) {
        if (result && isClosing(*cursor) && (*cursor)->context_tag == member.contextNr.value()) {
            advance(cursor);
        } else {
            if (result) say("MarkupFactory::markup3() missing close-tag");
            result = false;
        }
    }
    // A member that did not match leaves the run where it began, unless its mismatch was shown.
    if (!result && !(renderMismatch && *cursor != start && !opened)) *cursor = start;
    return result;
}

// Several values (or a construction) inside the tags of an ABSTRACT-SYNTAX member: each shown
// with its own base type; a nested construction, whose type nobody names, as "truncated".
bool MarkupFactory::markupAbstractRun(const DataTypeAndName& member, ValueCursor cursor) {
    markup(BT_SEQUENCE_OF, member.name, "", false, false, BACNET_DT_ANY, false);
    char digits[12];
    for (unsigned int index = 1; *cursor != nullptr && !isClosing(*cursor); ++index) {
        const std::string name(digits, std::to_chars(digits, digits + sizeof digits, index).ptr);
        if (!isOpening(*cursor)) {
            renderValue(**cursor, name, static_cast<BACnetDataType>((*cursor)->tag), false, -1);
            advance(cursor);
            continue;
        }
        for (int depth = 0; *cursor != nullptr;) {
            depth += isOpening(*cursor) ? 1 : isClosing(*cursor) ? -1 : 0;
            advance(cursor);
            if (depth == 0) break;
        }
        markup(BT_ANY, name, "truncated", true, false, BACNET_DT_ANY, false);
    }
    closeOpenMarkup();
    return *cursor != nullptr;
}

// A primitive member: the value's tag must be the member's.
bool MarkupFactory::markupMismatch(const DataTypeAndName& member, ValueCursor cursor, unsigned int expected,
                                   bool renderMismatch) {
    const BACnet_Application_Data_Value* value = *cursor;
    if (value == nullptr) return false;
    if (value->tag == expected) return markupPrimitiveInternal(member, cursor, false);
    if (!renderMismatch || value->tag > BACNET_DT_RESERVE3) return false;
    if (!readsAsUnsigned(member.name)) {
        std::ostringstream text;
        const auto number = [](auto nullable) {
            return nullable.isNull() ? kNone : static_cast<unsigned int>(nullable.value());
        };
        text << " MarkupFactory::markup3() data-type=" << expected << " but value-type=" << +value->tag
             << "\n       dtan.idBnDataTypeConstruct=" << member.idBnDataTypeConstruct
             << "\n       dtan.idParent=" << member.idParent
             << "\n       dtan.idBnMarkup=" << number(member.idBnMarkup)
             << "\n       dtan.contextNr=" << number(member.contextNr)
             << "\n       dtan.optional=" << member.optional << "\n       dtan.name=\"" << member.name << '"';
        say(text.str());
    }
    renderValue(*value, member.name, static_cast<BACnetDataType>(value->tag), false, -1);
    advance(cursor);
    return false;
}

bool MarkupFactory::markupConstructed(const DataTypeAndName& member, const BnDataTypeConstruct& type,
                                      unsigned int kind, ValueCursor cursor, bool root) {
    const BACnetDataType t = static_cast<BACnetDataType>(type.getIdBnDataType());
    if (kind <= BT_OBJECT_IDENTIFIER) {
        // Enumerations, bit strings and derived primitives: the value's tag must be the kind's.
        return markupMismatch(member, cursor, kind, true);
    }
    if (kind != BT_SEQUENCE && kind != BT_SEQUENCE_OF && kind != BT_CHOICE) {
        say("MarkupFactory::markup3() invalid surrounding markup type=" + std::to_string(kind));
        return false;
    }
    // Type names are metadata; without a category nobody sees them, so they are not looked up.
    const std::string typeName = _metadata.getCategories() != 0 ? Entity::BnDataType::find(t) : std::string();
    const std::string contextText =
        member.contextNr.isNull() ? std::string() : std::to_string(+member.contextNr.value());
    const auto baseType = static_cast<BaseType>(kind);

    BACnetDataType elementType = t;
    if (kind == BT_SEQUENCE_OF && member.idBnDataTypeConstruct == member.idParent) {
        // The type's own top row: its elements are its single member's type.
        const std::vector<DataTypeAndName>& members = type.getInternalBDTCs();
        if (members.size() != 1 || members[0].pDTC == nullptr) {
            say("TQ::BACnet::WS::MarkupFactory::markup3() number of internal internal datatypes is " +
                std::to_string(members.size()) +
                ", but should be 1 for bn_datatype_construct.id_bn_datatype_construct=" +
                std::to_string(member.idBnDataTypeConstruct));
            return false;
        }
        elementType = static_cast<BACnetDataType>(members[0].pDTC->getIdBnDataType());
    }

    markup(baseType, member.name, "", false, false, t, root, "", 0, "", "", typeName, false, "", "",
           contextText);
    bool result;
    if (kind == BT_SEQUENCE_OF)
        result = markupSequenceOfInternal(elementType, cursor, Poco::Nullable<std::string>());
    else
        result = markupSequenceInternal(type.getInternalBDTCs(), cursor, kind == BT_CHOICE);
    closeOpenMarkup();
    return result;
}

bool MarkupFactory::markupSequenceInternal(const std::vector<DataTypeAndName>& members, ValueCursor cursor,
                                           bool isChoice) {
    bool result = !isChoice;
    for (std::size_t i = 0; i < members.size(); ++i) {
        const DataTypeAndName& member = members[i];
        bool ok;
        if (member.pDTC == nullptr && markupKind(member) != kNone) {
            // An inline group: the members that follow and belong to it form its type.
            std::vector<DataTypeAndName> group;
            std::size_t next = i + 1;
            while (next < members.size() && members[next].idParent == member.idBnDataTypeConstruct)
                group.push_back(members[next++]);
            if (group.empty()) return isChoice ? result : false;
            const BnDataTypeConstruct definition(group);
            DataTypeAndName head = member;
            head.pDTC = &definition;
            ok = markup3(head, cursor, false, true, true);
            i = next - 1;
        } else {
            ok = markup3(member, cursor, false, true, !isChoice);
        }
        if (isChoice && ok) return true;
        if (!isChoice && !ok && !member.optional) return false;
    }
    return result;
}

bool MarkupFactory::markupSequenceOfInternal(BACnetDataType elementType, ValueCursor cursor,
                                             const Poco::Nullable<std::string>&) {
    char digits[12];
    for (unsigned int index = 1; *cursor != nullptr && !isClosing(*cursor); ++index) {
        const BACnet_Application_Data_Value* before = *cursor;
        const std::string name(digits, std::to_chars(digits, digits + sizeof digits, index).ptr);
        if (!markup2(elementType, cursor, name, false, Poco::Nullable<unsigned char>())) break;
        if (*cursor == before) break;  // an element that consumes nothing would repeat for ever
    }
    return true;
}

bool MarkupFactory::markupPrimitiveInternal(const DataTypeAndName& member, ValueCursor cursor, bool root) {
    if (*cursor == nullptr || member.pDTC == nullptr) return false;
    renderValue(**cursor, member.name, memberType(member), root,
                static_cast<int>(member.idBnDataTypeConstruct));
    advance(cursor);
    return true;
}

void MarkupFactory::renderValue(const BACnet_Application_Data_Value& value, const std::string& name,
                                BACnetDataType type, bool root, int level) {
    if (_runOfApplicationValues) {
        static_cast<const DataApplicationValue&>(value).markup(*this, name, false, type, root, level, false);
    } else {
        const DataApplicationValue copy(value);
        copy.markup(*this, name, false, type, root, level, false);
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
