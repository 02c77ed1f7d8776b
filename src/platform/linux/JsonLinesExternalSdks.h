#pragma once

#include <string>

#include "platform/ExternalSdks.h"
#include "platform/linux/JsonLinesFile.h"

namespace tb {

class Clock;

// The closed libraries' starts on Linux: one line per start in "<support>/sdks.jsonl",
// {"time": seconds since 1970, "library": ..., "settings": {...}}.
class JsonLinesExternalSdks final : public ExternalSdks {
  public:
    JsonLinesExternalSdks(const std::string& supportFolder, const Clock& clock);

    void start(const std::string& library,
               const std::map<std::string, std::string>& settings) override;

    const std::string& path() const { return file_.path(); }

  private:
    const Clock& clock_;
    JsonLinesFile file_;
};

}  // namespace tb
