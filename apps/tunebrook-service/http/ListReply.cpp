#include "tunebrook-service/http/ListReply.h"

#include <nlohmann/json.hpp>

#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/Paging.h"
#include "tunebrook-service/http/Reply.h"

namespace tb::service {

void ListReply::results(ApiCall& call, const nlohmann::json& items) {
    Reply::json(call.response, {{"results", items}});
}

bool ListReply::readPage(ApiCall& call, int& offset) {
    auto page = Paging::page(call);
    if (!page) {
        Reply::error(call.response, 400, kBadRequest, "Invalid page");
        return false;
    }
    offset = (*page - 1) * Paging::kPageSize;
    return true;
}

bool ListReply::readToken(ApiCall& call, int& offset) {
    auto value = Paging::offset(call);
    if (!value) {
        Reply::error(call.response, 400, kBadRequest, "Invalid paging token");
        return false;
    }
    offset = *value;
    return true;
}

void ListReply::withToken(ApiCall& call, nlohmann::json items, int offset, int pageSize) {
    nlohmann::json body = nlohmann::json::object();
    if (items.size() > static_cast<size_t>(pageSize)) {
        items.erase(items.begin() + pageSize, items.end());
        body["paging_token"] = Paging::token(offset + pageSize);
    }
    body["results"] = std::move(items);
    Reply::json(call.response, body);
}

}  // namespace tb::service
