// Structural soundness of the generated catalogue: the shape the entity classes, the renderer
// and the JSON encoder take for granted when they walk bn_datatype_construct.
#include "TQTestCatalogue.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>

using TQTest::CatalogueDb;

namespace {

const CatalogueDb& catalogue() {
    return CatalogueDb::get();
}

struct ConstructRow {
    long long id, parent, datatype, internal, context, markup, sort;
    bool optional;
    std::string name;
};

std::vector<ConstructRow> constructRows() {
    std::vector<ConstructRow> result;
    for (const auto& r :
         catalogue().rows("SELECT id_bn_datatype_construct, id_parent, id_bn_datatype, "
                          "id_bn_datatype_internal, context_nr, id_bn_markup, sort, optional, name "
                          "FROM bn_datatype_construct ORDER BY id_bn_datatype, sort")) {
        result.push_back({CatalogueDb::toInt(r[0]), CatalogueDb::toInt(r[1]), CatalogueDb::toInt(r[2]),
                          CatalogueDb::toInt(r[3]), CatalogueDb::toInt(r[4]), CatalogueDb::toInt(r[5]),
                          CatalogueDb::toInt(r[6]), CatalogueDb::toInt(r[7]) == 1, r[8].value_or("")});
    }
    return result;
}

constexpr long long kSequence = 22, kSequenceOf = 24, kChoice = 25, kAny = 1000;

}  // namespace

// Every type has exactly one top row that is its own parent and sorts first; the loader takes
// the lowest sort as the type itself and the renderer recognises a list's top row by id==parent.
TEST(CatalogueConstructs, EveryTypeHasOneTopRowAndMembersBelongToIt) {
    auto rows = constructRows();
    std::map<long long, const ConstructRow*> byId;
    std::map<long long, int> tops;
    for (const auto& row : rows) {
        byId[row.id] = &row;
        if (row.id == row.parent) {
            ++tops[row.datatype];
            EXPECT_EQ(row.sort, 0) << "top row of " << row.datatype;
        }
    }
    for (long long type : catalogue().ints("SELECT id_bn_datatype FROM bn_datatype"))
        EXPECT_EQ(tops[type], 1) << "data type " << type;
    std::set<std::pair<long long, long long>> sorts;
    for (const auto& row : rows) {
        EXPECT_TRUE(sorts.insert({row.datatype, row.sort}).second) << "sort clash in " << row.datatype;
        if (row.id == row.parent) continue;
        auto parent = byId.find(row.parent);
        ASSERT_NE(parent, byId.end()) << "member " << row.id << " has no parent row";
        EXPECT_EQ(parent->second->datatype, row.datatype)
            << "member " << row.id << " hangs under another type";
        EXPECT_LT(parent->second->sort, row.sort) << "member " << row.id << " sorts before its parent";
    }
}

TEST(CatalogueConstructs, EveryReferencedTypeExists) {
    auto types = catalogue().ints("SELECT id_bn_datatype FROM bn_datatype");
    std::set<long long> known(types.begin(), types.end());
    auto markups = catalogue().ints("SELECT id_bn_markup_type FROM bn_markup_type");
    std::set<long long> knownMarkups(markups.begin(), markups.end());
    for (const auto& row : constructRows()) {
        EXPECT_TRUE(known.count(row.datatype)) << "construct row " << row.id;
        EXPECT_TRUE(row.internal < 0 || known.count(row.internal))
            << row.name << " of type " << row.datatype << " names unknown type " << row.internal;
        EXPECT_TRUE(row.markup < 0 || knownMarkups.count(row.markup)) << "construct row " << row.id;
    }
    for (long long type : catalogue().ints("SELECT id_bn_datatype FROM bn_properties_in_object"))
        EXPECT_TRUE(known.count(type)) << "property type " << type;
}

// The renderer gathers only the direct children that follow a head row without a type, and a
// SequenceOf member names its element type; shapes outside that are rendered as garbage.
TEST(CatalogueConstructs, ShapesTheRendererCanWalk) {
    auto rows = constructRows();
    std::map<long long, const ConstructRow*> byId;
    for (const auto& row : rows) byId[row.id] = &row;
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto& row = rows[i];
        if (row.id == row.parent) {
            if (row.markup == kSequenceOf) {
                size_t members = 0;
                for (size_t j = i + 1; j < rows.size() && rows[j].datatype == row.datatype; ++j) ++members;
                EXPECT_EQ(members, 1u) << "list type " << row.datatype << " needs exactly one element row";
            }
            continue;
        }
        if (row.internal < 0) {
            EXPECT_TRUE(row.markup == kSequence || row.markup == kChoice) << "untyped row " << row.id;
            ASSERT_LT(i + 1, rows.size());
            EXPECT_EQ(rows[i + 1].parent, row.id) << "inline group " << row.id << " has no member after it";
            for (size_t j = i + 1; j < rows.size() && rows[j].parent == row.id; ++j)
                EXPECT_GE(rows[j].internal, 0) << "inline groups nest only one level: row " << rows[j].id;
        }
        if (row.markup == kSequenceOf) {
            const ConstructRow* parent = byId.at(row.parent);
            bool elementOfListType = parent->id == parent->parent && parent->markup == kSequenceOf;
            EXPECT_TRUE(elementOfListType || row.internal >= 16)
                << "list member " << row.name << " of " << row.datatype
                << " names a bare primitive, which renders as one value";
        }
        EXPECT_TRUE(row.internal != kAny || row.markup < 0)
            << "ABSTRACT-SYNTAX.&Type member " << row.id << " must carry no markup";
    }
}

