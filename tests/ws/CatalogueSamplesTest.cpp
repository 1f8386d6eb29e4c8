// Every constructed type of the catalogue renders: a sample run is made from each type's
// definition (every member, then without the optional ones) and shown in all three formats.

#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"
#include "WellFormed.h"
#include "tq_stack/context_decode.h"

#include <gtest/gtest.h>

#include <Poco/Data/Session.h>
#include <Poco/Data/Statement.h>

#include <deque>
#include <memory>
#include <set>
#include <sstream>

namespace BN = TQ::BACnet;
using MF = BN::WS::MarkupFactory;
using BN::DataApplicationValue;
using BN::Entity::BnDataTypeConstruct;
using Member = BnDataTypeConstruct::DataTypeAndName;

namespace {

constexpr int kMaxDepth = 6;

// Builds the run of one value of a type from its definition.
class Sample {
public:
    explicit Sample(bool optionals) : _optionals(optionals) {}

    void type(const BnDataTypeConstruct& definition, int depth) {
        const auto kind = definition.getIdBnMarkup();
        const unsigned int k = kind.isNull() ? 0xFFFFFFFFu : kind.value();
        const int t = definition.getIdBnDataType();
        if (t < 16 || k <= MF::BT_OBJECT_IDENTIFIER)
            return primitive(t < 16 ? static_cast<unsigned>(t) : k, -1);
        if (t == BN::BACNET_DT_ANY) return primitive(BACNET_APPLICATION_TAG_REAL, -1);
        members(definition.getInternalBDTCs(), k, depth);
    }

    std::deque<DataApplicationValue> values;
    std::set<std::string> names;

private:
    void members(const std::vector<Member>& list, unsigned int kind, int depth) {
        if (kind == MF::BT_SEQUENCE_OF) {
            if (list.size() == 1 && list[0].pDTC) type(*list[0].pDTC, depth + 1);
            return;
        }
        for (std::size_t i = 0; i < list.size(); ++i) {
            std::vector<Member> group;
            std::size_t next = i + 1;
            if (list[i].pDTC == nullptr)
                while (next < list.size() && list[next].idParent == list[i].idBnDataTypeConstruct)
                    group.push_back(list[next++]);
            if (kind == MF::BT_CHOICE) {
                if (pickable(list[i], depth)) return member(list[i], group, depth);
            } else if (!list[i].optional || (_optionals && depth < 3)) {
                member(list[i], group, depth);
            }
            i = next - 1;
        }
        if (kind == MF::BT_CHOICE) member(list[0], {}, depth);  // nothing simple: the first
    }

    // Deep down a choice takes a primitive alternative, so recursive types end.
    bool pickable(const Member& m, int depth) const {
        if (depth < kMaxDepth) return true;
        return m.pDTC != nullptr &&
               (m.pDTC->getIdBnDataType() < 16 || (!m.idBnMarkup.isNull() && m.idBnMarkup.value() <= 12));
    }

    void member(const Member& m, const std::vector<Member>& group, int depth) {
        names.insert(m.name);
        const bool tagged = !m.contextNr.isNull();
        const int t = m.pDTC ? m.pDTC->getIdBnDataType() : -1;
        const unsigned int k = m.idBnMarkup.isNull() ? 0xFFFFFFFFu : m.idBnMarkup.value();
        if (m.pDTC != nullptr && (t < 16 || k <= MF::BT_OBJECT_IDENTIFIER))
            return primitive(t < 16 ? static_cast<unsigned>(t) : k, tagged ? m.contextNr.value() : -1);
        if (tagged) tag(BACNET_PSEUDO_TAG_OPENING, m.contextNr.value());
        if (m.pDTC == nullptr)
            members(group, k, depth + 1);
        else if (k == MF::BT_SEQUENCE_OF && m.idBnDataTypeConstruct != m.idParent)
            type(*m.pDTC, depth + 1);  // an inline list of the member type: one element
        else
            type(*m.pDTC, depth + 1);
        if (tagged) tag(BACNET_PSEUDO_TAG_CLOSING, m.contextNr.value());
    }

