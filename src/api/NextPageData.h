#pragma once

#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tb {

// A repeatable catalogue call: the service path (`url`, relative to the catalogue's base
// URL, as the catalogue's generic calls take it) and its parameters. Lists keep the call of
// their last load so that the player can fetch the next page without the list.
class NextPageData {
  public:
    NextPageData();
    NextPageData(std::optional<std::string> url, const nlohmann::json& params);
    NextPageData(const NextPageData& other);
    NextPageData& operator=(const NextPageData& other);
    NextPageData(NextPageData&& other) noexcept;
    NextPageData& operator=(NextPageData&& other) noexcept;
    ~NextPageData();

    const std::optional<std::string>& url() const { return url_; }
    void setUrl(std::optional<std::string> url) { url_ = std::move(url); }

    // Always an object; anything else given is taken as an empty one.
    const nlohmann::json& params() const { return *params_; }
    void setParams(const nlohmann::json& params);

    // The page step: reads "page" as an integer or numeric text (0 when it is neither),
    // adds 1 and stores it back as text.
    void nextPage();

    bool operator==(const NextPageData& other) const;

  private:
    std::optional<std::string> url_;
    std::unique_ptr<nlohmann::json> params_;
};

}  // namespace tb