// The decoder looks a member up by its context tag among all rows of a type, nested ones included.
TEST(CatalogueConstructs, ContextTagsAreUniqueWithinAType) {
    EXPECT_TRUE(
        catalogue()
            .rows("SELECT id_bn_datatype, context_nr FROM bn_datatype_construct WHERE context_nr IS NOT NULL "
                  "AND id_parent<>id_bn_datatype_construct GROUP BY id_bn_datatype, context_nr "
                  "HAVING COUNT(*) > 1")
            .empty());
}

// A type is usable when it has a finite value: sequences need all required members usable,
// choices one alternative, lists may be empty. Recursive types pass only with a base case.
TEST(CatalogueConstructs, EveryTypeIsWalkableToPrimitives) {
    auto rows = constructRows();
    std::map<long long, std::vector<const ConstructRow*>> children;
    std::map<long long, const ConstructRow*> top;
    for (const auto& row : rows) {
        if (row.id == row.parent)
            top[row.datatype] = &row;
        else
            children[row.parent].push_back(&row);
    }
    std::set<long long> grounded;
    std::map<long long, bool> groupGrounded;
    std::function<bool(const ConstructRow&)> rowGrounded;
    auto groupOk = [&](long long markup, const std::vector<const ConstructRow*>& members) {
        if (markup == kChoice) {
            for (auto* m : members)
                if (rowGrounded(*m)) return true;
            return members.empty();
        }
        for (auto* m : members)
            if (!m->optional && !rowGrounded(*m)) return false;
        return true;
    };
    rowGrounded = [&](const ConstructRow& row) {
        if (row.internal < 0) return groupOk(row.markup, children[row.id]);
        return row.markup == kSequenceOf || row.internal < 16 || grounded.count(row.internal) > 0;
    };
    bool changed = true;
    while (changed) {
        changed = false;
        for (const auto& [type, row] : top) {
            if (grounded.count(type)) continue;
            bool ok = row->markup == kSequenceOf || row->markup < 0 || row->markup <= 12 ||
                      groupOk(row->markup, children[row->id]);
            if (ok) {
                grounded.insert(type);
                changed = true;
            }
        }
    }
    for (const auto& [type, row] : top)
        EXPECT_TRUE(grounded.count(type)) << row->name << " (" << type << ") has no finite value";
}

TEST(CatalogueEnumerations, NamesAndValuesAreUniquePerConstruct) {
    EXPECT_TRUE(catalogue()
                    .rows("SELECT id_bn_datatype_construct, value FROM bn_datatype_enum "
                          "GROUP BY id_bn_datatype_construct, value HAVING COUNT(*) > 1")
                    .empty());
    EXPECT_TRUE(catalogue()
                    .rows("SELECT id_bn_datatype_construct, name FROM bn_datatype_enum "
                          "GROUP BY id_bn_datatype_construct, name HAVING COUNT(*) > 1")
                    .empty());
    // Names hang only on top rows of enumerated or bit-string types.
    EXPECT_TRUE(
        catalogue()
            .rows("SELECT e.id_bn_datatype_enum FROM bn_datatype_enum e LEFT JOIN bn_datatype_construct c "
                  "ON c.id_bn_datatype_construct=e.id_bn_datatype_construct "
                  "WHERE c.id_parent IS NULL OR c.id_parent<>c.id_bn_datatype_construct "
                  "OR c.id_bn_markup NOT IN (8,9)")
            .empty());
    // A named bit string or enumeration without names cannot be rendered or parsed by name.
    EXPECT_TRUE(
        catalogue()
            .rows("SELECT c.id_bn_datatype FROM bn_datatype_construct c WHERE c.id_parent="
                  "c.id_bn_datatype_construct AND c.id_bn_datatype>16 AND c.id_bn_markup IN (8,9) AND NOT "
                  "EXISTS (SELECT 1 FROM bn_datatype_enum e WHERE "
                  "e.id_bn_datatype_construct=c.id_bn_datatype_construct)")
            .empty());
}

// markupInternals lists names only for kind 8/9 types in [5000, 6999]; the type listing shows
// [0, 3000) as standard and [3000, 4000) as the maker's types.
TEST(CatalogueNumbers, TypesLieInTheRangesTheLibraryTellsApart) {
    std::set<long long> pinnedEnums = {1090, 1100, 1148, 1149, 3542, 3543};
    for (const auto& r :
         catalogue().rows("SELECT c.id_bn_datatype, c.id_bn_markup, d.name FROM "
                          "bn_datatype_construct c JOIN bn_datatype d ON "
                          "d.id_bn_datatype=c.id_bn_datatype WHERE c.id_parent=c.id_bn_datatype_construct")) {
        long long type = CatalogueDb::toInt(r[0]);
        long long markup = CatalogueDb::toInt(r[1]);
        std::string name = r[2].value_or("");
        bool namedValues = type > 16 && (markup == 8 || markup == 9);
        const bool inNamedRange = type >= 5000 && type <= 6999;
        EXPECT_TRUE(!namedValues || pinnedEnums.count(type) || inNamedRange) << name << " is " << type;
        EXPECT_TRUE(!inNamedRange || markup == 8 || markup == 9) << name << " is " << type;
        EXPECT_TRUE(type < 3000 || type >= 4000 || name.rfind("Proprietary", 0) == 0)
            << name << " is " << type;
        EXPECT_TRUE(type != 1999 && type != 2000);
    }
}
