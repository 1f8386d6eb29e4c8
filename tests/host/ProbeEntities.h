#pragma once
// A small parent/child pair of tables and their entity classes, for the object-relational layer.

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/Entity.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"

#include <Poco/Data/Session.h>
#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>

#include <string>
#include <vector>

namespace TQTest {

/// probe_parent(id_probe_parent, label) and probe(id_probe, id_probe_parent, name, amount,
/// note): a small parent/child pair for the object-relational layer.
inline void createProbeTables(Poco::Data::Session& session) {
    using Poco::Data::Keywords::now;
    session << "CREATE TABLE probe_parent (id_probe_parent INTEGER PRIMARY KEY, label TEXT)", now;
    session << "CREATE TABLE probe (id_probe INTEGER PRIMARY KEY, id_probe_parent INTEGER, name TEXT, "
               "amount INTEGER NOT NULL DEFAULT 7, note TEXT)",
        now;
}

inline const std::string kParentTable("probe_parent");
inline const std::string kParentColumns[] = {"id_probe_parent", "label"};
inline const std::string kProbeTable("probe");
inline const std::string kProbeColumns[] = {"id_probe", "id_probe_parent", "name", "amount", "note"};

template <std::size_t N>
std::vector<const std::string*> pointersTo(const std::string (&names)[N]) {
    std::vector<const std::string*> pointers;
    for (const std::string& name : names) pointers.push_back(&name);
    return pointers;
}

class ProbeParent : public TQ::Utility::Data::Entity {
public:
    static constexpr int _COL_LABEL = 1;
    explicit ProbeParent(bool isNew = false) : Entity(isNew) { setColumnCnt(2); }
    const std::string& getTableName() const override { return kParentTable; }
    const std::vector<const std::string*>& getColNames() const override {
        static const std::vector<const std::string*> names = pointersTo(kParentColumns);
        return names;
    }
};

class Probe : public TQ::Utility::Data::Entity {
public:
    static constexpr int _COL_ID_PROBE_PARENT = 1;
    static constexpr int _COL_NAME = 2;
    static constexpr int _COL_AMOUNT = 3;
    static constexpr int _COL_NOTE = 4;
    explicit Probe(bool isNew = false) : Entity(isNew) { setColumnCnt(5); }
    const std::string& getTableName() const override { return kProbeTable; }
    const std::vector<const std::string*>& getColNames() const override {
        static const std::vector<const std::string*> names = pointersTo(kProbeColumns);
        return names;
    }
    std::string getName() const { return getVar(_COL_NAME).convert<std::string>(); }
    int getAmount() const { return getVar(_COL_AMOUNT).convert<int>(); }
};

/// Probe rows keyed by their name's length, read together with their parent's label (inner
/// join), ordered by amount.
class JoinedProbe : public Probe {
public:
    using Probe::Probe;
    int operator()() const override { return static_cast<int>(getName().size()); }
    std::string sqlFrom() const override { return "probe a,probe_parent b"; }
    std::string sqlJoin() const override { return "a.id_probe_parent=b.id_probe_parent"; }
    std::string sqlOrderBy() const override { return "4"; }
};

}  // namespace TQTest
