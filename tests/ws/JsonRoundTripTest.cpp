// Every catalogued constructed type: a sample value rendered by the JSON writer through the
// catalogue walk, encoded back by EncoderJSON, gives the sample's bytes again.
#include "TQ/Utility/OctetBuffer.h"
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "tq_stack/context_decode.h"

#include <Poco/Data/Session.h>

#include <gtest/gtest.h>

#include <deque>
#include <sstream>

namespace BN = TQ::BACnet;
using BN::DataApplicationValue;
using BN::Entity::BnDataTypeConstruct;
using Member = BnDataTypeConstruct::DataTypeAndName;

namespace {

// Builds a sample run from a type's definition: every member present, the first choice
// alternative, two elements per sequence-of; below a few levels recursive types take their
// shortest form.
class Sample {
public:
    std::deque<DataApplicationValue> values;  // stable addresses for the chain

    void type(unsigned type, int level) {
        const BnDataTypeConstruct* def = BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(type));
        ASSERT_NE(def, nullptr) << type;
        const unsigned id = static_cast<unsigned>(def->getIdBnDataTypeConstruct());
        member(Member(def, "", def->getIdBnMarkup(), def->getContextNr(), id, id, false), level);
    }

    void member(const Member& m, int level) {
        const BnDataTypeConstruct* def = m.pDTC;
        const unsigned t = def ? static_cast<unsigned>(def->getIdBnDataType()) : 0;
        if (!def || t < 16 || (!m.idBnMarkup.isNull() && m.idBnMarkup.value() <= 12))
            return primitive(m, m.idBnMarkup.isNull() ? t : m.idBnMarkup.value());
        if (m.idBnMarkup.isNull()) {
            if (t == 1000) return enclosed(m, [&] { primitive(Member(), 4); });
            const auto top = def->getIdBnMarkup();
            if (!top.isNull() && top.value() <= 12) return primitive(m, top.value());
            return enclosed(m, [&] { type(t, level + 1); });
        }
        const unsigned kind = m.idBnMarkup.value();
        enclosed(m, [&] {
            if (kind == 22) return members(def->_internalBDTCs, false, level);
            if (kind == 25) return members(def->_internalBDTCs, true, level);
            const bool top = m.idBnDataTypeConstruct == m.idParent;
            const unsigned element =
                top ? static_cast<unsigned>(def->_internalBDTCs.at(0).pDTC->getIdBnDataType()) : t;
            for (int i = 0; i < (level < 3 ? 2 : 0); ++i) type(element, level + 1);
        });
    }

private:
    template <class F>
    void enclosed(const Member& m, F inner) {
        if (!m.contextNr.isNull()) push(BACNET_PSEUDO_TAG_OPENING, m.contextNr.value());
        inner();
        if (!m.contextNr.isNull()) push(BACNET_PSEUDO_TAG_CLOSING, m.contextNr.value());
    }

    void members(const std::vector<Member>& list, bool choice, int level) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            Member m = list[i];
            std::vector<Member> group;
            while (!m.pDTC && i + 1 < list.size() && list[i + 1].idParent == m.idBnDataTypeConstruct)
                group.push_back(list[++i]);
            std::unique_ptr<BnDataTypeConstruct> synthetic;
            if (!m.pDTC) {
                synthetic.reset(new BnDataTypeConstruct(group));
                m.pDTC = synthetic.get();
            }
            // Deep down a choice takes a primitive alternative where it has one, so that
            // recursive types end.
            if (choice && level > 2 && !isPrimitive(m) && hasPrimitive(list)) continue;
            member(m, level + 1);
            if (choice) return;
        }
    }

    static bool isPrimitive(const Member& m) {
        return m.pDTC &&
               (m.pDTC->getIdBnDataType() < 16 || (!m.idBnMarkup.isNull() && m.idBnMarkup.value() <= 12));
    }
    static bool hasPrimitive(const std::vector<Member>& list) {
        for (const Member& m : list)
            if (isPrimitive(m)) return true;
        return false;
    }

    void push(uint8_t tag, int context) {
        values.emplace_back();
        DataApplicationValue& v = values.back();
        v.tag = tag;
        v.context_specific = context >= 0;
        v.context_tag = static_cast<uint8_t>(context < 0 ? 0 : context);
    }

    void primitive(const Member& m, unsigned tag) {
        static const char* const kTexts[] = {
            "",     "true",  "7", "-3",         "1.5",         "2.25",          "0102",
            "a\"b", nullptr, "1", "2024-03-05", "12.30.15.50", "analog-input,1"};
        DataApplicationValue v;
        if (tag == BACNET_APPLICATION_TAG_BIT_STRING) {
            int count = BN::Entity::BnDataTypeEnum::getBitCount(m.idBnDataTypeConstruct);
            if (count < 1 && m.pDTC)
                count = BN::Entity::BnDataTypeEnum::getBitCount(m.pDTC->getIdBnDataTypeConstruct());
            // Without catalogued bit names the text shows only the bits set, not how many
            // bits there are: such a sample sets its last bit.
            BN::DataType::BitString bits;
            bits.setBitsUsed(count < 1 ? 3 : static_cast<unsigned>(count));
            bits.setBit(count < 1 ? 2 : 0, true);
            v.setBitString(bits);
        } else {
            v.setText(static_cast<BACNET_APPLICATION_TAG>(tag), kTexts[tag],
                      tag == BACNET_APPLICATION_TAG_NULL);
        }
        v.context_specific = !m.contextNr.isNull();
        v.context_tag = m.contextNr.isNull() ? 0 : m.contextNr.value();
        values.push_back(v);
    }
};

