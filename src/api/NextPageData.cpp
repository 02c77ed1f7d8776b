#include "api/NextPageData.h"

#include <nlohmann/json.hpp>

#include "platform/JSON.h"

namespace tb {

namespace {

constexpr const char* kPage = "page";

std::unique_ptr<nlohmann::json> objectOf(const nlohmann::json& params) {
    return std::make_unique<nlohmann::json>(params.is_object() ? params : nlohmann::json::object());
}

}  // namespace

NextPageData::NextPageData() : params_(objectOf(nullptr)) {}

NextPageData::NextPageData(std::optional<std::string> url, const nlohmann::json& params)
    : url_(std::move(url)), params_(objectOf(params)) {}

NextPageData::NextPageData(const NextPageData& other)
    : url_(other.url_), params_(objectOf(*other.params_)) {}

NextPageData& NextPageData::operator=(const NextPageData& other) {
    if (this != &other) {
        url_ = other.url_;
        params_ = objectOf(*other.params_);
    }
    return *this;
}

// A moved-from page data keeps a valid (empty) parameter object.
NextPageData::NextPageData(NextPageData&& other) noexcept
    : url_(std::move(other.url_)), params_(std::move(other.params_)) {
    other.params_ = std::make_unique<nlohmann::json>(nlohmann::json::object());
}

NextPageData& NextPageData::operator=(NextPageData&& other) noexcept {
    if (this != &other) {
        url_ = std::move(other.url_);
        params_.swap(other.params_);
    }
    return *this;
}

NextPageData::~NextPageData() = default;

void NextPageData::setParams(const nlohmann::json& params) {
    params_ = objectOf(params);
}

void NextPageData::nextPage() {
    const auto found = params_->find(kPage);
    const std::int64_t page =
        found == params_->end() ? 0 : JSON(nlohmann::json(*found)).int64Value();
    (*params_)[kPage] = std::to_string(page + 1);
}

bool NextPageData::operator==(const NextPageData& other) const {
    return url_ == other.url_ && *params_ == *other.params_;
}

}  // namespace tb
