#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "platform/ExternalSdks.h"
#include "platform/linux/JsonLinesFile.h"

namespace tb {

class Clock;

// The closed libraries' starts and calls on Linux: one line each in "<support>/sdks.jsonl",
// {"time": seconds since 1970, "library": ..., "settings": {...}} for a start and
// {"time": ..., "call": ..., "arguments": {...}} for a call.
class JsonLinesExternalSdks final : public ExternalSdks {
  public:
    JsonLinesExternalSdks(const std::string& supportFolder, const Clock& clock);

    void start(const std::string& library,
               const std::map<std::string, std::string>& settings) override;
    void call(const std::string& function,
              const std::map<std::string, std::string>& arguments) override;

    const std::string& path() const { return file_.path(); }

  private:
    void append(const nlohmann::json& record);

    const Clock& clock_;
    JsonLinesFile file_;
};

}  // namespace tb