TQTest::Bytes bytesOf(const std::deque<DataApplicationValue>& run) {
    TQTest::Bytes out;
    uint8_t buffer[MAX_APDU];
    for (const DataApplicationValue& v : run) {
        if (v.tag == BACNET_PSEUDO_TAG_OPENING || v.tag == BACNET_PSEUDO_TAG_CLOSING) {
            const uint8_t kind = v.tag == BACNET_PSEUDO_TAG_OPENING ? 0x0E : 0x0F;
            if (v.context_tag < 15) {
                out.push_back(static_cast<uint8_t>(v.context_tag << 4 | kind));
            } else {
                out.push_back(static_cast<uint8_t>(0xF0 | kind));
                out.push_back(v.context_tag);
            }
            continue;
        }
        // The application form, its tag octet turned into the context tag (a BOOLEAN carries
        // its value in a content octet there).
        const int n = v.encode(buffer);
        if (!v.context_specific) {
            out.insert(out.end(), buffer, buffer + n);
            continue;
        }
        const bool isBoolean = v.tag == BACNET_APPLICATION_TAG_BOOLEAN && !v.isNull();
        const uint8_t length = isBoolean ? 1 : (buffer[0] & 0x07);
        if (v.context_tag < 15) {
            out.push_back(static_cast<uint8_t>(v.context_tag << 4 | 0x08 | length));
        } else {
            out.push_back(static_cast<uint8_t>(0xF8 | length));
            out.push_back(v.context_tag);
        }
        if (isBoolean)
            out.push_back(buffer[0] & 0x01);
        else
            out.insert(out.end(), buffer + 1, buffer + n);
    }
    return out;
}

}  // namespace

TEST(JsonRoundTrip, EveryCataloguedConstructedTypeWithAndWithoutNames) {
    TQTest::Catalogue& catalogue = TQTest::Catalogue::open();
    std::vector<int> types;
    catalogue.db().getSession()
        << "SELECT id_bn_datatype FROM bn_datatype_construct WHERE id_parent = id_bn_datatype_construct "
           "AND id_bn_markup IN (22, 24, 25) ORDER BY id_bn_datatype",
        Poco::Data::Keywords::into(types), Poco::Data::Keywords::now;
    ASSERT_GT(types.size(), 100u);
    for (int type : types) {
        Sample sample;
        sample.type(static_cast<unsigned>(type), 0);
        for (std::size_t i = 0; i + 1 < sample.values.size(); ++i)
            sample.values[i].next = &sample.values[i + 1];
        const TQTest::Bytes expected = bytesOf(sample.values);
        for (bool useNames : {true, false}) {
            std::ostringstream json;
            BN::WS::MarkupFactoryJSON writer(json, false, useNames, -1);
            DataApplicationValue* cursor = &sample.values.front();
            ASSERT_TRUE(writer.markup2(static_cast<BN::BACnetDataType>(type), &cursor, "", true, {})) << type;
            writer.closeAllOpenMarkups();
            writer.flush();
            const BN::DataPropertyInObject0 d(static_cast<BN::BACnetDataType>(type),
                                              BACNET_APPLICATION_TAG_NULL, BN::BACNET_DTS_SINGLE_VALUE, true,
                                              0);
            TQ::Utility::OctetBuffer buffer(MAX_APDU);
            BN::WS::DataWsError error;
            const int length = BN::WS::EncoderJSON().encode(d, json.str(), buffer, 0, error);
            EXPECT_EQ(TQTest::Bytes(buffer.data(), buffer.data() + std::max(length, 0)), expected)
                << "type " << type << (useNames ? " by name: " : ": ") << json.str() << " "
                << error.getWsErrorText();
        }
    }
}
