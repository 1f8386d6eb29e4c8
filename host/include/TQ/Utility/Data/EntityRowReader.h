#pragma once

#include "TQ/Utility/Data/Entity.h"

#include <Poco/Data/AbstractExtraction.h>
#include <Poco/Dynamic/Var.h>

#include <functional>
#include <vector>

namespace TQ {
namespace Utility {
namespace Data {

/// The Poco::Data extraction that reads result rows into entities.
///
/// Each row's columns are extracted into one reused vector of Vars, in order from the
/// extraction's position; a NULL column takes the prototype entity's value of that column (an
/// empty Var when the prototype has none). The row is then handed to the sink, which stores it
/// with `fill`. Working row by row keeps memory flat however many rows a query returns.
class EntityRowReader : public Poco::Data::AbstractExtraction {
public:
    using Row = std::vector<Poco::Dynamic::Var>;
    using Sink = std::function<void(const Row&)>;

    EntityRowReader(const Entity& prototype, Sink sink);

    /// Column 0 goes through `setPK(value, false)`, every other column through
    /// `setVar(i, value, false)`; a key that is NULL raises Poco::InvalidAccessException.
    static void fill(Entity& entity, const Row& row);

    std::size_t numOfColumnsHandled() const override { return _row.size(); }
    std::size_t numOfRowsHandled() const override { return _rows; }
    std::size_t numOfRowsAllowed() const override { return getLimit(); }
    std::size_t extract(std::size_t pos) override;
    bool isNull(std::size_t) const override { return false; }
    Poco::Data::AbstractPreparation::Ptr createPreparation(PreparatorPtr& preparator,
                                                           std::size_t pos) override;

    std::size_t rows() const noexcept { return _rows; }

private:
    const Entity& _prototype;
    Sink _sink;
    Row _row;
    std::size_t _rows = 0;
};

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
