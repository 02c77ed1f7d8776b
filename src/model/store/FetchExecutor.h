#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/store/ContextEntities.h"
#include "model/store/ObjectContext.h"
#include "model/store/PredicateCompiler.h"

namespace tb {

class IdentityMap;
class SqliteStatement;
class StoreConnection;
struct FetchRequest;
struct SqliteError;

// Runs fetch and count requests: each form of request is compiled once to a prepared
// statement and reused with new arguments. Rows come back as the context's one record per
// row (from the identity map, or made and added to it).
class FetchExecutor {
  public:
    FetchExecutor(ObjectContext& owner,
                  StoreConnection& connection,
                  ContextEntities& entities,
                  IdentityMap& identities);
    ~FetchExecutor();

    // Records of rows written by the open transaction for pending inserts, by their rowid
    // there: a fetch hands out the inserted record itself for such a row.
    using Pending = std::unordered_map<std::int64_t, std::shared_ptr<ManagedObject>>;

    bool fetch(const FetchRequest& request,
               ContextEntities::Entry& entry,
               ObjectContext::ResultSink& sink,
               const Pending& pending,
               SqliteError* error);
    std::optional<std::int64_t> count(const FetchRequest& request,
                                      ContextEntities::Entry& entry,
                                      SqliteError* error);

    void dropPlans();

  private:
    struct Plan {
        ContextEntities::Entry* entry = nullptr;
        std::unique_ptr<SqliteStatement> statement;
        CompiledPredicate predicate;
        std::vector<int> columns;  // attribute indexes read after the rowid, in entity order
        bool full = false;
        int limitParameter = 0;
    };

    Plan* planFor(const FetchRequest& request,
                  ContextEntities::Entry& entry,
                  bool count,
                  SqliteError* error);
    std::string selectSQL(const FetchRequest& request, Plan& plan, bool count);
    void bind(Plan& plan, const FetchRequest& request);
    std::shared_ptr<ManagedObject> recordForRow(const Plan& plan, std::int64_t rowID);
    std::shared_ptr<ManagedObject> makeRecord(const Plan& plan, std::int64_t rowID);
    void complete(ManagedObject& record, const Plan& plan);

    ObjectContext& owner_;
    StoreConnection& connection_;
    ContextEntities& entities_;
    IdentityMap& identities_;
    std::unordered_map<std::string, std::unique_ptr<Plan>> plans_;
};

}  // namespace tb
