#pragma once

// The navigation every level of the stored tree shares: a parent pointer with an ownership
// flag, and a child map keyed by each child's operator()().

#include "EntitySupport.h"

#include <map>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Entity {
namespace Detail {

/// Frees the parent when owned; afterwards there is none and "none" counts as owned.
template <class P>
void releaseParent(P*& parent, bool& owns) {
    if (owns) delete parent;
    parent = nullptr;
    owns = true;
}

/// A parent handed in is never owned; null means none (owned, so a later load is freed).
template <class P>
void setParent(P*& parent, bool& owns, P* next) {
    releaseParent(parent, owns);
    parent = next;
    owns = next == nullptr;
}

/// A copy refers to a parent it was handed, and loads an owned one again on demand.
template <class P>
void copyParent(P*& parent, bool& owns, P* otherParent, bool otherOwns) {
    releaseParent(parent, owns);
    if (!otherOwns) {
        parent = otherParent;
        owns = false;
    }
}

/// The parent row named by foreign-key column `fkColumn` of `child`, read into an owned
/// parent entity; a parent handed in is returned as it is.
template <class P>
P* retrieveParent(const TQ::Utility::Data::Entity& child, unsigned fkColumn, P*& parent, bool& owns) {
    if (!owns) return parent;
    Poco::Nullable<int> key = child.getNullableVar<int>(static_cast<int>(fkColumn));
    if (key.isNull() || key.value() < 0) return parent;
    std::string where = child.getParentWhere(fkColumn, nullptr);
    TQ::Utility::Data::EntityServer server(TQ::Utility::Data::pDB, nullptr, &where);
    server.addBind(key.value());
    if (!parent) parent = new P(false);
    if (server.retrieve(*parent) < 1) {
        delete parent;
        parent = nullptr;
    }
    return parent;
}

/// (Re)reads the children of `self` into `children` (created when null); a read without rows
/// leaves null. `alias` qualifies the key column when the child table is read joined.
template <class C>
std::map<int, C>* retrieveChildren(const TQ::Utility::Data::Entity& self, std::map<int, C>*& children,
                                   std::string* where, const std::vector<Poco::Dynamic::Var>* binds,
                                   const std::string* alias) {
    std::vector<Poco::Dynamic::Var> allBinds;
    std::string childWhere = self.getChildsWhere(allBinds, where, binds, alias);
    TQ::Utility::Data::EntityServer server(TQ::Utility::Data::pDB, nullptr, &childWhere);
    server.setBinds(allBinds);
    if (!children)
        children = new std::map<int, C>();
    else
        children->clear();
    int rows = 0;
    try {
        rows = server.retrieve(*children);
    } catch (...) {
        delete children;
        children = nullptr;
        throw;
    }
    if (rows < 1 || children->empty()) {
        delete children;
        children = nullptr;
    }
    return children;
}

/// A deep copy of `other`'s children (null for none), each pointing at `owner`.
template <class C, class O>
std::map<int, C>* copyChildren(const std::map<int, C>* other, O* owner, void (C::*attach)(O*)) {
    if (!other) return nullptr;
    auto* copy = new std::map<int, C>(*other);
    for (auto& entry : *copy) (entry.second.*attach)(owner);
    return copy;
}

/// `server.update` of `self`, then `updateAll` of every loaded child in key order.
template <class C>
int updateTree(TQ::Utility::Data::Entity& self, std::map<int, C>* children,
               TQ::Utility::Data::EntityServer& server,
               std::vector<TQ::Utility::Data::DataAutoIncrement>* autoIncrements) {
    int rows = server.update(self, autoIncrements);
    if (children)
        for (auto& entry : *children) rows += entry.second.updateAll(server, autoIncrements);
    return rows;
}

}  // namespace Detail
}  // namespace Entity
}  // namespace BACnet
}  // namespace TQ
