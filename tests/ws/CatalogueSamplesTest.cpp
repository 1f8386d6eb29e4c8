// Every catalogued constructed type: a sample value built from the type's definition (every
// member, then without the optional ones) renders in all three formats through the catalogue
// walk and names its members; its JSON form, with or without names, encodes back by EncoderJSON
// to the sample's bytes.
#include "TQ/Utility/OctetBuffer.h"
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "WellFormed.h"
#include "tq_stack/context_decode.h"

#include <Poco/Data/Session.h>

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <set>
#include <sstream>

namespace BN = TQ::BACnet;
using BN::DataApplicationValue;
using BN::Entity::BnDataTypeConstruct;
using Member = BnDataTypeConstruct::DataTypeAndName;

namespace {

// Builds a sample run from a type's definition: every member present (or only the required
// ones), the first choice alternative, two elements per sequence-of; below a few levels
// recursive types take their shortest form.
class Sample {
public:
    explicit Sample(bool optionals) : _optionals(optionals) {}
    std::deque<DataApplicationValue> values;  // stable addresses for the chain
    std::set<std::string> names;

    void type(unsigned type, int level) {
        const BnDataTypeConstruct* def = BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(type));
        ASSERT_NE(def, nullptr) << type;
        const unsigned id = static_cast<unsigned>(def->getIdBnDataTypeConstruct());
        member(Member(def, "", def->getIdBnMarkup(), def->getContextNr(), id, id, false), level);
    }

    void member(const Member& m, int level) {
        if (!m.name.empty()) names.insert(m.name);
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
            if (!choice && m.optional && !_optionals) continue;
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

    bool _optionals;
};

void pushTag(TQTest::Bytes& out, unsigned context, uint8_t low) {
    if (context < 15) return out.push_back(static_cast<uint8_t>(context << 4 | low));
    out.push_back(static_cast<uint8_t>(0xF0 | low));
    out.push_back(static_cast<uint8_t>(context));
}

// The encoding of a run, built from each value's application form: its tag octet turned into
// the context tag (a BOOLEAN carries its value in a content octet there).
TQTest::Bytes bytesOf(const std::deque<DataApplicationValue>& run) {
    TQTest::Bytes out;
    uint8_t buffer[MAX_APDU];
    for (const DataApplicationValue& v : run) {
        if (v.tag == BACNET_PSEUDO_TAG_OPENING || v.tag == BACNET_PSEUDO_TAG_CLOSING) {
            pushTag(out, v.context_tag, v.tag == BACNET_PSEUDO_TAG_OPENING ? 0x0E : 0x0F);
            continue;
        }
        const int n = v.encode(buffer);
        if (!v.context_specific) {
            out.insert(out.end(), buffer, buffer + n);
            continue;
        }
        const bool isBoolean = v.tag == BACNET_APPLICATION_TAG_BOOLEAN && !v.isNull();
        pushTag(out, v.context_tag, static_cast<uint8_t>(0x08 | (isBoolean ? 1 : (buffer[0] & 0x07))));
        if (isBoolean)
            out.push_back(buffer[0] & 0x01);
        else
            out.insert(out.end(), buffer + 1, buffer + n);
    }
    return out;
}

// Renders the sample with one writer; the text is empty when the walk fails or leaves values over.
template <class Writer>
std::string rendered(int type, Sample& sample, bool useNames) {
    std::ostringstream out;
    Writer writer(out, false, useNames, -1);
    DataApplicationValue* cursor = &sample.values.front();
    const bool ok = writer.markup2(static_cast<BN::BACnetDataType>(type), &cursor, "sample", true, {});
    writer.closeAllOpenMarkups();
    writer.flush();
    EXPECT_EQ(writer.getOpenMarkupCount(), 0u);
    EXPECT_TRUE(ok) << writer.getLastErrorText() << "\n" << out.str();
    EXPECT_EQ(cursor, nullptr) << "values left over";
    return out.str();
}

}  // namespace

TEST(CatalogueSamples, EveryConstructedTypeRendersInEveryFormatAndReadsBackFromJson) {
    TQTest::Catalogue& catalogue = TQTest::Catalogue::open();
    std::vector<int> types;
    catalogue.db().getSession()
        << "SELECT id_bn_datatype FROM bn_datatype_construct WHERE id_parent = id_bn_datatype_construct "
           "AND id_bn_markup IN (22, 24, 25) ORDER BY id_bn_datatype",
        Poco::Data::Keywords::into(types), Poco::Data::Keywords::now;
    ASSERT_GT(types.size(), 100u);
    std::size_t namesFound = 0;
    for (int type : types) {
        for (bool optionals : {true, false}) {
            SCOPED_TRACE("type " + std::to_string(type) + (optionals ? " all members" : " required members"));
            Sample sample(optionals);
            sample.type(static_cast<unsigned>(type), 0);
            if (sample.values.empty()) continue;  // only optional members
            TQTest::link(sample.values);
            const std::string json = rendered<BN::WS::MarkupFactoryJSON>(type, sample, true);
            const std::string xml = rendered<BN::WS::MarkupFactoryXML>(type, sample, true);
            rendered<BN::WS::MarkupFactoryPLAIN>(type, sample, true);
            EXPECT_EQ(TQWsTest::jsonError(json), "");
            EXPECT_EQ(TQWsTest::xmlRootNamespace(xml), "http://bacnet.org/CSML/1.2");
            for (const std::string& name : sample.names) {
                EXPECT_NE(json.find("\"" + name + "\""), std::string::npos) << "JSON lacks " << name << "\n" << json;
                EXPECT_NE(xml.find("\"" + name + "\""), std::string::npos) << "XML lacks " << name << "\n" << xml;
            }
            namesFound += sample.names.size();

            const TQTest::Bytes expected = bytesOf(sample.values);
            const BN::DataPropertyInObject0 d(static_cast<BN::BACnetDataType>(type), BACNET_APPLICATION_TAG_NULL,
                                              BN::BACNET_DTS_SINGLE_VALUE, true, 0);
            for (bool useNames : {true, false}) {
                const std::string text =
                    useNames ? json : rendered<BN::WS::MarkupFactoryJSON>(type, sample, false);
                TQ::Utility::OctetBuffer buffer(MAX_APDU);
                BN::WS::DataWsError error;
                const int length = BN::WS::EncoderJSON().encode(d, text, buffer, 0, error);
                EXPECT_EQ(TQTest::Bytes(buffer.data(), buffer.data() + std::max(length, 0)), expected)
                    << text << " " << error.getWsErrorText();
            }
        }
    }
    EXPECT_GT(namesFound, 1000u) << "the samples hold members";
}
