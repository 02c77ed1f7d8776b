#include "offline/TBDownloadImageOperation.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

#include "model/Item.h"
#include "model/TBUtil.h"
#include "platform/AtomicWrite.h"
#include "platform/HttpTransport.h"
#include "platform/Log.h"
#include "platform/Promise.h"

namespace tb {

namespace {

constexpr double kImageTimeoutSeconds = 60.0;

bool hasText(const std::optional<std::string>& value) {
    return value && !value->empty();
}

// A value, or the main image when it has none.
std::optional<std::string> orImage(const std::optional<std::string>& value, const Item& item) {
    return hasText(value) ? value : item.image;
}

bool isWebURL(const std::string& url) {
    for (const std::string scheme : {"http://", "https://"}) {
        if (url.size() > scheme.size() && url.compare(0, scheme.size(), scheme) == 0) {
            return true;
        }
    }
    return false;
}

Error downloadError(const std::string& message) {
    return Error{URLError::kDomain, URLError::kCannotDecodeContentData, message, {}};
}

}  // namespace

TBDownloadImageOperation::TBDownloadImageOperation(HttpTransport& http,
                                                   MainQueue& queue,
                                                   std::string documents,
                                                   ItemPtr song)
    : http_(http), queue_(queue), documents_(std::move(documents)), song_(std::move(song)) {}

std::vector<std::string> TBDownloadImageOperation::artworkURLsOf(const Item& item) {
    std::vector<std::string> urls;
    for (const auto& candidate :
         {orImage(item.smallImage, item), orImage(item.originalImage, item), item.banner}) {
        if (hasText(candidate) && std::find(urls.begin(), urls.end(), *candidate) == urls.end()) {
            urls.push_back(*candidate);
        }
    }
    return urls;
}

bool TBDownloadImageOperation::looksLikeImage(const std::string& bytes) {
    const auto startsWith = [&](std::string_view prefix, std::size_t at = 0) {
        return bytes.size() >= at + prefix.size() && bytes.compare(at, prefix.size(), prefix) == 0;
    };
    return startsWith("\xFF\xD8\xFF") || startsWith("\x89PNG\r\n\x1A\n") || startsWith("GIF87a") ||
           startsWith("GIF89a") || (startsWith("RIFF") && startsWith("WEBP", 8));
}

void TBDownloadImageOperation::main() {
    setState(State::executing);
    std::vector<Promise<void>> downloads;
    if (song_) {
        for (const std::string& url : artworkURLsOf(*song_)) {
            std::error_code ignored;
            if (!std::filesystem::exists(TBUtil::remoteUrlToArtworkFile(url, documents_),
                                         ignored)) {
                downloads.push_back(download(url));
            }
        }
    }
    auto self = shared_from_this();
    whenResolved(queue_, downloads).finally([self] { self->setState(State::finished); });
}

Promise<void> TBDownloadImageOperation::download(const std::string& url) {
    MainQueue& queue = queue_;
    if (!isWebURL(url)) {
        return Promise<void>::rejected(queue, Error{URLError::kDomain, URLError::kBadURL, url, {}});
    }
    auto pending = Promise<void>::pending(queue);
    HttpRequest request;
    request.url = url;
    request.timeoutSeconds = kImageTimeoutSeconds;
    const std::string target = TBUtil::remoteUrlToArtworkFile(url, documents_);
    http_.send(request, [url, target, resolver = pending.resolver](HttpResult result) {
        if (!result.ok() || result.statusCode() < 200 || result.statusCode() > 299) {
            const bool cancelled = result.error && result.error->code == URLError::kCancelled;
            logLine("### Image download " + std::string(cancelled ? "cancelled" : "failed") + " " +
                    url);
            resolver.reject(result.error.value_or(
                downloadError("HTTP status " + std::to_string(result.statusCode()))));
            return;
        }
        const std::string& bytes = result.response->body;
        if (!looksLikeImage(bytes)) {
            logLine("### Image download failed (not an image) " + url);
            resolver.reject(downloadError("not an image"));
            return;
        }
        std::string reason;
        if (!atomicWrite(target, bytes, &reason)) {
            logLine("### Image download failed (failed to write) " + url);
            resolver.reject(downloadError(reason));
            return;
        }
        logLine("### Image download succeeded " + url);
        resolver.fulfill();
    });
    return pending.promise;
}

}  // namespace tb
