#include "model/store/FetchExecutor.h"

#include <algorithm>

#include "model/store/EntityDescription.h"
#include "model/store/FetchRequest.h"
#include "model/store/FieldOps.h"
#include "model/store/IdentityMap.h"
#include "model/store/PredicateNode.h"
#include "model/store/RecordState.h"
#include "model/store/SqliteDatabase.h"
#include "model/store/SqliteStatement.h"
#include "model/store/StoreConnection.h"
#include "platform/Fatal.h"

namespace tb {

namespace {

constexpr std::size_t kMaxPlans = 256;

std::string quote(const std::string& name) {
    return PredicateCompiler::quoteIdentifier(name);
}

std::string planKey(const FetchRequest& request, bool count) {
    std::string key = request.entityName;
    key += '\x1e';
    if (request.predicate) {
        key += request.predicate->key();
    }
    key += '\x1e';
    for (const SortDescriptor& sort : request.sortDescriptors) {
        key += sort.key;
        key += sort.ascending ? '+' : '-';
        key += sort.caseInsensitive ? 'i' : ' ';
    }
    key += '\x1e';
    for (const std::string& property : request.propertiesToFetch) {
        key += property;
        key += ',';
    }
    key += '\x1e';
    key += count ? 'C' : 'F';
    key += request.fetchLimit > 0 && !count ? 'L' : ' ';
    return key;
}

int attributeIndex(const EntityDescription& entity, const std::string& name, const char* role) {
    const int index = entity.indexOfAttribute(name);
    if (index < 0) {
        TB_FATAL(std::string("The fetch request's ") + role + " '" + name +
                 "' is not an attribute of the entity " + entity.name());
    }
    return index;
}

}  // namespace

FetchExecutor::FetchExecutor(ObjectContext& owner,
                             StoreConnection& connection,
                             ContextEntities& entities,
                             IdentityMap& identities)
    : owner_(owner), connection_(connection), entities_(entities), identities_(identities) {}

FetchExecutor::~FetchExecutor() = default;

void FetchExecutor::dropPlans() {
    plans_.clear();
}

bool FetchExecutor::fetch(const FetchRequest& request,
                          ContextEntities::Entry& entry,
                          ObjectContext::ResultSink& sink,
                          const Pending& pending,
                          SqliteError* error) {
    Plan* plan = planFor(request, entry, false, error);
    if (!plan) {
        return false;
    }
    bind(*plan, request);
    SqliteStatement& statement = *plan->statement;
    bool ok = true;
    while (true) {
        const auto step = statement.step(error);
        if (step != SqliteStatement::Step::row) {
            ok = step == SqliteStatement::Step::done;
            break;
        }
        const std::int64_t rowID = statement.columnInt64(0);
        auto inserted = pending.find(rowID);
        sink.add(inserted != pending.end() ? inserted->second : recordForRow(*plan, rowID));
    }
    statement.reset();
    statement.clearBindings();
    return ok;
}

std::optional<std::int64_t> FetchExecutor::count(const FetchRequest& request,
                                                 ContextEntities::Entry& entry,
                                                 SqliteError* error) {
    Plan* plan = planFor(request, entry, true, error);
    if (!plan) {
        return std::nullopt;
    }
    bind(*plan, request);
    SqliteStatement& statement = *plan->statement;
    std::optional<std::int64_t> result;
    if (statement.step(error) == SqliteStatement::Step::row) {
        result = statement.columnInt64(0);
    }
    statement.reset();
    statement.clearBindings();
    if (result && request.fetchLimit > 0) {
        result = std::min<std::int64_t>(*result, static_cast<std::int64_t>(request.fetchLimit));
    }
    return result;
}

FetchExecutor::Plan* FetchExecutor::planFor(const FetchRequest& request,
                                            ContextEntities::Entry& entry,
                                            bool count,
                                            SqliteError* error) {
    std::string key = planKey(request, count);
    if (auto found = plans_.find(key); found != plans_.end()) {
        return found->second.get();
    }
    auto plan = std::make_unique<Plan>();
    plan->entry = &entry;
    const std::size_t attributes = entry.entity->attributes().size();
    if (!count && request.propertiesToFetch.empty()) {
        for (std::size_t i = 0; i < attributes; ++i) {
            plan->columns.push_back(static_cast<int>(i));
        }
    } else if (!count) {
        for (const std::string& name : request.propertiesToFetch) {
            plan->columns.push_back(attributeIndex(*entry.entity, name, "property to fetch"));
        }
        std::sort(plan->columns.begin(), plan->columns.end());
        plan->columns.erase(std::unique(plan->columns.begin(), plan->columns.end()),
                            plan->columns.end());
    }
    plan->full = plan->columns.size() == attributes;
    plan->statement = connection_.database().prepare(selectSQL(request, *plan, count), error);
    if (!plan->statement) {
        return nullptr;
    }
    if (plans_.size() >= kMaxPlans) {
        plans_.clear();
    }
    return plans_.emplace(std::move(key), std::move(plan)).first->second.get();
}

std::string FetchExecutor::selectSQL(const FetchRequest& request, Plan& plan, bool count) {
    const EntityDescription& entity = *plan.entry->entity;
    std::string sql = "SELECT ";
    if (count) {
        sql += "COUNT(*)";
    } else {
        sql += "rowid";
        for (int column : plan.columns) {
            sql += ", " + quote(entity.attributes()[static_cast<std::size_t>(column)].name());
        }
    }
    sql += " FROM " + plan.entry->table;
    int nextParameter = 1;
    if (request.predicate) {
        plan.predicate = PredicateCompiler::compile(request.predicate->root(), entity, 1);
        sql += " WHERE " + plan.predicate.sql;
        nextParameter += request.predicate->root().placeholderCount;
    }
    if (count) {
        return sql;
    }
    sql += " ORDER BY ";
    for (const SortDescriptor& sort : request.sortDescriptors) {
        attributeIndex(entity, sort.key, "sort key");
        const std::string column = quote(sort.key);
        sql += sort.caseInsensitive ? "tb_fold(" + column + ", 1)" : column;
        sql += sort.ascending ? " ASC, " : " DESC, ";
    }
    sql += "rowid ASC";  // rows of equal keys keep the order they were saved in
    if (request.fetchLimit > 0) {
        plan.limitParameter = nextParameter;
        sql += " LIMIT ?" + std::to_string(plan.limitParameter);
    }
    return sql;
}

void FetchExecutor::bind(Plan& plan, const FetchRequest& request) {
    if (request.predicate) {
        PredicateCompiler::bind(plan.predicate, request.predicate->arguments(), *plan.statement);
    }
    if (plan.limitParameter) {
        plan.statement->bindInt64(plan.limitParameter,
                                  static_cast<std::int64_t>(request.fetchLimit));
    }
}

std::shared_ptr<ManagedObject> FetchExecutor::recordForRow(const Plan& plan, std::int64_t rowID) {
    if (auto existing = identities_.find(plan.entry->index, rowID)) {
        if (RecordState::has(*existing, RecordState::kPartial)) {
            complete(*existing, plan);
        }
        return existing;
    }
    auto record = makeRecord(plan, rowID);
    identities_.add(plan.entry->index, rowID, record);
    return record;
}

// A new record read from the current row of the plan's statement. Its destructor is the
// record's own: the context hears nothing of its release.
std::shared_ptr<ManagedObject> FetchExecutor::makeRecord(const Plan& plan, std::int64_t rowID) {
    const SqliteStatement& statement = *plan.statement;
    const auto& attributes = plan.entry->entity->attributes();
    std::shared_ptr<ManagedObject> record = plan.entry->entity->makeRecord();
    auto& partial = RecordState::partial(*record);
    for (std::size_t c = 0; c < plan.columns.size(); ++c) {
        const AttributeDescription& attribute =
            attributes[static_cast<std::size_t>(plan.columns[c])];
        void* field = attribute.field(*record);
        FieldOps::read(attribute, field, statement, static_cast<int>(c) + 1);
        if (!plan.full) {
            partial.emplace_back(plan.columns[c], FieldOps::hash(attribute, field));
        }
    }
    if (!plan.full) {
        RecordState::set(*record, RecordState::kPartial);
    }
    RecordState::setContext(*record, &owner_);
    RecordState::setRowID(*record, rowID);
    return record;
}

// A partial record met again by a fetch that reads more: it takes the newly read values,
// except where it was changed, and becomes a full record once it knows every attribute.
void FetchExecutor::complete(ManagedObject& record, const Plan& plan) {
    ContextEntities::Entry& entry = *plan.entry;
    const auto& attributes = entry.entity->attributes();
    auto& partial = RecordState::partial(record);
    for (std::size_t c = 0; c < plan.columns.size(); ++c) {
        const int index = plan.columns[c];
        const bool known = std::any_of(partial.begin(), partial.end(),
                                       [&](const auto& read) { return read.first == index; });
        if (known) {
            continue;
        }
        const AttributeDescription& attribute = attributes[static_cast<std::size_t>(index)];
        void* field = attribute.field(record);
        if (FieldOps::hash(attribute, field) !=
            entry.defaultHashes[static_cast<std::size_t>(index)]) {
            continue;  // set before it was ever read: the record's value stands, to be written
        }
        FieldOps::read(attribute, field, *plan.statement, static_cast<int>(c) + 1);
        partial.emplace_back(index, FieldOps::hash(attribute, field));
    }
    if (partial.size() == attributes.size() && !RecordState::has(record, RecordState::kChanged)) {
        partial.clear();
        RecordState::clear(record, RecordState::kPartial);
    }
}

}  // namespace tb
