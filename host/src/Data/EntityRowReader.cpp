#include "TQ/Utility/Data/EntityRowReader.h"

#include <Poco/Data/AbstractExtractor.h>
#include <Poco/Data/AbstractPreparation.h>
#include <Poco/Data/AbstractPreparator.h>

namespace TQ {
namespace Utility {
namespace Data {

namespace {

// Announces the entity's columns to the connector as Vars so it extracts them by their own type.
class VarRowPreparation : public Poco::Data::AbstractPreparation {
public:
    VarRowPreparation(PreparatorPtr preparator, std::size_t pos, std::size_t columns)
        : AbstractPreparation(preparator), _pos(pos), _columns(columns) {}

    void prepare() override {
        Poco::Dynamic::Var placeholder;
        for (std::size_t i = 0; i < _columns; ++i) preparation()->prepare(_pos + i, placeholder);
    }

private:
    std::size_t _pos;
    std::size_t _columns;
};

}  // namespace

EntityRowReader::EntityRowReader(const Entity& prototype, Sink sink)
    : _prototype(prototype), _sink(std::move(sink)), _row(prototype.getColumnCnt()) {}

void EntityRowReader::fill(Entity& entity, const Row& row) {
    if (!row.empty()) entity.setPK(row[0].convert<int>(), false);
    for (std::size_t i = 1; i < row.size(); ++i) entity.setVar(static_cast<int>(i), row[i], false);
}

std::size_t EntityRowReader::extract(std::size_t pos) {
    ExtractorPtr extractor = getExtractor();
    for (std::size_t i = 0; i < _row.size(); ++i) {
        _row[i].empty();
        if (!extractor->extract(pos + i, _row[i])) _row[i] = _prototype.getVar(static_cast<int>(i));
    }
    ++_rows;
    _sink(_row);
    return 1u;
}

Poco::Data::AbstractPreparation::Ptr EntityRowReader::createPreparation(PreparatorPtr& preparator,
                                                                        std::size_t pos) {
    return new VarRowPreparation(preparator, pos, _row.size());
}

}  // namespace Data
}  // namespace Utility
}  // namespace TQ