    void primitive(unsigned int tagNumber, int context) {
        values.emplace_back(static_cast<BACNET_APPLICATION_TAG>(tagNumber), true);
        values.back().context_specific = context >= 0;
        values.back().context_tag = static_cast<uint8_t>(context < 0 ? 0 : context);
    }
    void tag(uint8_t which, unsigned char context) {
        values.emplace_back();
        values.back().tag = which;
        values.back().context_specific = true;
        values.back().context_tag = context;
    }

    bool _optionals;
};

std::vector<int> constructedTypes() {
    std::vector<int> types;
    Poco::Data::Statement select(TQ::Utility::Data::pDB->getSession());
    select << "SELECT id_bn_datatype FROM bn_datatype_construct WHERE id_bn_datatype_construct = id_parent "
              "AND id_bn_markup IN (22, 24, 25) ORDER BY id_bn_datatype",
        Poco::Data::Keywords::into(types), Poco::Data::Keywords::now;
    return types;
}

}  // namespace

TEST(CatalogueSamples, EveryConstructedTypeRendersInEveryFormat) {
    TQTest::Catalogue::open();
    const std::vector<int> types = constructedTypes();
    ASSERT_GT(types.size(), 100u);
    int rendered = 0;
    int namesFound = 0;
    for (const int type : types) {
        const BnDataTypeConstruct* definition =
            BnDataTypeConstruct::find(static_cast<BN::BACnetDataType>(type));
        ASSERT_NE(definition, nullptr);
        for (const bool optionals : {true, false}) {
            Sample sample(optionals);
            sample.type(*definition, 0);
            for (std::size_t i = 0; i + 1 < sample.values.size(); ++i)
                sample.values[i].next = &sample.values[i + 1];
            for (int format = 0; format < 3; ++format) {
                std::ostringstream out;
                std::unique_ptr<MF> f;
                if (format == 0) f.reset(new BN::WS::MarkupFactoryJSON(out, false, true, -1));
                if (format == 1) f.reset(new BN::WS::MarkupFactoryXML(out, false, true, -1));
                if (format == 2) f.reset(new BN::WS::MarkupFactoryPLAIN(out, false, true, -1));
                DataApplicationValue* cursor = sample.values.empty() ? nullptr : &sample.values[0];
                const std::string where = std::to_string(type) + (optionals ? " all" : " mandatory") +
                                          " format " + std::to_string(format);
                const bool ok = f->markup2(static_cast<BN::BACnetDataType>(type), &cursor, "sample", true,
                                           Poco::Nullable<unsigned char>());
                f->closeAllOpenMarkups();
                EXPECT_EQ(f->getOpenMarkupCount(), 0u);
                const std::string text = out.str();
                if (sample.values.empty()) continue;  // nothing to render
                EXPECT_TRUE(ok) << where << ": " << f->getLastErrorText() << "\n" << text;
                EXPECT_EQ(cursor, nullptr) << where << " left values over";
                if (format == 0) {
                    EXPECT_EQ(TQWsTest::jsonError(text), "") << where;
                } else if (format == 1) {
                    EXPECT_EQ(TQWsTest::xmlRootNamespace(text), "http://bacnet.org/CSML/1.2") << where;
                } else {
                    continue;
                }
                for (const std::string& name : sample.names) {
                    if (name.empty()) continue;
                    EXPECT_NE(text.find("\"" + name + "\""), std::string::npos)
                        << where << " lacks " << name << "\n"
                        << text;
                    ++namesFound;
                }
            }
            ++rendered;
        }
    }
    EXPECT_EQ(rendered, static_cast<int>(2 * types.size()));
    EXPECT_GT(namesFound, 1000) << "the samples hold members";
}
