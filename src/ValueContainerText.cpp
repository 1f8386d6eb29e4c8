// The text forms of a ValueContainer: what is stored in the database and exchanged with the host.
#include "TQ_BACnet/ValueContainer.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataWriteProperty.h"
#include "TQ_BACnet/Utility/FloatText.h"

#include <Poco/StringTokenizer.h>

#include <iostream>

namespace TQ {
namespace BACnet {

namespace {

// Several primitive values in one text are separated by this character.
const char VALUE_SEPARATOR = '|';

}  // namespace

bool ValueContainer::setText(BACnetDataType dataType, BACNET_APPLICATION_TAG tag, const std::string& text,
                             bool emptyIsNull) {
    try {
        init();
        if (text.empty() || text == "NULL") return true;
        _descriptor.datatype = dataType;
        _descriptor.tag = tag;
        if (tag == BACNET_APPLICATION_TAG_NULL && dataType != BACNET_DT_NULL) {
            // Constructed values are stored as their encoding in hexadecimal.
            TQ::Utility::OctetBuffer bytes;
            bytes.setHexString(text);
            BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
            BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
            DataErrorRef error(errorClass, errorCode);
            if (decode(bytes.data(), static_cast<int>(bytes.size()), 0, -1, error) > 0) return true;
            init();
            return false;
        }
        const Poco::StringTokenizer pieces(text, std::string(1, VALUE_SEPARATOR),
                                           Poco::StringTokenizer::TOK_TRIM);
        setPrimitiveTexts(tag, std::vector<std::string>(pieces.begin(), pieces.end()), emptyIsNull);
        return true;
    } catch (...) {
        init();
        return false;
    }
}

std::string& ValueContainer::getText(std::string& out, bool useNames) const {
    if (getDataType() == BACNET_DT_NULL) {
        out = "NULL";
        return out;
    }
    if (isPrimitive()) {
        const auto textOf = [&](const DataApplicationValue& value) {
            return value.getText(useNames, getDataType(), nullptr, nullptr, true);
        };
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
            out = textOf(single());
            return out;
        }
        out.clear();
        const auto& values = held<std::vector<DataApplicationValue>>();
        // REALs, the commonest arrays, are written into a local buffer that is appended in
        // pieces: no string per value. Every value is followed by a separator; the last one is
        // taken back at the end.
        char buffer[512];
        char* p = buffer;
        char* const full = buffer + sizeof buffer - Utility::kFloatTextMax - 1;
        for (const DataApplicationValue& value : values) {
            if (p > full) {
                out.append(buffer, static_cast<size_t>(p - buffer));
                p = buffer;
            }
            if (value.getTag() == BACNET_APPLICATION_TAG_REAL && !value.isNull()) {
                p = Utility::floatText(value.type.Real, p);
            } else {
                out.append(buffer, static_cast<size_t>(p - buffer));
                p = buffer;
                out += textOf(value);
            }
            *p++ = VALUE_SEPARATOR;
        }
        if (p != buffer) --p;
        out.append(buffer, static_cast<size_t>(p - buffer));
        return out;
    }
    TQ::Utility::OctetBuffer bytes;
    if (encode2(bytes) > 0) bytes.getHexString(out, true);
    return out;
}

const DataApplicationValue* ValueContainer::primitives(std::size_t& count) const {
    count = 0;
    if (!isPrimitive() || getDataType() == BACNET_DT_NULL) return nullptr;
    if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
        count = 1;
        return &single();
    }
    const auto& values = held<std::vector<DataApplicationValue>>();
    count = values.size();
    return values.data();
}

bool ValueContainer::setStrings(BACnetDataType dataType, BACNET_APPLICATION_TAG tag,
                                const std::vector<std::string>& texts, bool emptyIsNull) {
    init();
    if (texts.empty()) return true;
    _descriptor.datatype = dataType;
    _descriptor.tag = tag;
    if (tag == BACNET_APPLICATION_TAG_NULL && dataType != BACNET_DT_NULL) {
        return setConstructedString(texts.front());
    }
    setPrimitiveTexts(tag, texts, emptyIsNull);
    return true;
}

void ValueContainer::setPrimitiveTexts(BACNET_APPLICATION_TAG tag, const std::vector<std::string>& texts,
                                       bool emptyIsNull) {
    if (texts.size() > 1) _descriptor.structure = BACNET_DTS_ARRAY;
    if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE && texts.size() == 1) {
        DataApplicationValue& value = reuse<DataApplicationValue>();
        value.setText(tag, texts.front(), emptyIsNull);
        if (value.getTag() == BACNET_APPLICATION_TAG_NULL) _descriptor.datatype = BACNET_DT_NULL;
        return;
    }
    std::vector<DataApplicationValue>& values = reuse<std::vector<DataApplicationValue>>();
    values.clear();
    values.reserve(texts.size());
    for (const std::string& text : texts) {
        values.emplace_back();
        values.back().setText(tag, text, emptyIsNull);
    }
}

bool ValueContainer::getStrings(std::vector<std::string>& out, DataWriteProperty& request) const {
    if (getStructure() != BACNET_DTS_SINGLE_VALUE) {
        throw Poco::NotImplementedException("_structure != BACNET_DTS_SINGLE_VALUE");
    }
    bool ok = false;
    std::string text;
    if (isPrimitive()) {
        text = single().getText(false, BACNET_DT_NOT_FOUND, &ok, nullptr, true);
    } else {
        ok = getConstructedString(text);
    }
    if (ok) {
        out.push_back(std::move(text));
        return true;
    }
    std::cout << "ValueContainer::getStrings() returns ERROR_CLASS_PROPERTY,ERROR_CODE_INVALID_DATA_TYPE"
              << std::endl;
    request.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_INVALID_DATA_TYPE);
    return false;
}

}  // namespace BACnet
}  // namespace TQ
